#ifndef WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_DEVTOOLSCONNECTION_H_
#define WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_DEVTOOLSCONNECTION_H_

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
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
// browser exited (killed by signal 9)") or the like. Texts that are not valid
// UTF-8 are sent with U+FFFD in place of the bad bytes; lone surrogates that a
// page puts into a message, and bad bytes, arrive as U+FFFD.
//
// Memory: a message of the browser bigger than the incoming limit is never
// kept whole; the reader looks at its first bytes only (to fail the call it
// answers, or to drop the event with one log line) and skips the rest as it
// streams by. Events the event filter does not want are dropped unparsed. A
// command bigger than the outgoing limit is refused before anything is
// written, so that the browser never sees a message it would close the pipe
// for (see kMaxPipeMessageBytes).
//
// The connection does not own the process, which must outlive it. Call,
// CallStreamedParams, Post, PostRawParams, PostStreamedParams, FailCalls,
// SetMessageLimits and SetEventFilter may be used from any thread; the
// handlers run on the reader thread and must not wait for a call.
class DevToolsConnection {
 public:
  // The largest command the connection ever writes (its NUL counted),
  // whatever the limits set: the browser stops serving its DevTools pipe for
  // good once it reads a message of 100 MiB (104,857,600 bytes, the NUL not
  // counted) or more, and answers neither it nor any later one.
  static constexpr std::size_t kMaxPipeMessageBytes = std::size_t{96} * 1024 * 1024;

  // Messages keep their members in the order the browser wrote them, so that
  // a value a script returns keeps the order of its keys.
  using Json = nlohmann::ordered_json;
  // Receives an event message, on the reader thread. The handler may move
  // parts out of the message (a big payload, say); it is dropped afterwards.
  using EventHandler = std::function<void(DevToolsConnection& connection, Json& message)>;
  // Tells, on the reader thread, whether events of `method` are wanted.
  using EventFilter = std::function<bool(std::string_view method)>;
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

  // Sends `method` with the params object `paramsJson`, written to the pipe
  // as it is (neither parsed nor copied into a second text), without waiting
  // for the answer. REQUIRES: `paramsJson` is one JSON object in valid UTF-8.
  // Waits at most `timeout` for room in the pipe. Throws ChromiumError like
  // Post, and ProtocolError for a command over the outgoing limit.
  void PostRawParams(const std::string& method, std::string paramsJson,
                     const std::string& sessionId,
                     std::chrono::milliseconds timeout = std::chrono::milliseconds(30000));

  // Sends `method` with a params object of `paramsBytes` bytes that
  // `writeParams` writes to the pipe piece by piece, without waiting for the
  // answer: a big params object never has to be held whole. REQUIRES: the
  // pieces make one JSON object in valid UTF-8 of exactly `paramsBytes`
  // bytes. Throws like PostRawParams.
  void PostStreamedParams(
      const std::string& method, std::size_t paramsBytes,
      const std::function<void(const std::function<void(std::string_view)>&)>& writeParams,
      const std::string& sessionId,
      std::chrono::milliseconds timeout = std::chrono::milliseconds(30000));

  // Sends `method` with a params object that `writeParams` writes piece by
  // piece, like PostStreamedParams, and waits for the answer like Call.
  // Returns the answer's "result" object. Throws like Call, and ProtocolError
  // for a command over the outgoing limit.
  Json CallStreamedParams(
      const std::string& method, std::size_t paramsBytes,
      const std::function<void(const std::function<void(std::string_view)>&)>& writeParams,
      const std::string& sessionId, std::chrono::milliseconds timeout);

  // Sets the largest message of the browser that is read (the NUL not
  // counted) and the largest command that is written (with its NUL; never
  // more than kMaxPipeMessageBytes). A call whose answer is bigger fails with
  // ChromiumError(ProtocolError, "The browser's answer to <method> was over
  // the limit of N bytes"); a bigger event is dropped with the log line
  // "ChromiumWebControl: dropped a message of the browser over N bytes"; a
  // bigger command is refused with ChromiumError(ProtocolError, "The command
  // <method> takes N bytes, more than the limit of M"). Unset: no incoming
  // limit, kMaxPipeMessageBytes outgoing.
  void SetMessageLimits(std::size_t maxIncomingBytes, std::size_t maxOutgoingBytes);

  // Drops, before parsing them, the events whose method `wanted` rejects.
  // An empty filter wants every event.
  void SetEventFilter(EventFilter wanted);

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
  class BlockText;

  int Send(const std::string& method, Json params, const std::string& sessionId,
           std::chrono::milliseconds timeout, std::shared_ptr<PendingCall> call,
           ReplyHandler onReply);
  int Register(std::shared_ptr<PendingCall> call, ReplyHandler onReply);
  void CheckOutgoing(int id, const std::string& method, std::size_t size);
  // Receives one piece of a command's text.
  using TextSink = std::function<void(std::string_view piece)>;
  // Writes a command whose params `writeParams` writes, for `call` (or for
  // nobody), and returns its id; the trace shows `tracedParams` in their
  // place.
  int SendParams(const std::string& method, std::size_t paramsBytes,
                 const std::function<void(const TextSink&)>& writeParams,
                 const std::string& sessionId, std::chrono::milliseconds timeout,
                 std::string_view tracedParams, std::shared_ptr<PendingCall> call);
  // Returns what the trace shows of streamed params: their text when short.
  std::string TracedParams(std::size_t paramsBytes,
                           const std::function<void(const TextSink&)>& writeParams) const;
  // Waits until `deadline` for the answer to the call `id` of `method`.
  Json Await(int id, const std::shared_ptr<PendingCall>& call, const std::string& method,
             std::chrono::steady_clock::time_point deadline, std::chrono::milliseconds timeout);
  void WriteCommand(int id, const std::string& method, std::chrono::milliseconds timeout,
                    const std::function<void(const TextSink&)>& produce);
  void ReadLoop();
  bool Unwanted(std::string_view head);
  void Dispatch(std::string_view view);
  // Takes a message read in blocks, and frees them.
  void DispatchBlocks(BlockText* blocks);
  void Handle(Json& message);
  void DropOversized(std::string_view head, std::size_t limit);
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
  std::size_t maxIncoming_ = static_cast<std::size_t>(-1);
  std::size_t maxOutgoing_ = kMaxPipeMessageBytes;
  std::shared_ptr<const EventFilter> eventFilter_;
  // Keeps the pieces of one command together in the pipe.
  std::mutex writeMutex_;
  std::thread reader_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal

#endif  // WEVLIN_WEBCONTROLS_CHROMIUM_INTERNAL_DEVTOOLSCONNECTION_H_
