#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNESTINDEX_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNESTINDEX_H_

// Skipping quoted strings and nested arrays and objects, and the index of
// where each nested structure of a text starts and ends, which lets the
// general reader skip a structure it has skipped once without scanning it
// again. Internal; any thread, one index per reading.
#include <cstddef>
#include <cstring>
#include <vector>

#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// Moves `p` from an opening double quote to just past the matching unescaped
// double quote (a backslash escapes the byte after it). Returns false, leaving
// `p` alone, if the text ends first.
inline bool SkipQuoted(const char*& p, const char* end) {
  const char* const contentStart = p + 1;
  const char* q = contentStart;
  while (q < end) {
    const void* hit = std::memchr(q, '"', static_cast<std::size_t>(end - q));
    if (hit == nullptr) return false;
    const char* quote = static_cast<const char*>(hit);
    // The quote is escaped when an odd run of backslashes stands before it.
    const char* run = quote;
    while (run > contentStart && run[-1] == '\\') --run;
    if (((quote - run) & 1) == 0) {
      p = quote + 1;
      return true;
    }
    q = quote + 1;
  }
  return false;
}

// Where one nested array or object of a text starts and ends, recorded when a
// reading first skips over it so that the readings of the levels inside it
// skip their own nested structures without scanning them again.
struct Nest {
  const char* open;   // the "[" or "{"
  const char* after;  // just past the closer; null while (or if never) closed
  std::size_t next;   // index of the first record after this one's subtree
};

// The records of one reading, in the order of their opening characters, so
// that the records inside a structure directly follow its own record.
struct NestIndex {
  std::vector<Nest> nests;
  std::vector<std::size_t> open;  // scratch: records still open during a skip
};

// Skips the array or object at `p` (an opening "[" or "{" before `end`),
// with the results and lines of EndOfArray and EndOfObject. With `index`,
// records every structure met whose depth is at most kMaxJsonDepth + 1, the
// one at `p` being at `depth`, and sets `first` to the record of the one at
// `p`.
bool SkipNested(const char*& p, const char* end, NestIndex* index, std::size_t depth,
                std::size_t& first);

// How the cutting of one array or object skips its nested structures: by the
// records of an earlier skip (while they match), or by scanning.
struct NestCursor {
  NestIndex* index;   // null: scan without recording
  std::size_t next;   // the record expected for the next nested structure, or kNone
  std::size_t depth;  // depth of the structures nested directly in this one
};

inline NestCursor ScanningCursor() { return NestCursor{nullptr, kNone, 0}; }

// Skips the nested array or object at `p`, setting `nest` to its record.
inline bool SkipChild(const char*& p, const char* end, NestCursor& cursor, std::size_t& nest) {
  if (cursor.next != kNone) {
    const std::vector<Nest>& nests = cursor.index->nests;
    if (cursor.next < nests.size()) {
      const Nest& recorded = nests[cursor.next];
      if (recorded.open == p && recorded.after != nullptr && recorded.after <= end) {
        nest = cursor.next;
        p = recorded.after;
        cursor.next = recorded.next;
        return true;
      }
    }
    // Not as recorded: scan the rest of this level.
    cursor.next = kNone;
  }
  return SkipNested(p, end, cursor.index, cursor.depth, nest);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_JSONNESTINDEX_H_
