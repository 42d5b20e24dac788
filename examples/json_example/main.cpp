// A tour of wevlin's JSON model: builds a document with JsonObject and
// JsonValue, writes it, reads it back, and round-trips a data contract that
// has a field of every kind. Exits with 1 if anything does not come back as
// it went out.

#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "wevlin/wevlin.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataContract;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonObject;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::JsonValue;

// A record nested inside the message below.
class Address : public DataContract {
 public:
  Address() {
    RegisterField("street", street);
    RegisterField("number", number);
  }
  std::string street;
  int number = 0;
};

// A message with one field of every kind a contract supports. Keys are
// written in this registration order.
class CustomerMessage : public DataContract {
 public:
  CustomerMessage() {
    RegisterField("id", id);
    RegisterField("rating", rating);
    RegisterField("balance", balance);
    RegisterField("active", active);
    RegisterField("name", name);
    RegisterField("extra", extra);
    RegisterField("address", address);
    RegisterField("orderIds", orderIds);
    RegisterField("weights", weights);
    RegisterField("prices", prices);
    RegisterField("flags", flags);
    RegisterField("tags", tags);
  }

  int id = 0;
  float rating = 0.0f;
  double balance = 0.0;
  bool active = false;
  std::string name;
  JsonValue extra;
  Address address;
  std::vector<int> orderIds;
  std::vector<float> weights;
  std::vector<double> prices;
  std::vector<bool> flags;
  std::vector<std::string> tags;
};

bool Check(bool ok, const std::string& what) {
  std::cout << (ok ? "  ok:   " : "  FAIL: ") << what << "\n";
  return ok;
}

bool DocumentTour() {
  std::cout << "Building a document with JsonObject and JsonValue\n";
  JsonObject settings;
  settings.SetProperty("theme", JsonValue("dark"));
  settings.SetProperty("fontSize", JsonValue(12));
  settings.SetProperty("zoom", JsonValue(1.25));

  JsonValue recent;
  recent.PushBack(JsonValue("report.pdf"));
  recent.PushBack(JsonValue("notes/today.txt"));

  JsonObject document;
  document.SetProperty("version", JsonValue(3));
  document.SetProperty("user", JsonValue("Ana \"the admin\""));
  document.SetProperty("enabled", JsonValue(true));
  document.SetProperty("settings", JsonValue(settings));
  document.SetProperty("recent", recent);
  document.SetProperty("lastError", JsonValue());

  const std::string text = document.ToJsonString();
  std::cout << "  written: " << text << "\n";

  JsonObject back;
  bool ok = Check(back.FromJsonString(text), "the text reads back");
  ok &= Check(back.ToJsonString() == text, "it writes the same text again");
  ok &= Check(back.GetProperty("settings").GetAsObject().GetProperty("fontSize").GetAsInt() == 12,
              "settings.fontSize is 12");
  ok &= Check(back.GetProperty("recent").GetAsArray().size() == 2, "two recent files");
  ok &= Check(back.GetProperty("lastError").GetType() == JsonValue::Null, "lastError is null");

  // A number is a Double only if its text has a decimal point.
  JsonValue two(2.0);
  JsonValue reread;
  reread.FromJsonString(two.ToJsonString());
  std::cout << "  the Double 2.0 is written as " << two.ToJsonString() << " and reads back as "
            << (reread.GetType() == JsonValue::Integer ? "an Integer" : "something else") << "\n";

  JsonValue broken;
  try {
    broken.FromJsonString("{\"a\": 1");
    ok &= Check(false, "a cut-off object is rejected");
  } catch (const std::runtime_error& e) {
    ok &= Check(std::string(e.what()) == "JSON data is not an object",
                std::string("a cut-off object is rejected: ") + e.what());
  }
  return ok;
}

bool ContractTour() {
  std::cout << "Round-tripping a data contract with every kind of field\n";
  CustomerMessage out;
  out.id = 1042;
  out.rating = 4.5f;
  out.balance = 1234.56;
  out.active = true;
  out.name =
      "Mar\xc3\xad"
      "a / Tab\there";
  out.extra.FromJsonString("{\"source\": \"web\", \"visits\": [1, 2, 3]}");
  out.address.street = "Main Street";
  out.address.number = 7;
  out.orderIds = {17, 23, 42};
  out.weights = {0.1f, 2.5f};
  out.prices = {0.1, 19.99};
  out.flags = {true, false, true};
  out.tags = {"vip", "newsletter"};

  const std::string text = out.ToJsonString();
  std::cout << "  written: " << text << "\n";

  CustomerMessage in;
  bool ok = Check(in.FromJsonString(text), "the message reads back");
  ok &= Check(in.ToJsonString() == text, "it writes the same text again");
  ok &= Check(in.id == out.id && in.rating == out.rating && in.balance == out.balance &&
                  in.active == out.active && in.name == out.name,
              "scalars and string match");
  ok &= Check(in.extra.ToJsonString() == out.extra.ToJsonString(), "the JSON value matches");
  ok &= Check(in.address.street == out.address.street && in.address.number == out.address.number,
              "the nested address matches");
  ok &= Check(in.orderIds == out.orderIds && in.weights == out.weights && in.prices == out.prices &&
                  in.flags == out.flags && in.tags == out.tags,
              "every list matches");

  // Reading into a list appends to it.
  CustomerMessage more;
  more.tags = {"existing"};
  more.FromJsonString("{\"tags\": [\"added\"]}");
  ok &= Check(more.tags == std::vector<std::string>{"existing", "added"},
              "reading a list appends: [existing, added]");
  return ok;
}

}  // namespace

int main() {
  const bool document = DocumentTour();
  const bool contract = ContractTour();
  const bool ok = document && contract;
  std::cout << (ok ? "All round trips matched.\n" : "Some round trips did not match.\n");
  return ok ? 0 : 1;
}
