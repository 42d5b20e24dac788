#include "support/BenchDocuments.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <utility>

#include "support/NumberNormalizer.h"

#ifndef WEVLIN_BENCH_DATA_DIR
#define WEVLIN_BENCH_DATA_DIR "../shared/bench-data"
#endif

namespace wevlin_bench {
namespace {

std::map<std::string, std::string>& Cache() {
  static std::map<std::string, std::string> cache;
  return cache;
}

template <typename Build>
const std::string& Cached(const std::string& key, Build&& build) {
  auto found = Cache().find(key);
  if (found == Cache().end()) found = Cache().emplace(key, build()).first;
  return found->second;
}

// Appends properties or elements made by `item(i)` separated by ", " until
// the text holds about `bytes` bytes, then `close`.
template <typename Item>
std::string Repeat(std::size_t bytes, const char* open, const char* close, Item&& item) {
  std::string text = open;
  for (int i = 0; i == 0 || text.size() < bytes; ++i) {
    if (i != 0) text += ", ";
    text += item(i);
  }
  text += close;
  return text;
}

}  // namespace

std::string BenchDocuments::DataDirectory() {
  const char* variable = std::getenv("WEVLIN_BENCH_DATA");
  if (variable != nullptr && *variable != '\0') return variable;
  return WEVLIN_BENCH_DATA_DIR;
}

const std::string& BenchDocuments::Corpus(const std::string& name, std::string& error) {
  static const std::string kEmpty;
  const std::string key = "corpus:" + name;
  auto found = Cache().find(key);
  if (found != Cache().end()) return found->second;
  const std::string path = DataDirectory() + "/" + name + ".json";
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    error = "missing " + path + " (set WEVLIN_BENCH_DATA to the folder of the JSON corpus)";
    return kEmpty;
  }
  std::ostringstream content;
  content << file.rdbuf();
  return Cache().emplace(key, NumberNormalizer::Normalize(content.str())).first->second;
}

const std::string& BenchDocuments::Flat(std::size_t bytes) {
  return Cached("flat:" + std::to_string(bytes), [bytes] {
    return Repeat(bytes, "{", "}", [](int i) {
      const std::string key = "\"key" + std::to_string(100000 + i) + "\": ";
      switch (i % 5) {
        case 0:
          return key + std::to_string(i * 37);
        case 1:
          return key + std::to_string(i) + ".125";
        case 2:
          return key + "\"value " + std::to_string(i) + "\"";
        case 3:
          return key + (i % 2 == 0 ? "true" : "false");
        default:
          return key + "null";
      }
    });
  });
}

const std::string& BenchDocuments::SmallObjects(std::size_t bytes) {
  return Cached("objects:" + std::to_string(bytes), [bytes] {
    return Repeat(bytes, "[", "]", [](int i) {
      return "{\"active\": " + std::string(i % 3 == 0 ? "false" : "true") +
             ", \"id\": " + std::to_string(i) + ", \"name\": \"item-" + std::to_string(i) +
             "\", \"score\": " + std::to_string(i % 100) + ".25, \"tags\": [\"a\", \"b\"]}";
    });
  });
}

const std::string& BenchDocuments::EscapedStrings(std::size_t bytes) {
  return Cached("escaped:" + std::to_string(bytes), [bytes] {
    static const char* const kEscapes[] = {"\\\"", "\\\\", "\\/", "\\n", "\\t", "\\r"};
    return Repeat(bytes, "[", "]", [](int i) {
      std::string text = "\"";
      for (int j = 0; text.size() < 4096; ++j) {
        if (j % 11 == 10) {
          text += kEscapes[(i + j) % 6];
        } else {
          text += static_cast<char>('a' + (i + j) % 26);
        }
      }
      return text + "\"";
    });
  });
}

const std::string& BenchDocuments::Coordinates(std::size_t bytes) {
  return Cached("coordinates:" + std::to_string(bytes), [bytes] {
    // A fixed linear congruential sequence, so that every run reads the same
    // numbers.
    std::uint64_t state = 0x2545F4914F6CDD1DULL;
    const auto next = [&state](double low, double high) {
      state = state * 6364136223846793005ULL + 1442695040888963407ULL;
      const double unit = static_cast<double>(state >> 11) / 9007199254740992.0;
      return low + (high - low) * unit;
    };
    // Seventeen significant digits in plain decimal notation: every value
    // lies between 1 and 180 in magnitude, so "%.17g" never chooses an
    // exponent and always writes a point.
    const auto number = [](double value) {
      char digits[40];
      const auto result =
          std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 17);
      return std::string(digits, result.ptr);
    };
    return Repeat(bytes, "[", "]", [&](int /*polygon*/) {
      double longitude = next(-179.0, -1.0);
      double latitude = next(1.0, 89.0);
      std::string polygon = "[[";
      for (int point = 0; point < 32; ++point) {
        if (point != 0) polygon += ", ";
        longitude += next(-0.01, 0.01);
        latitude += next(-0.01, 0.01);
        polygon += "[" + number(longitude) + ", " + number(latitude) + "]";
      }
      return polygon + "]]";
    });
  });
}

const std::string& BenchDocuments::Nested(int depth) {
  return Cached("nested:" + std::to_string(depth), [depth] {
    std::string text;
    for (int level = 1; level <= depth; ++level) {
      text += "{\"level\": " + std::to_string(level) + ", \"name\": \"node " +
              std::to_string(level) + "\", \"weight\": 0.5";
      if (level < depth) text += ", \"child\": ";
    }
    for (int level = 1; level <= depth; ++level) text += "}";
    return text;
  });
}

}  // namespace wevlin_bench
