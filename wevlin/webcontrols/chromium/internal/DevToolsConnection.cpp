#include "wevlin/webcontrols/chromium/internal/DevToolsConnection.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/webcontrols/internal/Utf8Text.h"

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

namespace {

using WebControls::internal::IsValidUtf8;
using WebControls::internal::ToValidUtf8;

// How long the reader waits, once the pipe has ended, for the browser process
// to end too, so that the error can tell how it ended. A killed browser with
// much memory can take a moment to end on a busy machine.
constexpr std::chrono::milliseconds kExitGrace{10000};

// How long a failed write waits for the reader to find out why: longer than
// the reader may wait for the process.
constexpr std::chrono::milliseconds kCloseGrace = kExitGrace + std::chrono::milliseconds(2000);

constexpr std::size_t kTraceLength = 2000;

// How many small pieces of a command are gathered into one write.
constexpr std::size_t kWriteChunk = std::size_t{1} << 16;

// How much the reader reads at a time.
constexpr std::size_t kReadChunk = std::size_t{1} << 16;

// How many first bytes of an over-sized message are kept to tell what it is.
constexpr std::size_t kHeadBytes = 256;

// What the first member of a message says: the browser writes "id" first in
// an answer and "method" first in an event.
struct MessageHead {
  bool answer = false;
  bool event = false;
  int id = 0;
  std::string_view method;
};

void SkipSpace(std::string_view text, std::size_t* at) {
  while (*at < text.size() &&
         (text[*at] == ' ' || text[*at] == '\n' || text[*at] == '\r' || text[*at] == '\t')) {
    ++*at;
  }
}

bool SkipPrefix(std::string_view text, std::size_t* at, std::string_view prefix) {
  if (text.substr(*at, prefix.size()) != prefix) return false;
  *at += prefix.size();
  return true;
}

// Reads the first member of the message text `text` (which may be cut short)
// without parsing the rest. Returns false when it is neither "id" nor "method".
bool ReadHead(std::string_view text, MessageHead* head) {
  std::size_t at = 0;
  SkipSpace(text, &at);
  if (!SkipPrefix(text, &at, "{")) return false;
  SkipSpace(text, &at);
  if (SkipPrefix(text, &at, "\"id\"")) {
    SkipSpace(text, &at);
    if (!SkipPrefix(text, &at, ":")) return false;
    SkipSpace(text, &at);
    long long id = 0;
    const std::size_t digits = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9' && at - digits < 10) {
      id = id * 10 + (text[at] - '0');
      ++at;
    }
    if (at == digits || id > std::numeric_limits<int>::max()) return false;
    head->answer = true;
    head->id = static_cast<int>(id);
    return true;
  }
  if (SkipPrefix(text, &at, "\"method\"")) {
    SkipSpace(text, &at);
    if (!SkipPrefix(text, &at, ":")) return false;
    SkipSpace(text, &at);
    if (!SkipPrefix(text, &at, "\"")) return false;
    const std::size_t end = text.find('"', at);
    if (end == std::string_view::npos) return false;
    const std::string_view method = text.substr(at, end - at);
    if (method.find('\\') != std::string_view::npos) return false;
    head->event = true;
    head->method = method;
    return true;
  }
  return false;
}

// Reads one message text into a Json value. nlohmann's own reader keeps two
// growing copies of each string while it reads it (the value and the raw
// token), so a big payload would take four to five times its size; this one
// finds where a string ends first and decodes it straight into a string of
// the right size. Lone surrogate escapes (which a page's strings can hold)
// and bytes that are not UTF-8 become U+FFFD; numbers are left to nlohmann so that they read the
// same.
// Tells the text under `at` that the reader will not go back before `at`, so
// that storage behind it may be given back. Plain text keeps it all.
template <typename Iterator>
void ReleaseBehind(const Iterator& /*at*/) {}

template <typename Iterator>
class MessageReader {
 public:
  using Json = DevToolsConnection::Json;

