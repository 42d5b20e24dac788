#include "support/PageFiles.h"

#include <cctype>
#include <cstdio>

namespace wevlin_e2e {

std::string PageFiles::Path(const std::string& name) {
  return std::string(WEVLIN_SOURCE_DIR) + "/tests/e2e/pages/" + name;
}

std::string PageFiles::Url(const std::string& name) {
  std::string url = "file://";
  for (const char c : Path(name)) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '/' || c == '-' || c == '_' || c == '.' || c == '~') {
      url += c;
    } else {
      char escaped[4];
      std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
      url += escaped;
    }
  }
  return url;
}

}  // namespace wevlin_e2e
