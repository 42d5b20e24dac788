#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

#include "support/CountingService.h"
#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/IHostServiceInteraction.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/BaseHostingService.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::BaseHostingService;
using interop::HostManager;
using interop::IHostControlInstance;
using interop::IHostServiceDescriptor;
using interop::IHostServiceInteraction;
using interop::ITargetServiceDesc;
using interop::internal::HostManagerTestPeer;
using ::testing::StrictMock;
using wevlin_test::CountingService;
using wevlin_test::MockHostControlInstance;
using wevlin_test::ServiceCall;
using wevlin_test::ServiceProbe;

// A service that overrides nothing.
class PlainService : public BaseHostingService {
 public:
  using BaseHostingService::BaseHostingService;
};

// A service that changes its own copy of the payload before answering.
class AppendingService : public BaseHostingService {
 public:
  AppendingService() : BaseHostingService("a.b", "_2014_02") {}

  std::string lastEventPayload;

 protected:
  std::string DoInvokeMethod(IHostControlInstance*, IHostServiceDescriptor*,
                             std::string payload) override {
    payload += " seen";
    return payload;
  }
  void DoInvokeEvent(IHostControlInstance*, IHostServiceDescriptor*, std::string payload) override {
    payload += " seen";
    lastEventPayload = std::move(payload);
  }
};

// A failure type of a service, to show that the exact type arrives.
class ServiceFailure : public std::runtime_error {
 public:
  explicit ServiceFailure(const std::string& what) : std::runtime_error(what) {}
};

// --- Identity ------------------------------------------------------------------------

TEST(BaseHostingServiceTest, ReturnsTheFqnAndVersionItWasGiven) {
  PlainService service("tavo.wevlin.infrastructure.services.core.HostConfiguration.host",
                       "_2014_07");
  EXPECT_EQ(service.GetFQN(), "tavo.wevlin.infrastructure.services.core.HostConfiguration.host");
  EXPECT_EQ(service.GetSvcVersion(), "_2014_07");
  const ITargetServiceDesc& target = service;
  EXPECT_EQ(target.GetFQN(), "tavo.wevlin.infrastructure.services.core.HostConfiguration.host");
  EXPECT_EQ(target.GetSvcVersion(), "_2014_07");
}

TEST(BaseHostingServiceTest, AcceptsEmptyTexts) {
  PlainService service("", "");
  EXPECT_EQ(service.GetFQN(), "");
  EXPECT_EQ(service.GetSvcVersion(), "");
}

TEST(BaseHostingServiceTest, TheBaseItselfCanBeCreated) {
  BaseHostingService service("a.b", "_2014_02");
  EXPECT_EQ(service.GetFQN(), "a.b");
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, "{}"), "");
}

TEST(BaseHostingServiceTest, CopyConstructionCopiesTheTexts) {
  PlainService original("a.b", "_2014_02");
  PlainService copy(original);
  EXPECT_EQ(copy.GetFQN(), "a.b");
  EXPECT_EQ(copy.GetSvcVersion(), "_2014_02");
  EXPECT_EQ(copy.GetInteraction(), static_cast<IHostServiceInteraction*>(&copy));
  EXPECT_NE(copy.GetInteraction(), original.GetInteraction());
}

TEST(BaseHostingServiceTest, CopyAssignmentReplacesTheTexts) {
  PlainService source("c.d", "_2015_10");
  PlainService target("a.b", "_2014_02");
  target = source;
  EXPECT_EQ(target.GetFQN(), "c.d");
  EXPECT_EQ(target.GetSvcVersion(), "_2015_10");
  EXPECT_EQ(target.GetInteraction(), static_cast<IHostServiceInteraction*>(&target));
}

// --- One object, two faces -----------------------------------------------------------

TEST(BaseHostingServiceTest, GetInteractionIsTheServiceItself) {
  PlainService service("a.b", "_2014_02");
  EXPECT_EQ(service.GetInteraction(), static_cast<IHostServiceInteraction*>(&service));

  const IHostServiceDescriptor* descriptor = &service;
  EXPECT_EQ(descriptor->GetInteraction(), static_cast<IHostServiceInteraction*>(&service));
  EXPECT_NE(descriptor->GetInteraction(), nullptr);
}

