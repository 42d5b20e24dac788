// Services of the standard catalogue, called by a real page through the
// page-side library, and proxies of the catalogue calling the page.

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/BrowserFixture.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationResponseMsg.h"
#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_02/IHandleHostConfigurationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusMsg.h"
#include "wevlin/infrastructure/services/core/_2014_07/ClientStatusSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationResponseMsg.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleClientStatusSvc.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleHostConfigurationSvc.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerEntryMsg.h"
#include "wevlin/infrastructure/services/logging/_2014_02/LoggerForwardSvc.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionProxy01.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionSvc01.h"

namespace {

namespace core02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02;
namespace core07 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07;
namespace logging02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02;
namespace session07 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07;
namespace version03 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Version::_2014_03;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;

class ConfigurationHandler : public core02::IHandleHostConfigurationSvc {
 public:
  const core02::HostConfigurationResponseMsg& GetHostConfiguration(
      interop::IHostControlInstance* instance, interop::IHostServiceDescriptor*) override {
    instances.push_back(instance);
    return configuration;
  }

  core02::HostConfigurationResponseMsg configuration;
  std::vector<interop::IHostControlInstance*> instances;
};

class SettingsHandler : public core07::IHandleHostConfigurationSvc {
 public:
  const core07::HostConfigurationResponseMsg& GetHostConfiguration(
      interop::IHostControlInstance* instance, interop::IHostServiceDescriptor*) override {
    instances.push_back(instance);
    return configuration;
  }

  core07::HostConfigurationResponseMsg configuration;
  std::vector<interop::IHostControlInstance*> instances;
};

class StatusHandler : public core07::IHandleClientStatusSvc {
 public:
  void OnClientStatus(const core07::ClientStatusMsg& status) override {
    states.push_back(status.State);
  }

  std::vector<std::string> states;
};

// What the log forwarding service handed on, and whether it should fail.
std::vector<std::string> forwardedEntries;
bool failForwarding = false;

void ForwardEntry(const logging02::LoggerEntryMsg& entry) {
  if (failForwarding) throw std::runtime_error("the log is full");
  forwardedEntries.push_back(entry.Level + ": " + entry.FormatMessage);
}

class StandardServicesTest : public wevlin_e2e::BrowserFixture {
 protected:
  void SetUp() override {
    BrowserFixture::SetUp();
    forwardedEntries.clear();
    failForwarding = false;
  }

  // Lets the page call `fqn` in `version` with `payload` (a JavaScript
  // expression) as a method, and returns the outcome.
  Json Method(const std::string& fqn, const std::string& version, const std::string& payload) {
    return PageCall("e2e.invokeMethod('" + fqn + "', '" + version + "', " + payload + ")");
  }

  Json Event(const std::string& fqn, const std::string& version, const std::string& payload) {
    return PageCall("e2e.raiseEvent('" + fqn + "', '" + version + "', " + payload + ")");
  }

  static Json Resolved(const Json& value) {
    return Json{{"done", true}, {"ok", true}, {"value", value}};
  }
};

TEST_F(StandardServicesTest, HostConfigurationReachesThePageAsTheHostWroteIt) {
  ConfigurationHandler handler;
  handler.configuration.Theme = "dark \"night\"";
  handler.configuration.HostType = "desktop";
  handler.configuration.AllowGoHome = "true";
  RegisterService(new core02::HostConfigurationSvc(&handler));
  LaunchAndLogIn("services.html");

  const Json outcome =
      Method("tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_02", "''");
  EXPECT_EQ(outcome, Resolved(handler.configuration.ToJsonString()));
  EXPECT_EQ(handler.instances, std::vector<interop::IHostControlInstance*>{instance_.get()});
  const Json configuration = Json::parse(outcome["value"].get<std::string>());
  EXPECT_EQ(configuration["Theme"], "dark \"night\"");
  EXPECT_EQ(configuration["HostType"], "desktop");
  EXPECT_EQ(configuration["ShowVelmoraLogo"], "");
  EXPECT_EQ(configuration["Version"], "_2014_02");
}

TEST_F(StandardServicesTest, HostSettingsReachThePageAsTheHostWroteThem) {
  SettingsHandler handler;
  handler.configuration.Settings.push_back(Pair("Theme", "dark \"night\""));
  handler.configuration.Settings.push_back(Pair("AllowGoHome", "true"));
  handler.configuration.Settings.push_back(Pair("Grüße", "a\\b\nc"));
  handler.configuration.Settings.push_back(Pair("Empty", ""));
  RegisterService(new core07::HostConfigurationSvc(&handler));
  LaunchAndLogIn("services.html");

  const std::string fqn = "tavo.wevlin.infrastructure.services.core.HostConfiguration.host";
  const Json outcome = Method(fqn, "_2014_07", "''");
  EXPECT_EQ(outcome, Resolved(R"J({"Version": "_2014_07", "Settings": [)J"
                              R"J({"Key": "Theme", "Value": "dark \"night\""}, )J"
                              R"J({"Key": "AllowGoHome", "Value": "true"}, )J"
                              R"J({"Key": "Grüße", "Value": "a\\b\nc"}, )J"
                              R"J({"Key": "Empty", "Value": ""}]})J"))
      << outcome.dump();
  EXPECT_EQ(handler.instances, std::vector<interop::IHostControlInstance*>{instance_.get()});

  // Only version _2014_07 is registered: a call of _2014_02 is not served.
  const std::string message = "No matching service descriptor found for: " + fqn + " ver: _2014_02";
  EXPECT_EQ(Method(fqn, "_2014_02", "''"),
            (Json{{"done", true},
                  {"ok", false},
                  {"name", "std::invalid_argument"},
                  {"message", message},
                  {"record",
                   "{\"Exception\": {\"name\": \"std::invalid_argument\", "
                   "\"message\": \"" +
                       message + "\"}}"}}));
  EXPECT_EQ(handler.instances.size(), 1u);

  // Asked again, the host writes the settings it has then.
  handler.configuration.Settings.clear();
  EXPECT_EQ(Method(fqn, "_2014_07", "{}"),
            Resolved(R"J({"Version": "_2014_07", "Settings": []})J"));
  EXPECT_EQ(handler.instances.size(), 2u);
}