  MessageReader(Iterator first, Iterator last) : at_(first), last_(last) {}

  // Returns the message, or a discarded value when the text is not JSON.
  Json Read() {
    Json root;
    std::vector<Json*> open;  // the objects and arrays being read
    bool done = false;
    while (!done) {
      SkipSpace();
      Json* parent = open.empty() ? nullptr : open.back();
      Json* slot = &root;
      if (parent != nullptr) {
        if (AtEnd()) return Discarded();
        const char close = parent->is_object() ? '}' : ']';
        if (*at_ == close) {
          if (afterComma_) return Discarded();
          ++at_;
          open.pop_back();
          done = open.empty();
          if (!done && !AfterValue(open.back())) return Discarded();
          continue;
        }
        if (parent->is_object()) {
          std::string key;
          if (!ReadString(&key)) return Discarded();
          SkipSpace();
          if (AtEnd() || *at_ != ':') return Discarded();
          ++at_;
          SkipSpace();
          slot = &(*parent)[key];
        } else {
          parent->push_back(nullptr);
          slot = &parent->back();
        }
      }
      afterComma_ = false;
      if (AtEnd()) return Discarded();
      const char c = *at_;
      if (c == '{' || c == '[') {
        ++at_;
        *slot = c == '{' ? Json::object() : Json::array();
        open.push_back(slot);
        SkipSpace();
        if (!AtEnd() && *at_ == (c == '{' ? '}' : ']')) continue;
        if (!AtEnd() && c == '[') continue;
        if (!AtEnd() && *at_ == '"') continue;
        return Discarded();
      }
      if (c == '"') {
        std::string text;
        if (!ReadString(&text)) return Discarded();
        *slot = std::move(text);
      } else if (!ReadScalar(slot)) {
        return Discarded();
      }
      if (open.empty()) {
        done = true;
      } else if (!AfterValue(open.back())) {
        return Discarded();
      }
    }
    SkipSpace();
    return AtEnd() ? std::move(root) : Discarded();
  }

 private:
  // A braced list would make an array holding the kind, not a value of it.
  static Json Discarded() {
    return Json(Json::value_t::discarded);  // NOLINT(modernize-return-braced-init-list)
  }

  bool AtEnd() const { return at_ == last_; }

  void SkipSpace() {
    while (!AtEnd() && (*at_ == ' ' || *at_ == '\n' || *at_ == '\r' || *at_ == '\t')) ++at_;
  }

  // Reads what follows a value inside `parent`: a comma before the next
  // member, or the closing bracket (left for the loop).
  bool AfterValue(const Json* parent) {
    SkipSpace();
    if (AtEnd()) return false;
    if (*at_ == ',') {
      ++at_;
      afterComma_ = true;
      SkipSpace();
      return !AtEnd() && (parent->is_array() || *at_ == '"');
    }
    return *at_ == (parent->is_object() ? '}' : ']');
  }

  // Reads a number, true, false or null.
  bool ReadScalar(Json* slot) {
    std::string token;
    while (!AtEnd() && token.size() < 64) {
      const char c = *at_;
      if (c == ',' || c == '}' || c == ']' || c == ' ' || c == '\n' || c == '\r' || c == '\t') {
        break;
      }
      token.push_back(c);
      ++at_;
    }
    if (token.empty()) return false;
    *slot = Json::parse(token, nullptr, false);
    return !slot->is_discarded() && !slot->is_structured() && !slot->is_string();
  }

