#include "wevlin/webcontrols/chromium/internal/DevToolsConnection.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/internal/ChromiumProcess.h"

namespace {

namespace chromium = Com::Velmora::TAVO::Wevlin::WebControls::Chromium;
namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
using chromium::ChromiumError;
using chromium::internal::ChromiumProcess;
using chromium::internal::DevToolsConnection;
using Json = DevToolsConnection::Json;
using namespace std::chrono_literals;

// Collects the library's log lines while it lives.
class LogCollector {
 public:
  LogCollector() {
    previous_ = base::SetLogSink([this](const std::string& line) {
      std::lock_guard<std::mutex> lock(mutex_);
      lines_.push_back(line);
    });
  }
  LogCollector(const LogCollector&) = delete;
  LogCollector& operator=(const LogCollector&) = delete;
  ~LogCollector() { base::SetLogSink(previous_); }

  std::vector<std::string> Lines() {
    std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> lines_;
  base::LogSink previous_;
};

// A stand-in for the browser: a shell that copies what the connection writes
// on its descriptor 3 into a file, and what the test writes into a FIFO to
// its descriptor 4, for the connection to read.
class DevToolsConnectionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = "/tmp/wevlin-devtools-test-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    directory_ = pattern;
    ASSERT_EQ(::mkfifo((directory_ + "/in").c_str(), 0600), 0);
    const std::string script =
        "cat <&3 4>&- >'" + directory_ + "/out' & exec cat '" + directory_ + "/in' >&4";
    process_ = std::make_unique<ChromiumProcess>(
        "/bin/sh", std::vector<std::string>{"-c", script, "fake"}, false);
    browserFd_ = ::open((directory_ + "/in").c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(browserFd_, 0);
  }

  void TearDown() override {
    connection_.reset();
    CloseBrowserSide();
    process_.reset();
    ::unlink((directory_ + "/in").c_str());
    ::unlink((directory_ + "/out").c_str());
    ::rmdir(directory_.c_str());
  }

  void Connect() {
    connection_ = std::make_unique<DevToolsConnection>(
        process_.get(),
        [this](DevToolsConnection&, Json& message) {
          std::lock_guard<std::mutex> lock(mutex_);
          events_.push_back(message.value("method", std::string()));
          messages_.push_back(message);
        },
        [this](const std::string&) { closedHeard_ = true; });
  }

  // Writes `text` and its NUL as the browser would, in pieces of `piece`.
  void BrowserSends(const std::string& text, std::size_t piece = 1 << 16) {
    const std::string message = text + std::string(1, '\0');
    for (std::size_t at = 0; at < message.size();) {
      const ssize_t count =
          ::write(browserFd_, message.data() + at, std::min(piece, message.size() - at));
      ASSERT_GT(count, 0);
      at += static_cast<std::size_t>(count);
    }
  }

  void CloseBrowserSide() {
    if (browserFd_ >= 0) ::close(browserFd_);
    browserFd_ = -1;
  }

  // Returns what the connection has written, once it holds `count` NULs (or
  // after five seconds).
  std::string Written(std::size_t count) {
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    std::string text;
    while (std::chrono::steady_clock::now() < deadline) {
      std::ifstream file(directory_ + "/out", std::ios::binary);
      text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
      if (static_cast<std::size_t>(std::count(text.begin(), text.end(), '\0')) >= count) break;
      std::this_thread::sleep_for(10ms);
    }
    return text;
  }

  std::vector<std::string> Events() {
    std::lock_guard<std::mutex> lock(mutex_);
    return events_;
  }

  // Waits up to five seconds for `count` events.
  std::vector<std::string> WaitForEvents(std::size_t count) {
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    while (Events().size() < count && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(5ms);
    }
    return Events();
  }

  std::string directory_;
  std::unique_ptr<ChromiumProcess> process_;
  int browserFd_ = -1;
  std::unique_ptr<DevToolsConnection> connection_;
  std::mutex mutex_;
  std::vector<std::string> events_;
  std::vector<Json> messages_;
  std::atomic<bool> closedHeard_{false};
};

TEST_F(DevToolsConnectionTest, AnswersAndEventsArriveAsBefore) {
  Connect();
  std::thread browser([this] {
    Written(1);
    BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
    BrowserSends(R"({"id":1,"result":{"value":42}})");
  });
  const Json result = connection_->Call("Runtime.evaluate", {{"expression", "6*7"}}, "s1", 5s);
  browser.join();
  EXPECT_EQ(result.value("value", 0), 42);
  EXPECT_THAT(WaitForEvents(1), ::testing::ElementsAre("Page.loadEventFired"));
  EXPECT_EQ(Written(1),
            std::string(R"({"id":1,"method":"Runtime.evaluate","params":{"expression":"6*7"},)"
                        R"("sessionId":"s1"})") +
                std::string(1, '\0'));
}

TEST_F(DevToolsConnectionTest, AnAnswerOverTheLimitFailsItsCallAtOnce) {
  Connect();
  connection_->SetMessageLimits(1000, 1 << 20);
  std::thread browser([this] {
    Written(1);
    BrowserSends(R"({"id":1,"result":{"value":")" + std::string(5000, 'x') + R"("}})", 700);
    BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
  });
  const auto started = std::chrono::steady_clock::now();
  try {
    connection_->Call("Runtime.evaluate", Json::object(), "s1", 20s);
    ADD_FAILURE() << "the call did not fail";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::ProtocolError);
    EXPECT_STREQ(error.what(),
                 "The browser's answer to Runtime.evaluate was over the limit of 1000 bytes");
  }
  EXPECT_LT(std::chrono::steady_clock::now() - started, 10s);
  browser.join();
  // The message after the dropped one is read.
  EXPECT_THAT(WaitForEvents(1), ::testing::ElementsAre("Page.loadEventFired"));
  EXPECT_FALSE(connection_->IsClosed());
}

TEST_F(DevToolsConnectionTest, AnEventOverTheLimitIsDroppedWithOneLogLine) {
  LogCollector logs;
  Connect();
  connection_->SetMessageLimits(1000, 1 << 20);
  BrowserSends(R"({"method":"Runtime.consoleAPICalled","params":{"text":")" +
                   std::string(200000, 'y') + R"("}})",
               4096);
  BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
  EXPECT_THAT(WaitForEvents(1), ::testing::ElementsAre("Page.loadEventFired"));
  EXPECT_THAT(logs.Lines(),
              ::testing::ElementsAre(
                  "ChromiumWebControl: dropped a message of the browser over 1000 bytes"));
}

TEST_F(DevToolsConnectionTest, AMessageExactlyAtTheLimitIsRead) {
  Connect();
  const std::string head = R"({"method":"Page.frameNavigated","params":{"url":")";
  const std::string tail = R"("}})";
  connection_->SetMessageLimits(head.size() + 100 + tail.size(), 1 << 20);
  BrowserSends(head + std::string(100, 'u') + tail, 7);
  BrowserSends(head + std::string(101, 'u') + tail, 7);
  BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
  EXPECT_THAT(WaitForEvents(2),
              ::testing::ElementsAre("Page.frameNavigated", "Page.loadEventFired"));
}

TEST_F(DevToolsConnectionTest, TheEventFilterDropsUnwantedMethodsUnparsed) {
  LogCollector logs;
  Connect();
  std::vector<std::string> asked;
  connection_->SetEventFilter([&asked](std::string_view method) {
    asked.emplace_back(method);
    return method != "Runtime.consoleAPICalled";
  });
  // Invalid JSON after the method: parsing it would log a line.
  BrowserSends(R"({"method":"Runtime.consoleAPICalled","params":{not json at all)");
  BrowserSends(R"({ "method" : "Page.loadEventFired","params":{}})");
  EXPECT_THAT(WaitForEvents(1), ::testing::ElementsAre("Page.loadEventFired"));
  EXPECT_THAT(asked, ::testing::ElementsAre("Runtime.consoleAPICalled", "Page.loadEventFired"));
  EXPECT_TRUE(logs.Lines().empty());
}

TEST_F(DevToolsConnectionTest, AnUnwantedEventOfManyReadsIsSkippedAsItStreamsBy) {
  LogCollector logs;
  Connect();
  connection_->SetEventFilter(
      [](std::string_view method) { return method != "Runtime.consoleAPICalled"; });
  // Eight megabytes of an unwanted event, then one that is wanted: no limit
  // is set, so only the filter keeps the big one from being read whole, and
  // its broken end would log a line if it were parsed.
  BrowserSends(R"({"method":"Runtime.consoleAPICalled","params":{"text":")" +
               std::string(std::size_t{8} << 20, 'c') + "not json");
  BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
  EXPECT_THAT(WaitForEvents(1), ::testing::ElementsAre("Page.loadEventFired"));
  EXPECT_TRUE(logs.Lines().empty());
}

TEST_F(DevToolsConnectionTest, TheEventFilterLetsAnswersThrough) {
  Connect();
  connection_->SetEventFilter([](std::string_view) { return false; });
  std::thread browser([this] {
    Written(1);
    BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
    BrowserSends(R"({"id":1,"result":{"value":7}})");
  });
  EXPECT_EQ(connection_->Call("Page.enable", Json::object(), "s1", 5s).value("value", 0), 7);
  browser.join();
  EXPECT_TRUE(Events().empty());
}

TEST_F(DevToolsConnectionTest, ACommandOverTheLimitIsRefusedAndThePipeStillWorks) {
  Connect();
  connection_->SetMessageLimits(1 << 20, 200);
  try {
    connection_->Post("Runtime.evaluate", {{"expression", std::string(300, 'z')}}, "s1", 5s);
    ADD_FAILURE() << "the command was sent";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::ProtocolError);
    EXPECT_THAT(error.what(),
                ::testing::MatchesRegex(
                    "The command Runtime.evaluate takes [0-9]+ bytes, more than the limit of 200"));
  }
  EXPECT_THROW(connection_->PostRawParams(
                   "Runtime.evaluate", R"({"expression":")" + std::string(300, 'z') + "\"}", "s1"),
               ChromiumError);
  std::thread browser([this] {
    Written(1);
    BrowserSends(R"({"id":3,"result":{}})");
  });
  EXPECT_NO_THROW(connection_->Call("Page.enable", Json::object(), "s1", 5s));
  browser.join();
  // Nothing of the refused commands reached the pipe.
  const std::string written = Written(1);
  EXPECT_EQ(written.find('z'), std::string::npos);
  EXPECT_EQ(std::count(written.begin(), written.end(), '\0'), 1);
}

TEST_F(DevToolsConnectionTest, TheOutgoingLimitNeverExceedsWhatThePipeTakes) {
  Connect();
  connection_->SetMessageLimits(1 << 20, std::size_t{1} << 40);
  const std::string params =
      "{\"x\":\"" + std::string(DevToolsConnection::kMaxPipeMessageBytes, 'w') + "\"}";
  EXPECT_THROW(connection_->PostRawParams("Runtime.evaluate", params, "s1"), ChromiumError);
  EXPECT_LT(DevToolsConnection::kMaxPipeMessageBytes, std::size_t{100} * 1024 * 1024);
}

TEST_F(DevToolsConnectionTest, PostRawParamsWritesTheParamsAsGiven) {
  Connect();
  connection_->PostRawParams("Runtime.evaluate", R"({"expression" :  "1+1", "z":[1 ,2]})", "S\"1");
  connection_->PostRawParams("Browser.getVersion", "{}", "");
  EXPECT_EQ(Written(2), std::string(R"({"id":1,"method":"Runtime.evaluate","sessionId":"S\"1",)"
                                    R"("params":{"expression" :  "1+1", "z":[1 ,2]}})") +
                            std::string(1, '\0') +
                            R"({"id":2,"method":"Browser.getVersion","params":{}})" +
                            std::string(1, '\0'));
}

TEST_F(DevToolsConnectionTest, CallStreamedParamsWritesThePiecesAndWaitsForTheAnswer) {
  Connect();
  const std::string first = R"({"expression":)";
  const std::string second = R"("2+3"})";
  const auto writeParams = [&](const std::function<void(std::string_view)>& put) {
    put(first);
    put(second);
  };
  std::thread browser([this] {
    Written(1);
    BrowserSends(R"({"id":1,"result":{"value":5}})");
  });
  const Json result = connection_->CallStreamedParams(
      "Runtime.evaluate", first.size() + second.size(), writeParams, "s1", 5s);
  browser.join();
  EXPECT_EQ(result.value("value", 0), 5);
  EXPECT_EQ(Written(1), std::string(R"({"id":1,"method":"Runtime.evaluate","sessionId":"s1",)"
                                    R"("params":{"expression":"2+3"}})") +
                            std::string(1, '\0'));

  // Over the outgoing limit nothing is written, and the call fails at once.
  connection_->SetMessageLimits(1 << 20, 40);
  try {
    connection_->CallStreamedParams("Runtime.evaluate", first.size() + second.size(), writeParams,
                                    "s1", 5s);
    ADD_FAILURE() << "the command was sent";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::ProtocolError);
    EXPECT_STREQ(error.what(),
                 "The command Runtime.evaluate takes 84 bytes, more than the limit of 40");
  }
  EXPECT_EQ(Written(1).size(), 84U);
}

TEST_F(DevToolsConnectionTest, EveryCallFailsAtOnceWhenThePipeEnds) {
  Connect();
  std::thread browser([this] {
    Written(1);
    CloseBrowserSide();
  });
  const auto started = std::chrono::steady_clock::now();
  EXPECT_THROW(connection_->Call("Page.enable", Json::object(), "s1", 60s), ChromiumError);
  browser.join();
  EXPECT_TRUE(connection_->IsClosed());
  EXPECT_TRUE(closedHeard_);
  try {
    connection_->Call("Page.enable", Json::object(), "s1", 60s);
    ADD_FAILURE() << "a call after the end did not fail";
  } catch (const ChromiumError& error) {
    EXPECT_EQ(error.kind(), ChromiumError::Kind::Exited);
    EXPECT_EQ(error.what(), connection_->CloseReason());
  }
  EXPECT_THROW(connection_->PostRawParams("Page.enable", "{}", "s1"), ChromiumError);
  EXPECT_LT(std::chrono::steady_clock::now() - started, 30s);
}

TEST_F(DevToolsConnectionTest, MessagesReadAsJsonReadsThem) {
  Connect();
  const std::vector<std::string> texts = {
      R"({"method":"A","params":{"s":"q\"b\\s\/n\n\t\b\f\r","e":"\u00e9\u20ac","p":"\ud83d\ude00",)"
      R"("n":[0,-1,2.5,1e3,18446744073709551615,-9223372036854775808,true,false,null],)"
      R"("o":{"a":[[],{},[{"b":[1]}]],"a":2},"u":"é€😀"}})",
      R"( { "method" : "B" , "params" : { "x" : [ 1 , "2" , { } ] } } )",
      // A large message over several reads and blocks, escapes across their seams.
      R"({"method":"C","params":{"big":")" + std::string(3 << 20, 'b') + R"(\"\u0041"}})"};
  for (const std::string& text : texts) BrowserSends(text, 4093);
  WaitForEvents(texts.size());
  std::lock_guard<std::mutex> lock(mutex_);
  ASSERT_EQ(messages_.size(), texts.size());
  for (std::size_t index = 0; index < texts.size(); ++index) {
    EXPECT_EQ(messages_[index], Json::parse(texts[index])) << index;
  }
}

TEST_F(DevToolsConnectionTest, LoneSurrogatesArriveAsReplacementCharacters) {
  Connect();
  BrowserSends(R"({"method":"A","params":{"s":"a\ud800b\udc00c\\ud800\ud83d"}})");
  BrowserSends(R"({"method":"B","params":{"s":"x)" + std::string(2 << 20, 'x') + R"(\udfff"}})",
               65536);
  WaitForEvents(2);
  std::lock_guard<std::mutex> lock(mutex_);
  ASSERT_EQ(messages_.size(), 2u);
  EXPECT_EQ(messages_[0]["params"]["s"],
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c\\ud800\xEF\xBF\xBD");
  const std::string big = messages_[1]["params"]["s"];
  EXPECT_EQ(big.size(), 1 + (2u << 20) + 3);
  EXPECT_EQ(big.substr(big.size() - 3), "\xEF\xBF\xBD");
}

TEST_F(DevToolsConnectionTest, TextThatIsNotJsonIsIgnoredWithALogLine) {
  LogCollector logs;
  Connect();
  const std::vector<std::string> bad = {"[1,2]",
                                        R"({"method":"A",})",
                                        R"({"method":"A","params":[1,]})",
                                        R"({"method":"A" "x":1})",
                                        R"({"method":"A","params":"tab	in"})",
                                        R"({"method":"A","params":tru})",
                                        R"({"method":"A","params":"\q"})",
                                        R"({"method":"A"} x)",
                                        R"({"method":"A")"};
  for (const std::string& text : bad) BrowserSends(text);
  BrowserSends(R"({"method":"Page.loadEventFired","params":{}})");
  EXPECT_THAT(WaitForEvents(1), ::testing::ElementsAre("Page.loadEventFired"));
  const auto lines = logs.Lines();
  EXPECT_EQ(lines.size(), bad.size());
  for (const std::string& line : lines) {
    EXPECT_EQ(line,
              "ChromiumWebControl: ignored a message from the browser that is not a JSON object");
  }
}

}  // namespace
