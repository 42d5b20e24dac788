// An application's view of wevlin: this program sees only the installed
// public headers and links only the shared library (on Windows, the DLL
// through its import library). It drives the library the way an embedding
// application does and compares every answer with its exact expected text, so
// that a missing export, a header that needs a private one, or an exception
// or type that does not cross the library's boundary intact fails here.
//
// Prints one line per check and ends with "consumer: all N checks passed";
// exits with 1 when any check fails.

#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/wevlin.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;

int failures = 0;
int checks = 0;

void Check(const std::string& what, const std::string& actual, const std::string& expected) {
  ++checks;
  if (actual == expected) {
    std::cout << "ok   " << what << "\n";
    return;
  }
  ++failures;
  std::cout << "FAIL " << what << "\n     expected: " << expected << "\n     actual:   " << actual
            << "\n";
}

std::string Join(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += "[" + line + "]";
  }
  return text;
}

// A host service of the application: answers a method call with the payload
// it was given, behind a fixed prefix.
class EchoService : public services::BaseHostingService {
 public:
  EchoService() : BaseHostingService("tavo.wevlin.package.Echo.host", "_2014_07") {}

 protected:
  std::string DoInvokeMethod(interop::IHostControlInstance* /*instance*/,
                             interop::IHostServiceDescriptor* /*descriptor*/,
                             std::string payload) override {
    return "echo:" + payload;
  }
};

// A browser control without a browser: remembers what it was asked to load
// and fails every script line, as a control whose page is gone would.
class RecordingWebControl : public interop::IWebControl {
 public:
  RecordingWebControl() = default;
  ~RecordingWebControl() override = default;

  void Navigate(std::string target) override { navigations.push_back(target); }

  std::string ExecuteScript(std::string script) override {
    scripts.push_back(script);
    throw ScriptException("no page", "RecordingWebControl");
  }

  void AddLoadObserver(ILoadObserver* observer) override { observers.push_back(observer); }

  void RemoveLoadObserver(ILoadObserver* observer) override {
    for (std::size_t i = 0; i < observers.size(); ++i) {
      if (observers[i] == observer) {
        observers.erase(observers.begin() + static_cast<std::ptrdiff_t>(i));
        return;
      }
    }
  }

  std::vector<std::string> navigations;
  std::vector<std::string> scripts;
  std::vector<ILoadObserver*> observers;
};

// Notes the names of the properties that change.
class PropertyNames : public base::IPropertyChangeListener {
 public:
  void OnPropertyChanged(const base::PropertyChangeEvent& event) override {
    names.push_back(event.GetPropertyName());
  }
  std::vector<std::string> names;
};

// A list listener that always fails.
class ThrowingListener : public base::IListChangeListener<int*> {
 public:
  void OnListChanged(const base::ListChangeEvent<int*>& /*event*/) override {
    throw std::runtime_error("listener failed");
  }
};

// A message of the application, registered field by field.
class GreetingMsg : public interop::DataContract {
 public:
  GreetingMsg() {
    RegisterField("to", to);
    RegisterField("times", times);
    RegisterField("loud", loud);
    RegisterField("tags", tags);
  }
  std::string to;
  int times = 0;
  bool loud = false;
  std::vector<std::string> tags;
};

void CheckJson() {
  interop::JsonObject document;
  document.SetProperty("zeta", interop::JsonValue(1));
  document.SetProperty("alpha", interop::JsonValue("say \"hi\""));
  interop::JsonValue list;
  list.PushBack(interop::JsonValue(true));
  list.PushBack(interop::JsonValue());
  document.SetProperty("list", list);
  Check("JSON text: sorted keys, \", \" and \": \"", document.ToJsonString(),
        "{\"alpha\": \"say \\\"hi\\\"\", \"list\": [true, null], \"zeta\": 1}");

  interop::JsonObject back;
  Check("JSON text reads back", back.FromJsonString(document.ToJsonString()) ? "true" : "false",
        "true");
  Check("JSON text written again", back.ToJsonString(), document.ToJsonString());

  std::string caught = "nothing";
  try {
    interop::JsonValue("text").GetAsInt();
  } catch (const std::logic_error& e) {
    caught = std::string("std::logic_error: ") + e.what();
  }
  Check("an exception from the library is caught by type", caught,
        "std::logic_error: JsonValue invalid type requested");
}

