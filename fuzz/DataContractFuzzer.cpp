// Reads any text into a data contract that registers a field of every kind:
// the scalars, a JsonValue, a nested contract, the five vectors and a custom
// collection of records. Whatever the reading gives (true, false or an
// exception, with the fields read so far kept), the contract's own text must
// read into a fresh contract without failure and write the same text again,
// unless the JsonValue field holds one of the format's deliberate asymmetries
// (see JsonRewriteCheck.h).

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "JsonRewriteCheck.h"
#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/services/Pair.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataContract;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;

// A nested contract with a few fields of its own.
class Inner final : public DataContract {
 public:
  Inner() {
    RegisterField("Count", count);
    RegisterField("Label", label);
    RegisterField("Tags", tags);
  }
  int count = 3;
  std::string label = "inner";
  std::vector<std::string> tags;
};

class Everything final : public DataContract {
 public:
  Everything() {
    RegisterField("Int", integer);
    RegisterField("Float", single);
    RegisterField("Double", real);
    RegisterField("Bool", flag);
    RegisterField("String", text);
    RegisterField("Value", value);
    RegisterField("Inner", inner);
    RegisterField("Ints", integers);
    RegisterField("Floats", singles);
    RegisterField("Doubles", reals);
    RegisterField("Bools", flags);
    RegisterField("Strings", texts);
    RegisterCollection("Records", &records, &AddRecord, &GetRecords);
  }

  int integer = -7;
  float single = 0.5f;
  double real = 0.25;
  bool flag = true;
  std::string text = "start";
  JsonValue value;
  Inner inner;
  std::vector<int> integers;
  std::vector<float> singles;
  std::vector<double> reals;
  std::vector<bool> flags;
  std::vector<std::string> texts;
  std::vector<Pair> records;

 private:
  // Reads one record; a record that fails to read is skipped.
  static bool AddRecord(void* context, const std::string& elementText) {
    Pair pair;
    bool read = false;
    try {
      read = pair.FromJsonString(elementText);
    } catch (const std::runtime_error&) {
      read = false;
    }
    if (read) static_cast<std::vector<Pair>*>(context)->push_back(pair);
    return read;
  }

  static void GetRecords(void* context, std::vector<std::string>& elementTexts) {
    for (const Pair& pair : *static_cast<std::vector<Pair>*>(context)) {
      elementTexts.push_back(pair.ToJsonString());
    }
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::string input = wevlin_fuzz::AsText(data, size);
  Everything contract;
  try {
    contract.FromJsonString(input);
  } catch (const std::runtime_error&) {
    // A mistyped member or a text that is no object: what was read stays.
  }
  const std::string first = contract.ToJsonString();
  const bool exempt = wevlin_fuzz::HasDeliberateAsymmetry(contract.value);
  Everything again;
  bool read = false;
  try {
    read = again.FromJsonString(first);
  } catch (const std::runtime_error& e) {
    wevlin_fuzz::Require(exempt, std::string("reading the written text threw: ") + e.what(),
                         {input, first});
    return 0;
  }
  if (exempt) return 0;
  wevlin_fuzz::Require(read, "reading the written text gave false", {input, first});
  const std::string second = again.ToJsonString();
  wevlin_fuzz::Require(second == first, "writing, reading and writing again changed the text",
                       {input, first, second});

  // Assignment copies through the text as well.
  Everything assigned;
  assigned = contract;
  wevlin_fuzz::Require(assigned.ToJsonString() == first, "an assigned copy writes another text",
                       {first, assigned.ToJsonString()});
  return 0;
}
