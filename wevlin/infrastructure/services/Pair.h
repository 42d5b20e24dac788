#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_PAIR_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_PAIR_H_

#include <string>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services {

// One key with one string value: {"Key": "...", "Value": "..."}. Travels
// inside versioned messages and carries no version of its own.
//
// A value type; copies register their own fields. The class is final because
// its destructor is not virtual: lists of pairs may then destroy their
// elements safely. Not thread-safe.
class WEVLIN_EXPORT Pair final : public Interop::DataContract {
 public:
  // Creates a pair with both texts empty.
  Pair();
  // Creates the pair (`key`, `value`).
  Pair(const std::string& key, const std::string& value);
  Pair(const Pair& other);
  Pair& operator=(const Pair& other);
  ~Pair();

  std::string Key;    // JSON key "Key"
  std::string Value;  // JSON key "Value"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_PAIR_H_
