// The host services of the soa area, called by a real page: asynchronous SOA
// requests and host login requests, each answered later from a thread of the
// application other than the one that drives the browser control, and the
// host session information.
//
// The replies run InvokeWebEvent, and so the control's ExecuteScript, on the
// worker thread while the test's thread goes on delivering the control's
// events: the library lets an application call these callbacks from any
// thread, and the Chromium control's DevTools calls are safe from any thread.

#include <gtest/gtest.h>

#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/BrowserFixture.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaJsonMessageSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoResponseMsg.h"
#include "wevlin/infrastructure/services/soa/_2014_02/HostSessionInfoSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleAsyncSoaJsonServiceRequest.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleHostSessionInfoSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/IHandleRequestHostAuthSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthResponseMsg.h"
#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthSvc.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonResponseMsg.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace soa02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02;
using interop::ExceptionInfo;

constexpr char kSoaFqn[] = "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host";
constexpr char kAuthFqn[] = "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host";
constexpr char kSessionInfoFqn[] = "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host";
// The page services of catalogue.html that receive the replies, as the
// requests name them.
constexpr char kSoaReplyDescriptor[] =
    R"({"FQN":"tavo.e2e.SoaReply.client","SvcVersion":"_2014_02"})";
constexpr char kAuthReplyDescriptor[] =
    R"({"FQN":"tavo.e2e.AuthReply.client","SvcVersion":"_2014_02"})";

ExceptionInfo Failure(const std::string& name, const std::string& message) {
  ExceptionInfo error;
  error.name = name;
  error.message = message;
  return error;
}

// Answers requests the way an application that finishes its work elsewhere
// does: each handler call starts a worker thread, which calls the library's
// callback. The handlers themselves run on the thread that delivered the
// page's event. Thread-safe.
class WorkerThreads {
 public:
  ~WorkerThreads() { JoinAll(); }

  // Runs `work` on a new thread and notes the thread.
  template <typename Work>
  void Start(Work work) {
    std::lock_guard<std::mutex> lock(mutex_);
    threads_.emplace_back([this, work] {
      {
        std::lock_guard<std::mutex> inner(mutex_);
        workerIds_.push_back(std::this_thread::get_id());
      }
      work();
      std::lock_guard<std::mutex> inner(mutex_);
      ++finished_;
    });
    ++started_;
  }

  // Returns true when every worker started so far has done its work.
  bool AllFinished() {
    std::lock_guard<std::mutex> lock(mutex_);
    return finished_ == started_;
  }

  // Waits for every worker started so far.
  void JoinAll() {
    std::vector<std::thread> threads;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      threads.swap(threads_);
    }
    for (std::thread& thread : threads) thread.join();
  }

  // Returns the threads on which the workers ran.
  std::vector<std::thread::id> WorkerIds() {
    std::lock_guard<std::mutex> lock(mutex_);
    return workerIds_;
  }

 private:
  std::mutex mutex_;
  std::vector<std::thread> threads_;
  std::vector<std::thread::id> workerIds_;
  std::size_t started_ = 0;
  std::size_t finished_ = 0;
};

// What one relayed request carried, and on which thread the handler got it.
struct SoaRequest {
  std::string service;
  std::string operation;
  std::string message;
  std::thread::id thread;
};

// Relays SOA requests to worker threads, which answer them with the next
// planned answer (an answer text and an error record).
class SoaHandler : public soa02::IHandleAsyncSoaJsonServiceRequest {
 public:
  void Plan(std::string answer, ExceptionInfo error = ExceptionInfo()) {
    std::lock_guard<std::mutex> lock(mutex_);
    planned_.emplace_back(std::move(answer), std::move(error));
  }

  void OnSoaJsonRequest(std::string serviceName, std::string operationName, std::string message,
                        void* context, soa02::SoaResponseCallback callback) override {
    std::pair<std::string, ExceptionInfo> answer;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      requests.push_back({serviceName, operationName, message, std::this_thread::get_id()});
      answer = planned_.front();
      planned_.pop_front();
    }
    workers.Start([context, callback, answer] { callback(context, answer.first, answer.second); });
  }

  std::vector<SoaRequest> requests;
  WorkerThreads workers;

 private:
  std::mutex mutex_;
  std::deque<std::pair<std::string, ExceptionInfo>> planned_;
};

