// Tests the hello application's own service without a browser: the test
// kit's ScriptedPage plays the page on a real HostControlInstance and
// HostAPI, as an application tests its services.
#include "HelloSvc.h"

#include <string>

#include <gtest/gtest.h>

#include "wevlin/testing/ScriptedPage.h"
#include "wevlin/wevlin.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace core02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02;
namespace version02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_02;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;

class HelloSvcTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    // The manager lives as long as the process and owns what it is given.
    interop::HostManager* manager = interop::HostManager::TheInstance();
    manager->RegisterServices({new wevlin_hello::HelloSvc(), new core02::StartupNotificationSvc()});
    manager->RegisterTargetConfig(new interop::TargetConfig("hello", "Hello", "file:///hello"));
  }

  void SetUp() override {
    page_.ConnectHost(&api_);
    page_.LogIn(instance_, *interop::HostManager::TheInstance()->GetTargetConfig("hello"));
  }

  ScriptedPage page_;
  interop::HostControlInstance instance_{&page_};
  interop::HostAPI api_{&instance_};
};

TEST_F(HelloSvcTest, GreetsTheNameThePageSends) {
  EXPECT_EQ(instance_.GetContentState(), interop::LoggedIn);
  EXPECT_EQ(page_.CallHostMethod(wevlin_hello::HelloSvc::kFqn, wevlin_hello::HelloSvc::kVersion,
                                 "newcomer"),
            "Hello, newcomer!");
}

TEST_F(HelloSvcTest, RefusesAnEmptyNameWithAnExceptionRecord) {
  EXPECT_EQ(
      page_.CallHostMethod(wevlin_hello::HelloSvc::kFqn, wevlin_hello::HelloSvc::kVersion, ""),
      R"({"Exception": {"name": "std::invalid_argument", "message": "The greeter needs a name"}})");
}

TEST_F(HelloSvcTest, IsAnnouncedToThePageDuringTheHandshake) {
  EXPECT_TRUE(page_.HostOffers(wevlin_hello::HelloSvc::kFqn, wevlin_hello::HelloSvc::kVersion));
}

TEST_F(HelloSvcTest, ReachesThePageVersionServiceThroughItsProxy) {
  const std::string fqn = "tavo.wevlin.infrastructure.services.version.TestVersionSvc";
  std::string received = "(not called)";
  page_.RegisterMethod(fqn, "_2014_02", [&](const std::string& payload) {
    received = payload;
    return R"({"Version": "_2014_02", "ServiceName": ")" + fqn +
           R"(", "ServiceVersion": "_2014_02"})";
  });
  EXPECT_EQ(page_.AnnounceServices(), "");

  version02::TestVersionProxy proxy(&instance_);
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
  EXPECT_EQ(proxy.GetClientServiceVersion().ServiceVersion, "_2014_02");
  // The proxy sends the page its own message: the service's name and version.
  EXPECT_EQ(received, R"({"Version": "_2014_02", "ServiceName": ")" + fqn +
                          R"(", "ServiceVersion": "_2014_02"})");
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebMethod").size(), 1U);
}

}  // namespace
