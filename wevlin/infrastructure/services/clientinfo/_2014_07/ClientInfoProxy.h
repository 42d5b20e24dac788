#ifndef WEVLIN_INFRASTRUCTURE_SERVICES_CLIENTINFO_2014_07_CLIENTINFOPROXY_H_
#define WEVLIN_INFRASTRUCTURE_SERVICES_CLIENTINFO_2014_07_CLIENTINFOPROXY_H_

#include <map>
#include <string>

#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/services/BaseServiceProxy.h"
#include "wevlin/wevlin_export.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ClientInfo::_2014_07 {

// Proxy to the page's service
// "tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client" in
// version "_2014_07": asks the page for its information as name/value pairs
// (a method; the reply is awaited). The request payload is the empty text;
// the page answers with a Core::_2014_07::BaseKeyValueMessage whose "Data"
// holds the pairs.
//
// The proxy does not own its instance, which must outlive every call. Use it
// on the thread that drives the browser control.
class WEVLIN_EXPORT ClientInfoProxy : public BaseServiceProxy {
 public:
  // Creates a proxy talking to the page of `instance` (may be null: the proxy
  // then asks nothing and GetClientInfo returns an empty map).
  explicit ClientInfoProxy(Interop::IHostControlInstance* instance);
  ~ClientInfoProxy() override;

  // Asks the page for its information and returns it as a map from name to
  // value. When the reply holds a name more than once, the last value given
  // for it wins. Never throws:
  //   - without an instance, returns an empty map and calls nothing;
  //   - a reply that does not parse gives an empty map, silently;
  //   - when the call fails (the page cannot be talked to, answers with an
  //     exception record, or the script fails), writes the log line
  //     "Cannot call web content for GetClientInfo invocation." and returns
  //     what the map holds by then (empty).
  std::map<std::string, std::string> GetClientInfo();
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ClientInfo::_2014_07

#endif  // WEVLIN_INFRASTRUCTURE_SERVICES_CLIENTINFO_2014_07_CLIENTINFOPROXY_H_
