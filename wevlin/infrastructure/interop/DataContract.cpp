#include "wevlin/infrastructure/interop/DataContract.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/internal/JsonText.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// One registered member: its JSON key and how to read and write it. The
// description points to the member and does not own it.
class DataContract::FieldDescription {
 public:
  explicit FieldDescription(const std::string& name) : name_(name) {}
  FieldDescription(const FieldDescription&) = delete;
  FieldDescription& operator=(const FieldDescription&) = delete;
  virtual ~FieldDescription() = default;

  // Returns a copy of the JSON key.
  virtual std::string GetName() const { return name_; }

  // Reads the member from the raw JSON text of its property. Returns false or
  // throws std::runtime_error when the text does not hold such a member.
  virtual bool ReadJson(std::string_view raw) = 0;

  // Returns the member's JSON text.
  virtual std::string WriteJson() const = 0;

  // Returns the JSON key without copying it.
  const std::string& Name() const { return name_; }

 private:
  std::string name_;
};

namespace {

// The field classes. Each takes its base class as the template parameter
// because the base, DataContract::FieldDescription, is private to
// DataContract: only DataContract's own members may name it, and they
// instantiate these templates with it.

template <typename Base>
class BooleanField final : public Base {
 public:
  BooleanField(const std::string& name, bool& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override { return internal::ReadJsonBoolView(raw, *member_); }
  std::string WriteJson() const override { return internal::FormatBool(*member_); }

 private:
  bool* member_;
};

template <typename Base>
class IntegerField final : public Base {
 public:
  IntegerField(const std::string& name, int& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override { return internal::ReadJsonIntView(raw, *member_); }
  std::string WriteJson() const override { return internal::FormatInt(*member_); }

 private:
  int* member_;
};

template <typename Base>
class FloatField final : public Base {
 public:
  FloatField(const std::string& name, float& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override {
    return internal::ReadJsonFloatView(raw, *member_);
  }
  std::string WriteJson() const override { return internal::FormatFloat(*member_); }

 private:
  float* member_;
};

template <typename Base>
class DoubleField final : public Base {
 public:
  DoubleField(const std::string& name, double& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override {
    return internal::ReadJsonDoubleView(raw, *member_);
  }
  std::string WriteJson() const override { return internal::FormatDouble(*member_); }

 private:
  double* member_;
};

// Reads a quoted string; any other text (a number, a word, a malformed
// string) is kept verbatim, blanks before the next comma or brace included.
bool ReadStringOrRaw(std::string_view raw, std::string& out) {
  try {
    internal::ReadJsonStringView(raw, out);
  } catch (const std::runtime_error&) {
    out.assign(raw);
  }
  return true;
}

template <typename Base>
class StringField final : public Base {
 public:
  StringField(const std::string& name, std::string& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override { return ReadStringOrRaw(raw, *member_); }
  std::string WriteJson() const override { return internal::FormatJsonString(*member_); }

 private:
  std::string* member_;
};

template <typename Base>
class JsonValueField final : public Base {
 public:
  JsonValueField(const std::string& name, JsonValue& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override { return internal::ReadJsonValue(raw, *member_); }
  std::string WriteJson() const override { return member_->ToJsonString(); }

 private:
  JsonValue* member_;
};

template <typename Base>
class SubObjectField final : public Base {
 public:
  SubObjectField(const std::string& name, DataContract& member) : Base(name), member_(&member) {}
  bool ReadJson(std::string_view raw) override { return member_->FromJsonString(std::string(raw)); }
  std::string WriteJson() const override { return member_->ToJsonString(); }

 private:
  DataContract* member_;
};

// While a collection field hands the elements cut from its array to its
// adder, one by one, how many are still to come, the one being handed over
// included; 0 outside such a reading. The adders of the vectors of scalars
// below read it on entry and make room for all of them at once. It belongs
// to the calling thread; a nested collection sets it again for its own
// elements, so it is only meaningful on entry to the adder.
std::size_t& ElementsLeft() noexcept {
  thread_local std::size_t left = 0;
  return left;
}

using Adder = bool (*)(void* context, const std::string& elementText);
using Getter = void (*)(void* context, std::vector<std::string>& elementTexts);

template <typename Base>
class CollectionField final : public Base {
 public:
  CollectionField(const std::string& name, void* context, Adder adder, Getter getter)
      : Base(name), context_(context), adder_(adder), getter_(getter) {}

