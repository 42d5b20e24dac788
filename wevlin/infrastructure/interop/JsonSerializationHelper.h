#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_JSONSERIALIZATIONHELPER_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_JSONSERIALIZATIONHELPER_H_

#include <exception>
#include <string>
#include <vector>

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/wevlin_export.h"

// Helpers that turn descriptors, descriptor lists, failures and embedded JSON
// documents into text and back. Stateless; any thread may call them.
namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonSerializationHelper {

// Writes `json` as Base64 into `out` (replacing it), so that a JSON document
// can travel inside a string member of another without a second level of
// escaping.
WEVLIN_EXPORT void EncodeEmbeddedJson(const std::string& json, std::string& out);

// Decodes Base64 `text` into `out` (replacing it). Never fails; see
// Base64::DecodeString for how malformed text is read.
WEVLIN_EXPORT void DecodeEmbeddedJson(const std::string& text, std::string& out);

// Returns the descriptor JSON of `target`, e.g.
// {"FQN": "a.b.c", "SvcVersion": "2"}. Throws std::invalid_argument "target"
// when `target` is null.
WEVLIN_EXPORT std::string GetServiceDescJson(ITargetServiceDesc* target);

// Returns the JSON record of `e`, e.g.
// {"Exception": {"name": "std::runtime_error", "message": "..."}}.
WEVLIN_EXPORT std::string GetJsonForException(const std::exception& e);

// Writes a value as JSON text. Defined for lists of descriptors.
template <typename T>
std::string Serialize(const T& value);

// Reads a value from JSON text into a newly allocated object that the caller
// owns. Defined for lists of descriptors.
template <typename T>
T* Deserialize(std::string text);

// Returns "[" + each descriptor's ToJsonString() joined by ", " + "]"; an
// empty list gives []. Precondition: no element is null.
template <>
WEVLIN_EXPORT std::string Serialize<std::vector<DataServiceDescriptor*>>(
    const std::vector<DataServiceDescriptor*>& value);

// Returns a new vector (never null) of new descriptors read from the JSON
// array `text`; the caller owns the vector and every element. Elements that do
// not read as a descriptor are skipped; a malformed array gives an empty
// vector. Throws std::runtime_error "JSON data is not an array" when `text`
// does not start with "[" (nothing is leaked).
template <>
WEVLIN_EXPORT std::vector<DataServiceDescriptor*>* Deserialize<std::vector<DataServiceDescriptor*>>(
    std::string text);

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonSerializationHelper

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_JSONSERIALIZATIONHELPER_H_
