#include "wevlin/infrastructure/interop/internal/JsonNestIndex.h"

#include <cstdint>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

using Base::internal::WriteLogLine;

namespace {

// A stack of the kinds (array or object) of the nested structures still open,
// one bit each, without heap use for the first 256 levels.
class OpenStack {
 public:
  void Push(bool object) {
    const std::size_t word = size_ / 64;
    if (word >= kInlineWords && word - kInlineWords == spill_.size()) spill_.push_back(0);
    const std::uint64_t bit = std::uint64_t{1} << (size_ % 64);
    std::uint64_t& bits = Word(word);
    bits = object ? (bits | bit) : (bits & ~bit);
    ++size_;
  }
  void Pop() { --size_; }
  bool TopIsObject() {
    const std::size_t top = size_ - 1;
    return ((Word(top / 64) >> (top % 64)) & 1) != 0;
  }
  std::size_t Size() const { return size_; }

 private:
  static constexpr std::size_t kInlineWords = 4;
  std::uint64_t& Word(std::size_t index) {
    return index < kInlineWords ? inline_[index] : spill_[index - kInlineWords];
  }
  std::uint64_t inline_[kInlineWords] = {};
  std::vector<std::uint64_t> spill_;
  std::size_t size_ = 0;
};

}  // namespace

bool SkipNested(const char*& p, const char* end, NestIndex* index, std::size_t depth,
                std::size_t& first) {
  OpenStack stack;
  first = kNone;
  if (index != nullptr) index->open.clear();
  const char* q = p;
  for (;;) {
    // `q` is on an opening character.
    const bool object = *q == '{';
    stack.Push(object);
    if (index != nullptr && depth + stack.Size() - 1 <= kMaxJsonDepth + 1) {
      const std::size_t record = index->nests.size();
      index->nests.push_back(Nest{q, nullptr, 0});
      index->open.push_back(record);
      if (first == kNone) first = record;
    }
    ++q;
    char closer = object ? '}' : ']';
    for (;;) {
      if (q == end) {
        WriteLogLine(closer == '}' ? "EndOfObject: final character incorrect"
                                   : "EndOfArray: final character incorrect");
        p = end;
        return false;
      }
      const char c = *q;
      if (c == closer) {
        if (index != nullptr && depth + stack.Size() - 1 <= kMaxJsonDepth + 1) {
          Nest& nest = index->nests[index->open.back()];
          nest.after = q + 1;
          nest.next = index->nests.size();
          index->open.pop_back();
        }
        stack.Pop();
        ++q;
        if (stack.Size() == 0) {
          p = q;
          return true;
        }
        closer = stack.TopIsObject() ? '}' : ']';
      } else if (c == '"') {
        if (!SkipQuoted(q, end)) {
          p = end;
          return false;
        }
      } else if (c == '[' || c == '{') {
        break;
      } else {
        ++q;
      }
    }
  }
}

bool EndOfArray(const char*& cursor, const char* end) {
  if (!(cursor < end) || *cursor != '[') {
    WriteLogLine("EndOfArray: initial character incorrect");
    return false;
  }
  std::size_t unused = kNone;
  return SkipNested(cursor, end, nullptr, 0, unused);
}

bool EndOfObject(const char*& cursor, const char* end) {
  if (!(cursor < end) || *cursor != '{') {
    WriteLogLine("EndOfObject: initial character incorrect");
    return false;
  }
  std::size_t unused = kNone;
  return SkipNested(cursor, end, nullptr, 0, unused);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
