#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_HOSTCONFIGURATIONRESPONSEMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_HOSTCONFIGURATIONRESPONSEMSG_H_

#include <string>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02 {

// The host configuration that the page asks for with the "_2014_02" host
// configuration service. It is written with "Version" first and then seven
// string members in this order: "AllowGoHome", "AllowThemeChange",
// "AllowUserSessionChange", "HasFullScreenSupport", "HostType",
// "ShowVelmoraLogo", "Theme"; all of them are empty by default and always
// written, empty or not.
//
// The flags are strings, not JSON booleans: fill them with the texts the page
// expects (e.g. "true" or "false"); the library neither sets nor reads them.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT HostConfigurationResponseMsg final : public BaseMessage {
 public:
  // Creates a message of version "_2014_02" with every member empty.
  HostConfigurationResponseMsg();
  // Registers the fields of the new object, then copies every value.
  HostConfigurationResponseMsg(const HostConfigurationResponseMsg& other);
  // Copies the version and the seven members.
  HostConfigurationResponseMsg& operator=(const HostConfigurationResponseMsg& other);
  ~HostConfigurationResponseMsg();

  std::string AllowGoHome;             // whether the page may offer to go to its home page
  std::string AllowThemeChange;        // whether the page may change its theme
  std::string AllowUserSessionChange;  // whether the page may change the user's session
  std::string HasFullScreenSupport;    // whether the host can show the page full screen
  std::string HostType;                // the kind of host application
  std::string ShowVelmoraLogo;         // whether the page shows the maker's logo
  std::string Theme;                   // the host's current theme

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_02_HOSTCONFIGURATIONRESPONSEMSG_H_
