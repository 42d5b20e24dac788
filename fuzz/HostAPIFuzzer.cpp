// Runs a script of page and host actions against a hosted page with the
// standard services registered (HostHarness): the five HostAPI operations
// with arbitrary texts, page loads and launches, the page's answers to the
// five page functions (any text, or a script failure), the answers of pending
// asynchronous requests, and the host's proxies calling the page.
//
// Input: commands separated by the byte 0x1E; in each, the first byte picks
// the action and the rest is cut at 0x1F into up to three arguments.
//
// Checked: no exception escapes a HostAPI operation or an asynchronous
// callback (the process would end); a ping answers "0.9"; the list update and
// the handshake answer "" or an exception record; every exception record the
// API gives reads back as a record with a name; and every input ends with all
// memory released (the sanitizer's leak check).

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "HostHarness.h"
#include "wevlin/infrastructure/interop/ExceptionHolder.h"
#include "wevlin/infrastructure/services/clientinfo/_2014_07/ClientInfoProxy.h"
#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationProxy.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshProxy.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;

using wevlin_fuzz::HostHarness;
using wevlin_fuzz::Require;

const char* const kPageFunctions[] = {"tavoInterop_Ping", "tavoInterop_HostServiceListUpdate",
                                      "tavoInterop_WebMethod", "tavoInterop_WebEvent",
                                      "tavoInterop_RequestWebServiceList"};

// A standard service descriptor for the first byte of `selector`, or the
// selector itself as descriptor JSON, so that inputs reach the services
// without having to find their names first.
std::string Descriptor(const std::string& selector) {
  static const char* const kServices[][2] = {
      {"tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.core.ClientStatus.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.session.Session.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.refresh.Refresh.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.LoggerForward.host", "_2014_02"},
  };
  constexpr std::size_t kCount = sizeof(kServices) / sizeof(kServices[0]);
  if (selector.size() == 1) {
    const auto index = static_cast<unsigned char>(selector[0]) % kCount;
    return std::string("{\"FQN\": \"") + kServices[index][0] + "\", \"SvcVersion\": \"" +
           kServices[index][1] + "\"}";
  }
  return selector;
}

// Checks what the API answered where the answer is "" or an exception record.
void CheckEmptyOrRecord(const std::string& answer, const char* operation) {
  if (answer.empty()) return;
  Require(answer.compare(0, 11, "{\"Exception") == 0,
          std::string(operation) + " answered neither \"\" nor a record", {answer});
}

// Checks that a text the API wrote as an exception record reads back as one.
void CheckRecordIfAny(const std::string& answer, const char* operation) {
  if (answer.compare(0, 14, "{\"Exception\": ") != 0) return;
  interop::ExceptionHolder holder;
  bool read = false;
  try {
    read = holder.FromJsonString(answer);
  } catch (const std::exception& e) {
    // Service answers are passed through unread and may look like records;
    // records the API writes itself always read back.
    if (answer.find("\"name\": \"std::") == std::string::npos) return;
    wevlin_fuzz::Fail(std::string(operation) + " wrote a record that throws: " + e.what(),
                      {answer});
  }
  Require(read, std::string(operation) + " wrote a record that reads false", {answer});
}

void RunProxy(HostHarness& host, const std::string& which, const std::string& text) {
  interop::HostControlInstance* instance = &host.Instance();
  try {
    switch (which.empty() ? 0 : static_cast<unsigned char>(which[0]) % 4) {
      case 0: {
        services::ClientInfo::_2014_07::ClientInfoProxy proxy(instance);
        proxy.GetClientInfo();
        break;
      }
      case 1: {
        services::Session::_2014_07::SessionProxy proxy(instance);
        services::Session::_2014_07::SessionMsg message;
        proxy.UpdateSession(message);
        break;
      }
      case 2: {
        services::Refresh::_2014_07::RefreshProxy proxy(instance);
        services::Refresh::_2014_07::RefreshMsg message;
        proxy.SendRefresh(message);
        break;
      }
      default: {
        services::OpenLocation::_2014_02::OpenLocationProxy proxy(instance);
        proxy.openLocation(text, {});
        break;
      }
    }
  } catch (const std::exception&) {
    // The session and refresh proxies pass the instance's failures on.
  } catch (const interop::IWebControl::ScriptException&) {
  }
}

void RunCommand(HostHarness& host, const std::string& command) {
  if (command.empty()) return;
  const auto action = static_cast<unsigned char>(command[0]);
  const std::vector<std::string> args = wevlin_fuzz::Split(command.substr(1), 3);
  interop::HostAPI& api = host.Api();
  Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage& page = host.Page();
  switch (action % 13) {
    case 0:
      CheckRecordIfAny(api.tavoHostMethod(Descriptor(args[0]), args[1]), "tavoHostMethod");
      break;
    case 1: {
      const std::string answer = api.tavoHostEvent(Descriptor(args[0]), args[1]);
      CheckEmptyOrRecord(answer, "tavoHostEvent");
      CheckRecordIfAny(answer, "tavoHostEvent");
      break;
    }
    case 2:
      Require(api.tavoHostPing() == "0.9", "tavoHostPing");
      break;
    case 3: {
      const std::string answer = api.tavoHost_WebSideServiceListUpdate(args[0], args[1]);
      CheckEmptyOrRecord(answer, "tavoHost_WebSideServiceListUpdate");
      CheckRecordIfAny(answer, "tavoHost_WebSideServiceListUpdate");
      break;
    }
    case 4: {
      const std::string answer = api.tavoHost_WebSideStartHandShake();
      CheckEmptyOrRecord(answer, "tavoHost_WebSideStartHandShake");
      CheckRecordIfAny(answer, "tavoHost_WebSideStartHandShake");
      break;
    }
    case 5:
      page.CompleteLoad();
      break;
    case 6:
      host.Instance().LaunchToTarget(&host.Target());
      break;
    case 7:
      switch (args[0].empty() ? 0 : static_cast<unsigned char>(args[0][0]) % 4) {
        case 0:
          page.PageVersion = args[1];
          break;
        case 1:
          page.WebServiceList = args[1];
          break;
        case 2:
          page.MethodReply = args[1];
          break;
        default:
          page.EventReply = args[1];
          break;
      }
      break;
    case 8:
    case 9: {
      const char* function =
          kPageFunctions[args[0].empty() ? 0 : static_cast<unsigned char>(args[0][0]) % 5];
      if (action % 13 == 8) {
        page.Fail(function, interop::IWebControl::ScriptException(args[1], args[2]));
      } else {
        page.Heal(function);
      }
      break;
    }
    case 10:
      host.AnswerSoa(args[0], args[1], args[2]);
      break;
    case 11:
      host.AnswerAuth(!args[0].empty(), args[1], args[2]);
      break;
    default:
      RunProxy(host, args[0], args[1]);
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::string input = wevlin_fuzz::AsText(data, size);
  HostHarness host;
  std::size_t start = 0;
  // At most 64 commands per input keep one input quick.
  for (int count = 0; count < 64 && start <= input.size(); ++count) {
    std::size_t end = input.find(wevlin_fuzz::kCommandSeparator, start);
    if (end == std::string::npos) end = input.size();
    RunCommand(host, input.substr(start, end - start));
    start = end + 1;
  }
  return 0;
}
