#include "wevlin/testing/internal/ScriptLineReader.h"

#include <utility>

namespace Com::Velmora::TAVO::Wevlin::Testing::internal {

namespace {

using Infrastructure::Interop::ScriptQuoting;

// Appends code point `code` (below 0x10000) to `out` in UTF-8.
void AppendUtf8(std::string& out, unsigned int code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

// Decodes the strict escape that starts at script[i] (a backslash) into
// `arg` and returns the index after it, or npos when it is not one.
std::size_t DecodeStrictEscape(const std::string& script, std::size_t i, std::string& arg) {
  if (i + 1 >= script.size()) return std::string::npos;
  switch (script[i + 1]) {
    case '\\':
    case '\'':
    case '"':
      arg += script[i + 1];
      return i + 2;
    case 'n':
      arg += '\n';
      return i + 2;
    case 'r':
      arg += '\r';
      return i + 2;
    case 'u': {
      if (i + 6 > script.size()) return std::string::npos;
      unsigned int code = 0;
      for (std::size_t k = i + 2; k < i + 6; ++k) {
        const char h = script[k];
        unsigned int digit = 0;
        if (h >= '0' && h <= '9') {
          digit = static_cast<unsigned int>(h - '0');
        } else if (h >= 'a' && h <= 'f') {
          digit = static_cast<unsigned int>(h - 'a' + 10);
        } else {
          return std::string::npos;
        }
        code = code * 16 + digit;
      }
      AppendUtf8(arg, code);
      return i + 6;
    }
    default:
      return std::string::npos;
  }
}

}  // namespace

bool ScriptLineReader::Read(const std::string& script, ScriptQuoting quoting, std::string& function,
                            std::vector<std::string>& args) {
  const bool strict = quoting == ScriptQuoting::Strict;
  const std::size_t open = script.find('(');
  if (open == std::string::npos) return false;
  function = script.substr(0, open);
  args.clear();
  std::size_t i = open + 1;
  while (i < script.size() && script[i] == '\'') {
    std::string arg;
    ++i;
    bool closed = false;
    while (i < script.size()) {
      const char c = script[i];
      if (strict && c == '\\') {
        i = DecodeStrictEscape(script, i, arg);
        if (i == std::string::npos) return false;
      } else if (strict && (c == '\n' || c == '\r')) {
        return false;
      } else if (c == '\\' && i + 1 < script.size() && script[i + 1] == '\'') {
        arg += '\'';
        i += 2;
      } else if (c == '\'') {
        closed = true;
        ++i;
        break;
      } else {
        arg += c;
        ++i;
      }
    }
    if (!closed) return false;
    args.push_back(std::move(arg));
    if (i < script.size() && script[i] == ',') ++i;
  }
  return script.compare(i, std::string::npos, ");") == 0;
}

}  // namespace Com::Velmora::TAVO::Wevlin::Testing::internal
