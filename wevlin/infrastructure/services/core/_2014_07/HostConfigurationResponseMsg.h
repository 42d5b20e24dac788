#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_HOSTCONFIGURATIONRESPONSEMSG_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_HOSTCONFIGURATIONRESPONSEMSG_H_

#include <vector>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// The host configuration that the page asks for with the "_2014_07" host
// configuration service: an open list of named settings,
// {"Version": "_2014_07", "Settings": [{"Key": "k", "Value": "v"}, ...]}.
// With no settings "Settings" is written as []. On reading, an element that
// is not a valid Pair is skipped and the others keep their order; reading
// appends to Settings.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT HostConfigurationResponseMsg final : public BaseMessage {
 public:
  // Creates a message of version "_2014_07" with no settings.
  HostConfigurationResponseMsg();
  // Registers the fields of the new object, then copies the version and the
  // settings.
  HostConfigurationResponseMsg(const HostConfigurationResponseMsg& other);
  // Copies the version and the settings.
  HostConfigurationResponseMsg& operator=(const HostConfigurationResponseMsg& other);
  ~HostConfigurationResponseMsg();

  std::vector<Pair> Settings;  // JSON key "Settings", in order

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_HOSTCONFIGURATIONRESPONSEMSG_H_