  // Hands every element cut from the array to the adder, in order. The
  // adder's own result does not count (an element it rejects is skipped);
  // the result is that of cutting the array.
  bool ReadJson(std::string_view raw) override {
    std::vector<std::string_view> elements;
    elements.reserve(8);  // a short list in one allocation
    const bool cut = internal::ParseArrayView(raw, elements);
    std::string elementText;
    // Back to 0 however the reading ends, an adder's exception included.
    struct Left {
      std::size_t& count = ElementsLeft();
      ~Left() { count = 0; }
    } left;
    for (std::size_t i = 0; i < elements.size(); ++i) {
      elementText.assign(elements[i]);
      left.count = elements.size() - i;
      adder_(context_, elementText);
    }
    return cut;
  }

  std::string WriteJson() const override {
    std::vector<std::string> elementTexts;
    getter_(context_, elementTexts);
    std::size_t length = 2;
    for (const std::string& text : elementTexts) length += text.size() + 2;
    std::string json;
    json.reserve(length);
    json += '[';
    for (std::size_t i = 0; i < elementTexts.size(); ++i) {
      if (i != 0) json += ", ";
      json += elementTexts[i];
    }
    json += ']';
    return json;
  }

 private:
  void* context_;
  Adder adder_;
  Getter getter_;
};

// Element readers and list writers of the vectors of scalars, with the rules
// of the matching scalar fields.

template <typename T>
std::vector<T>& VectorAt(void* context) {
  return *static_cast<std::vector<T>*>(context);
}

// Returns the vector at `context` that an adder appends to, with room for the
// elements still to come (one allocation for a short list instead of one per
// doubling), and growing at least twofold, so that reading into the same
// vector again and again still costs amortized constant time per element.
template <typename T>
std::vector<T>& GrowingVectorAt(void* context) {
  auto& values = VectorAt<T>(context);
  const std::size_t left = ElementsLeft();
  if (left > 1 && values.capacity() - values.size() < left) {
    values.reserve(std::max(values.size() + left, 2 * values.capacity()));
  }
  return values;
}

bool AddInt(void* context, const std::string& text) {
  int value = 0;
  internal::ReadJsonIntView(text, value);
  GrowingVectorAt<int>(context).push_back(value);
  return true;
}

bool AddFloat(void* context, const std::string& text) {
  float value = 0.0F;
  internal::ReadJsonFloatView(text, value);
  GrowingVectorAt<float>(context).push_back(value);
  return true;
}

bool AddDouble(void* context, const std::string& text) {
  double value = 0.0;
  internal::ReadJsonDoubleView(text, value);
  GrowingVectorAt<double>(context).push_back(value);
  return true;
}

bool AddBool(void* context, const std::string& text) {
  bool value = false;
  internal::ReadJsonBoolView(text, value);
  GrowingVectorAt<bool>(context).push_back(value);
  return true;
}

bool AddString(void* context, const std::string& text) {
  std::string value;
  ReadStringOrRaw(text, value);
  GrowingVectorAt<std::string>(context).push_back(std::move(value));
  return true;
}

template <typename T, std::string (*Format)(T)>
void GetTexts(void* context, std::vector<std::string>& texts) {
  const std::vector<T>& values = VectorAt<T>(context);
  texts.reserve(texts.size() + values.size());
  for (T value : values) texts.push_back(Format(value));
}

void GetStrings(void* context, std::vector<std::string>& texts) {
  const std::vector<std::string>& values = VectorAt<std::string>(context);
  texts.reserve(texts.size() + values.size());
  for (const std::string& value : values) texts.push_back(internal::FormatJsonString(value));
}

}  // namespace

namespace {

// The room a new field list starts with: most contracts register fewer
// fields, so that registering them takes no further allocation.
constexpr std::size_t kFieldRoom = 4;

}  // namespace

DataContract::DataContract() : fields_(new std::vector<FieldDescription*>()) {
  fields_->reserve(kFieldRoom);
}

DataContract::DataContract(const DataContract& /*other*/)
    : fields_(new std::vector<FieldDescription*>()) {
  fields_->reserve(kFieldRoom);
}

DataContract::~DataContract() {
  for (FieldDescription* field : *fields_) delete field;
  delete fields_;
}

DataContract& DataContract::operator=(const DataContract& other) {
  // Reading its own text would append every vector to itself.
  if (this != &other) FromJsonString(other.ToJsonString());
  return *this;
}

std::string DataContract::ToJsonString() const {
  std::string json = "{";
  bool first = true;
  for (const FieldDescription* field : *fields_) {
    if (!first) json += ", ";
    first = false;
    json += '"';
    json += field->Name();
    json += "\": ";
    json += field->WriteJson();
  }
  json += '}';
  return json;
}

namespace {

// The properties of one object, looked up by name: the last property of a
// name counts, as when the text is cut into a map. A record's few properties
// are searched from the back; many are sorted by name first, keeping the text
// order among equal names.
class PropertyLookup {
 public:
  explicit PropertyLookup(std::vector<internal::RawProperty>& properties)
      : properties_(properties) {
    if (properties_.size() > kSearchedInPlace) {
      std::stable_sort(properties_.begin(), properties_.end(), ByName);
    }
  }

