// Feeds the page's service list to a hosted page both ways it arrives: as
// tavoHost_WebSideServiceListUpdate(action, list) from the page, and as the
// page's answer to tavoInterop_RequestWebServiceList during the handshake.
//
// Input: action, list and handshake answer, separated by the byte 0x1F.
//
// Checked: the update answers "" exactly when the action is "Replace" in any
// letter case (up to a NUL byte) and the list reads as a JSON array; the instance then knows
// exactly the descriptors that JsonSerializationHelper::Deserialize reads from
// the list, in order; otherwise it answers an exception record and keeps the
// services it knew. The handshake answers "" and ends in LoadedCanTalk, or
// answers the reader's exception record with the services unchanged.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "FuzzCheck.h"
#include "HostHarness.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace helper = interop::JsonSerializationHelper;

using wevlin_fuzz::Require;
using Services = std::vector<std::pair<std::string, std::string>>;

// Returns the services the instance knows from the page, in order.
Services Known(interop::HostControlInstance& instance) {
  Services known;
  auto* list = instance.GetKnownWebSideServices();
  for (int i = 0; i < list->GetSize(); ++i) {
    known.emplace_back(list->GetAt(i)->GetFQN(), list->GetAt(i)->GetSvcVersion());
  }
  return known;
}

// Reads `text` as Deserialize does; false when Deserialize throws.
bool Expected(const std::string& text, Services& services) {
  std::vector<interop::DataServiceDescriptor*>* read = nullptr;
  try {
    read = helper::Deserialize<std::vector<interop::DataServiceDescriptor*>>(text);
  } catch (const std::runtime_error&) {
    return false;
  }
  std::unique_ptr<std::vector<interop::DataServiceDescriptor*>> owned(read);
  services.clear();
  for (interop::DataServiceDescriptor* descriptor : *owned) {
    services.emplace_back(descriptor->FQN, descriptor->SvcVersion);
    delete descriptor;
  }
  return true;
}

// True when the host takes `action` for "Replace": compared without regard to
// letter case, as C strings, so that the text ends at its first NUL byte.
bool IsReplace(const std::string& text) {
  const std::string action(text.c_str());
  const std::string replace = "replace";
  if (action.size() != replace.size()) return false;
  for (std::size_t i = 0; i < action.size(); ++i) {
    char c = action[i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != replace[i]) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::vector<std::string> parts = wevlin_fuzz::Split(wevlin_fuzz::AsText(data, size), 3);
  const std::string& action = parts[0];
  const std::string& list = parts[1];
  const std::string& pageAnswer = parts[2];

  wevlin_fuzz::HostHarness host;
  // Something known beforehand, to see that a refused update keeps it.
  host.Instance().WebSideServiceListUpdate("Replace", "[{\"FQN\": \"a\", \"SvcVersion\": \"1\"}]");
  const Services before = Known(host.Instance());

  Services expected;
  const bool readable = Expected(list, expected);
  const std::string answer = host.Api().tavoHost_WebSideServiceListUpdate(action, list);
  if (readable && IsReplace(action)) {
    Require(answer.empty(), "a readable Replace was refused", {action, list, answer});
    Require(Known(host.Instance()) == expected, "the known services differ from the list",
            {action, list});
  } else {
    const std::string record =
        readable ? "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"unknown "
                   "action\"}}"
                 : "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"JSON data "
                   "is not an array\"}}";
    Require(answer == record, "a refused update answered another record", {action, list, answer});
    Require(Known(host.Instance()) == before, "a refused update changed the known services",
            {action, list});
  }

  // The same text as the page's answer to the handshake's request for its list.
  const Services beforeHandshake = Known(host.Instance());
  host.Page().WebServiceList = pageAnswer;
  Services fromPage;
  const bool pageReadable = Expected(pageAnswer, fromPage);
  const std::string handshake = host.Talk();
  if (pageAnswer.empty()) {
    Require(handshake.empty(), "an empty list answer failed the handshake", {handshake});
    Require(Known(host.Instance()) == beforeHandshake, "an empty list answer changed the list");
  } else if (pageReadable) {
    Require(handshake.empty(), "a readable list answer failed the handshake",
            {pageAnswer, handshake});
    Require(host.Instance().GetContentState() == interop::LoadedCanTalk,
            "a readable list answer did not end in LoadedCanTalk", {pageAnswer});
    Require(Known(host.Instance()) == fromPage, "the known services differ from the page's list",
            {pageAnswer});
  } else {
    Require(handshake ==
                "{\"Exception\": {\"name\": \"std::runtime_error\", \"message\": \"JSON data is "
                "not an array\"}}",
            "an unreadable list answer gave another handshake answer", {pageAnswer, handshake});
    Require(Known(host.Instance()) == beforeHandshake, "an unreadable list answer changed the list",
            {pageAnswer});
  }
  return 0;
}
