#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_BODILESSNULLS_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_BODILESSNULLS_H_

#include <utility>

#include "wevlin/infrastructure/interop/JsonValue.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

// Null values without a body of their own: the state a value is left in when
// it is moved from. A reader reads each element or property into such a value,
// so that the value gets only the body of the kind read (a null costs
// nothing), instead of a Null body first that a setter then replaces.
// Belongs to one reader; internal.
class BodilessNulls {
 public:
  BodilessNulls() { JsonValue taken(std::move(spent_)); }

  // Returns a Null value that holds no body of its own.
  JsonValue Take() noexcept { return {std::move(spent_)}; }

 private:
  JsonValue spent_;  // always moved from
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_INTERNAL_BODILESSNULLS_H_