  // Returns the raw text of the last property named `name`, or null.
  const std::string_view* Find(const std::string& name) const {
    if (properties_.size() <= kSearchedInPlace) {
      for (auto it = properties_.rbegin(); it != properties_.rend(); ++it) {
        if (it->name == name) return &it->value;
      }
      return nullptr;
    }
    const internal::RawProperty key{name, {}};
    const auto last = std::upper_bound(properties_.begin(), properties_.end(), key, ByName);
    if (last == properties_.begin() || std::prev(last)->name != name) return nullptr;
    return &std::prev(last)->value;
  }

 private:
  static constexpr std::size_t kSearchedInPlace = 16;

  static bool ByName(const internal::RawProperty& a, const internal::RawProperty& b) {
    return a.name < b.name;
  }

  std::vector<internal::RawProperty>& properties_;
};

}  // namespace

bool DataContract::FromJsonString(const std::string& text) {
  std::vector<internal::RawProperty> properties;
  // Room for a record's properties in one allocation.
  properties.reserve(fields_->size() + 2);
  // A malformed object changes nothing and still counts as read.
  if (!internal::ParseObjectView(text, properties)) return true;
  const PropertyLookup lookup(properties);
  for (FieldDescription* field : *fields_) {
    const std::string_view* raw = lookup.Find(field->Name());
    if (raw == nullptr) continue;
    if (!field->ReadJson(*raw)) {
      Base::internal::WriteLogLine("DataContract::FromJsonString: failed to read " + field->Name() +
                                   " from JSON data " + std::string(*raw));
      return false;
    }
  }
  return true;
}

void DataContract::RegisterField(const std::string& name, int& member) {
  AddField(new IntegerField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, float& member) {
  AddField(new FloatField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, double& member) {
  AddField(new DoubleField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, bool& member) {
  AddField(new BooleanField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, std::string& member) {
  AddField(new StringField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, JsonValue& member) {
  AddField(new JsonValueField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, DataContract& member) {
  AddField(new SubObjectField<FieldDescription>(name, member));
}

void DataContract::RegisterField(const std::string& name, std::vector<int>& member) {
  RegisterCollection(name, &member, &AddInt, &GetTexts<int, internal::FormatInt>);
}

void DataContract::RegisterField(const std::string& name, std::vector<float>& member) {
  RegisterCollection(name, &member, &AddFloat, &GetTexts<float, internal::FormatFloat>);
}

void DataContract::RegisterField(const std::string& name, std::vector<double>& member) {
  RegisterCollection(name, &member, &AddDouble, &GetTexts<double, internal::FormatDouble>);
}

void DataContract::RegisterField(const std::string& name, std::vector<bool>& member) {
  RegisterCollection(name, &member, &AddBool, &GetTexts<bool, internal::FormatBool>);
}

void DataContract::RegisterField(const std::string& name, std::vector<std::string>& member) {
  RegisterCollection(name, &member, &AddString, &GetStrings);
}

void DataContract::RegisterCollection(const std::string& name, void* context,
                                      bool (*adder)(void* context, const std::string& elementText),
                                      void (*getter)(void* context,
                                                     std::vector<std::string>& elementTexts)) {
  AddField(new CollectionField<FieldDescription>(name, context, adder, getter));
}

void DataContract::AddField(FieldDescription* field) {
  std::unique_ptr<FieldDescription> owned(field);
  fields_->push_back(owned.get());
  static_cast<void>(owned.release());  // the list owns it now
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