// Logs the user in on a worker thread with the next planned outcome.
class AuthHandler : public soa02::IHandleRequestHostAuthSvc {
 public:
  void Plan(bool authenticated, ExceptionInfo error = ExceptionInfo()) {
    std::lock_guard<std::mutex> lock(mutex_);
    planned_.emplace_back(authenticated, std::move(error));
  }

  void OnRequestHostAuth(void* context, soa02::RequestHostAuthCallback callback) override {
    std::pair<bool, ExceptionInfo> outcome;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      handlerThreads.push_back(std::this_thread::get_id());
      outcome = planned_.front();
      planned_.pop_front();
    }
    workers.Start(
        [context, callback, outcome] { callback(context, outcome.first, outcome.second); });
  }

  std::vector<std::thread::id> handlerThreads;
  WorkerThreads workers;

 private:
  std::mutex mutex_;
  std::deque<std::pair<bool, ExceptionInfo>> planned_;
};

class SessionInfoHandler : public soa02::IHandleHostSessionInfoSvc {
 public:
  const soa02::HostSessionInfoResponseMsg& GetHostSessionInfo(
      interop::IHostControlInstance* instance, interop::IHostServiceDescriptor*) override {
    instances.push_back(instance);
    return session;
  }

  soa02::HostSessionInfoResponseMsg session;
  std::vector<interop::IHostControlInstance*> instances;
};

class AsyncServicesTest : public wevlin_e2e::BrowserFixture {
 protected:
  void TearDown() override {
    // No worker may still be calling into the instance when it goes.
    soa_.workers.JoinAll();
    auth_.workers.JoinAll();
    BrowserFixture::TearDown();
  }

  // Lets the page raise `fqn` "_2014_02" with the object `payload` (a
  // JavaScript expression), and returns the outcome of that event.
  Json Raise(const std::string& fqn, const std::string& payload) {
    return PageCall("e2e.raiseEvent('" + fqn + "', '_2014_02', " + payload + ")");
  }

  // Returns the page's SOA request object literal.
  static std::string SoaRequestLiteral(const std::string& cacheId, const std::string& version) {
    return "{CacheId: '" + cacheId + "', ReplyServiceDescriptor: " + JsString(kSoaReplyDescriptor) +
           ", ServiceName: 'Orders', OperationName: 'List', Message: " +
           JsString(R"({"customer": "ann", "max": 2})") + ", Version: '" + version + "'}";
  }

  // Delivers events until page service `name` of catalogue.html holds
  // `count` payloads, then returns them all.
  std::vector<std::string> WaitForReplies(const std::string& name, std::size_t count) {
    const bool arrived = control_->RunUntil(
        [&] { return Eval("catalogue.count('" + name + "')") == std::to_string(count); }, kWait);
    EXPECT_TRUE(arrived) << "only " << Eval("catalogue.received('" + name + "')");
    return Json::parse(Eval("catalogue.received('" + name + "')")).get<std::vector<std::string>>();
  }

  static Json Resolved(const Json& value) {
    return Json{{"done", true}, {"ok", true}, {"value", value}};
  }

  SoaHandler soa_;
  AuthHandler auth_;
};