void CheckContractsAndRecords() {
  GreetingMsg message;
  message.to = "Ana";
  message.times = 3;
  message.loud = true;
  message.tags = {"a", "b"};
  Check("data contract written in registration order", message.ToJsonString(),
        "{\"to\": \"Ana\", \"times\": 3, \"loud\": true, \"tags\": [\"a\", \"b\"]}");

  GreetingMsg copy;
  copy.FromJsonString("{\"times\": 7, \"to\": \"Bo\"}");
  Check("data contract read", copy.to + "/" + std::to_string(copy.times), "Bo/7");

  Check("exception record of an application's exception",
        interop::JsonSerializationHelper::GetJsonForException(std::out_of_range("index 7")),
        "{\"Exception\": {\"name\": \"std::out_of_range\", \"message\": \"index 7\"}}");

  std::string encoded;
  interop::Base64::EncodeString("wevlin", encoded);
  Check("Base64", encoded, "d2V2bGlu");
}

void CheckObservableList() {
  std::vector<std::string> lines;
  base::LogSink previous =
      base::SetLogSink([&lines](const std::string& line) { lines.push_back(line); });
  int item = 0;
  ThrowingListener listener;
  base::ObservableList<int*> list;
  list.AddChangeListener(&listener);
  list.Add(&item);
  base::SetLogSink(previous);
  Check("a failing list listener is logged through the sink", Join(lines),
        "[ObservableList<T>::NotifyChange - caught exception from OnListChanged]");
  Check("the list still changed", std::to_string(list.GetSize()), "1");
}

void CheckHosting() {
  interop::HostManager* manager = interop::HostManager::TheInstance();
  Check("framework version", manager->GetVersion(), "0.9");

  manager->RegisterService(new EchoService());
  manager->RegisterTargetConfig(new interop::TargetConfig("home", "Home", "https://example.test/"));

  RecordingWebControl control;
  PropertyNames names;
  {
    interop::HostControlInstance instance(&control);
    instance.AddChangeListener(&names);
    interop::HostAPI api(&instance);
    Check("the instance observes its control", std::to_string(control.observers.size()), "1");

    Check("page calls a host service",
          api.tavoHostMethod(
              "{\"FQN\": \"tavo.wevlin.package.Echo.host\", \"SvcVersion\": \"_2014_07\"}",
              "{\"n\": 1}"),
          "echo:{\"n\": 1}");
    Check(
        "page calls a service that nobody offers",
        api.tavoHostMethod("{\"FQN\": \"no.such.Service.host\", \"SvcVersion\": \"_2014_07\"}", ""),
        "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"No matching "
        "service descriptor found for: no.such.Service.host ver: _2014_07\"}}");

    // Arms the time-out on the platform's timer queue; destroying the
    // instance below deletes it again long before it is due.
    instance.LaunchToTarget(manager->GetTargetConfig("home"));
    Check("launch navigates the control", Join(control.navigations), "[https://example.test/]");
    Check("content state after the launch",
          interop::HostControlInstance::NameOfState(instance.GetContentState()), "Navigating");
  }
  Check("the instance stopped observing its control", std::to_string(control.observers.size()),
        "0");
  Check("property changes seen by the application", Join(names.names),
        "[ContentState][InstanceDestroyed]");
}

}  // namespace

int main() {
  CheckJson();
  CheckContractsAndRecords();
  CheckObservableList();
  CheckHosting();
  if (failures != 0) {
    std::cout << "consumer: " << failures << " of " << checks << " checks failed\n";
    return 1;
  }
  std::cout << "consumer: all " << checks << " checks passed\n";
  return 0;
}
