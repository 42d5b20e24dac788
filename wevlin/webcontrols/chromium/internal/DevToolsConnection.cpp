#include "wevlin/webcontrols/chromium/internal/DevToolsConnection.h"

#include <string_view>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/webcontrols/chromium/internal/Utf8Text.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

namespace {

// How long the reader waits, once the pipe has ended, for the browser process
// to end too, so that the error can tell how it ended. A killed browser with
// much memory can take a moment to end on a busy machine.
constexpr std::chrono::milliseconds kExitGrace{10000};

// How long a failed write waits for the reader to find out why: longer than
// the reader may wait for the process.
constexpr std::chrono::milliseconds kCloseGrace = kExitGrace + std::chrono::milliseconds(2000);

constexpr std::size_t kTraceLength = 2000;

void Trace(const char* direction, std::string_view text) {
  Infrastructure::Base::internal::WriteLogLine(std::string("devtools ") + direction + " " +
                                               std::string(text.substr(0, kTraceLength)));
}

std::string NotAnsweringText(const std::string& method, std::chrono::milliseconds timeout) {
  return "The browser did not answer " + method + " within " + std::to_string(timeout.count()) +
         " ms";
}

}  // namespace

// Only nlohmann::json's destructor may throw here: it allocates a work list to
// free deeply nested values without recursion.
struct DevToolsConnection::PendingCall {  // NOLINT(bugprone-exception-escape)
  std::string method;
  std::string sessionId;
  bool done = false;
  bool failed = false;
  ChromiumError::Kind kind = ChromiumError::Kind::ProtocolError;
  std::string error;
  Json result;
};

DevToolsConnection::DevToolsConnection(ChromiumProcess* process, EventHandler onEvent,
                                       ClosedHandler onClosed, bool trace)
    : process_(process),
      onEvent_(std::move(onEvent)),
      onClosed_(std::move(onClosed)),
      trace_(trace) {
  reader_ = std::thread([this] { ReadLoop(); });
}

DevToolsConnection::~DevToolsConnection() { Stop(); }

void DevToolsConnection::Stop() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  process_->StopReading();
  if (reader_.joinable()) reader_.join();
}

bool DevToolsConnection::IsClosed() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return closed_;
}

std::string DevToolsConnection::CloseReason() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return closeReason_;
}

int DevToolsConnection::Send(const std::string& method, Json params, const std::string& sessionId,
                             std::chrono::milliseconds timeout, std::shared_ptr<PendingCall> call,
                             ReplyHandler onReply) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  int id = 0;
  std::string text;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) throw ChromiumError(ChromiumError::Kind::Exited, closeReason_);
    id = nextId_++;
    Json message = {{"id", id}, {"method", method}, {"params", std::move(params)}};
    if (!sessionId.empty()) message["sessionId"] = sessionId;
    text = message.dump(-1, ' ', false, Json::error_handler_t::replace);
    text.push_back('\0');
    if (call) calls_[id] = std::move(call);
    if (onReply) replyHandlers_[id] = std::move(onReply);
  }
  if (trace_) Trace(">>", std::string_view(text.data(), text.size() - 1));
  std::string error;
  if (process_->Write(text.data(), text.size(), deadline, &error)) return id;

  std::unique_lock<std::mutex> lock(mutex_);
  calls_.erase(id);
  replyHandlers_.erase(id);
  if (error == "timeout") {
    throw ChromiumError(ChromiumError::Kind::NotAnswering, NotAnsweringText(method, timeout));
  }
  // The pipe broke: the reader is about to find out how the browser ended.
  settled_.wait_for(lock, kCloseGrace, [this] { return closed_; });
  if (closed_) throw ChromiumError(ChromiumError::Kind::Exited, closeReason_);
  throw ChromiumError(ChromiumError::Kind::Exited, "Cannot write to the browser: " + error);
}

DevToolsConnection::Json DevToolsConnection::Call(const std::string& method, Json params,
                                                  const std::string& sessionId,
                                                  std::chrono::milliseconds timeout) {
  auto call = std::make_shared<PendingCall>();
  call->method = method;
  call->sessionId = sessionId;
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  const int id = Send(method, std::move(params), sessionId, timeout, call, ReplyHandler());

  std::unique_lock<std::mutex> lock(mutex_);
  if (!settled_.wait_until(lock, deadline, [&] { return call->done; })) {
    calls_.erase(id);
    throw ChromiumError(ChromiumError::Kind::NotAnswering, NotAnsweringText(method, timeout));
  }
  if (call->failed) throw ChromiumError(call->kind, call->error);
  return std::move(call->result);
}

void DevToolsConnection::Post(const std::string& method, Json params, const std::string& sessionId,
                              std::chrono::milliseconds timeout, ReplyHandler onReply) {
  Send(method, std::move(params), sessionId, timeout, nullptr, std::move(onReply));
}

void DevToolsConnection::FailCalls(const std::string& sessionId, ChromiumError::Kind kind,
                                   const std::string& reason) {
  std::lock_guard<std::mutex> lock(mutex_);
  for (auto it = calls_.begin(); it != calls_.end();) {
    if (it->second->sessionId == sessionId) {
      it->second->done = true;
      it->second->failed = true;
      it->second->kind = kind;
      it->second->error = reason;
      it = calls_.erase(it);
    } else {
      ++it;
    }
  }
  settled_.notify_all();
}

void DevToolsConnection::ReadLoop() {
  std::string buffer;
  std::vector<char> chunk(1 << 16);
  std::ptrdiff_t count = 0;
  while ((count = process_->Read(chunk.data(), chunk.size())) > 0) {
    std::size_t scanFrom = buffer.size();
    buffer.append(chunk.data(), static_cast<std::size_t>(count));
    std::size_t start = 0;
    std::size_t end = 0;
    while ((end = buffer.find('\0', scanFrom)) != std::string::npos) {
      Dispatch(buffer.data() + start, end - start);
      start = end + 1;
      scanFrom = start;
    }
    buffer.erase(0, start);
  }

  bool stopping = false;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stopping = stopping_;
  }
  std::string reason;
  if (stopping) {
    reason = "The connection to the browser was closed";
  } else if (count < 0) {
    reason = "Cannot read from the browser's DevTools pipe";
  } else if (process_->WaitForExit(kExitGrace)) {
    reason = "The browser exited (" + process_->ExitDescription() + ")";
  } else {
    reason = "The browser closed its DevTools pipe";
  }
  Close(reason);
}

void DevToolsConnection::Dispatch(const char* text, std::size_t size) {
  std::string_view view(text, size);
  if (trace_) Trace("<<", view);
  Json message;
  if (view.find("\\u") != std::string_view::npos) {
    const std::string repaired = RepairSurrogateEscapes(view);
    message = Json::parse(repaired, nullptr, false);
  } else {
    message = Json::parse(view.begin(), view.end(), nullptr, false);
  }
  if (message.is_discarded() || !message.is_object()) {
    Infrastructure::Base::internal::WriteLogLine(
        "ChromiumWebControl: ignored a message from the browser that is not a JSON object");
    return;
  }

  const auto id = message.find("id");
  if (id != message.end() && id->is_number_integer()) {
    const int key = id->get<int>();
    ReplyHandler handler;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      const auto call = calls_.find(key);
      if (call != calls_.end()) {
        PendingCall& pending = *call->second;
        pending.done = true;
        const auto error = message.find("error");
        if (error != message.end()) {
          pending.failed = true;
          pending.kind = ChromiumError::Kind::ProtocolError;
          std::string text = "unknown error";
          if (error->is_object() && error->contains("message") && (*error)["message"].is_string()) {
            text = (*error)["message"].get<std::string>();
          }
          pending.error = pending.method + " failed: " + text;
        } else {
          const auto result = message.find("result");
          pending.result = result != message.end() ? std::move(*result) : Json::object();
        }
        calls_.erase(call);
        settled_.notify_all();
        return;
      }
      const auto posted = replyHandlers_.find(key);
      if (posted == replyHandlers_.end()) return;
      handler = std::move(posted->second);
      replyHandlers_.erase(posted);
    }
    try {
      handler(message);
    } catch (...) {
      // A reply handler's failure must not end the reader.
    }
    return;
  }

  if (message.contains("method") && onEvent_) {
    try {
      onEvent_(*this, message);
    } catch (...) {
      // An event handler's failure must not end the reader.
    }
  }
}

void DevToolsConnection::Close(const std::string& reason) {
  // The handler hears of the end before anyone can see the connection closed,
  // so that what it records (the control's queued notice) is there for them.
  if (onClosed_) {
    try {
      onClosed_(reason);
    } catch (...) {
      // Nothing to tell: the connection is closed either way.
    }
  }
  std::lock_guard<std::mutex> lock(mutex_);
  closed_ = true;
  closeReason_ = reason;
  for (auto& entry : calls_) {
    entry.second->done = true;
    entry.second->failed = true;
    entry.second->kind = ChromiumError::Kind::Exited;
    entry.second->error = reason;
  }
  calls_.clear();
  replyHandlers_.clear();
  settled_.notify_all();
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal
