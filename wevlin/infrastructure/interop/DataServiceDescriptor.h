#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_DATASERVICEDESCRIPTOR_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_DATASERVICEDESCRIPTOR_H_

#include <string>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The wire form of a service descriptor: a JSON object with the string members
// "FQN" and "SvcVersion", written in that order, e.g.
// {"FQN": "a.b.c", "SvcVersion": "2"}.
//
// A list of these, as JSON, is what host and page exchange when they announce
// their services. Read with FromJsonString: a missing key keeps its value.
//
// The destructor is not virtual (as for every DataContract): destroy it through
// its own type. The class is final, so that deleting one (Deserialize hands out
// heap-allocated descriptors) is safe and draws no compiler warning about the
// non-virtual destructor. Not thread-safe.
class WEVLIN_EXPORT DataServiceDescriptor final : public DataContract {
 public:
  // Creates a descriptor with both texts empty.
  DataServiceDescriptor();
  // Creates a descriptor of service `fqn` in version `version`.
  DataServiceDescriptor(std::string fqn, std::string version);
  // Creates a copy with its own two fields registered once, bound to its own
  // members, holding the same texts.
  DataServiceDescriptor(const DataServiceDescriptor& other);
  // Copies the texts; registers nothing further.
  DataServiceDescriptor& operator=(const DataServiceDescriptor& other);
  ~DataServiceDescriptor();

  std::string FQN;         // JSON key "FQN"
  std::string SvcVersion;  // JSON key "SvcVersion"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_DATASERVICEDESCRIPTOR_H_
