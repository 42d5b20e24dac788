#ifndef WEVLIN_TESTS_E2E_SUPPORT_PAGEFILES_H_
#define WEVLIN_TESTS_E2E_SUPPORT_PAGEFILES_H_

#include <string>

namespace wevlin_e2e {

// Where the test pages are: tests/e2e/pages of the source tree, whose path
// the build passes in as WEVLIN_SOURCE_DIR. Pages load the page-side library
// from web/src/wevlin.js of the same tree by a relative path.
class PageFiles {
 public:
  PageFiles() = delete;

  // Returns the file path of page `name` ("handshake.html").
  static std::string Path(const std::string& name);

  // Returns the file:// URL of page `name`, its path percent-encoded where
  // a URL needs it.
  static std::string Url(const std::string& name);
};

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_PAGEFILES_H_
