#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthRequestMessage.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02 {

RequestHostAuthRequestMessage::RequestHostAuthRequestMessage() = default;

// The base registers its fields anew on the copy; there are none of our own.
RequestHostAuthRequestMessage::RequestHostAuthRequestMessage(
    const RequestHostAuthRequestMessage& other) = default;

RequestHostAuthRequestMessage& RequestHostAuthRequestMessage::operator=(
    const RequestHostAuthRequestMessage& other) = default;

RequestHostAuthRequestMessage::~RequestHostAuthRequestMessage() = default;

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02
