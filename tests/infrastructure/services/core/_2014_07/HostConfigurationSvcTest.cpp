#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationSvc.h"

#include <string>

#include <gtest/gtest.h>

#include "support/HostConfigurationSvcSuite.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/infrastructure/services/core/_2014_07/HostConfigurationResponseMsg.h"
#include "wevlin/infrastructure/services/core/_2014_07/IHandleHostConfigurationSvc.h"

namespace {

namespace core = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Pair;

// The "_2014_07" host configuration: a list of key/value settings.
struct Version2014_07 {
  using Service = core::HostConfigurationSvc;
  using Handler = core::IHandleHostConfigurationSvc;
  using Response = core::HostConfigurationResponseMsg;

  static constexpr const char* kVersion = "_2014_07";
  static constexpr const char* kDescriptor =
      R"({"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", )"
      R"("SvcVersion": "_2014_07"})";
  static constexpr const char* kOtherDescriptor =
      R"({"FQN": "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", )"
      R"("SvcVersion": "_2014_02"})";
  static constexpr const char* kOtherVersionReply =
      R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
      R"(descriptor found for: tavo.wevlin.infrastructure.services.core.HostConfiguration)"
      R"(.host ver: _2014_02"}})";
  static constexpr const char* kEmptyReply = R"({"Version": "_2014_07", "Settings": []})";
  static constexpr const char* kConfigurationPayload =
      R"({"Settings": [{"Key": "a", "Value": "b"}]})";

  static std::string SetSomeValues(Response& response) {
    response.Settings.push_back(Pair("AllowGoHome", "true"));
    response.Settings.push_back(Pair("Theme", "dark \"night\""));
    return R"({"Version": "_2014_07", "Settings": [{"Key": "AllowGoHome", "Value": "true"}, )"
           R"({"Key": "Theme", "Value": "dark \"night\""}]})";
  }

  static std::string SetKioskHostType(Response& response) {
    response.Settings.push_back(Pair("HostType", "Kiosk"));
    return R"({"Version": "_2014_07", "Settings": [{"Key": "HostType", "Value": "Kiosk"}]})";
  }

  static std::string SetValuesForThePage(Response& response) {
    response.Settings.push_back(Pair("Theme", "dark"));
    return R"({"Version": "_2014_07", "Settings": [{"Key": "Theme", "Value": "dark"}]})";
  }
};

}  // namespace

namespace wevlin_test {

INSTANTIATE_TYPED_TEST_SUITE_P(Version, HostConfigurationSvcTest, Version2014_07,
                               HostConfigurationVersionName);
INSTANTIATE_TYPED_TEST_SUITE_P(Version, HostConfigurationSvcEndToEndTest, Version2014_07,
                               HostConfigurationVersionName);

}  // namespace wevlin_test
