#ifndef WEVLIN_TESTS_SUPPORT_SERVICEFIXTURE_H_
#define WEVLIN_TESTS_SUPPORT_SERVICEFIXTURE_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"

namespace wevlin_test {

// A test fixture for a host service that hands its calls to an application
// handler: a Service built on a Handler, and a strict mock instance to call
// it with, so that the service may touch the instance only as a test
// expects. Name it for a test suite with a using declaration:
//   using ClientStatusSvcTest = wevlin_test::ServiceFixture<ClientStatusSvc, RecordingHandler>;
//
// Service must be constructible from Handler*; Handler must be default
// constructible. The fixture owns all three; the service is destroyed first.
// Use it on the test's thread.
template <typename Service, typename Handler>
class ServiceFixture : public ::testing::Test {
 protected:
  ::testing::StrictMock<MockHostControlInstance> instance_;
  Handler handler_;
  Service service_{&handler_};
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_SERVICEFIXTURE_H_