  static int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
  }

  // Reads four hex digits after "\u" at `at`; -1 when they are not.
  static long ReadHex4(Iterator* at, const Iterator& last) {
    long value = 0;
    for (int digit = 0; digit < 4; ++digit) {
      if (*at == last) return -1;
      const int v = HexValue(**at);
      if (v < 0) return -1;
      value = value * 16 + v;
      ++*at;
    }
    return value;
  }

  static void AppendUtf8(std::string* out, unsigned long code) {
    if (code < 0x80) {
      out->push_back(static_cast<char>(code));
    } else if (code < 0x800) {
      out->push_back(static_cast<char>(0xC0 | (code >> 6)));
      out->push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
      out->push_back(static_cast<char>(0xE0 | (code >> 12)));
      out->push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
      out->push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
      out->push_back(static_cast<char>(0xF0 | (code >> 18)));
      out->push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
      out->push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
      out->push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
  }

  // Reads a string at the current position into `out`, which is sized once.
  bool ReadString(std::string* out) {
    if (AtEnd() || *at_ != '"') return false;
    ++at_;
    // First pass: where the string ends, and an upper bound of its size.
    std::size_t length = 0;
    Iterator scan = at_;
    while (true) {
      if (scan == last_) return false;
      const char c = *scan;
      if (c == '"') break;
      if (static_cast<unsigned char>(c) < 0x20) return false;
      ++scan;
      ++length;
      if (c == '\\') {
        if (scan == last_) return false;
        ++scan;
        ++length;
      }
    }
    out->clear();
    out->reserve(length);
    std::size_t sinceRelease = 0;
    while (*at_ != '"') {
      // A big string's text is given back as it is decoded, so that the
      // message and the string are not held whole at once.
      if (++sinceRelease == kReleaseEvery) {
        sinceRelease = 0;
        ReleaseBehind(at_);
      }
      const char c = *at_;
      ++at_;
      if (c != '\\') {
        out->push_back(c);
        continue;
      }
      const char e = *at_;
      ++at_;
      switch (e) {
        case '"':
          out->push_back('"');
          break;
        case '\\':
          out->push_back('\\');
          break;
        case '/':
          out->push_back('/');
          break;
        case 'b':
          out->push_back('\b');
          break;
        case 'f':
          out->push_back('\f');
          break;
        case 'n':
          out->push_back('\n');
          break;
        case 'r':
          out->push_back('\r');
          break;
        case 't':
          out->push_back('\t');
          break;
        case 'u': {
          const long unit = ReadHex4(&at_, last_);
          if (unit < 0) return false;
          if (unit >= 0xD800 && unit <= 0xDBFF) {
            // A high surrogate counts only with a low one right after it.
            Iterator next = at_;
            if (next != last_ && *next == '\\' && ++next != last_ && *next == 'u') {
              ++next;
              const long low = ReadHex4(&next, last_);
              if (low >= 0xDC00 && low <= 0xDFFF) {
                at_ = next;
                AppendUtf8(out, 0x10000 + ((static_cast<unsigned long>(unit) - 0xD800) << 10) +
                                    (static_cast<unsigned long>(low) - 0xDC00));
                break;
              }
            }
            AppendUtf8(out, 0xFFFD);
          } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
            AppendUtf8(out, 0xFFFD);
          } else {
            AppendUtf8(out, static_cast<unsigned long>(unit));
          }
          break;
        }
        default:
          return false;
      }
    }
    ++at_;
    // The browser writes UTF-8; should a byte be wrong, it reads as U+FFFD.
    if (!IsValidUtf8(*out)) *out = ToValidUtf8(*out);
    return true;
  }

  Iterator at_;
  Iterator last_;
  bool afterComma_ = false;  // a comma was read, a value must follow
  static constexpr std::size_t kReleaseEvery = std::size_t{1} << 18;
};

// Returns the message in the text from `first` to `last`, or a discarded
// value when it is not JSON.
template <typename Iterator>
DevToolsConnection::Json ReadMessage(Iterator first, Iterator last) {
  return MessageReader<Iterator>(first, last).Read();
}

// Passes the text of a message, piece by piece, to a receiver.
class SinkAdapter : public nlohmann::detail::output_adapter_protocol<char> {
 public:
  explicit SinkAdapter(const std::function<void(std::string_view)>& put) : put_(put) {}
  void write_character(char c) override { put_(std::string_view(&c, 1)); }
  void write_characters(const char* text, std::size_t length) override {
    put_(std::string_view(text, length));
  }