TEST_F(AsyncServicesTest, SoaRepliesInAllThreeShapesComeFromOtherThreads) {
  RegisterService(new soa02::AsyncSoaJsonMessageSvc(&soa_));
  LaunchAndLogIn("catalogue.html");
  const std::string answer = R"({"orders": [1, 2]})";

  // 1. A "_2014_02" request: the answer Base64-embedded in a message of
  //    "_2014_02"; any other version but "_2015_10" gets "_2014_07".
  soa_.Plan(answer);
  ASSERT_EQ(Raise(kSoaFqn, SoaRequestLiteral("c-1", "_2014_02")), Resolved(nullptr));
  std::vector<std::string> replies = WaitForReplies("soaReplies", 1);
  soa02::SoaJsonResponseMsg first("_2014_02");
  first.CacheId = "c-1";
  interop::JsonSerializationHelper::EncodeEmbeddedJson(answer, first.SoaResponse);
  EXPECT_EQ(replies.at(0), first.ToJsonString());
  // The page reads the answer back out of the reply.
  EXPECT_EQ(Eval("atob(JSON.parse(JSON.parse(catalogue.received('soaReplies'))[0]).SoaResponse)"),
            answer);

  soa_.Plan(answer);
  ASSERT_EQ(Raise(kSoaFqn, SoaRequestLiteral("c-2", "_2014_07")), Resolved(nullptr));
  replies = WaitForReplies("soaReplies", 2);
  soa02::SoaJsonResponseMsg second("_2014_07");
  second.CacheId = "c-2";
  interop::JsonSerializationHelper::EncodeEmbeddedJson(answer, second.SoaResponse);
  EXPECT_EQ(replies.at(1), second.ToJsonString());

  // 2. A "_2015_10" request: the answer, a JSON string whose content is
  //    JSON, goes in unquoted, in a reply written by hand.
  soa_.Plan("\"{\"a\": 1}\"");
  ASSERT_EQ(Raise(kSoaFqn, SoaRequestLiteral("c-3", "_2015_10")), Resolved(nullptr));
  replies = WaitForReplies("soaReplies", 3);
  EXPECT_EQ(replies.at(2), R"({"CacheId":"c-3","SoaResponse":{"a": 1},"Version":"_2015_10"})");
  EXPECT_EQ(Eval("JSON.parse(JSON.parse(catalogue.received('soaReplies'))[2]).SoaResponse.a"), "1");

  // 3. A failure: the record under "Exception", in the request's own version
  //    (even "_2015_10"), with no answer.
  soa_.Plan("ignored", Failure("ServerError", "order service down (east)"));
  ASSERT_EQ(Raise(kSoaFqn, SoaRequestLiteral("c-4", "_2015_10")), Resolved(nullptr));
  replies = WaitForReplies("soaReplies", 4);
  soa02::SoaJsonResponseMsg failed("_2015_10");
  failed.CacheId = "c-4";
  failed.Exception = Failure("ServerError", "order service down (east)");
  EXPECT_EQ(replies.at(3), failed.ToJsonString());
  const Json record = Json::parse(replies.at(3));
  EXPECT_EQ(record["Exception"],
            (Json{{"name", "ServerError"}, {"message", "order service down (east)"}}));
  EXPECT_EQ(record["SoaResponse"], "");

  // A reply with escapes in its JSON text, here a quoted word in the error:
  // with compatible quoting the page's script engine decodes \" and the
  // reply is no longer JSON; with strict quoting it arrives intact. The
  // worker thread reads the mode that the application's thread set.
  const ExceptionInfo quotedError = Failure("ServerError", "order service \"east\" down");
  soa_.Plan("ignored", quotedError);
  ASSERT_EQ(Raise(kSoaFqn, SoaRequestLiteral("c-5", "_2014_02")), Resolved(nullptr));
  replies = WaitForReplies("soaReplies", 5);
  soa02::SoaJsonResponseMsg quoted("_2014_02");
  quoted.CacheId = "c-5";
  quoted.Exception = quotedError;
  ASSERT_EQ(quoted.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "c-5", "SoaResponse": "", )"
            R"("Exception": {"name": "ServerError", "message": "order service \"east\" down"}})");
  EXPECT_EQ(replies.at(4),
            R"({"Version": "_2014_02", "CacheId": "c-5", "SoaResponse": "", )"
            R"("Exception": {"name": "ServerError", "message": "order service "east" down"}})");

  instance_->SetScriptQuoting(interop::ScriptQuoting::Strict);
  soa_.Plan("ignored", quotedError);
  ASSERT_EQ(Raise(kSoaFqn, SoaRequestLiteral("c-5", "_2014_02")), Resolved(nullptr));
  replies = WaitForReplies("soaReplies", 6);
  EXPECT_EQ(replies.at(5), quoted.ToJsonString());
  EXPECT_EQ(Json::parse(replies.at(5))["Exception"]["message"], "order service \"east\" down");

  // The handler got each request on the application's thread; every answer
  // was given on a worker thread of its own.
  ASSERT_EQ(soa_.requests.size(), 6u);
  for (const SoaRequest& request : soa_.requests) {
    EXPECT_EQ(request.service, "Orders");
    EXPECT_EQ(request.operation, "List");
    EXPECT_EQ(request.message, R"({"customer": "ann", "max": 2})");
    EXPECT_EQ(request.thread, std::this_thread::get_id());
  }
  soa_.workers.JoinAll();
  const std::vector<std::thread::id> workers = soa_.workers.WorkerIds();
  ASSERT_EQ(workers.size(), 6u);
  for (const std::thread::id& worker : workers) EXPECT_NE(worker, std::this_thread::get_id());
  EXPECT_EQ(instance_->GetContentState(), HostContentState::LoggedIn);
}