TEST_F(StandardServicesTest, ClientStatusReachesItsHandler) {
  StatusHandler handler;
  RegisterService(new core07::ClientStatusSvc(&handler));
  LaunchAndLogIn("services.html");
  const std::string fqn = "tavo.wevlin.infrastructure.services.core.ClientStatus.host";
  EXPECT_EQ(Event(fqn, "_2014_07", "{State: 'busy', Version: '_2014_07'}"), Resolved(nullptr));
  EXPECT_EQ(Event(fqn, "_2014_07", "{Version: '_2014_07'}"), Resolved(nullptr));
  EXPECT_EQ(Event(fqn, "_2014_07", "'not JSON'"), Resolved(nullptr));
  EXPECT_EQ(handler.states, (std::vector<std::string>{"busy", "idle"}));
}

TEST_F(StandardServicesTest, PageLogsThroughTheHost) {
  RegisterService(new logging02::LoggerForwardSvc(&ForwardEntry));
  LaunchAndLogIn("services.html");
  const std::string fqn = "tavo.wevlin.infrastructure.services.LoggerForward.host";
  const std::string entry = "{FormatMessage: 'Grüße, it\\'s \"on\"', Level: 'Info'}";
  EXPECT_EQ(Method(fqn, "_2014_02", entry), Resolved("OK"));
  EXPECT_EQ(Event(fqn, "_2014_02", "{FormatMessage: 'as an event', Level: 'Debug'}"),
            Resolved(nullptr));
  failForwarding = true;
  EXPECT_EQ(Method(fqn, "_2014_02", entry), Resolved("FAIL"));
  EXPECT_EQ(forwardedEntries,
            (std::vector<std::string>{"Info: Grüße, it's \"on\"", "Debug: as an event"}));
}

TEST_F(StandardServicesTest, PageChecksTheVersionTestService) {
  RegisterService(new version03::TestVersionSvc01(nullptr));
  LaunchAndLogIn("services.html");
  const Json outcome =
      Method("tavo.wevlin.infrastructure.services.version.TestVersionSvc", "_2014_03",
             "{ServiceName: 'tavo.wevlin.infrastructure.services.version.TestVersionSvc', "
             "ServiceVersion: '_2014_03', ExtraInfo: 'Extra Info', Version: '_2014_03'}");
  ASSERT_EQ(outcome["ok"], true) << outcome.dump();
  version03::TestVersionResponseMsg expected;
  expected.ServiceName = "tavo.wevlin.infrastructure.services.version.TestVersionSvc";
  expected.ServiceVersion = "_2014_03";
  expected.Result = true;
  EXPECT_EQ(outcome["value"], expected.ToJsonString());
}

TEST_F(StandardServicesTest, HostChecksThePageVersionTestService) {
  LaunchAndLogIn("services.html");
  version03::TestVersionProxy01 proxy(instance_.get());
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
  const version03::TestVersionResponseMsg response = proxy.GetClientServiceVersion();
  EXPECT_EQ(response.ServiceName, "tavo.wevlin.infrastructure.services.version.TestVersionSvc");
  EXPECT_EQ(response.ServiceVersion, "_2014_03");
  EXPECT_TRUE(response.Result);
}

TEST_F(StandardServicesTest, HostUpdatesThePageSession) {
  LaunchAndLogIn("services.html");
  session07::SessionProxy proxy(instance_.get());
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
  session07::SessionMsg session;
  proxy.UpdateSession(session);
  EXPECT_EQ(Eval("services.sessions()"), Json::array({session.ToJsonString()}).dump());
}

}  // namespace
