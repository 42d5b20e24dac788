#include "wevlin/infrastructure/services/BaseServiceProxy.h"

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/base/ObservableList.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Base::ObservableList;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::BaseServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseServiceProxy;
using ::testing::Return;
using ::testing::StrictMock;
using wevlin_test::MockHostControlInstance;

constexpr char kFqn[] = "tavo.wevlin.infrastructure.services.refresh.Refresh.client";
constexpr char kVersion[] = "_2014_07";

// A concrete proxy that shows what the base keeps and counts its own
// destruction.
class ProbeProxy : public BaseServiceProxy {
 public:
  ProbeProxy(IHostControlInstance* instance, int* destroyed = nullptr)
      : BaseServiceProxy(instance, kFqn, kVersion), destroyed_(destroyed) {}
  ~ProbeProxy() override {
    if (destroyed_ != nullptr) ++*destroyed_;
  }
  IHostControlInstance* Instance() const { return GetHostControlInstance(); }

 private:
  int* destroyed_;
};

// The page's announced services: an observable list of descriptors that the
// fixture owns, handed out by the mock instance.
class BaseServiceProxyTest : public ::testing::Test {
 protected:
  void Announce(const std::string& fqn, const std::string& version) {
    owned_.push_back(std::make_unique<BaseServiceDescriptor>(fqn, version));
    webServices_.Add(owned_.back().get());
  }
  void ServeList() {
    ON_CALL(instance_, GetKnownWebSideServices()).WillByDefault(Return(&webServices_));
    EXPECT_CALL(instance_, GetKnownWebSideServices()).Times(::testing::AtLeast(1));
  }

  std::vector<std::unique_ptr<BaseServiceDescriptor>> owned_;
  ObservableList<ITargetServiceDesc*> webServices_;
  StrictMock<MockHostControlInstance> instance_;
};

TEST_F(BaseServiceProxyTest, TheTargetDescriptorCarriesTheFqnAndVersion) {
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  ITargetServiceDesc* target = proxy.GetBaseServiceDescriptor();
  ASSERT_NE(target, nullptr);
  EXPECT_EQ(target->GetFQN(), kFqn);
  EXPECT_EQ(target->GetSvcVersion(), kVersion);
  EXPECT_EQ(proxy.GetBaseServiceDescriptor(), target);
}

TEST_F(BaseServiceProxyTest, KeepsTheInstanceItWasGiven) {
  ProbeProxy proxy(&instance_);
  EXPECT_EQ(proxy.Instance(), &instance_);
  ProbeProxy detached(nullptr);
  EXPECT_EQ(detached.Instance(), nullptr);
}