 private:
  const std::function<void(std::string_view)>& put_;
};

// Writes `message` as compact JSON, bad UTF-8 replaced by U+FFFD, to `put`.
void Serialize(const DevToolsConnection::Json& message,
               const std::function<void(std::string_view)>& put) {
  nlohmann::detail::serializer<DevToolsConnection::Json> serializer(
      std::make_shared<SinkAdapter>(put), ' ', DevToolsConnection::Json::error_handler_t::replace);
  serializer.dump(message, false, false, 0);
}

// Appends `text` to `out` as a JSON string.
void AppendJsonString(std::string* out, const std::string& text) {
  *out += DevToolsConnection::Json(text).dump(-1, ' ', false,
                                              DevToolsConnection::Json::error_handler_t::replace);
}

void Trace(const char* direction, std::string_view text) {
  Infrastructure::Base::internal::WriteLogLine(std::string("devtools ") + direction + " " +
                                               std::string(text.substr(0, kTraceLength)));
}

std::string NotAnsweringText(const std::string& method, std::chrono::milliseconds timeout) {
  return "The browser did not answer " + method + " within " + std::to_string(timeout.count()) +
         " ms";
}

}  // namespace

// The text of a message that arrives over several reads, kept in blocks of
// one size, so that a big message takes its own size and at most one block
// more (a growing string would take up to twice its size, and as much again
// while it moves).
class DevToolsConnection::BlockText {
 public:
  static constexpr std::size_t kBlock = std::size_t{1} << 20;
  static constexpr std::size_t kLargestBlock = std::size_t{64} << 20;

  // Reads the text a character after the other, for the parser.
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Iterator(std::vector<std::string>* blocks, std::size_t block)
        : blocks_(blocks), block_(block) {}

    // Frees the blocks before the one `at` is in: the reader never goes back.
    friend void ReleaseBehind(const Iterator& at) {
      for (std::size_t i = at.block_; i > 0 && !(*at.blocks_)[i - 1].empty(); --i) {
        std::string().swap((*at.blocks_)[i - 1]);
      }
    }
    reference operator*() const { return (*blocks_)[block_][at_]; }
    Iterator& operator++() {
      if (++at_ == (*blocks_)[block_].size()) {
        ++block_;
        at_ = 0;
      }
      return *this;
    }
    bool operator==(const Iterator& other) const {
      return block_ == other.block_ && at_ == other.at_;
    }
    bool operator!=(const Iterator& other) const { return !(*this == other); }

   private:
    std::vector<std::string>* blocks_;
    std::size_t block_;
    std::size_t at_ = 0;
  };

  void Append(std::string_view text) {
    while (!text.empty()) {
      if (blocks_.empty() || blocks_.back().size() == blocks_.back().capacity()) {
        // Each block is twice the last: a big message takes few blocks, and
        // each is bigger than any the allocator has seen freed, so that it
        // gets memory of its own that goes back to the system once released.
        const std::size_t size =
            blocks_.empty() ? kBlock : std::min(blocks_.back().capacity() * 2, kLargestBlock);
        blocks_.emplace_back();
        blocks_.back().reserve(size);
      }
      std::string& block = blocks_.back();
      const std::size_t room = block.capacity() - block.size();
      block.append(text.substr(0, room));
      text.remove_prefix(std::min(room, text.size()));
    }
  }

  bool Empty() const { return blocks_.empty(); }

  // Returns up to `count` first bytes (never more than one block).
  std::string_view Head(std::size_t count) const {
    if (blocks_.empty()) return {};
    return std::string_view(blocks_.front()).substr(0, count);
  }

  Iterator begin() { return {&blocks_, 0}; }
  Iterator end() { return {&blocks_, blocks_.size()}; }

  // Gives the storage back.
  void Release() { std::vector<std::string>().swap(blocks_); }

 private:
  std::vector<std::string> blocks_;
};

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

