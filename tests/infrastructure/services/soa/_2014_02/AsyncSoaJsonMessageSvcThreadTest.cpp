// The answer callback of the asynchronous SOA service called from threads
// other than the one that delivered the request, as applications do.
#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "support/StdoutCapture.h"
#include "support/WebEventRecorder.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleAsyncSoaJsonServiceRequest.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ExceptionInfo;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::AsyncSoaJsonMessageSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    IHandleAsyncSoaJsonServiceRequest;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaResponseCallback;
using ::testing::_;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::MockHostControlInstance;
using wevlin_test::StdoutCapture;
using wevlin_test::WebEventRecorder;

// Keeps every pending request, to be answered later on worker threads.
class QueueingHandler : public IHandleAsyncSoaJsonServiceRequest {
 public:
  struct Pending {
    std::string message;
    void* context;
    SoaResponseCallback callback;
  };

  void OnSoaJsonRequest(std::string, std::string, std::string message, void* context,
                        SoaResponseCallback callback) override {
    pending.push_back(Pending{message, context, callback});
  }

  std::vector<Pending> pending;
};

std::string Request(const std::string& version, const std::string& cacheId) {
  return R"({"Version": ")" + version + R"(", "CacheId": ")" + cacheId +
         R"(", "ReplyServiceDescriptor": "{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_07\"}", )"
         R"("ServiceName": "Orders", "OperationName": "Get", "Message": ")" +
         cacheId + R"("})";
}

TEST(AsyncSoaJsonMessageSvcThreadTest, AnAnswerFromAnotherThreadReachesThePage) {
  StrictMock<MockHostControlInstance> instance;
  QueueingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  service.InvokeEvent(&instance, &service, Request("_2015_10", "7"));
  ASSERT_EQ(handler.pending.size(), 1u);

  WebEventRecorder sent;
  sent.Expect(instance);
  std::thread::id worker;
  std::thread answering([&] {
    worker = std::this_thread::get_id();
    QueueingHandler::Pending call = handler.pending[0];
    call.callback(call.context, R"("{"a": 1}")", ExceptionInfo());
  });
  answering.join();

  ASSERT_EQ(sent.Count(), 1);
  EXPECT_EQ(sent.Last().thread, worker);
  EXPECT_NE(sent.Last().thread, std::this_thread::get_id());
  EXPECT_EQ(sent.Last().fqn, "app.Reply.client");
  EXPECT_EQ(sent.Last().version, "_2014_07");
  EXPECT_EQ(sent.Last().text, R"({"CacheId":"7","SoaResponse":{"a": 1},"Version":"_2015_10"})");
}

TEST(AsyncSoaJsonMessageSvcThreadTest, AFailedSendOnAnotherThreadWritesOneLineOnly) {
  StrictMock<MockHostControlInstance> instance;
  QueueingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  service.InvokeEvent(&instance, &service, Request("_2014_02", "9"));
  ASSERT_EQ(handler.pending.size(), 1u);
  EXPECT_CALL(instance, InvokeWebEvent(_, _))
      .WillOnce(Throw(std::runtime_error("Cannot talk to hosted content")));

  StdoutCapture capture;
  bool escaped = false;
  std::thread answering([&] {
    try {
      QueueingHandler::Pending call = handler.pending[0];
      call.callback(call.context, "{}", ExceptionInfo());
    } catch (...) {
      escaped = true;
    }
  });
  answering.join();
  EXPECT_FALSE(escaped);
  EXPECT_EQ(capture.Text(),
            "Services::AsyncSoaJsonMessageSvc::ExternalFacingCallback - Error sending async "
            "reply\n");
}

TEST(AsyncSoaJsonMessageSvcThreadTest, ManyRequestsAnsweredOnTheirOwnThreadsEachArriveOnce) {
  constexpr int kRequests = 16;
  StrictMock<MockHostControlInstance> instance;
  QueueingHandler handler;
  AsyncSoaJsonMessageSvc service(&handler);
  for (int i = 0; i < kRequests; ++i) {
    service.InvokeEvent(&instance, &service,
                        Request(i % 2 == 0 ? "_2014_02" : "_2014_07", std::to_string(i)));
  }
  ASSERT_EQ(handler.pending.size(), static_cast<std::size_t>(kRequests));

  WebEventRecorder sent;
  sent.Expect(instance, kRequests);
  std::vector<std::thread> workers;
  for (const QueueingHandler::Pending& call : handler.pending) {
    workers.emplace_back([call] {
      ExceptionInfo error;
      if (call.message == "5") error.message = "no such order";
      call.callback(call.context, "", error);
    });
  }
  for (std::thread& worker : workers) worker.join();

  std::vector<std::string> expected;
  for (int i = 0; i < kRequests; ++i) {
    const std::string version = i % 2 == 0 ? "_2014_02" : "_2014_07";
    const std::string exception =
        i == 5 ? R"({"name": "", "message": "no such order"})" : std::string("null");
    expected.push_back(R"({"Version": ")" + version + R"(", "CacheId": ")" + std::to_string(i) +
                       R"(", "SoaResponse": "", "Exception": )" + exception + "}");
  }
  std::vector<std::string> replies = sent.Texts();
  std::sort(replies.begin(), replies.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(replies, expected);
}

}  // namespace
