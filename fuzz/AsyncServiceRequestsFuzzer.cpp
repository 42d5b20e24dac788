// Sends a request to the asynchronous SOA service or to the host
// authentication service through the HostAPI of a page that has finished the
// handshake, then answers it through the service's callback, with the page
// answering the reply event with any text.
//
// Input, cut at the byte 0x1F: selector (bit 0 of its first byte: 0 SOA,
// 1 authentication; bit 1: the authentication outcome), request payload,
// answer text, error name, error message, and the page's answer to the reply
// event.
//
// Checked: the event answers "" and leaves exactly one request pending, or
// answers one of the four request errors and leaves none; answering sends
// exactly one reply event to the service the request named, and the reply
// reads back with the request's cache identifier, the answer (Base64) or the
// error record, and the version the request asked for (the hand-written
// "_2015_10" reply is not read back). No exception escapes the callback,
// whatever the page answers, and every record is freed.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "HostHarness.h"
#include "wevlin/infrastructure/interop/Base64.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/JsonObject.h"
#include "wevlin/infrastructure/interop/JsonValue.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace soa02 = Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02;

using interop::JsonObject;
using interop::JsonValue;
using wevlin_fuzz::Require;

const char kSoa[] =
    "{\"FQN\": \"tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host\", "
    "\"SvcVersion\": \"_2014_02\"}";
const char kAuth[] =
    "{\"FQN\": \"tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host\", "
    "\"SvcVersion\": \"_2014_02\"}";

std::string Record(const std::string& message) {
  return "{\"Exception\": {\"name\": \"std::invalid_argument\", \"message\": \"" + message + "\"}}";
}

bool IsRequestError(const std::string& answer) {
  return answer == Record("Bad payload data") || answer == Record("CacheId is missing") ||
         answer == Record("ReplyServiceDescriptor is missing") ||
         answer == Record("ReplyServiceDescriptor is incorrect");
}

// Returns the string property `name` of `object`; fails unless it is one.
std::string StringOf(const JsonObject& object, const std::string& name, const std::string& reply) {
  Require(object.HasProperty(name) && object.GetProperty(name).GetType() == JsonValue::String,
          "the reply has no string " + name, {reply});
  return object.GetProperty(name).GetAsString();
}

// Checks the error record in the reply: null without an error, else the
// given name and message.
void CheckException(const JsonObject& reply, const std::string& text, const std::string& name,
                    const std::string& message) {
  Require(reply.HasProperty("Exception"), "the reply has no Exception", {text});
  const JsonValue& exception = reply.GetProperty("Exception");
  if (name.empty() && message.empty()) {
    Require(exception.GetType() == JsonValue::Null, "a reply without error has a record", {text});
    return;
  }
  Require(exception.GetType() == JsonValue::Object, "the reply's record is no object", {text});
  Require(StringOf(exception.GetAsObject(), "name", text) == name &&
              StringOf(exception.GetAsObject(), "message", text) == message,
          "the reply's record differs from the error", {text, name, message});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wevlin_fuzz::SilenceLog();
  const std::vector<std::string> parts = wevlin_fuzz::Split(wevlin_fuzz::AsText(data, size), 6);
  const unsigned selector = parts[0].empty() ? 0 : static_cast<unsigned char>(parts[0][0]);
  const bool auth = (selector & 1) != 0;
  const bool authenticated = (selector & 2) != 0;
  const std::string& payload = parts[1];
  const std::string& answer = parts[2];
  const std::string& errorName = parts[3];
  const std::string& errorMessage = parts[4];

  wevlin_fuzz::HostHarness host;
  Require(host.Talk().empty(), "the handshake failed");
  host.Page().EventReply = parts[5];
  host.Page().ClearRecords();

  const std::string accepted = host.Api().tavoHostEvent(auth ? kAuth : kSoa, payload);
  const std::size_t pending = auth ? host.PendingAuthCalls() : host.PendingSoaCalls();
  if (!accepted.empty()) {
    Require(IsRequestError(accepted), "a request was refused with another answer",
            {payload, accepted});
    Require(pending == 0, "a refused request is pending");
    return 0;
  }
  Require(pending == 1, "an accepted request is not pending", {payload});

  // The request as the service read it.
  soa02::SoaJsonRequestMsg request;
  Require(request.FromJsonString(payload), "an accepted request does not read", {payload});
  interop::DataServiceDescriptor target;
  Require(target.FromJsonString(request.ReplyServiceDescriptor),
          "an accepted reply descriptor does not read", {payload});

  if (auth) {
    host.AnswerAuth(authenticated, errorName, errorMessage);
  } else {
    host.AnswerSoa(answer, errorName, errorMessage);
  }
  const auto events = host.Page().CallsOf("tavoInterop_WebEvent");
  Require(events.size() == 1, "answering did not send exactly one reply event", {payload});
  Require(events[0].args.size() == 2, "the reply event has not two arguments", {payload});
  interop::DataServiceDescriptor sentTo;
  Require(sentTo.FromJsonString(events[0].args[0]) && sentTo.FQN == target.FQN &&
              sentTo.SvcVersion == target.SvcVersion,
          "the reply went to another service", {payload, events[0].args[0]});

  const std::string& text = events[0].args[1];
  const bool hasError = !errorName.empty() || !errorMessage.empty();
  if (!auth && !hasError && request.GetVersion() == "_2015_10") return 0;
  JsonObject reply;
  bool read = false;
  try {
    read = reply.FromJsonString(text);
  } catch (const std::exception& e) {
    wevlin_fuzz::Fail(std::string("the reply does not read: ") + e.what(), {payload, text});
  }
  Require(read, "the reply reads false", {payload, text});
  CheckException(reply, text, errorName, errorMessage);
  if (auth) {
    Require(StringOf(reply, "Version", text) == "_2014_02", "the reply's version", {text});
    Require(StringOf(reply, "CacheId", text).empty(), "the reply has a cache identifier", {text});
    Require(reply.HasProperty("IsAuthenticated") &&
                reply.GetProperty("IsAuthenticated").GetType() == JsonValue::Boolean &&
                reply.GetProperty("IsAuthenticated").GetAsBool() == authenticated,
            "the reply's outcome", {text});
    return 0;
  }
  Require(StringOf(reply, "CacheId", text) == request.CacheId, "the reply's cache identifier",
          {payload, text});
  const std::string version = StringOf(reply, "Version", text);
  if (hasError) {
    Require(version == request.GetVersion(), "an error reply's version", {payload, text});
    Require(StringOf(reply, "SoaResponse", text).empty(), "an error reply has an answer", {text});
    return 0;
  }
  Require(version == (request.GetVersion() == "_2014_02" ? "_2014_02" : "_2014_07"),
          "the reply's version", {payload, text});
  std::string decoded;
  interop::Base64::DecodeString(StringOf(reply, "SoaResponse", text), decoded);
  Require(decoded == answer, "the reply's answer", {payload, text, answer});
  return 0;
}
