// Reads any text as a service list with JsonSerializationHelper::Deserialize,
// which gives a vector of descriptors (empty for a list that does not cut) or
// throws "JSON data is not an array" for a text that is not one. The list
// written again with Serialize must read back to the same descriptors.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataServiceDescriptor;
namespace helper = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonSerializationHelper;

using List = std::vector<DataServiceDescriptor*>;

// Owns a list that Deserialize returned, and the descriptors in it.
struct OwnedList {
  explicit OwnedList(List* list) : list(list) {}
  ~OwnedList() {
    for (DataServiceDescriptor* descriptor : *list) delete descriptor;
  }
  OwnedList(const OwnedList&) = delete;
  OwnedList& operator=(const OwnedList&) = delete;
  std::unique_ptr<List> list;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::string input = wevlin_fuzz::AsText(data, size);
  List* read = nullptr;
  try {
    read = helper::Deserialize<List>(input);
  } catch (const std::runtime_error& e) {
    wevlin_fuzz::Require(std::string(e.what()) == "JSON data is not an array",
                         std::string("Deserialize threw ") + e.what(), {input});
    return 0;
  }
  wevlin_fuzz::Require(read != nullptr, "Deserialize returned null", {input});
  OwnedList first(read);
  for (const DataServiceDescriptor* descriptor : *first.list) {
    wevlin_fuzz::Require(descriptor != nullptr, "a null descriptor in the list", {input});
  }

  const std::string written = helper::Serialize(*first.list);
  List* reread = nullptr;
  try {
    reread = helper::Deserialize<List>(written);
  } catch (const std::runtime_error& e) {
    wevlin_fuzz::Fail(std::string("reading the written list threw ") + e.what(), {input, written});
  }
  OwnedList second(reread);
  wevlin_fuzz::Require(second.list->size() == first.list->size(),
                       "the written list reads back to another length", {input, written});
  for (std::size_t i = 0; i < first.list->size(); ++i) {
    const DataServiceDescriptor& a = *(*first.list)[i];
    const DataServiceDescriptor& b = *(*second.list)[i];
    wevlin_fuzz::Require(a.FQN == b.FQN && a.SvcVersion == b.SvcVersion,
                         "a descriptor reads back changed", {input, written});
  }
  wevlin_fuzz::Require(helper::Serialize(*second.list) == written, "the list writes another text",
                       {input, written});
  return 0;
}
