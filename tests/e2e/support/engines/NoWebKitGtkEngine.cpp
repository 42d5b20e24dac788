// The e2e support of a build without the WebKitGTK control.
#include <gtest/gtest.h>

#include "support/Engine.h"

namespace wevlin_e2e {

std::unique_ptr<EngineControl> StartWebKitGtk(const ControlSettings& /*settings*/) {
  ADD_FAILURE() << "this build has no WebKitGTK control (configure with WEVLIN_BUILD_WEBKITGTK=ON)";
  return nullptr;
}

}  // namespace wevlin_e2e