TEST(BaseHostingServiceTest, CallsThroughTheInteractionReachTheOverrides) {
  CountingService service("a.b", "_2014_02");
  service.SetAnswer("{\"ok\": true}");
  IHostServiceInteraction* interaction = service.GetInteraction();
  EXPECT_EQ(interaction->InvokeMethod(nullptr, &service, "m"), "{\"ok\": true}");
  interaction->InvokeEvent(nullptr, &service, "e");
  ASSERT_EQ(service.Calls().size(), 2u);
  EXPECT_EQ(service.Calls()[0].kind, ServiceCall::kMethod);
  EXPECT_EQ(service.Calls()[0].payload, "m");
  EXPECT_EQ(service.Calls()[1].kind, ServiceCall::kEvent);
  EXPECT_EQ(service.Calls()[1].payload, "e");
}

TEST(BaseHostingServiceTest, DeletingThroughTheDescriptorRunsTheDerivedDestructor) {
  ServiceProbe probe;
  IHostServiceDescriptor* descriptor = new CountingService("a.b", "_2014_02", &probe);
  IHostServiceInteraction* interaction = descriptor->GetInteraction();
  EXPECT_EQ(interaction->InvokeMethod(nullptr, descriptor, "x"), "");
  EXPECT_EQ(probe.destroyed, 0);
  delete descriptor;
  EXPECT_EQ(probe.destroyed, 1);
  ASSERT_EQ(probe.calls.size(), 1u);
  EXPECT_EQ(probe.calls[0].payload, "x");
}

// --- Defaults ------------------------------------------------------------------------

TEST(BaseHostingServiceTest, DefaultMethodAnswersWithTheEmptyText) {
  StrictMock<MockHostControlInstance> instance;
  PlainService service("a.b", "_2014_02");
  EXPECT_EQ(service.InvokeMethod(&instance, &service, "{\"a\": 1}"), "");
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, ""), "");
  EXPECT_EQ(service.InvokeMethod(nullptr, nullptr, std::string(100000, 'x')), "");
}

TEST(BaseHostingServiceTest, DefaultEventIsIgnored) {
  StrictMock<MockHostControlInstance> instance;  // any call on it would fail the test
  PlainService service("a.b", "_2014_02");
  EXPECT_NO_THROW(service.InvokeEvent(&instance, &service, "{\"a\": 1}"));
  EXPECT_NO_THROW(service.InvokeEvent(nullptr, nullptr, ""));
}

// --- Passing calls on ----------------------------------------------------------------

TEST(BaseHostingServiceTest, MethodOverrideReceivesTheExactArguments) {
  StrictMock<MockHostControlInstance> instance;
  CountingService service("a.b", "_2014_02");
  CountingService other("c.d", "_2014_07");
  const std::string payload("{\"k\": \"v\"}\0tail\n", 16);

  service.InvokeMethod(&instance, &other, payload);

  ASSERT_EQ(service.Calls().size(), 1u);
  const ServiceCall& call = service.Calls()[0];
  EXPECT_EQ(call.kind, ServiceCall::kMethod);
  EXPECT_EQ(call.service, &service);
  EXPECT_EQ(call.instance, static_cast<IHostControlInstance*>(&instance));
  EXPECT_EQ(call.descriptor, static_cast<IHostServiceDescriptor*>(&other));
  EXPECT_EQ(call.payload, payload);
  EXPECT_EQ(call.payload.size(), 16u);
  EXPECT_TRUE(other.Calls().empty());
}

TEST(BaseHostingServiceTest, EventOverrideReceivesTheExactArguments) {
  StrictMock<MockHostControlInstance> instance;
  CountingService service("a.b", "_2014_02");
  const std::string payload = "{\"event\": \"LoggedIn\"}";

  service.InvokeEvent(&instance, &service, payload);

  ASSERT_EQ(service.Calls().size(), 1u);
  const ServiceCall& call = service.Calls()[0];
  EXPECT_EQ(call.kind, ServiceCall::kEvent);
  EXPECT_EQ(call.instance, static_cast<IHostControlInstance*>(&instance));
  EXPECT_EQ(call.descriptor, static_cast<IHostServiceDescriptor*>(&service));
  EXPECT_EQ(call.payload, payload);
}

TEST(BaseHostingServiceTest, NullArgumentsArePassedOnAsNull) {
  CountingService service("a.b", "_2014_02");
  service.InvokeMethod(nullptr, nullptr, "");
  service.InvokeEvent(nullptr, nullptr, "");
  ASSERT_EQ(service.Calls().size(), 2u);
  for (const ServiceCall& call : service.Calls()) {
    EXPECT_EQ(call.instance, nullptr);
    EXPECT_EQ(call.descriptor, nullptr);
    EXPECT_EQ(call.payload, "");
  }
}

TEST(BaseHostingServiceTest, MethodAnswerIsReturnedUnchanged) {
  CountingService service("a.b", "_2014_02");
  const std::string answer("{\"Exception\": null}\0\xff", 21);
  service.SetAnswer(answer);
  const std::string result = service.InvokeMethod(nullptr, &service, "{}");
  EXPECT_EQ(result, answer);
  EXPECT_EQ(result.size(), 21u);
}

