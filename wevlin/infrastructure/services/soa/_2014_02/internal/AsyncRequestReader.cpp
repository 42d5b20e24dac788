#include "wevlin/infrastructure/services/soa/_2014_02/internal/AsyncRequestReader.h"

#include <exception>
#include <stdexcept>

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::internal {
namespace {

// Reads `text` into `contract`; a reader that throws counts as a failure.
bool TryRead(Interop::DataContract& contract, const std::string& text) {
  try {
    return contract.FromJsonString(text);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

std::unique_ptr<Interop::WebSideServiceDescriptor> ReadAsyncRequest(
    const std::string& payload, AsyncIncomingMessageData& request) {
  if (!TryRead(request, payload)) throw std::invalid_argument("Bad payload data");
  if (request.CacheId.empty()) throw std::invalid_argument("CacheId is missing");
  if (request.ReplyServiceDescriptor.empty()) {
    throw std::invalid_argument("ReplyServiceDescriptor is missing");
  }
  Interop::DataServiceDescriptor target;
  if (!TryRead(target, request.ReplyServiceDescriptor)) {
    throw std::invalid_argument("ReplyServiceDescriptor is incorrect");
  }
  return std::make_unique<Interop::WebSideServiceDescriptor>(&target);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::internal
