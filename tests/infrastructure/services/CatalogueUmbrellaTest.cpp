// The whole standard catalogue through the one umbrella header: every service
// area and version is reachable from "wevlin/wevlin.h" alone, with the wire
// names and message shapes the page relies on.
#include "wevlin/wevlin.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace Interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace Services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;

// Handlers the services below are built with; none is called here.
class HostConfiguration2014_02 : public Services::Core::_2014_02::IHandleHostConfigurationSvc {
 public:
  const Services::Core::_2014_02::HostConfigurationResponseMsg& GetHostConfiguration(
      Interop::IHostControlInstance*, Interop::IHostServiceDescriptor*) override {
    return answer;
  }
  Services::Core::_2014_02::HostConfigurationResponseMsg answer;
};

class SoaRequests : public Services::Soa::_2014_02::IHandleAsyncSoaJsonServiceRequest {
 public:
  void OnSoaJsonRequest(std::string, std::string, std::string, void*,
                        Services::Soa::_2014_02::SoaResponseCallback) override {}
};

class HostAuth : public Services::Soa::_2014_02::IHandleRequestHostAuthSvc {
 public:
  void OnRequestHostAuth(void*, Services::Soa::_2014_02::RequestHostAuthCallback) override {}
};

std::pair<std::string, std::string> Identity(const Interop::ITargetServiceDesc& service) {
  return {service.GetFQN(), service.GetSvcVersion()};
}

TEST(CatalogueUmbrellaTest, HostServicesOfEveryAreaCarryTheirWireNames) {
  HostConfiguration2014_02 configuration;
  SoaRequests soa;
  HostAuth auth;
  const Services::Core::_2014_02::HostConfigurationSvc hostConfiguration(&configuration);
  const Services::Core::_2014_02::StartupNotificationSvc startup;
  const Services::Core::_2014_07::ClientStatusSvc clientStatus(nullptr);
  const Services::Soa::_2014_02::AsyncSoaJsonMessageSvc asyncSoa(&soa);
  const Services::Soa::_2014_02::RequestHostAuthSvc requestHostAuth(&auth);
  const Services::Session::_2014_07::SessionSvc session(nullptr);
  const Services::Refresh::_2014_07::RefreshSvc refresh(nullptr);
  const Services::Version::_2014_02::TestVersionSvc testVersion(nullptr);
  const Services::Version::_2014_03::TestVersionSvc testVersion01(nullptr);
  const Services::Logging::_2014_02::LoggerForwardSvc loggerForward(
      [](const Services::Logging::_2014_02::LoggerEntryMsg&) {});

  const std::vector<std::pair<std::string, std::string>> identities = {
      Identity(hostConfiguration), Identity(startup),         Identity(clientStatus),
      Identity(asyncSoa),          Identity(requestHostAuth), Identity(session),
      Identity(refresh),           Identity(testVersion),     Identity(testVersion01),
      Identity(loggerForward)};
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.startup.StartupNotification.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.core.ClientStatus.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.session.Session.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.refresh.Refresh.host", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.version.TestVersionSvc", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.version.TestVersionSvc", "_2014_03"},
      {"tavo.wevlin.infrastructure.services.LoggerForward.host", "_2014_02"}};
  EXPECT_EQ(identities, expected);
  // No two services could be confused by the host's lookup.
  const std::set<std::pair<std::string, std::string>> distinct(identities.begin(),
                                                               identities.end());
  EXPECT_EQ(distinct.size(), identities.size());
}

TEST(CatalogueUmbrellaTest, ProxiesOfEveryAreaTargetThePagesServices) {
  const Services::Session::_2014_07::SessionProxy session(nullptr);
  const Services::Refresh::_2014_07::RefreshProxy refresh(nullptr);
  const Services::OpenLocation::_2014_02::OpenLocationProxy openLocation(nullptr);
  const Services::ClientInfo::_2014_07::ClientInfoProxy clientInfo(nullptr);
  const Services::Version::_2014_02::TestVersionProxy testVersion(nullptr);
  const Services::Version::_2014_03::TestVersionProxy testVersion01(nullptr);
  const std::vector<std::pair<std::string, std::string>> targets = {
      Identity(*session.GetBaseServiceDescriptor()),
      Identity(*refresh.GetBaseServiceDescriptor()),
      Identity(*openLocation.GetBaseServiceDescriptor()),
      Identity(*clientInfo.GetBaseServiceDescriptor()),
      Identity(*testVersion.GetBaseServiceDescriptor()),
      Identity(*testVersion01.GetBaseServiceDescriptor())};
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"tavo.wevlin.infrastructure.services.session.Session.client", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.refresh.Refresh.client", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client", "_2014_07"},
      {"tavo.wevlin.infrastructure.services.version.TestVersionSvc", "_2014_02"},
      {"tavo.wevlin.infrastructure.services.version.TestVersionSvc", "_2014_03"}};
  EXPECT_EQ(targets, expected);
}

