#include "wevlin/infrastructure/interop/JsonSerializationHelper.h"

#include <memory>
#include <stdexcept>

#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/ExceptionHolder.h"
#include "wevlin/infrastructure/interop/ExceptionInfo.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonSerializationHelper {

void EncodeEmbeddedJson(const std::string& json, std::string& out) {
  Base64::EncodeString(json, out);
}

void DecodeEmbeddedJson(const std::string& text, std::string& out) {
  Base64::DecodeString(text, out);
}

std::string GetServiceDescJson(ITargetServiceDesc* target) {
  if (target == nullptr) throw std::invalid_argument("target");
  DataServiceDescriptor descriptor(target->GetFQN(), target->GetSvcVersion());
  return descriptor.ToJsonString();
}

std::string GetJsonForException(const std::exception& e) {
  ExceptionHolder holder;
  holder.Exception = ExceptionInfo(e);
  return holder.ToJsonString();
}

template <>
std::string Serialize<std::vector<DataServiceDescriptor*>>(
    const std::vector<DataServiceDescriptor*>& value) {
  std::string text = "[";
  bool first = true;
  for (const DataServiceDescriptor* descriptor : value) {
    if (!first) text += ", ";
    first = false;
    text += descriptor->ToJsonString();
  }
  text += "]";
  return text;
}

template <>
std::vector<DataServiceDescriptor*>* Deserialize<std::vector<DataServiceDescriptor*>>(
    std::string text) {
  std::vector<std::string> elements;
  // Throws for a text that is not an array, before anything is allocated.
  const bool parsed = internal::ParseArray(text, elements);
  auto result = std::make_unique<std::vector<DataServiceDescriptor*>>();
  if (!parsed) return result.release();
  result->reserve(elements.size());
  for (const std::string& element : elements) {
    auto descriptor = std::make_unique<DataServiceDescriptor>();
    bool ok = false;
    try {
      ok = descriptor->FromJsonString(element);
    } catch (const std::exception&) {
      // An element that is not a descriptor object is skipped like one that
      // reads false; the rest of the list is still taken.
      ok = false;
    }
    if (ok) result->push_back(descriptor.release());
  }
  return result.release();
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonSerializationHelper
