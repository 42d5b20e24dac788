#ifndef WEVLIN_TESTS_SUPPORT_HOSTCONFIGURATIONSVCSUITE_H_
#define WEVLIN_TESTS_SUPPORT_HOSTCONFIGURATIONSVCSUITE_H_

// The tests that every version of the host configuration service must pass,
// as GoogleTest type-parameterised suites. The test file of each version
// instantiates them with a traits type that names the version's classes and
// texts:
//
//   struct Traits {
//     using Service = ...;   // HostConfigurationSvc of the version
//     using Handler = ...;   // IHandleHostConfigurationSvc of the version
//     using Response = ...;  // HostConfigurationResponseMsg of the version
//     static constexpr const char* kVersion = "_2014_..";
//     // The descriptor texts with which the page asks for this version and
//     // for the other one, which this service does not serve, and the reply
//     // to the latter.
//     static constexpr const char* kDescriptor = ...;
//     static constexpr const char* kOtherDescriptor = ...;
//     static constexpr const char* kOtherVersionReply = ...;
//     static constexpr const char* kEmptyReply = ...;  // text of Response()
//     // A payload shaped like a configuration, which the service must ignore.
//     static constexpr const char* kConfigurationPayload = ...;
//     // Each of these sets values in `response` and returns the text the
//     // service must then reply with.
//     static std::string SetSomeValues(Response& response);
//     static std::string SetKioskHostType(Response& response);
//     static std::string SetValuesForThePage(Response& response);
//   };
//
//   INSTANTIATE_TYPED_TEST_SUITE_P(Version, HostConfigurationSvcTest, Traits,
//                                  HostConfigurationVersionName);
//   INSTANTIATE_TYPED_TEST_SUITE_P(Version, HostConfigurationSvcEndToEndTest, Traits,
//                                  HostConfigurationVersionName);
//
// Include this header from one test file per program only.

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/HostedPageFixture.h"
#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"

namespace wevlin_test {

constexpr char kHostConfigurationFqn[] =
    "tavo.wevlin.infrastructure.services.core.HostConfiguration.host";

// Names an instantiation of the suites after the version its traits describe,
// e.g. "Version/HostConfigurationSvcTest/_2014_07".
class HostConfigurationVersionName {
 public:
  template <typename Traits>
  static std::string GetName(int) {
    return Traits::kVersion;
  }
};

// A GoogleMock handler of the version that `Traits` names.
template <typename Traits>
class MockHostConfigurationHandler : public Traits::Handler {
 public:
  using Response = typename Traits::Response;
  using Instance = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
  using Descriptor = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;

  MOCK_METHOD(const Response&, GetHostConfiguration, (Instance * instance, Descriptor* descriptor),
              (override));
};

// A handler that answers with the configuration it keeps, records who asked,
// and throws std::runtime_error "configuration unavailable" when `fail` is
// set. Use it on one thread.
template <typename Traits>
class RecordingHostConfigurationHandler : public Traits::Handler {
 public:
  using Instance = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance;
  using Descriptor = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;

  const typename Traits::Response& GetHostConfiguration(Instance* instance,
                                                        Descriptor* descriptor) override {
    instances.push_back(instance);
    descriptors.push_back(descriptor);
    if (fail) throw std::runtime_error("configuration unavailable");
    return configuration;
  }

  typename Traits::Response configuration;
  std::vector<Instance*> instances;
  std::vector<Descriptor*> descriptors;
  bool fail = false;
};

// A service of the version under test on strict mocks: neither the instance
// nor the handler may be called unless a test expects it.
template <typename Traits>
class HostConfigurationSvcTest : public ::testing::Test {
 protected:
  using Service = typename Traits::Service;
  using Handler = typename Traits::Handler;