TEST_F(BaseServiceProxyTest, WithoutInstanceTheTargetIsUnavailable) {
  BaseServiceProxy proxy(nullptr, kFqn, kVersion);
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, BeforeThePageAnnouncedAnythingTheTargetIsUnavailable) {
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, TheSameFqnInAnotherVersionIsUnavailable) {
  Announce(kFqn, "_2014_02");
  Announce(kFqn, "_2014_03");
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, AnotherFqnInTheSameVersionIsUnavailable) {
  Announce("tavo.wevlin.infrastructure.services.session.Session.client", kVersion);
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, AnExactMatchIsAvailable) {
  Announce(kFqn, kVersion);
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, AMatchAfterOtherEntriesIsFound) {
  Announce("tavo.wevlin.infrastructure.services.session.Session.client", kVersion);
  Announce(kFqn, "_2014_02");
  Announce(kFqn, kVersion);
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, NamesThatDifferInCaseDoNotMatch) {
  Announce("tavo.wevlin.infrastructure.services.refresh.refresh.client", kVersion);
  Announce("TAVO.WEVLIN.INFRASTRUCTURE.SERVICES.REFRESH.REFRESH.CLIENT", kVersion);
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());

  BaseServiceProxy lettered(&instance_, "svc", "_v1");
  Announce("svc", "_V1");
  EXPECT_FALSE(lettered.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, TheAnswerFollowsTheCurrentList) {
  ServeList();
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
  Announce(kFqn, kVersion);
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
  webServices_.Clear();
  EXPECT_FALSE(proxy.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, ACopyHasADescriptorOfItsOwn) {
  auto original = std::make_unique<ProbeProxy>(&instance_);
  ProbeProxy copy(*original);
  EXPECT_NE(copy.GetBaseServiceDescriptor(), original->GetBaseServiceDescriptor());
  EXPECT_EQ(copy.GetBaseServiceDescriptor()->GetFQN(), kFqn);
  EXPECT_EQ(copy.GetBaseServiceDescriptor()->GetSvcVersion(), kVersion);
  EXPECT_EQ(copy.Instance(), &instance_);
  original.reset();
  EXPECT_EQ(copy.GetBaseServiceDescriptor()->GetFQN(), kFqn);
}

TEST_F(BaseServiceProxyTest, TheCopyMayBeDestroyedFirst) {
  ProbeProxy original(&instance_);
  {
    ProbeProxy copy(original);
    EXPECT_EQ(copy.GetBaseServiceDescriptor()->GetSvcVersion(), kVersion);
  }
  EXPECT_EQ(original.GetBaseServiceDescriptor()->GetFQN(), kFqn);
  EXPECT_EQ(original.GetBaseServiceDescriptor()->GetSvcVersion(), kVersion);
}

TEST_F(BaseServiceProxyTest, CopyAssignmentTakesTheOthersTargetAndInstance) {
  Announce("other.client", "_2014_02");
  ServeList();
  auto source = std::make_unique<BaseServiceProxy>(&instance_, "other.client", "_2014_02");
  BaseServiceProxy target(nullptr, kFqn, kVersion);
  target = *source;
  EXPECT_NE(target.GetBaseServiceDescriptor(), source->GetBaseServiceDescriptor());
  source.reset();
  EXPECT_EQ(target.GetBaseServiceDescriptor()->GetFQN(), "other.client");
  EXPECT_EQ(target.GetBaseServiceDescriptor()->GetSvcVersion(), "_2014_02");
  EXPECT_TRUE(target.IsTargetServiceAvailable());
}

TEST_F(BaseServiceProxyTest, SelfAssignmentKeepsTheDescriptor) {
  BaseServiceProxy proxy(&instance_, kFqn, kVersion);
  BaseServiceProxy& alias = proxy;
  proxy = alias;
  EXPECT_EQ(proxy.GetBaseServiceDescriptor()->GetFQN(), kFqn);
}

TEST_F(BaseServiceProxyTest, DestroyingAProxyLeavesTheInstanceAlone) {
  // The strict mock fails on any call: the destructor must make none.
  int destroyed = 0;
  BaseServiceProxy* proxy = new ProbeProxy(&instance_, &destroyed);
  delete proxy;
  EXPECT_EQ(destroyed, 1);
}

static_assert(std::has_virtual_destructor_v<BaseServiceProxy>,
              "proxies are deleted through the base");

// ---- End to end: a host control instance on a scripted page ------------------

using BaseServiceProxyEndToEndTest = wevlin_test::HostedPageFixture;

TEST_F(BaseServiceProxyEndToEndTest, AvailabilityFollowsThePagesAnnouncedList) {
  page_.WebServiceList =
      R"([{"FQN": "tavo.wevlin.infrastructure.services.refresh.Refresh.client", )"
      R"("SvcVersion": "_2014_02"}, {"FQN": "other.client", "SvcVersion": "_2014_07"}])";
  BaseServiceProxy exact(instance_.get(), kFqn, kVersion);
  BaseServiceProxy older(instance_.get(), kFqn, "_2014_02");
  BaseServiceProxy other(instance_.get(), "other.client", kVersion);
  EXPECT_FALSE(older.IsTargetServiceAvailable());
  Talk();
  EXPECT_FALSE(exact.IsTargetServiceAvailable());
  EXPECT_TRUE(older.IsTargetServiceAvailable());
  EXPECT_TRUE(other.IsTargetServiceAvailable());

  EXPECT_EQ(
      api_->tavoHost_WebSideServiceListUpdate(
          "Replace", R"([{"FQN": ")" + std::string(kFqn) + R"(", "SvcVersion": "_2014_07"}])"),
      "");
  EXPECT_TRUE(exact.IsTargetServiceAvailable());
  EXPECT_FALSE(older.IsTargetServiceAvailable());
  EXPECT_FALSE(other.IsTargetServiceAvailable());
}

}  // namespace
