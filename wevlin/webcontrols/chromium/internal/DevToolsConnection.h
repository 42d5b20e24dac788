#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_DEVTOOLSCONNECTION_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_DEVTOOLSCONNECTION_H_

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/internal/ChromiumProcess.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

// A client of the DevTools protocol over the pipe of one browser process.
//
// Commands are JSON objects {"id": n, "method": ..., "params": ...} (with
// "sessionId" for a command to a page session); the browser answers each with
// {"id": n, "result": ...} or {"id": n, "error": {"message": ...}} and sends
// events {"method": ..., "params": ...} in between. Every message is written
// and read as JSON text ended by a NUL byte.
//
// A reader thread of the connection reads the pipe from construction on: it
// settles the waiting calls and hands every event to the event handler. When
// the pipe ends, it finds out how the browser ended, calls the closed
// handler, and fails every waiting call with ChromiumError(Exited, "The
// browser exited (killed by signal 9)") or the like. Texts that are not valid UTF-8
// are sent with U+FFFD in place of the bad bytes; lone surrogates that a page
// puts into a message arrive as U+FFFD.
//
// The connection does not own the process, which must outlive it. Call, Post
// and FailCalls may be used from any thread; the handlers run on the reader
// thread and must not wait for a Call.
class DevToolsConnection {
 public:
  // Messages keep their members in the order the browser wrote them, so that
  // a value a script returns keeps the order of its keys.
  using Json = nlohmann::ordered_json;
  // Receives an event message, on the reader thread.
  using EventHandler = std::function<void(DevToolsConnection& connection, const Json& message)>;
  // Receives the whole answer to a posted command, on the reader thread.
  using ReplyHandler = std::function<void(const Json& reply)>;
  // Told once that the pipe has ended, and why, on the reader thread, before
  // IsClosed() turns true and the waiting calls fail.
  using ClosedHandler = std::function<void(const std::string& reason)>;

  // Starts reading `process`'s pipe. With `trace`, every message sent and
  // received is also written to the log (see ChromiumOptions::traceProtocol).
  DevToolsConnection(ChromiumProcess* process, EventHandler onEvent, ClosedHandler onClosed,
                     bool trace = false);
  DevToolsConnection(const DevToolsConnection&) = delete;
  DevToolsConnection& operator=(const DevToolsConnection&) = delete;

  // Stops the reader thread (see Stop) and fails the calls still waiting.
  ~DevToolsConnection();

  // Sends `method` with `params` (to the page session `sessionId`, or to the
  // browser when empty) and waits for the answer until `timeout`. Returns the
  // answer's "result" object. Throws ChromiumError: Exited when the browser
  // is gone, NotAnswering ("The browser did not answer <method> within N ms")
  // after the time-out, ProtocolError ("<method> failed: <message>") for an
  // error answer or a session that went away.
  Json Call(const std::string& method, Json params, const std::string& sessionId,
            std::chrono::milliseconds timeout);

  // Sends `method` without waiting for its answer, which goes to `onReply`
  // when given. Waits at most `timeout` for room in the pipe. Throws
  // ChromiumError like Call for a browser that is gone or a full pipe.
  void Post(const std::string& method, Json params, const std::string& sessionId,
            std::chrono::milliseconds timeout, ReplyHandler onReply = ReplyHandler());

  // Fails every call waiting for an answer from the session `sessionId` with
  // ChromiumError(`kind`, `reason`). Used when the page's renderer crashed or
  // the page was closed, since such calls would never be answered.
  void FailCalls(const std::string& sessionId, ChromiumError::Kind kind, const std::string& reason);

  // Returns true once the pipe has ended.
  bool IsClosed() const;

  // Returns why the pipe ended ("" while open).
  std::string CloseReason() const;

  // Stops the reader thread and waits for it. Safe to call more than once;
  // not from the reader thread.
  void Stop();

 private:
  struct PendingCall;

  int Send(const std::string& method, Json params, const std::string& sessionId,
           std::chrono::milliseconds timeout, std::shared_ptr<PendingCall> call,
           ReplyHandler onReply);
  void ReadLoop();
  void Dispatch(const char* text, std::size_t size);
  void Close(const std::string& reason);

  ChromiumProcess* process_;
  EventHandler onEvent_;
  ClosedHandler onClosed_;
  const bool trace_;

  mutable std::mutex mutex_;
  std::condition_variable settled_;
  int nextId_ = 1;
  std::map<int, std::shared_ptr<PendingCall>> calls_;
  std::map<int, ReplyHandler> replyHandlers_;
  bool closed_ = false;
  std::string closeReason_;
  bool stopping_ = false;
  std::thread reader_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_DEVTOOLSCONNECTION_H_
