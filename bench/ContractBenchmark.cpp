// Writing and reading whole messages through the data contracts (RefreshMsg
// with 10,000 object references, SessionMsg with 1,000 preferences) beside
// the same records as plain structs with nlohmann-json's typed
// to_json/from_json.
//
// Names: Contract/<Write|Read>/<message>/<library>. Both libraries read the
// text that wevlin writes; bytes per iteration are that text's size in both
// directions, items per iteration the number of records.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"

namespace {

namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
using services::Core::_2014_02::InteropObjRef;
using services::Core::_2014_07::StringArrayProperty;
using services::Refresh::_2014_07::RefreshMsg;
using services::Session::_2014_07::SessionMsg;

constexpr int kReferences = 10000;  // spread over the five reference lists
constexpr int kPreferences = 1000;

// The records as nlohmann-json sees them.
struct PlainObjRef {
  std::string DBId;
  std::string ObjId;
  std::string ObjType;
};
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PlainObjRef, DBId, ObjId, ObjType)

struct PlainProperty {
  std::string Name;
  std::vector<std::string> Values;
};
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PlainProperty, Name, Values)

struct PlainObjWithProperties {
  PlainObjRef ObjRef;
  std::vector<PlainProperty> Properties;
};
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PlainObjWithProperties, ObjRef, Properties)

struct PlainRefresh {
  std::string Version;
  std::vector<PlainObjRef> CreatedObjects;
  std::vector<PlainObjRef> UpdatedObjects;
  std::vector<PlainObjRef> DeletedObjects;
  std::vector<PlainObjRef> PlainObjects;
  std::vector<PlainObjRef> ChildChangeObjects;
  std::vector<PlainObjWithProperties> DataObjects;
};
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PlainRefresh, Version, CreatedObjects, UpdatedObjects,
                                   DeletedObjects, PlainObjects, ChildChangeObjects, DataObjects)

struct PlainSession {
  std::string Version;
  std::vector<PlainObjRef> SessionObjects;
  std::vector<PlainProperty> Preferences;
};
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PlainSession, Version, SessionObjects, Preferences)

InteropObjRef Reference(int i) {
  return InteropObjRef("db" + std::to_string(i % 4), "0x" + std::to_string(7340032 + i),
                       i % 2 == 0 ? "Document" : "Folder");
}

StringArrayProperty Preference(int i) {
  return StringArrayProperty("preference." + std::to_string(i),
                             {"value-" + std::to_string(i), "on", "blue/green"});
}

const RefreshMsg& Refresh() {
  static const RefreshMsg message = [] {
    RefreshMsg m;
    std::vector<InteropObjRef>* lists[] = {&m.CreatedObjects, &m.UpdatedObjects, &m.DeletedObjects,
                                           &m.PlainObjects, &m.ChildChangeObjects};
    for (int i = 0; i < kReferences; ++i) lists[i % 5]->push_back(Reference(i));
    return m;
  }();
  return message;
}

const SessionMsg& Session() {
  static const SessionMsg message = [] {
    SessionMsg m;
    for (int i = 0; i < 10; ++i) m.SessionObjects.push_back(Reference(i));
    for (int i = 0; i < kPreferences; ++i) m.Preferences.push_back(Preference(i));
    return m;
  }();
  return message;
}

const std::string& RefreshText() {
  static const std::string text = Refresh().ToJsonString();
  return text;
}

const std::string& SessionText() {
  static const std::string text = Session().ToJsonString();
  return text;
}

void Account(benchmark::State& state, const std::string& text, int records) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(text.size()));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * records);
}

void WriteRefreshWevlin(benchmark::State& state) {
  const RefreshMsg& message = Refresh();
  for (auto _ : state) {
    std::string text = message.ToJsonString();
    benchmark::DoNotOptimize(text);
  }
  Account(state, RefreshText(), kReferences);
}

void ReadRefreshWevlin(benchmark::State& state) {
  const std::string& text = RefreshText();
  for (auto _ : state) {
    RefreshMsg message;
    if (!message.FromJsonString(text) || message.CreatedObjects.size() != kReferences / 5) {
      state.SkipWithError("RefreshMsg did not read back");
      break;
    }
    benchmark::DoNotOptimize(message);
  }
  Account(state, text, kReferences);
}

void WriteRefreshNlohmann(benchmark::State& state) {
  const PlainRefresh record = nlohmann::json::parse(RefreshText()).get<PlainRefresh>();
  for (auto _ : state) {
    std::string text = nlohmann::json(record).dump();
    benchmark::DoNotOptimize(text);
  }
  Account(state, RefreshText(), kReferences);
}

void ReadRefreshNlohmann(benchmark::State& state) {
  const std::string& text = RefreshText();
  for (auto _ : state) {
    PlainRefresh record = nlohmann::json::parse(text).get<PlainRefresh>();
    benchmark::DoNotOptimize(record);
  }
  Account(state, text, kReferences);
}

void WriteSessionWevlin(benchmark::State& state) {
  const SessionMsg& message = Session();
  for (auto _ : state) {
    std::string text = message.ToJsonString();
    benchmark::DoNotOptimize(text);
  }
  Account(state, SessionText(), kPreferences);
}

void ReadSessionWevlin(benchmark::State& state) {
  const std::string& text = SessionText();
  for (auto _ : state) {
    SessionMsg message;
    if (!message.FromJsonString(text) || message.Preferences.size() != kPreferences) {
      state.SkipWithError("SessionMsg did not read back");
      break;
    }
    benchmark::DoNotOptimize(message);
  }
  Account(state, text, kPreferences);
}

void WriteSessionNlohmann(benchmark::State& state) {
  const PlainSession record = nlohmann::json::parse(SessionText()).get<PlainSession>();
  for (auto _ : state) {
    std::string text = nlohmann::json(record).dump();
    benchmark::DoNotOptimize(text);
  }
  Account(state, SessionText(), kPreferences);
}

void ReadSessionNlohmann(benchmark::State& state) {
  const std::string& text = SessionText();
  for (auto _ : state) {
    PlainSession record = nlohmann::json::parse(text).get<PlainSession>();
    benchmark::DoNotOptimize(record);
  }
  Account(state, text, kPreferences);
}

BENCHMARK(WriteRefreshWevlin)->Name("Contract/Write/refresh_10000/wevlin");
BENCHMARK(WriteRefreshNlohmann)->Name("Contract/Write/refresh_10000/nlohmann");
BENCHMARK(ReadRefreshWevlin)->Name("Contract/Read/refresh_10000/wevlin");
BENCHMARK(ReadRefreshNlohmann)->Name("Contract/Read/refresh_10000/nlohmann");
BENCHMARK(WriteSessionWevlin)->Name("Contract/Write/session_1000/wevlin");
BENCHMARK(WriteSessionNlohmann)->Name("Contract/Write/session_1000/nlohmann");
BENCHMARK(ReadSessionWevlin)->Name("Contract/Read/session_1000/wevlin");
BENCHMARK(ReadSessionNlohmann)->Name("Contract/Read/session_1000/nlohmann");

}  // namespace
