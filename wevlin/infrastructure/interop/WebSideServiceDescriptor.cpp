#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"

#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

WebSideServiceDescriptor::WebSideServiceDescriptor(DataServiceDescriptor* data)
    : BaseServiceDescriptor(data->FQN, data->SvcVersion) {}

WebSideServiceDescriptor::~WebSideServiceDescriptor() = default;

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