TEST(CatalogueUmbrellaTest, ProxiesWithoutInstanceSendNothingAndReturnDefaults) {
  Services::ClientInfo::_2014_07::ClientInfoProxy clientInfo(nullptr);
  EXPECT_EQ(clientInfo.GetClientInfo(), (std::map<std::string, std::string>{}));
  Services::Version::_2014_03::TestVersionProxy01 testVersion(nullptr);
  EXPECT_EQ(testVersion.GetClientServiceVersion().ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "", "ServiceVersion": "", "Result": false})");
}

TEST(CatalogueUmbrellaTest, MessagesOfEveryAreaWriteTheirDefaultShape) {
  EXPECT_EQ(Services::Core::_2014_02::HostConfigurationResponseMsg().ToJsonString(),
            R"({"Version": "_2014_02", "AllowGoHome": "", "AllowThemeChange": "", )"
            R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "", )"
            R"("ShowVelmoraLogo": "", "Theme": ""})");
  EXPECT_EQ(Services::Core::_2014_02::InteropObjRef().ToJsonString(),
            R"({"DBId": "", "ObjId": "", "ObjType": ""})");
  EXPECT_EQ(Services::Core::_2014_07::ClientStatusMsg().ToJsonString(),
            R"({"Version": "_2014_07", "State": "idle"})");
  EXPECT_EQ(Services::Core::_2014_07::HostConfigurationResponseMsg().ToJsonString(),
            R"({"Version": "_2014_07", "Settings": []})");
  EXPECT_EQ(Services::Core::_2014_10::InteropObjRef(
                Services::Core::_2014_10::InteropObjRef::OCCURRENCE2_TYPE(), "o-1")
                .ToJsonString(),
            R"({"Type": "Occurrence2", "Data": "o-1"})");
  EXPECT_EQ(Services::Soa::_2014_02::SoaJsonResponseMsg("_2014_07").ToJsonString(),
            R"({"Version": "_2014_07", "CacheId": "", "SoaResponse": "", "Exception": null})");
  EXPECT_EQ(Services::Soa::_2014_02::HostSessionInfoResponseMsg().ToJsonString(),
            R"({"Version": "_2014_02", "IsSessionActive": false, "UserName": ""})");
  EXPECT_EQ(Services::Session::_2014_07::SessionMsg().ToJsonString(),
            R"({"Version": "_2014_07", "SessionObjects": [], "Preferences": []})");
  EXPECT_EQ(Services::Refresh::_2014_07::RefreshMsg().ToJsonString(),
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [], "PlainObjects": [], "ChildChangeObjects": [], )"
            R"("DataObjects": []})");
  EXPECT_EQ(Services::OpenLocation::_2014_02::OpenLocationMsg().ToJsonString(),
            R"({"Version": "_2014_02", "location": "", "OpenComponent": []})");
  EXPECT_EQ(Services::Version::_2014_02::TestVersionInputMsg().ToJsonString(),
            R"({"Version": "_2014_02", "ServiceName": "", "ServiceVersion": ""})");
  EXPECT_EQ(Services::Version::_2014_03::TestVersionInputMsg().ToJsonString(),
            R"({"Version": "_2014_03", "ServiceName": "", "ServiceVersion": "", "ExtraInfo": ""})");
  EXPECT_EQ(Services::Logging::_2014_02::LoggerEntryMsg().ToJsonString(),
            R"({"Version": "_2014_02", "FormatMessage": "", "Level": ""})");
}

TEST(CatalogueUmbrellaTest, AServiceFromTheUmbrellaAnswersACall) {
  HostConfiguration2014_02 configuration;
  configuration.answer.HostType = "desktop";
  Services::Core::_2014_02::HostConfigurationSvc service(&configuration);
  EXPECT_EQ(service.InvokeMethod(nullptr, &service, ""),
            R"({"Version": "_2014_02", "AllowGoHome": "", "AllowThemeChange": "", )"
            R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "desktop", )"
            R"("ShowVelmoraLogo": "", "Theme": ""})");
  Services::Logging::_2014_02::LoggerForwardSvc logger(
      [](const Services::Logging::_2014_02::LoggerEntryMsg& entry) {
        if (entry.Level == "fatal") throw entry.FormatMessage;
      });
  EXPECT_EQ(logger.InvokeMethod(nullptr, &logger, R"({"FormatMessage":"x","Level":"info"})"), "OK");
  EXPECT_EQ(logger.InvokeMethod(nullptr, &logger, R"({"FormatMessage":"x","Level":"fatal"})"),
            "FAIL");
}

}  // namespace
