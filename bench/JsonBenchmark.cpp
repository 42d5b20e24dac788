// Reading and writing JSON documents with wevlin's JsonValue beside
// nlohmann-json and RapidJSON, each library building and writing its own
// document tree from the same normalized bytes.
//
// Names: Json/Read/<document>/<library> and Json/Write/<document>/<library>;
// Json/Heap/<document>/<library> reads the document once while counting the
// heap (support/HeapCounter) and reports the highest number of bytes held
// during the reading, the finished tree included (counter peak_heap_bytes).
// The bytes counted per iteration are those of the normalized input document
// in both directions, so the rates of the three libraries compare as the
// inverse of their times (the libraries write different layouts: wevlin puts
// a blank after each comma and colon, the others write compactly).

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <nlohmann/json.hpp>

#include "support/BenchDocuments.h"
#include "support/HeapCounter.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;
using wevlin_bench::BenchDocuments;
using wevlin_bench::HeapCounter;

// One document: its name in the benchmark names and how to get its text
// (empty with `error` set when it is not available).
struct Document {
  std::string name;
  std::function<const std::string&(std::string& error)> text;
};

std::vector<Document> Documents() {
  std::vector<Document> documents;
  for (const char* corpus : {"twitter", "citm_catalog", "canada", "github_events"}) {
    const std::string name = corpus;
    documents.push_back({name, [name](std::string& error) -> const std::string& {
                           return BenchDocuments::Corpus(name, error);
                         }});
  }
  const auto generated = [&documents](const std::string& name,
                                      std::function<const std::string&()> make) {
    documents.push_back({name, [make](std::string&) -> const std::string& { return make(); }});
  };
  generated("flat_10k", []() -> const std::string& { return BenchDocuments::Flat(10 * 1000); });
  generated("flat_1m", []() -> const std::string& { return BenchDocuments::Flat(1000 * 1000); });
  generated("objects_10k",
            []() -> const std::string& { return BenchDocuments::SmallObjects(10 * 1000); });
  generated("objects_1m",
            []() -> const std::string& { return BenchDocuments::SmallObjects(1000 * 1000); });
  generated("escaped_10k",
            []() -> const std::string& { return BenchDocuments::EscapedStrings(10 * 1000); });
  generated("escaped_1m",
            []() -> const std::string& { return BenchDocuments::EscapedStrings(1000 * 1000); });
  generated("coordinates_10k",
            []() -> const std::string& { return BenchDocuments::Coordinates(10 * 1000); });
  generated("coordinates_1m",
            []() -> const std::string& { return BenchDocuments::Coordinates(1000 * 1000); });
  generated("nested_100", []() -> const std::string& { return BenchDocuments::Nested(100); });
  generated("nested_1000", []() -> const std::string& { return BenchDocuments::Nested(1000); });
  return documents;
}

// Fetches the document for `state`; skips the benchmark when it is missing.
const std::string* Fetch(benchmark::State& state, const Document& document) {
  std::string error;
  const std::string& text = document.text(error);
  if (!error.empty()) {
    state.SkipWithError(error.c_str());
    return nullptr;
  }
  return &text;
}

void Account(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(text.size()));
  state.counters["doc_bytes"] = static_cast<double>(text.size());
}

void ReadWevlin(benchmark::State& state, const Document& document) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  for (auto _ : state) {
    JsonValue value;
    const bool ok = value.FromJsonString(*text);
    if (!ok) {
      state.SkipWithError("wevlin did not read the document");
      break;
    }
    benchmark::DoNotOptimize(value);
  }
  Account(state, *text);
}

void ReadNlohmann(benchmark::State& state, const Document& document) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  for (auto _ : state) {
    nlohmann::json value = nlohmann::json::parse(*text);
    benchmark::DoNotOptimize(value);
  }
  Account(state, *text);
}

void ReadRapidJson(benchmark::State& state, const Document& document) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  for (auto _ : state) {
    rapidjson::Document value;
    value.Parse(text->data(), text->size());
    if (value.HasParseError()) {
      state.SkipWithError("RapidJSON did not read the document");
      break;
    }
    benchmark::DoNotOptimize(value);
  }
  Account(state, *text);
}

void WriteWevlin(benchmark::State& state, const Document& document) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  JsonValue value;
  if (!value.FromJsonString(*text)) {
    state.SkipWithError("wevlin did not read the document");
    return;
  }
  for (auto _ : state) {
    std::string written = value.ToJsonString();
    benchmark::DoNotOptimize(written);
  }
  Account(state, *text);
}

void WriteNlohmann(benchmark::State& state, const Document& document) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  const nlohmann::json value = nlohmann::json::parse(*text);
  for (auto _ : state) {
    std::string written = value.dump();
    benchmark::DoNotOptimize(written);
  }
  Account(state, *text);
}

void WriteRapidJson(benchmark::State& state, const Document& document) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  rapidjson::Document value;
  value.Parse(text->data(), text->size());
  for (auto _ : state) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    benchmark::DoNotOptimize(buffer.GetString());
  }
  Account(state, *text);
}

// Reads the document with `read` once per iteration while counting the heap,
// and reports the highest count of the first reading; the tree that `read`
// builds is destroyed after the count stops.
template <typename Read>
void PeakHeap(benchmark::State& state, const Document& document, Read&& read) {
  const std::string* text = Fetch(state, document);
  if (text == nullptr) return;
  std::size_t peak = 0;
  for (auto _ : state) {
    HeapCounter::Start();
    auto tree = read(*text);
    const std::size_t highest = HeapCounter::Stop();
    if (peak == 0) peak = highest;
    benchmark::DoNotOptimize(tree);
  }
  state.counters["peak_heap_bytes"] = static_cast<double>(peak);
  state.counters["doc_bytes"] = static_cast<double>(text->size());
}

void HeapWevlin(benchmark::State& state, const Document& document) {
  PeakHeap(state, document, [](const std::string& text) {
    auto value = std::make_unique<JsonValue>();
    value->FromJsonString(text);
    return value;
  });
}

void HeapNlohmann(benchmark::State& state, const Document& document) {
  PeakHeap(state, document, [](const std::string& text) {
    return std::make_unique<nlohmann::json>(nlohmann::json::parse(text));
  });
}

void HeapRapidJson(benchmark::State& state, const Document& document) {
  PeakHeap(state, document, [](const std::string& text) {
    auto value = std::make_unique<rapidjson::Document>();
    value->Parse(text.data(), text.size());
    return value;
  });
}

int RegisterAll() {
  using Runner = void (*)(benchmark::State&, const Document&);
  const struct {
    const char* library;
    Runner read;
    Runner write;
    Runner heap;
  } libraries[] = {
      {"wevlin", ReadWevlin, WriteWevlin, HeapWevlin},
      {"nlohmann", ReadNlohmann, WriteNlohmann, HeapNlohmann},
      {"rapidjson", ReadRapidJson, WriteRapidJson, HeapRapidJson},
  };
  for (const Document& document : Documents()) {
    for (const auto& library : libraries) {
      benchmark::RegisterBenchmark(
          ("Json/Read/" + document.name + "/" + library.library).c_str(),
          [run = library.read, document](benchmark::State& state) { run(state, document); });
    }
    for (const auto& library : libraries) {
      benchmark::RegisterBenchmark(
          ("Json/Write/" + document.name + "/" + library.library).c_str(),
          [run = library.write, document](benchmark::State& state) { run(state, document); });
    }
    for (const auto& library : libraries) {
      // A handful of readings: the count is the same each time.
      benchmark::RegisterBenchmark(
          ("Json/Heap/" + document.name + "/" + library.library).c_str(),
          [run = library.heap, document](benchmark::State& state) { run(state, document); })
          ->Iterations(3);
    }
  }
  return 0;
}

const int kRegistered = RegisterAll();

}  // namespace