  // The handler interface: one pure operation, no virtual destructor, and a
  // destructor the library cannot call.
  static_assert(std::is_abstract_v<Handler>);
  static_assert(!std::has_virtual_destructor_v<Handler>);
  static_assert(!std::is_destructible_v<Handler>);
  static_assert(std::is_copy_assignable_v<Handler>);

  // Makes the handler answer the next `times` calls from instance_ about
  // service_ with configuration_.
  void Answer(int times = 1) {
    EXPECT_CALL(handler_, GetHostConfiguration(&instance_, &service_))
        .Times(times)
        .WillRepeatedly(::testing::ReturnRef(configuration_));
  }

  ::testing::StrictMock<MockHostControlInstance> instance_;
  ::testing::StrictMock<MockHostConfigurationHandler<Traits>> handler_;
  typename Traits::Response configuration_;
  Service service_{&handler_};
};

TYPED_TEST_SUITE_P(HostConfigurationSvcTest);

TYPED_TEST_P(HostConfigurationSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(this->service_.GetFQN(), kHostConfigurationFqn);
  EXPECT_EQ(this->service_.GetSvcVersion(), TypeParam::kVersion);
  EXPECT_EQ(this->service_.GetInteraction(), &this->service_);
}

TYPED_TEST_P(HostConfigurationSvcTest, AnEmptyConfigurationRepliesWithTheEmptyText) {
  this->Answer();
  EXPECT_EQ(this->service_.InvokeMethod(&this->instance_, &this->service_, "{}"),
            TypeParam::kEmptyReply);
}

TYPED_TEST_P(HostConfigurationSvcTest, RepliesWithTheHandlersValues) {
  const std::string expected = TypeParam::SetSomeValues(this->configuration_);
  this->Answer();
  EXPECT_EQ(this->service_.InvokeMethod(&this->instance_, &this->service_, ""), expected);
}

TYPED_TEST_P(HostConfigurationSvcTest, TheHandlerGetsTheCallersInstanceAndDescriptor) {
  typename TypeParam::Service other(&this->handler_);
  EXPECT_CALL(this->handler_, GetHostConfiguration(nullptr, &other))
      .WillOnce(::testing::ReturnRef(this->configuration_));
  EXPECT_EQ(this->service_.InvokeMethod(nullptr, &other, ""), TypeParam::kEmptyReply);
}

TYPED_TEST_P(HostConfigurationSvcTest, ThePayloadIsNotRead) {
  this->Answer(2);
  EXPECT_EQ(this->service_.InvokeMethod(&this->instance_, &this->service_, "not json at all"),
            TypeParam::kEmptyReply);
  EXPECT_EQ(this->service_.InvokeMethod(&this->instance_, &this->service_,
                                        TypeParam::kConfigurationPayload),
            TypeParam::kEmptyReply);
}

TYPED_TEST_P(HostConfigurationSvcTest, TheHandlerIsAskedOnEveryCall) {
  this->Answer(2);
  EXPECT_EQ(this->service_.InvokeMethod(&this->instance_, &this->service_, ""),
            TypeParam::kEmptyReply);
  const std::string expected = TypeParam::SetKioskHostType(this->configuration_);
  EXPECT_EQ(this->service_.InvokeMethod(&this->instance_, &this->service_, ""), expected);
}

TYPED_TEST_P(HostConfigurationSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  EXPECT_CALL(this->handler_, GetHostConfiguration(&this->instance_, &this->service_))
      .WillOnce(::testing::Throw(std::out_of_range("no configuration")));
  EXPECT_TRUE(ThrowsExactly<std::out_of_range>(
      [this] { this->service_.InvokeMethod(&this->instance_, &this->service_, ""); },
      "no configuration"));
}

TYPED_TEST_P(HostConfigurationSvcTest, WithoutHandlerEveryCallFailsWithALogicError) {
  typename TypeParam::Service unhandled(nullptr);
  EXPECT_TRUE(ThrowsExactly<std::logic_error>(
      [&] { unhandled.InvokeMethod(&this->instance_, &unhandled, ""); },
      "No handler for the host configuration service"));
}

TYPED_TEST_P(HostConfigurationSvcTest, AnEventIsIgnored) {
  // Strict mocks: neither the handler nor the instance may be called.
  this->service_.InvokeEvent(&this->instance_, &this->service_,
                             std::string(R"({"Version": ")") + TypeParam::kVersion + "\"}");
}

REGISTER_TYPED_TEST_SUITE_P(HostConfigurationSvcTest, IsNamedAsTheWebSideExpects,
                            AnEmptyConfigurationRepliesWithTheEmptyText,
                            RepliesWithTheHandlersValues,
                            TheHandlerGetsTheCallersInstanceAndDescriptor, ThePayloadIsNotRead,
                            TheHandlerIsAskedOnEveryCall, AnExceptionOfTheHandlerPassesThrough,
                            WithoutHandlerEveryCallFailsWithALogicError, AnEventIsIgnored);

// The service of the version under test registered with the host manager of
// a hosted page, reached through the page's API.
template <typename Traits>
class HostConfigurationSvcEndToEndTest : public HostedPageFixture {};

TYPED_TEST_SUITE_P(HostConfigurationSvcEndToEndTest);

TYPED_TEST_P(HostConfigurationSvcEndToEndTest, ThePageReceivesTheConfigurationText) {
  RecordingHostConfigurationHandler<TypeParam> handler;
  const std::string expected = TypeParam::SetValuesForThePage(handler.configuration);
  auto* service = new typename TypeParam::Service(&handler);
  this->manager_->RegisterService(service);
  EXPECT_EQ(this->api_->tavoHostMethod(TypeParam::kDescriptor, "{}"), expected);
  ASSERT_EQ(handler.instances.size(), 1u);
  EXPECT_EQ(handler.instances[0], this->instance_.get());
  EXPECT_EQ(handler.descriptors[0], service);
  EXPECT_TRUE(this->page_.Scripts().empty());
}

TYPED_TEST_P(HostConfigurationSvcEndToEndTest, TheOtherVersionIsNotServedByThisService) {
  RecordingHostConfigurationHandler<TypeParam> handler;
  this->manager_->RegisterService(new typename TypeParam::Service(&handler));
  EXPECT_EQ(this->api_->tavoHostMethod(TypeParam::kDescriptor, ""), TypeParam::kEmptyReply);
  EXPECT_EQ(this->api_->tavoHostMethod(TypeParam::kOtherDescriptor, ""),
            TypeParam::kOtherVersionReply);
  EXPECT_EQ(handler.instances.size(), 1u);
}

TYPED_TEST_P(HostConfigurationSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHostConfigurationHandler<TypeParam> handler;
  handler.fail = true;
  this->manager_->RegisterService(new typename TypeParam::Service(&handler));
  EXPECT_EQ(this->api_->tavoHostMethod(TypeParam::kDescriptor, ""),
            R"({"Exception": {"name": "std::runtime_error", )"
            R"("message": "configuration unavailable"}})");
}

TYPED_TEST_P(HostConfigurationSvcEndToEndTest, AServiceWithoutHandlerAnswersWithALogicErrorRecord) {
  this->manager_->RegisterService(new typename TypeParam::Service(nullptr));
  EXPECT_EQ(this->api_->tavoHostMethod(TypeParam::kDescriptor, ""),
            R"({"Exception": {"name": "std::logic_error", )"
            R"("message": "No handler for the host configuration service"}})");
}

REGISTER_TYPED_TEST_SUITE_P(HostConfigurationSvcEndToEndTest, ThePageReceivesTheConfigurationText,
                            TheOtherVersionIsNotServedByThisService,
                            AFailingHandlerReachesThePageAsAnExceptionRecord,
                            AServiceWithoutHandlerAnswersWithALogicErrorRecord);

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_HOSTCONFIGURATIONSVCSUITE_H_
