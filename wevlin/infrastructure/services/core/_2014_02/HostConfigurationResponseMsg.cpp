#include "wevlin/infrastructure/services/core/_2014_02/HostConfigurationResponseMsg.h"

#include "wevlin/infrastructure/services/ServiceNames.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02 {

HostConfigurationResponseMsg::HostConfigurationResponseMsg()
    : BaseMessage(ServiceVersions::k2014_02) {
  RegisterFields();
}

HostConfigurationResponseMsg::HostConfigurationResponseMsg(
    const HostConfigurationResponseMsg& other)
    : BaseMessage(other),
      AllowGoHome(other.AllowGoHome),
      AllowThemeChange(other.AllowThemeChange),
      AllowUserSessionChange(other.AllowUserSessionChange),
      HasFullScreenSupport(other.HasFullScreenSupport),
      HostType(other.HostType),
      ShowVelmoraLogo(other.ShowVelmoraLogo),
      Theme(other.Theme) {
  RegisterFields();
}

HostConfigurationResponseMsg& HostConfigurationResponseMsg::operator=(
    const HostConfigurationResponseMsg& other) {
  if (this != &other) {
    BaseMessage::operator=(other);
    AllowGoHome = other.AllowGoHome;
    AllowThemeChange = other.AllowThemeChange;
    AllowUserSessionChange = other.AllowUserSessionChange;
    HasFullScreenSupport = other.HasFullScreenSupport;
    HostType = other.HostType;
    ShowVelmoraLogo = other.ShowVelmoraLogo;
    Theme = other.Theme;
  }
  return *this;
}

HostConfigurationResponseMsg::~HostConfigurationResponseMsg() = default;

void HostConfigurationResponseMsg::RegisterFields() {
  RegisterField("AllowGoHome", AllowGoHome);
  RegisterField("AllowThemeChange", AllowThemeChange);
  RegisterField("AllowUserSessionChange", AllowUserSessionChange);
  RegisterField("HasFullScreenSupport", HasFullScreenSupport);
  RegisterField("HostType", HostType);
  RegisterField("ShowVelmoraLogo", ShowVelmoraLogo);
  RegisterField("Theme", Theme);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02
