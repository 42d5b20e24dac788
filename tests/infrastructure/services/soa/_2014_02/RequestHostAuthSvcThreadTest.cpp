// The reply callback of the host authentication service called from a thread
// other than the one that delivered the request, as applications do.
#include <stdexcept>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "support/StdoutCapture.h"
#include "support/WebEventRecorder.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleRequestHostAuthSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    IHandleRequestHostAuthSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::RequestHostAuthCallback;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::RequestHostAuthSvc;
using ::testing::_;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;
using wevlin_test::WebEventRecorder;

constexpr char kRequest[] =
    R"({"CacheId":"7","ReplyServiceDescriptor":"{\"FQN\":\"app.AuthReply.client\",\"SvcVersion\":\"_2014_02\"}","Version":"_2014_02"})";

// Completes the login on a thread of its own, as a login dialog would.
class ThreadedHandler : public IHandleRequestHostAuthSvc {
 public:
  ~ThreadedHandler() {
    if (worker.joinable()) worker.join();
  }

  void OnRequestHostAuth(void* context, RequestHostAuthCallback callback) override {
    worker = std::thread([this, context, callback] {
      try {
        callback(context, outcome, error);
      } catch (...) {
        escaped = true;
      }
    });
  }

  bool outcome = true;
  ExceptionInfo error;
  bool escaped = false;
  std::thread worker;
};

TEST(RequestHostAuthSvcThreadTest, AnOutcomeFromAnotherThreadReachesThePage) {
  StrictMock<MockHostControlInstance> instance;
  WebEventRecorder sent;
  sent.Expect(instance);
  ThreadedHandler handler;
  RequestHostAuthSvc service(&handler);
  service.InvokeEvent(&instance, &service, kRequest);
  handler.worker.join();

  EXPECT_FALSE(handler.escaped);
  ASSERT_EQ(sent.Count(), 1);
  EXPECT_NE(sent.Last().thread, std::this_thread::get_id());
  EXPECT_EQ(sent.Last().fqn, "app.AuthReply.client");
  EXPECT_EQ(sent.Last().version, "_2014_02");
  EXPECT_EQ(sent.Last().text, R"({"Version": "_2014_02", "CacheId": "", "IsAuthenticated": true, )"
                              R"("Exception": null})");
}

TEST(RequestHostAuthSvcThreadTest, AFailedSendOnAnotherThreadWritesOneLineOnly) {
  StrictMock<MockHostControlInstance> instance;
  EXPECT_CALL(instance, InvokeWebEvent(_, _))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));
  ThreadedHandler handler;
  handler.outcome = false;
  handler.error.message = "denied";
  RequestHostAuthSvc service(&handler);
  StdoutCapture capture;
  service.InvokeEvent(&instance, &service, kRequest);
  handler.worker.join();
  EXPECT_FALSE(handler.escaped);
  EXPECT_EQ(capture.Text(), "RequestHostAuthSvc::ReplyCallback - Error sending async reply\n");
}

}  // namespace