// A page that chooses its own cache identifier cannot make the hand-written
// "_2015_10" reply run script: the identifier is written as a JSON string,
// whatever quotes and backslashes it holds, under either quoting.
TEST_F(AsyncServicesTest, ACacheIdMadeToBreakOutOfTheReplyStaysData) {
  RegisterService(new soa02::AsyncSoaJsonMessageSvc(&soa_));
  LaunchAndLogIn("catalogue.html");
  const std::string cacheId = R"(x\');window.injected=1;//\")";
  const std::string request = "{CacheId: " + JsString(cacheId) +
                              ", ReplyServiceDescriptor: " + JsString(kSoaReplyDescriptor) +
                              ", ServiceName: 'Orders', OperationName: 'List', Message: '{}', "
                              "Version: '_2015_10'}";

  soa_.Plan("\"{\"a\": 1}\"");
  ASSERT_EQ(Raise(kSoaFqn, request), Resolved(nullptr));
  // The worker's reply runs a script in the page, which an engine that runs
  // scripts on the application's thread starts only while that thread pumps.
  EXPECT_TRUE(control_->RunUntil([&] { return soa_.workers.AllFinished(); }, kWait));
  soa_.workers.JoinAll();
  control_->RunUntil([] { return false; }, std::chrono::milliseconds(300));
  EXPECT_EQ(Eval("String(window.injected)"), "undefined");

  instance_->SetScriptQuoting(interop::ScriptQuoting::Strict);
  const std::size_t before = std::stoul(Eval("catalogue.count('soaReplies')"));
  soa_.Plan("\"{\"a\": 1}\"");
  ASSERT_EQ(Raise(kSoaFqn, request), Resolved(nullptr));
  const std::vector<std::string> replies = WaitForReplies("soaReplies", before + 1);
  EXPECT_EQ(replies.back(), R"({"CacheId":)" + Json(cacheId).dump() +
                                R"(,"SoaResponse":{"a": 1},"Version":"_2015_10"})");
  EXPECT_EQ(Json::parse(replies.back())["CacheId"], cacheId);
  EXPECT_EQ(Eval("String(window.injected)"), "undefined");
}

TEST_F(AsyncServicesTest, BadSoaRequestsAreRejectedInThePage) {
  RegisterService(new soa02::AsyncSoaJsonMessageSvc(&soa_));
  LaunchAndLogIn("catalogue.html");
  const auto rejected = [](const std::string& message) {
    return Json{{"done", true},
                {"ok", false},
                {"name", "std::invalid_argument"},
                {"message", message},
                {"record", "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"" +
                               message + "\"}}"}};
  };
  EXPECT_EQ(Raise(kSoaFqn, "'not JSON'"), rejected("Bad payload data"));
  EXPECT_EQ(Raise(kSoaFqn, "{ReplyServiceDescriptor: '', Version: '_2014_02'}"),
            rejected("CacheId is missing"));
  EXPECT_EQ(Raise(kSoaFqn, "{CacheId: '7', ReplyServiceDescriptor: '', Version: '_2014_02'}"),
            rejected("ReplyServiceDescriptor is missing"));
  EXPECT_EQ(Raise(kSoaFqn, "{CacheId: '7', ReplyServiceDescriptor: '[1]', Version: '_2014_02'}"),
            rejected("ReplyServiceDescriptor is incorrect"));
  EXPECT_TRUE(soa_.requests.empty());
}

