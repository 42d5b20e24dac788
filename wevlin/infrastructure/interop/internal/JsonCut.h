#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONCUT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONCUT_H_

// Cutting arrays and objects into the raw texts of their elements, the
// first step of the general reader and of ParseArray and ParseObject.
// Internal; any thread.
#include <cstddef>
#include <string>
#include <string_view>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/internal/JsonNestIndex.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"
#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// `text` is trimmed and
// starts with the opening character. The sink receives each element as
// (begin, end, record of the first structure nested in it or kNone); for
// objects, preceded by the name.

template <typename Sink>
bool CutArray(std::string_view text, NestCursor& cursor, Sink&& sink) {
  const char* p = text.data() + 1;
  const char* const end = text.data() + text.size();
  if (p == end) Fail(kNotAnArray);
  const char* start = nullptr;
  std::size_t startNest = kNone;
  while (p < end) {
    const char c = *p;
    switch (c) {
      case ',':
        if (start != nullptr) {
          sink(start, p, startNest);
          start = nullptr;
        }
        ++p;
        break;
      case ']':
        if (start != nullptr) sink(start, p, startNest);
        return true;
      case '"':
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        if (!SkipQuoted(p, end)) return false;
        break;
      case '[':
      case '{': {
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        std::size_t nest = kNone;
        if (!SkipChild(p, end, cursor, nest)) return false;
        if (startNest == kNone) startNest = nest;
        break;
      }
      default:
        if (start == nullptr && !IsSpace(c)) {
          start = p;
          startNest = kNone;
        }
        ++p;
        break;
    }
  }
  Fail(kNotAnArray);
}

template <typename Sink>
bool CutObject(std::string_view text, NestCursor& cursor, Sink&& sink) {
  const char* p = text.data() + 1;
  const char* const end = text.data() + text.size();
  const char* start = nullptr;
  std::size_t startNest = kNone;
  std::string name;  // the pending name; empty counts as none
  while (p < end) {
    const char c = *p;
    switch (c) {
      case ':': {
        if (start == nullptr) return false;
        const std::string_view token(start, static_cast<std::size_t>(p - start));
        if (!ReadJsonStringView(token, name)) {
          Base::internal::WriteLogLine("ParseObject: rejecting property name " +
                                       std::string(token));
          return false;
        }
        start = nullptr;
        ++p;
        break;
      }
      case ',':
        if (start == nullptr || name.empty()) return false;
        sink(std::move(name), start, p, startNest);
        name.clear();
        start = nullptr;
        ++p;
        break;
      case '}':
        if (name.empty()) return start == nullptr;
        if (start == nullptr) return false;
        sink(std::move(name), start, p, startNest);
        return true;
      case '[':
      case '{': {
        if (name.empty()) return false;
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        std::size_t nest = kNone;
        if (!SkipChild(p, end, cursor, nest)) return false;
        if (startNest == kNone) startNest = nest;
        break;
      }
      case '"':
        if (start == nullptr) {
          start = p;
          startNest = kNone;
        }
        if (!SkipQuoted(p, end)) return false;
        break;
      default:
        if (start == nullptr && !IsSpace(c)) {
          start = p;
          startNest = kNone;
        }
        ++p;
        break;
    }
  }
  Fail(kNotAnObject);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONCUT_H_