void DevToolsConnection::SetMessageLimits(std::size_t maxIncomingBytes,
                                          std::size_t maxOutgoingBytes) {
  std::lock_guard<std::mutex> lock(mutex_);
  maxIncoming_ = maxIncomingBytes;
  maxOutgoing_ = std::min(maxOutgoingBytes, kMaxPipeMessageBytes);
}

void DevToolsConnection::SetEventFilter(EventFilter wanted) {
  auto filter = wanted ? std::make_shared<const EventFilter>(std::move(wanted)) : nullptr;
  std::lock_guard<std::mutex> lock(mutex_);
  eventFilter_ = std::move(filter);
}

void DevToolsConnection::CheckOutgoing(int id, const std::string& method, std::size_t size) {
  std::size_t limit = 0;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    limit = maxOutgoing_;
    if (size > limit) {
      calls_.erase(id);
      replyHandlers_.erase(id);
    }
  }
  if (size > limit) {
    throw ChromiumError(ChromiumError::Kind::ProtocolError,
                        "The command " + method + " takes " + std::to_string(size) +
                            " bytes, more than the limit of " + std::to_string(limit));
  }
}

int DevToolsConnection::Register(std::shared_ptr<PendingCall> call, ReplyHandler onReply) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (closed_) throw ChromiumError(ChromiumError::Kind::Exited, closeReason_);
  const int id = nextId_++;
  if (call) calls_[id] = std::move(call);
  if (onReply) replyHandlers_[id] = std::move(onReply);
  return id;
}

void DevToolsConnection::WriteCommand(int id, const std::string& method,
                                      std::chrono::milliseconds timeout,
                                      const std::function<void(const TextSink&)>& produce) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  std::string error;
  bool written = true;
  {
    // The pieces of one command follow each other in the pipe. Small pieces
    // are gathered; a big one is written from where it is.
    std::lock_guard<std::mutex> lock(writeMutex_);
    std::string gathered;
    gathered.reserve(kWriteChunk);
    const auto flush = [&] {
      if (written && !gathered.empty()) {
        written = process_->Write(gathered.data(), gathered.size(), deadline, &error);
      }
      gathered.clear();
    };
    produce([&](std::string_view piece) {
      if (!written) return;
      if (gathered.size() + piece.size() <= kWriteChunk) {
        gathered.append(piece);
        return;
      }
      flush();
      if (piece.size() < kWriteChunk) {
        gathered.append(piece);
      } else if (written) {
        written = process_->Write(piece.data(), piece.size(), deadline, &error);
      }
    });
    flush();
  }
  if (written) return;

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

int DevToolsConnection::Send(const std::string& method, Json params, const std::string& sessionId,
                             std::chrono::milliseconds timeout, std::shared_ptr<PendingCall> call,
                             ReplyHandler onReply) {
  Json message = {{"method", method}, {"params", std::move(params)}};
  if (!sessionId.empty()) message["sessionId"] = sessionId;
  // The text is never kept whole: it is measured first, then written as it
  // is made, so that a big command costs no memory beyond its params.
  std::size_t size = 0;
  std::string traced;
  Serialize(message, [&](std::string_view piece) {
    size += piece.size();
    if (trace_ && traced.size() < kTraceLength) {
      traced.append(piece.substr(0, kTraceLength - traced.size()));
    }
  });
  const int id = Register(std::move(call), std::move(onReply));
  // The text is {"method":...}; the id goes in front of its first member.
  const std::string head = "{\"id\":" + std::to_string(id) + ",";
  CheckOutgoing(id, method, head.size() + size);
  if (trace_) Trace(">>", head + traced.substr(1));
  WriteCommand(id, method, timeout, [&](const TextSink& put) {
    put(head);
    bool first = true;
    Serialize(message, [&](std::string_view piece) {
      if (first && !piece.empty()) {
        piece.remove_prefix(1);
        first = false;
      }
      put(piece);
    });
    put(std::string_view("\0", 1));
  });
  return id;
}