TEST_F(AsyncServicesTest, HostLoginRequestIsAnsweredFromAnotherThread) {
  RegisterService(new soa02::RequestHostAuthSvc(&auth_));
  LaunchAndLogIn("catalogue.html");
  const std::string request =
      "{CacheId: 'a-1', ReplyServiceDescriptor: " + JsString(kAuthReplyDescriptor) +
      ", Version: '_2014_02'}";

  auth_.Plan(true);
  ASSERT_EQ(Raise(kAuthFqn, request), Resolved(nullptr));
  std::vector<std::string> replies = WaitForReplies("authReplies", 1);
  soa02::RequestHostAuthResponseMsg success;
  success.IsAuthenticated = true;
  EXPECT_EQ(replies.at(0), success.ToJsonString());
  // The cache identifier of the request is not sent back.
  const Json outcome = Json::parse(replies.at(0));
  EXPECT_EQ(outcome["CacheId"], "");
  EXPECT_EQ(outcome["IsAuthenticated"], true);
  EXPECT_EQ(outcome["Exception"], nullptr);
  EXPECT_EQ(outcome["Version"], "_2014_02");

  auth_.Plan(false, Failure("LoginCancelled", "the user closed the login"));
  ASSERT_EQ(Raise(kAuthFqn, request), Resolved(nullptr));
  replies = WaitForReplies("authReplies", 2);
  soa02::RequestHostAuthResponseMsg cancelled;
  cancelled.Exception = Failure("LoginCancelled", "the user closed the login");
  EXPECT_EQ(replies.at(1), cancelled.ToJsonString());
  EXPECT_EQ(Json::parse(replies.at(1))["IsAuthenticated"], false);

  EXPECT_EQ(auth_.handlerThreads,
            (std::vector<std::thread::id>{std::this_thread::get_id(), std::this_thread::get_id()}));
  auth_.workers.JoinAll();
  const std::vector<std::thread::id> workers = auth_.workers.WorkerIds();
  ASSERT_EQ(workers.size(), 2u);
  for (const std::thread::id& worker : workers) EXPECT_NE(worker, std::this_thread::get_id());

  // A request without a reply service is refused before the handler.
  EXPECT_EQ(Raise(kAuthFqn, "{CacheId: '7', ReplyServiceDescriptor: '', Version: '_2014_02'}"),
            (Json{{"done", true},
                  {"ok", false},
                  {"name", "std::invalid_argument"},
                  {"message", "ReplyServiceDescriptor is missing"},
                  {"record",
                   "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": "
                   "\"ReplyServiceDescriptor is missing\"}}"}}));
  EXPECT_EQ(auth_.handlerThreads.size(), 2u);
}

TEST_F(AsyncServicesTest, PageReadsTheHostSessionInfo) {
  SessionInfoHandler handler;
  handler.session.IsSessionActive = true;
  handler.session.UserName = "ann o'neil \"admin\"";
  RegisterService(new soa02::HostSessionInfoSvc(&handler));
  LaunchAndLogIn("catalogue.html");
  const Json outcome = PageCall("e2e.invokeMethod('" + std::string(kSessionInfoFqn) +
                                "', '_2014_02', 'the payload is not read')");
  EXPECT_EQ(outcome, Resolved(handler.session.ToJsonString()));
  const Json session = Json::parse(outcome["value"].get<std::string>());
  EXPECT_EQ(session["IsSessionActive"], true);
  EXPECT_EQ(session["UserName"], "ann o'neil \"admin\"");
  EXPECT_EQ(session["Version"], "_2014_02");

  handler.session.IsSessionActive = false;
  handler.session.UserName.clear();
  const Json inactive =
      PageCall("e2e.invokeMethod('" + std::string(kSessionInfoFqn) + "', '_2014_02', '')");
  EXPECT_EQ(Json::parse(inactive["value"].get<std::string>()),
            (Json{{"IsSessionActive", false}, {"UserName", ""}, {"Version", "_2014_02"}}));
  EXPECT_EQ(handler.instances,
            (std::vector<interop::IHostControlInstance*>{instance_.get(), instance_.get()}));
}

}  // namespace
