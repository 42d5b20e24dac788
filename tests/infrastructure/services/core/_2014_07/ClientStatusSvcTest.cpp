#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusSvc.h"

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/HostedPageFixture.h"
#include "support/ServiceFixture.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusMsg.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleClientStatusSvc.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::ClientStatusMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::ClientStatusSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07::IHandleClientStatusSvc;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

static_assert(std::is_abstract_v<IHandleClientStatusSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleClientStatusSvc>);
static_assert(!std::is_destructible_v<IHandleClientStatusSvc>);
static_assert(std::is_copy_assignable_v<IHandleClientStatusSvc>);

// Keeps a copy of every status it receives.
class RecordingHandler : public IHandleClientStatusSvc {
 public:
  void OnClientStatus(const ClientStatusMsg& status) override {
    if (failure_ != nullptr) throw *failure_;
    received.push_back(status);
  }
  void FailWith(const std::runtime_error* failure) { failure_ = failure; }

  std::vector<ClientStatusMsg> received;

 private:
  const std::runtime_error* failure_ = nullptr;
};

using ClientStatusSvcTest = wevlin_test::ServiceFixture<ClientStatusSvc, RecordingHandler>;

TEST_F(ClientStatusSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.core.ClientStatus.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
}

TEST_F(ClientStatusSvcTest, ABusyStatusReachesTheHandlerAsBusy) {
  service_.InvokeEvent(&instance_, &service_, R"({"State":"busy","Version":"_2014_07"})");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].State, "busy");
  EXPECT_EQ(handler_.received[0].GetVersion(), "_2014_07");
  EXPECT_EQ(handler_.received[0].ToJsonString(), R"({"Version": "_2014_07", "State": "busy"})");
}

TEST_F(ClientStatusSvcTest, AStatusWithoutStateReachesTheHandlerAsIdle) {
  service_.InvokeEvent(&instance_, &service_, R"({"Version":"_2014_07"})");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].State, "idle");
}

TEST_F(ClientStatusSvcTest, EachEventStartsFromIdle) {
  service_.InvokeEvent(&instance_, &service_, R"({"State":"busy"})");
  service_.InvokeEvent(&instance_, &service_, R"({})");
  ASSERT_EQ(handler_.received.size(), 2u);
  EXPECT_EQ(handler_.received[0].State, "busy");
  EXPECT_EQ(handler_.received[1].State, "idle");
}

TEST_F(ClientStatusSvcTest, TextThatIsNotJsonDoesNotReachTheHandler) {
  StdoutCapture capture;
  service_.InvokeEvent(&instance_, &service_, "busy");
  service_.InvokeEvent(&instance_, &service_, "");
  service_.InvokeEvent(&instance_, &service_, R"(["busy"])");
  service_.InvokeEvent(&instance_, &service_, R"({"State": "busy")");
  EXPECT_TRUE(handler_.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientStatusSvcTest, WithoutHandlerEveryEventIsIgnored) {
  ClientStatusSvc unhandled(nullptr);
  StdoutCapture capture;
  unhandled.InvokeEvent(&instance_, &unhandled, R"({"State":"busy","Version":"_2014_07"})");
  unhandled.InvokeEvent(&instance_, &unhandled, "not json");
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientStatusSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  const std::runtime_error failure("handler failed");
  handler_.FailWith(&failure);
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { service_.InvokeEvent(&instance_, &service_, R"({"State":"busy"})"); },
      "handler failed"));
}

TEST_F(ClientStatusSvcTest, AMethodCallIsAnsweredWithTheEmptyText) {
  EXPECT_EQ(service_.InvokeMethod(&instance_, &service_, R"({"State":"busy"})"), "");
  EXPECT_TRUE(handler_.received.empty());
}

// ---- End to end: a host control instance on a scripted page ------------------

using ClientStatusSvcEndToEndTest = wevlin_test::HostedPageFixture;

constexpr char kClientStatus[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.core.ClientStatus.host", )"
    R"("SvcVersion": "_2014_07"})";

TEST_F(ClientStatusSvcEndToEndTest, ThePagesStatusReachesTheHandler) {
  RecordingHandler handler;
  manager_->RegisterService(new ClientStatusSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, R"({"State":"busy","Version":"_2014_07"})"), "");
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, R"({"Version":"_2014_07"})"), "");
  ASSERT_EQ(handler.received.size(), 2u);
  EXPECT_EQ(handler.received[0].State, "busy");
  EXPECT_EQ(handler.received[1].State, "idle");
}

TEST_F(ClientStatusSvcEndToEndTest, AnUnreadableStatusIsDroppedWithoutARecord) {
  RecordingHandler handler;
  manager_->RegisterService(new ClientStatusSvc(&handler));
  wevlin_test::StdoutCapture capture;
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, "busy"), "");
  EXPECT_TRUE(handler.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(ClientStatusSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHandler handler;
  const std::runtime_error failure("status refused");
  handler.FailWith(&failure);
  manager_->RegisterService(new ClientStatusSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kClientStatus, R"({"State":"busy"})"),
            R"({"Exception": {"name": "std::runtime_error", "message": "status refused"}})");
}

}  // namespace
