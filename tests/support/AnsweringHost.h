#ifndef WEVLIN_TESTS_SUPPORT_ANSWERINGHOST_H_
#define WEVLIN_TESTS_SUPPORT_ANSWERINGHOST_H_

#include <memory>
#include <string>
#include <utility>

#include "support/AnsweringControl.h"
#include "support/HostCleanup.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"

namespace wevlin_test {

// A host control instance and its HostAPI on an AnsweringControl, for tests
// that script what the page answers to every call. The host owns the control,
// the instance and the API and tears them down in that order's reverse. Use
// it on one thread, under a host manager the test has installed.
class AnsweringHost {
 public:
  // Creates the control with `answer` as its script handler.
  explicit AnsweringHost(AnsweringControl::Answer answer)
      : control_(std::move(answer)),
        instance_(std::make_unique<
                  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>(
            &control_)),
        api_(std::make_unique<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI>(
            instance_.get())) {}
  ~AnsweringHost() {
    api_.reset();
    DestroyHostControlInstance(instance_);
  }
  AnsweringHost(const AnsweringHost&) = delete;
  AnsweringHost& operator=(const AnsweringHost&) = delete;

  // Launches to the host's target, completes the load and starts the page's
  // handshake; returns the handshake's answer.
  std::string Handshake() {
    instance_->LaunchToTarget(&target_);
    control_.CompleteLoad();
    return api_->tavoHost_WebSideStartHandShake();
  }

  AnsweringControl& Control() { return control_; }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance& Instance() {
    return *instance_;
  }
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI& Api() { return *api_; }

 private:
  AnsweringControl control_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig target_{"app", "App",
                                                                            "https://app.example/"};
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>
      instance_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI> api_;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_ANSWERINGHOST_H_
