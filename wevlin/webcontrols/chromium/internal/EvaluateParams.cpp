#include "wevlin/webcontrols/chromium/internal/EvaluateParams.h"

#include <array>

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

namespace {

// How many bytes each byte of a string takes inside a JSON string: 1, 2 for
// the quote, the backslash and the control characters with a short escape,
// 6 for the other control characters (\u00XX). Bytes of 0x80 and up are
// parts of UTF-8 sequences and go as they are.
constexpr std::array<unsigned char, 256> MakeEscapedWidths() {
  std::array<unsigned char, 256> widths{};
  for (std::size_t byte = 0; byte < widths.size(); ++byte) widths[byte] = byte < 0x20 ? 6 : 1;
  for (const unsigned char shortly : {'"', '\\', '\b', '\f', '\n', '\r', '\t'}) widths[shortly] = 2;
  return widths;
}

constexpr std::array<unsigned char, 256> kEscapedWidths = MakeEscapedWidths();

// The escape of a byte of width 2 or 6.
void AppendEscape(std::string& out, unsigned char byte) {
  static constexpr char kHex[] = "0123456789abcdef";
  switch (byte) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      out += "\\u00";
      out += kHex[byte >> 4];
      out += kHex[byte & 0xF];
  }
}

std::size_t EscapedSize(std::string_view text) {
  std::size_t size = 0;
  for (const char c : text) size += kEscapedWidths[static_cast<unsigned char>(c)];
  return size;
}

// Above this a piece is handed out.
constexpr std::size_t kPieceBytes = std::size_t{64} * 1024;

// What comes before the script's escaped text.
constexpr std::string_view kHead = R"({"expression":")";

}  // namespace

EvaluateParams::EvaluateParams(std::string_view script, std::string_view objectGroup,
                               std::int64_t contextId)
    : script_(script), tail_(R"(","objectGroup":")") {
  for (const char c : objectGroup) {
    const auto byte = static_cast<unsigned char>(c);
    if (kEscapedWidths[byte] == 1) {
      tail_ += c;
    } else {
      AppendEscape(tail_, byte);
    }
  }
  tail_ += R"(","returnByValue":true,"awaitPromise":false)";
  if (contextId != 0) tail_ += ",\"contextId\":" + std::to_string(contextId);
  tail_ += '}';
}

std::size_t EvaluateParams::Size() const {
  return kHead.size() + EscapedSize(script_) + tail_.size();
}

void EvaluateParams::Write(const std::function<void(std::string_view)>& put) const {
  std::string piece(kHead);
  piece.reserve(kPieceBytes + 8);
  const char* at = script_.data();
  const char* const end = at + script_.size();
  while (at != end) {
    // A run of bytes that go as they are, as far as the piece has room, then
    // at most one escape.
    const std::size_t room = kPieceBytes - piece.size();
    const char* const stop = static_cast<std::size_t>(end - at) > room ? at + room : end;
    const char* run = at;
    while (run != stop && kEscapedWidths[static_cast<unsigned char>(*run)] == 1) ++run;
    piece.append(at, run);
    if (run != stop) AppendEscape(piece, static_cast<unsigned char>(*run++));
    at = run;
    if (piece.size() >= kPieceBytes) {
      put(piece);
      piece.clear();
    }
  }
  piece += tail_;
  put(piece);
}

std::string EvaluateParams::Text() const {
  std::string text;
  text.reserve(Size());
  Write([&text](std::string_view piece) { text.append(piece); });
  return text;
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal
