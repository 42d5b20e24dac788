#ifndef WEVLIN_WEBCONTROLS_BRIDGEPOLICY_H_
#define WEVLIN_WEBCONTROLS_BRIDGEPOLICY_H_

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>
#include <vector>

namespace Com::Velmora::TAVO::Wevlin::WebControls {

// Which documents shown by a web control may reach the host through the page
// bridge (globalThis.wevlinHost), and so which documents the host calls into.
//
// The default is safe: documents in the control's top frame only, and only
// of the origin of the address the host last navigated the control to (for a
// file: address, the file: documents). Frames, popups and documents of other
// origins get no bridge, and their calls are refused. Widening it is written
// out by the application:
//
//   BridgePolicy policy;
//   policy.AllowOrigin("https://help.example.test");  // one more origin
//   policy.AllowSubframes();                          // frames of allowed origins
//
// An opaque origin ("null": data:, sandboxed frames, about: documents made by
// a page) is never allowed unless AllowAnyOrigin says so: two opaque documents
// are never of the same origin.
//
// A plain value, copied into the control; not thread-safe.
class BridgePolicy {
 public:
  // Creates the default policy: top frame only, the navigated origin only.
  BridgePolicy() = default;

  // Allows documents of `origin` ("https://example.test", "http://127.0.0.1:8080",
  // "file://") besides those of the navigated origin. Returns this policy.
  BridgePolicy& AllowOrigin(const std::string& origin) {
    std::string normalised = OriginOf(origin);
    if (normalised != kOpaqueOrigin &&
        std::find(origins_.begin(), origins_.end(), normalised) == origins_.end()) {
      origins_.push_back(std::move(normalised));
    }
    return *this;
  }

  // Allows documents of every origin, opaque ones included. Returns this
  // policy.
  BridgePolicy& AllowAnyOrigin() {
    anyOrigin_ = true;
    return *this;
  }

  // Lets documents in frames below the top frame reach the host when their
  // origin is allowed (`allow` true), or not. Returns this policy.
  BridgePolicy& AllowSubframes(bool allow = true) {
    subframes_ = allow;
    return *this;
  }

  // Returns true when every origin is allowed.
  bool AllowsAnyOrigin() const { return anyOrigin_; }

  // Returns true when frames below the top frame may reach the host.
  bool AllowsSubframes() const { return subframes_; }

  // Returns the origins allowed besides the navigated one, normalised.
  const std::vector<std::string>& AllowedOrigins() const { return origins_; }

  // Returns true when a document of `origin`, in the top frame when
  // `topFrame`, may reach the host while the host's last navigation went to a
  // document of `navigatedOrigin` (empty before the first navigation).
  bool Allows(const std::string& origin, bool topFrame, const std::string& navigatedOrigin) const {
    if (!topFrame && !subframes_) return false;
    if (anyOrigin_) return true;
    if (origin.empty() || origin == kOpaqueOrigin) return false;
    if (origin == navigatedOrigin) return true;
    return std::find(origins_.begin(), origins_.end(), origin) != origins_.end();
  }

  // Returns the origin of `url` as a browser writes it: the lower-case scheme
  // and host with the port when it is not the scheme's default
  // ("http://127.0.0.1:8080", "https://example.test"), "file://" for a file:
  // URL, and "null" for every other URL (data:, about:, blob:, javascript:,
  // text that is not a URL), whose documents have opaque origins.
  static std::string OriginOf(const std::string& url) {
    const std::string::size_type colon = url.find(':');
    if (colon == std::string::npos || colon == 0) return kOpaqueOrigin;
    std::string scheme = Lower(url.substr(0, colon));
    for (const char c : scheme) {
      if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '+' && c != '-' && c != '.') {
        return kOpaqueOrigin;
      }
    }
    if (scheme == "file") return "file://";
    const char* defaultPort = nullptr;
    if (scheme == "http" || scheme == "ws") defaultPort = "80";
    if (scheme == "https" || scheme == "wss") defaultPort = "443";
    if (defaultPort == nullptr || url.compare(colon, 3, "://") != 0) return kOpaqueOrigin;
    const std::string::size_type start = colon + 3;
    std::string::size_type end = url.find_first_of("/?#", start);
    if (end == std::string::npos) end = url.size();
    std::string authority = url.substr(start, end - start);
    const std::string::size_type at = authority.rfind('@');
    if (at != std::string::npos) authority.erase(0, at + 1);
    std::string host = authority;
    std::string port;
    const std::string::size_type bracket = authority.rfind(']');
    const std::string::size_type portColon = authority.rfind(':');
    if (portColon != std::string::npos && (bracket == std::string::npos || portColon > bracket)) {
      host = authority.substr(0, portColon);
      port = authority.substr(portColon + 1);
    }
    if (host.empty()) return kOpaqueOrigin;
    for (const char c : port) {
      if (std::isdigit(static_cast<unsigned char>(c)) == 0) return kOpaqueOrigin;
    }
    // Leading zeros say nothing: "0080" is port 80.
    const std::string::size_type digits = port.find_first_not_of('0');
    if (digits == std::string::npos) {
      if (!port.empty()) port = "0";
    } else {
      port.erase(0, digits);
    }
    std::string origin = scheme + "://" + Lower(host);
    if (!port.empty() && port != defaultPort) origin += ":" + port;
    return origin;
  }

  // The origin of documents that are of no origin but their own.
  static constexpr const char* kOpaqueOrigin = "null";

 private:
  static std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  }

  std::vector<std::string> origins_;
  bool anyOrigin_ = false;
  bool subframes_ = false;
};

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls

#endif  // WEVLIN_WEBCONTROLS_BRIDGEPOLICY_H_
