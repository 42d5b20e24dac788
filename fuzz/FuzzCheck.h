#ifndef WEVLIN_FUZZ_FUZZCHECK_H_
#define WEVLIN_FUZZ_FUZZCHECK_H_

// What the fuzz targets share: stopping the process when a property does not
// hold, cutting an input into parts, and silencing the library's log.
//
// A property that fails aborts the process (libFuzzer then saves the input as
// a crash); the checks work the same in optimised builds, unlike assert().

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "wevlin/infrastructure/base/LogSink.h"

namespace wevlin_fuzz {

// Writes "fuzz check failed: <what>", then each detail (cut to 300 bytes), to
// standard error and aborts.
[[noreturn]] inline void Fail(const std::string& what,
                              const std::vector<std::string>& details = {}) {
  std::fprintf(stderr, "fuzz check failed: %s\n", what.c_str());
  for (const std::string& detail : details) {
    const std::string shown = detail.size() > 300 ? detail.substr(0, 300) + "..." : detail;
    std::fprintf(stderr, "  [%zu bytes] %s\n", detail.size(), shown.c_str());
  }
  std::fflush(stderr);
  std::abort();
}

// Fails with `what` and `details` unless `condition` holds.
inline void Require(bool condition, const std::string& what,
                    const std::vector<std::string>& details = {}) {
  if (!condition) Fail(what, details);
}

// The byte that separates the parts of an input (ASCII unit separator), and
// the one that separates the commands of a command script (record separator).
inline constexpr char kPartSeparator = '\x1f';
inline constexpr char kCommandSeparator = '\x1e';

// Cuts `text` at every `separator` into at most `maxParts` parts; the last
// part keeps the rest, separators included. Always returns `maxParts` parts,
// the missing ones empty.
inline std::vector<std::string> Split(const std::string& text, std::size_t maxParts,
                                      char separator = kPartSeparator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (parts.size() + 1 < maxParts) {
    const std::size_t end = text.find(separator, start);
    if (end == std::string::npos) break;
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  parts.push_back(start <= text.size() ? text.substr(start) : std::string());
  parts.resize(maxParts);
  return parts;
}

// Returns the input as a byte string.
inline std::string AsText(const std::uint8_t* data, std::size_t size) {
  return size == 0 ? std::string() : std::string(reinterpret_cast<const char*>(data), size);
}

// Sends the library's diagnostic lines nowhere, once per process, so that
// fuzzing does not flood standard output. Returns true.
inline bool SilenceLog() {
  static const bool silenced = [] {
    Com::Velmora::TAVO::Wevlin::Infrastructure::Base::SetLogSink([](const std::string&) {});
    return true;
  }();
  return silenced;
}

}  // namespace wevlin_fuzz

#endif  // WEVLIN_FUZZ_FUZZCHECK_H_
