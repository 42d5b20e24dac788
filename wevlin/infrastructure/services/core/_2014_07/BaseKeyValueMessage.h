#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_BASEKEYVALUEMESSAGE_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_BASEKEYVALUEMESSAGE_H_

#include <vector>

#include "wevlin/infrastructure/services/BaseMessage.h"
#include "wevlin/infrastructure/services/Pair.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07 {

// A message of version "_2014_07" whose whole payload is a list of key/value
// records under "Data": {"Version": "_2014_07", "Data": [{"Key": "k",
// "Value": "v"}, ...]}. On reading, an element that is not a valid Pair is
// skipped; the others keep their order. Reading appends to Data.
//
// A value type; copies register their own fields. Not thread-safe.
class WEVLIN_EXPORT BaseKeyValueMessage : public BaseMessage {
 public:
  BaseKeyValueMessage();
  BaseKeyValueMessage(const BaseKeyValueMessage& other);
  BaseKeyValueMessage& operator=(const BaseKeyValueMessage& other);
  ~BaseKeyValueMessage();

  std::vector<Pair> Data;  // JSON key "Data"

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_07_BASEKEYVALUEMESSAGE_H_
