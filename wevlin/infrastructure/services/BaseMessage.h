#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_BASEMESSAGE_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_BASEMESSAGE_H_

#include <string>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

// Base of every service message: a data contract that carries the interface
// version of its service under the key "Version", registered first, before
// the derived class registers its own members.
//
// Nothing compares the version on reading: a message received with another
// "Version" is accepted and GetVersion() then returns the received text.
//
// Copies register their own "Version" field, so a copy serialises like the
// original. The destructor is not virtual: destroy messages through their own
// type. A value type; not thread-safe.
class WEVLIN_EXPORT BaseMessage : public Interop::DataContract {
 public:
  // Creates a message of interface version `version`, e.g. "_2014_02".
  explicit BaseMessage(const std::string& version);
  BaseMessage(const BaseMessage& other);
  BaseMessage& operator=(const BaseMessage& other);
  ~BaseMessage();

  // Returns the version given to the constructor, or the one last read.
  const std::string& GetVersion() const;

 private:
  std::string version_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_BASEMESSAGE_H_
