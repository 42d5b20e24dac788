#ifndef WEVLIN_BENCH_SUPPORT_BENCHDOCUMENTS_H_
#define WEVLIN_BENCH_SUPPORT_BENCHDOCUMENTS_H_

#include <string>

namespace wevlin_bench {

// The JSON documents the benchmarks read: the public corpus documents
// (twitter, citm_catalog, canada, github_events), which live outside the
// repository, and generated ones.
//
// The corpus folder is the environment variable WEVLIN_BENCH_DATA when set,
// else the folder the build was configured with (WEVLIN_BENCH_DATA_DIR).
// Every document is returned normalized (NumberNormalizer), so that all
// libraries read the same bytes with the same meaning.
//
// The documents are built once and cached; call from the benchmark thread.
class BenchDocuments {
 public:
  BenchDocuments() = delete;

  // Returns the folder searched for corpus documents.
  static std::string DataDirectory();

  // Returns the normalized text of corpus document `name` ("twitter" reads
  // twitter.json), or sets `error` to a message naming the missing file and
  // returns the empty text.
  static const std::string& Corpus(const std::string& name, std::string& error);

  // Generated documents, each of about `bytes` bytes (at least one element):
  //
  // Flat: one object of many scalar properties (integers, doubles, short
  // strings, booleans, null), no nesting.
  static const std::string& Flat(std::size_t bytes);
  // SmallObjects: an array of small records {"active": true, "id": 7,
  // "name": "item-7", "score": 3.25, "tags": ["a", "b"]}.
  static const std::string& SmallObjects(std::size_t bytes);
  // EscapedStrings: an array of long strings (4 KiB each) in which about
  // one byte in twelve is written as an escape (\" \\ \/ \n \t \r).
  static const std::string& EscapedStrings(std::size_t bytes);
  // Coordinates: an array of polygons, each an array of rings of [longitude,
  // latitude] pairs whose doubles carry long fractions (17 significant
  // digits, written out as plain decimals), as map data does.
  static const std::string& Coordinates(std::size_t bytes);

  // Nested: objects nested `depth` deep (the outermost at depth 1), each
  // level with a few scalar properties beside its child.
  static const std::string& Nested(int depth);
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_BENCHDOCUMENTS_H_
