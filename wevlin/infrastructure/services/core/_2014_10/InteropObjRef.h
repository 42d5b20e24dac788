#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_10_INTEROPOBJREF_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_10_INTEROPOBJREF_H_

#include <string>

#include "wevlin/infrastructure/interop/DataContract.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_10 {

// The typed form of an object reference: {"Type": "...", "Data": "..."}.
// "Type" names the kind of reference (UID_TYPE(), OCCURRENCE_TYPE() or
// OCCURRENCE2_TYPE()) and "Data" holds the reference in the form that kind
// defines; the library neither builds nor reads that form. Both texts are
// empty by default. No "Version" of its own.
//
// A value type; copies register their own fields, so a copy serialises like
// the original. The class is final because its destructor is not virtual:
// containers and smart pointers may then destroy it safely. Not thread-safe.
class WEVLIN_EXPORT InteropObjRef final : public Interop::DataContract {
 public:
  // Creates a reference whose two texts are empty.
  InteropObjRef();
  // Creates the reference of kind `type` with the text `data`.
  InteropObjRef(const std::string& type, const std::string& data);
  // Registers the fields of the new object, then copies the two texts.
  InteropObjRef(const InteropObjRef& other);
  // Copies the two texts.
  InteropObjRef& operator=(const InteropObjRef& other);
  ~InteropObjRef();

  // Returns the kind name "UID".
  static std::string UID_TYPE();
  // Returns the kind name "Occurrence".
  static std::string OCCURRENCE_TYPE();
  // Returns the kind name "Occurrence2".
  static std::string OCCURRENCE2_TYPE();

  std::string Type;  // JSON key "Type": the kind of reference
  std::string Data;  // JSON key "Data": the reference itself

 private:
  void RegisterFields();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_10

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CORE_2014_10_INTEROPOBJREF_H_
