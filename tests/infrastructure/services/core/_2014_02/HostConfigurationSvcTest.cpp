#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationSvc.h"

#include <string>

#include <gtest/gtest.h>

#include "support/HostConfigurationSvcSuite.h"
#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationResponseMsg.h"
#include "wevlin/infrastructure/services/core/_2014_02/IHandleHostConfigurationSvc.h"

namespace {

namespace core = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02;

// The "_2014_02" host configuration: seven fixed keys, each a text.
struct Version2014_02 {
  using Service = core::HostConfigurationSvc;
  using Handler = core::IHandleHostConfigurationSvc;
  using Response = core::HostConfigurationResponseMsg;

  static constexpr const char* kVersion = "_2014_02";
  static constexpr const char* kDescriptor =
      R"({"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", )"
      R"("SvcVersion": "_2014_02"})";
  static constexpr const char* kOtherDescriptor =
      R"({"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", )"
      R"("SvcVersion": "_2014_07"})";
  static constexpr const char* kOtherVersionReply =
      R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
      R"(descriptor found for: tavo.wevlin.infrastructure.services.core.HostConfiguration)"
      R"(.host ver: _2014_07"}})";
  static constexpr const char* kEmptyReply =
      R"({"Version": "_2014_02", "AllowGoHome": "", "AllowThemeChange": "", )"
      R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "", )"
      R"("ShowVelmoraLogo": "", "Theme": ""})";
  static constexpr const char* kConfigurationPayload = R"({"Theme": "x"})";

  static std::string SetSomeValues(Response& response) {
    response.AllowGoHome = "true";
    response.HostType = "Desktop";
    response.Theme = "dark \"night\"";
    return R"({"Version": "_2014_02", "AllowGoHome": "true", "AllowThemeChange": "", )"
           R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "Desktop", )"
           R"("ShowVelmoraLogo": "", "Theme": "dark \"night\""})";
  }

  static std::string SetKioskHostType(Response& response) {
    response.HostType = "Kiosk";
    return R"({"Version": "_2014_02", "AllowGoHome": "", "AllowThemeChange": "", )"
           R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "Kiosk", )"
           R"("ShowVelmoraLogo": "", "Theme": ""})";
  }

  static std::string SetValuesForThePage(Response& response) {
    response.AllowGoHome = "true";
    response.Theme = "dark";
    return R"({"Version": "_2014_02", "AllowGoHome": "true", "AllowThemeChange": "", )"
           R"("AllowUserSessionChange": "", "HasFullScreenSupport": "", "HostType": "", )"
           R"("ShowVelmoraLogo": "", "Theme": "dark"})";
  }
};

}  // namespace

namespace wevlin_test {

INSTANTIATE_TYPED_TEST_SUITE_P(Version, HostConfigurationSvcTest, Version2014_02,
                               HostConfigurationVersionName);
INSTANTIATE_TYPED_TEST_SUITE_P(Version, HostConfigurationSvcEndToEndTest, Version2014_02,
                               HostConfigurationVersionName);

}  // namespace wevlin_test