TEST(BaseHostingServiceTest, OverrideWorksOnItsOwnCopyOfThePayload) {
  AppendingService service;
  const std::string payload = "page text";
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, payload), "page text seen");
  service.InvokeEvent(nullptr, &service, payload);
  EXPECT_EQ(service.lastEventPayload, "page text seen");
  EXPECT_EQ(payload, "page text");
}

TEST(BaseHostingServiceTest, CallsThroughTheDescriptorInterfaceDispatchToTheOverride) {
  CountingService service("a.b", "_2014_02");
  service.SetMethodHandler(
      [](IHostControlInstance*, IHostServiceDescriptor* descriptor, const std::string& payload) {
        return descriptor->GetFQN() + ":" + payload;
      });
  IHostServiceDescriptor* descriptor = &service;
  EXPECT_EQ(descriptor->GetInteraction()->InvokeMethod(nullptr, descriptor, "p"), "a.b:p");
}

// --- Failures --------------------------------------------------------------------------

TEST(BaseHostingServiceTest, MethodExceptionPassesThroughUnchanged) {
  CountingService service("a.b", "_2014_02");
  service.ThrowOnInvoke(std::invalid_argument("fqn"));
  try {
    service.InvokeMethod(nullptr, &service, "{}");
    ADD_FAILURE() << "no exception";
  } catch (const std::invalid_argument& e) {
    EXPECT_EQ(std::string(e.what()), "fqn");
  }
  EXPECT_EQ(service.Calls().size(), 1u);
}

TEST(BaseHostingServiceTest, EventExceptionPassesThroughUnchanged) {
  CountingService service("a.b", "_2014_02");
  service.ThrowOnInvoke(std::logic_error("wrong kind"));
  try {
    service.InvokeEvent(nullptr, &service, "{}");
    ADD_FAILURE() << "no exception";
  } catch (const std::invalid_argument&) {
    ADD_FAILURE() << "caught as a more derived type";
  } catch (const std::logic_error& e) {
    EXPECT_EQ(std::string(e.what()), "wrong kind");
  }
}

TEST(BaseHostingServiceTest, ExceptionKeepsItsOwnType) {
  CountingService service("a.b", "_2014_02");
  service.ThrowOnInvoke(ServiceFailure("service failed"));
  try {
    service.InvokeMethod(nullptr, &service, "");
    ADD_FAILURE() << "no exception";
  } catch (const ServiceFailure& e) {
    EXPECT_EQ(std::string(e.what()), "service failed");
  }
}

TEST(BaseHostingServiceTest, NonStandardExceptionPassesThrough) {
  CountingService service("a.b", "_2014_02");
  service.ThrowOnInvoke(42);
  try {
    service.InvokeEvent(nullptr, &service, "");
    ADD_FAILURE() << "no exception";
  } catch (int value) {
    EXPECT_EQ(value, 42);
  }
}

// --- Registration ----------------------------------------------------------------------

class BaseHostingServiceRegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override { previous_ = HostManagerTestPeer::InstallFresh(); }
  void TearDown() override { HostManagerTestPeer::Restore(previous_); }

  HostManager* previous_ = nullptr;
};

TEST_F(BaseHostingServiceRegistrationTest, EmptyFqnServiceCanBeInvokedButNotRegistered) {
  CountingService service("", "_2014_02");
  service.SetAnswer("answer");
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, "{}"), "answer");
  service.InvokeEvent(nullptr, &service, "{}");
  EXPECT_EQ(service.Calls().size(), 2u);

  try {
    HostManager::TheInstance()->RegisterService(&service);
    ADD_FAILURE() << "no exception";
  } catch (const std::invalid_argument& e) {
    EXPECT_EQ(std::string(e.what()), "fqn");
  }
  EXPECT_EQ(HostManager::TheInstance()->KnownServices()->GetSize(), 0);
}

TEST_F(BaseHostingServiceRegistrationTest, RegisteredServiceIsFoundAsItself) {
  auto* service = new CountingService("a.b", "_2014_02");
  HostManager::TheInstance()->RegisterService(service);
  IHostServiceDescriptor* found =
      HostManager::TheInstance()->LookupService(static_cast<ITargetServiceDesc*>(service));
  EXPECT_EQ(found, service);
  EXPECT_EQ(found->GetInteraction(), static_cast<IHostServiceInteraction*>(service));
  delete service;  // the manager never deletes what is still registered
}

}  // namespace