void DevToolsConnection::PostRawParams(const std::string& method, std::string paramsJson,
                                       const std::string& sessionId,
                                       std::chrono::milliseconds timeout) {
  SendParams(
      method, paramsJson.size(), [&paramsJson](const TextSink& put) { put(paramsJson); }, sessionId,
      timeout, std::string_view(paramsJson).substr(0, kTraceLength), nullptr);
}

void DevToolsConnection::PostStreamedParams(const std::string& method, std::size_t paramsBytes,
                                            const std::function<void(const TextSink&)>& writeParams,
                                            const std::string& sessionId,
                                            std::chrono::milliseconds timeout) {
  SendParams(method, paramsBytes, writeParams, sessionId, timeout,
             TracedParams(paramsBytes, writeParams), nullptr);
}

DevToolsConnection::Json DevToolsConnection::CallStreamedParams(
    const std::string& method, std::size_t paramsBytes,
    const std::function<void(const TextSink&)>& writeParams, const std::string& sessionId,
    std::chrono::milliseconds timeout) {
  auto call = std::make_shared<PendingCall>();
  call->method = method;
  call->sessionId = sessionId;
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  const int id = SendParams(method, paramsBytes, writeParams, sessionId, timeout,
                            TracedParams(paramsBytes, writeParams), call);
  return Await(id, call, method, deadline, timeout);
}

std::string DevToolsConnection::TracedParams(
    std::size_t paramsBytes, const std::function<void(const TextSink&)>& writeParams) const {
  if (!trace_) return {};
  if (paramsBytes > kTraceLength) {
    return "(" + std::to_string(paramsBytes) + " bytes written piece by piece)";
  }
  std::string text;
  writeParams([&text](std::string_view piece) { text.append(piece); });
  return text;
}

int DevToolsConnection::SendParams(const std::string& method, std::size_t paramsBytes,
                                   const std::function<void(const TextSink&)>& writeParams,
                                   const std::string& sessionId, std::chrono::milliseconds timeout,
                                   std::string_view tracedParams,
                                   std::shared_ptr<PendingCall> call) {
  std::string tail = ",\"method\":";
  AppendJsonString(&tail, method);
  if (!sessionId.empty()) {
    tail += ",\"sessionId\":";
    AppendJsonString(&tail, sessionId);
  }
  tail += ",\"params\":";
  const int id = Register(std::move(call), ReplyHandler());
  const std::string head = "{\"id\":" + std::to_string(id);
  CheckOutgoing(id, method, head.size() + tail.size() + paramsBytes + 2);
  if (trace_) Trace(">>", head + tail + std::string(tracedParams) + "}");
  WriteCommand(id, method, timeout, [&](const TextSink& put) {
    put(head);
    put(tail);
    writeParams(put);
    put(std::string_view("}\0", 2));
  });
  return id;
}

DevToolsConnection::Json DevToolsConnection::Call(const std::string& method, Json params,
                                                  const std::string& sessionId,
                                                  std::chrono::milliseconds timeout) {
  auto call = std::make_shared<PendingCall>();
  call->method = method;
  call->sessionId = sessionId;
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  const int id = Send(method, std::move(params), sessionId, timeout, call, ReplyHandler());
  return Await(id, call, method, deadline, timeout);
}

