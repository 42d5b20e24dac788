#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_DATACONTRACT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_DATACONTRACT_H_

#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// Base of every message and record that travels as JSON.
//
// A derived class declares its data as ordinary members and registers each one
// under its JSON key in its constructor. The contract is then a view over those
// members: ToJsonString writes them as one JSON object, keys in registration
// order, and FromJsonString fills them from one. Registration binds a key to a
// member's address, so a contract must not outlive the members it registered
// (registering members of the object itself, as every message does, is safe).
//
// The contract owns its field descriptions and nothing else. The destructor is
// not virtual: destroy a contract through its own type, and make derived
// classes that are kept in containers final. The base copy constructor
// registers nothing, so a derived class that is copied registers its fields
// again in its own copy constructor.
//
// Not thread-safe; a contract is used by one thread at a time.
class WEVLIN_EXPORT DataContract {
 public:
  DataContract();
  ~DataContract();

  // Copies `other` into this contract through text: reads other.ToJsonString()
  // with FromJsonString, so exactly the fields that both register under the
  // same names are copied. Reading exceptions propagate.
  DataContract& operator=(const DataContract& other);

  // Returns the registered members as one JSON object, in registration order,
  // e.g. {"name": "x", "message": "y"}. A contract with no fields writes {}.
  virtual std::string ToJsonString() const;

  // Reads the registered members from the JSON object `text`, in
  // registration order. Members whose keys are absent keep their values;
  // unknown keys are ignored. Returns false when a member's reader reports
  // failure, after writing the line "DataContract::FromJsonString: failed to
  // read <key> from JSON data <raw value text>"; members after it are not
  // read. Returns true without changing anything when the object's structure
  // is malformed (a misplaced comma, colon or brace). Throws
  // std::runtime_error with the reader's text for a mistyped value (members
  // before it keep their new values) or when `text` is not an object. A string
  // member takes any value that is not a valid quoted string verbatim.
  bool FromJsonString(const std::string& text);

 protected:
  // Creates a contract with its own empty field list; nothing is copied and
  // nothing is registered. Derived classes register their own fields and copy
  // their values.
  DataContract(const DataContract& other);

  // Registers `member` under the JSON key `name`. The member must outlive the
  // contract. Registering a name twice writes it twice and reads both fields
  // from the same property.
  void RegisterField(const std::string& name, int& member);
  void RegisterField(const std::string& name, float& member);
  void RegisterField(const std::string& name, double& member);
  void RegisterField(const std::string& name, bool& member);
  void RegisterField(const std::string& name, std::string& member);
  void RegisterField(const std::string& name, JsonValue& member);
  // Registers a nested contract, written through its virtual ToJsonString.
  void RegisterField(const std::string& name, DataContract& member);
  // Registers a vector, written as a JSON array. Reading appends to the vector
  // without emptying it first.
  void RegisterField(const std::string& name, std::vector<int>& member);
  void RegisterField(const std::string& name, std::vector<float>& member);
  void RegisterField(const std::string& name, std::vector<double>& member);
  void RegisterField(const std::string& name, std::vector<bool>& member);
  void RegisterField(const std::string& name, std::vector<std::string>& member);

  // Registers a collection of any element type under `name`. `adder` reads one
  // element from its raw JSON text and appends it to `context` (true on
  // success); `getter` fills `elementTexts` with one JSON text per element,
  // which are written as [a, b]. Reading cuts the array and calls `adder` for
  // each element in order; an element the adder rejects is skipped, and the
  // field's result is that of cutting the array. `context` is passed back
  // unchanged and must outlive the contract.
  void RegisterCollection(const std::string& name, void* context,
                          bool (*adder)(void* context, const std::string& elementText),
                          void (*getter)(void* context, std::vector<std::string>& elementTexts));

 private:
  class FieldDescription;

  void AddField(FieldDescription* field);

  std::vector<FieldDescription*>* fields_;
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_DATACONTRACT_H_
