#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONGENERALREADER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONGENERALREADER_H_

// The general reader of the JSON text format: it cuts every array and object
// into the raw texts of its elements and reads each again, which is what
// gives the format its leniencies. Internal; one reader per reading.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/interop/internal/BodilessNulls.h"
#include "wevlin/infrastructure/interop/internal/JsonCut.h"
#include "wevlin/infrastructure/interop/internal/JsonNestIndex.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

struct Slice {
  const char* begin;
  const char* end;
  std::size_t nest;  // record of the first structure nested in the slice, or kNone
};

struct Property {
  std::string name;
  Slice value{};
  std::size_t order = 0;  // position in the text, so that the last duplicate wins
};

// One JsonGeneralReader serves one top-level reading: it keeps the records
// of nested structures and, as stacks shared by all levels, the element texts
// and properties cut but not yet read.
class JsonGeneralReader {
 public:
  // Reads `raw` into `out`, which is Null. `depth` is the depth the value has
  // if it is an array or object.
  bool ReadValue(const Slice& raw, JsonValue& out, std::size_t depth) {
    const std::string_view text = TrimJsonTextView(
        std::string_view(raw.begin, static_cast<std::size_t>(raw.end - raw.begin)));
    switch (text.empty() ? '\0' : text.front()) {
      case '"': {
        std::string value;
        ReadJsonStringView(text, value);
        out.SetValue(std::move(value));
        return true;
      }
      case '[':
        return ReadArray(text, raw.nest, depth, out);
      case 't':
      case 'f': {
        bool value = false;
        ReadJsonBoolView(text, value);
        out.SetValue(value);
        return true;
      }
      case 'n':
        return text == "null";
      case '{': {
        JsonObject object;
        if (!ReadObject(text, raw.nest, depth, object)) return false;
        out.SetValue(std::move(object));
        return true;
      }
      default:
        if (text.find('.') != std::string_view::npos) {
          double value = 0.0;
          ReadJsonDoubleView(text, value);
          out.SetValue(value);
        } else {
          int value = 0;
          ReadJsonIntView(text, value);
          out.SetValue(value);
        }
        return true;
    }
  }

  // Reads the object `text` (trimmed, starting with "{") into `out`, which is
  // replaced only on success.
  bool ReadObject(std::string_view text, std::size_t nest, std::size_t depth, JsonObject& out) {
    if (depth > kMaxJsonDepth) return false;
    NestCursor cursor = CursorFor(text.data(), nest, depth);
    const std::size_t base = properties_.size();
    std::size_t order = 0;
    const bool cut =
        CutObject(text, cursor,
                  [this, &order](std::string&& name, const char* b, const char* e, std::size_t n) {
                    properties_.push_back(Property{std::move(name), Slice{b, e, n}, order++});
                  });
    if (!cut) return false;
    // Values are read in ascending name order; of equal names the last wins.
    std::sort(properties_.begin() + static_cast<std::ptrdiff_t>(base), properties_.end(),
              [](const Property& a, const Property& b) {
                const int compared = a.name.compare(b.name);
                return compared < 0 || (compared == 0 && a.order < b.order);
              });
    JsonObject result;
    const std::size_t top = properties_.size();
    for (std::size_t i = base; i < top; ++i) {
      if (i + 1 < top && properties_[i + 1].name == properties_[i].name) continue;
      JsonValue value = nulls_.Take();
      const Slice slice = properties_[i].value;
      if (!ReadValue(slice, value, depth + 1)) return false;
      result.SetProperty(std::move(properties_[i].name), std::move(value));
    }
    properties_.resize(base);
    out = std::move(result);
    return true;
  }

 private:
  bool ReadArray(std::string_view text, std::size_t nest, std::size_t depth, JsonValue& out) {
    if (depth > kMaxJsonDepth) return false;
    NestCursor cursor = CursorFor(text.data(), nest, depth);
    const std::size_t base = elements_.size();
    const bool cut = CutArray(text, cursor, [this](const char* b, const char* e, std::size_t n) {
      elements_.push_back(Slice{b, e, n});
    });
    if (!cut) return false;
    std::vector<JsonValue> values;
    values.reserve(elements_.size() - base);
    for (std::size_t i = base; i < elements_.size(); ++i) {
      values.push_back(nulls_.Take());
      const Slice slice = elements_[i];
      if (!ReadValue(slice, values.back(), depth + 1)) return false;
    }
    elements_.resize(base);
    out.SetValue(std::move(values));
    return true;
  }

  // Returns the cursor for cutting the structure that opens at `open`: by the
  // records when `nest` is its record, else scanning and recording.
  NestCursor CursorFor(const char* open, std::size_t nest, std::size_t depth) {
    if (nest != kNone && nest < index_.nests.size() && index_.nests[nest].open == open &&
        index_.nests[nest].after != nullptr) {
      return NestCursor{&index_, nest + 1, depth + 1};
    }
    return NestCursor{&index_, kNone, depth + 1};
  }

  NestIndex index_;
  std::vector<Slice> elements_;
  std::vector<Property> properties_;
  BodilessNulls nulls_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONGENERALREADER_H_
