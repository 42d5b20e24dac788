#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_INTERNAL_ASYNCREQUESTREADER_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_INTERNAL_ASYNCREQUESTREADER_H_

#include <memory>
#include <string>

#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/services/soa/_2014_02/AsyncIncomingMessageData.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::internal {

// Reads an asynchronous request of the page into `request` (any message
// derived from AsyncIncomingMessageData; all its registered fields are read)
// and returns a new descriptor of the page service that is to receive the
// answer. The checks run in this order, each throwing std::invalid_argument:
//   "Bad payload data"                   `payload` does not read as the
//                                        message (reading fails or throws);
//   "CacheId is missing"                 "CacheId" is empty;
//   "ReplyServiceDescriptor is missing"  "ReplyServiceDescriptor" is empty;
//   "ReplyServiceDescriptor is incorrect" its text is not a JSON object or
//                                        does not read as a descriptor.
// A descriptor object without "FQN" or "SvcVersion" is accepted; the answer
// then goes to a service with an empty name or version.
std::unique_ptr<Interop::WebSideServiceDescriptor> ReadAsyncRequest(
    const std::string& payload, AsyncIncomingMessageData& request);

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::internal

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_SOA_2014_02_INTERNAL_ASYNCREQUESTREADER_H_