DevToolsConnection::Json DevToolsConnection::Await(int id, const std::shared_ptr<PendingCall>& call,
                                                   const std::string& method,
                                                   std::chrono::steady_clock::time_point deadline,
                                                   std::chrono::milliseconds timeout) {
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
  // The message being read when it spans reads; a message within one read is
  // dispatched from the read buffer itself.
  BlockText message;
  std::size_t messageSize = 0;
  bool skipping = false;  // inside an over-sized message, until its NUL
  std::vector<char> chunk(kReadChunk);
  std::ptrdiff_t count = 0;
  while ((count = process_->Read(chunk.data(), chunk.size())) > 0) {
    std::string_view data(chunk.data(), static_cast<std::size_t>(count));
    while (!data.empty()) {
      const std::size_t end = data.find('\0');
      const std::string_view part = data.substr(0, end);
      if (skipping) {
        if (end == std::string_view::npos) break;
        skipping = false;
        data.remove_prefix(end + 1);
        continue;
      }
      std::size_t limit = 0;
      {
        std::lock_guard<std::mutex> lock(mutex_);
        limit = maxIncoming_;
      }
      if (part.size() > limit || messageSize > limit - part.size()) {
        std::string head(message.Head(kHeadBytes));
        head.append(part.substr(0, kHeadBytes - head.size()));
        message.Release();
        messageSize = 0;
        DropOversized(head, limit);
        if (end == std::string_view::npos) {
          skipping = true;
          break;
        }
        data.remove_prefix(end + 1);
        continue;
      }
      if (end == std::string_view::npos) {
        // An unwanted event that spans reads is skipped as it streams by,
        // however big, once its first bytes tell what it is.
        if (message.Empty() && part.size() >= kHeadBytes && Unwanted(part.substr(0, kHeadBytes))) {
          skipping = true;
          break;
        }
        message.Append(part);
        messageSize += part.size();
        break;
      }
      if (message.Empty()) {
        Dispatch(part);
      } else {
        message.Append(part);
        DispatchBlocks(&message);
        message.Release();
        messageSize = 0;
      }
      data.remove_prefix(end + 1);
    }
  }
  message.Release();

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

void DevToolsConnection::DropOversized(std::string_view head, std::size_t limit) {
  if (trace_) Trace("<< (over the limit)", head);
  MessageHead what;
  if (ReadHead(head, &what) && what.answer) {
    ReplyHandler handler;
    std::string text;
    {
      std::lock_guard<std::mutex> lock(mutex_);
      const auto call = calls_.find(what.id);
      if (call != calls_.end()) {
        PendingCall& pending = *call->second;
        pending.done = true;
        pending.failed = true;
        pending.kind = ChromiumError::Kind::ProtocolError;
        pending.error = "The browser's answer to " + pending.method + " was over the limit of " +
                        std::to_string(limit) + " bytes";
        calls_.erase(call);
        settled_.notify_all();
        return;
      }
      const auto posted = replyHandlers_.find(what.id);
      if (posted != replyHandlers_.end()) {
        handler = std::move(posted->second);
        replyHandlers_.erase(posted);
      }
    }
    if (handler) {
      Json reply = {{"id", what.id},
                    {"error",
                     {{"message", "The browser's answer was over the limit of " +
                                      std::to_string(limit) + " bytes"}}}};
      try {
        handler(reply);
      } catch (...) {
        // A reply handler's failure must not end the reader.
      }
      return;
    }
  }
  Infrastructure::Base::internal::WriteLogLine(
      "ChromiumWebControl: dropped a message of the browser over " + std::to_string(limit) +
      " bytes");
}

bool DevToolsConnection::Unwanted(std::string_view head) {
  MessageHead what;
  if (!ReadHead(head, &what) || !what.event) return false;
  std::shared_ptr<const EventFilter> filter;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    filter = eventFilter_;
  }
  return filter && !(*filter)(what.method);
}

void DevToolsConnection::Dispatch(std::string_view view) {
  if (trace_) Trace("<<", view);
  if (Unwanted(view.substr(0, kHeadBytes))) return;
  Json message = ReadMessage(view.begin(), view.end());
  Handle(message);
}

void DevToolsConnection::DispatchBlocks(BlockText* blocks) {
  BlockText& text = *blocks;
  if (trace_) Trace("<<", text.Head(kTraceLength));
  if (Unwanted(text.Head(kHeadBytes))) return;
  Json message = ReadMessage(text.begin(), text.end());
  // The text is no longer needed: it is given back before the message is
  // handled.
  text.Release();
  Handle(message);
}

void DevToolsConnection::Handle(Json& message) {
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
