#ifndef WEVLIN_TESTS_SUPPORT_HOSTEDPAGEFIXTURE_H_
#define WEVLIN_TESTS_SUPPORT_HOSTEDPAGEFIXTURE_H_

#include <memory>

#include <gtest/gtest.h>

#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/interop/HostAPI.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/testing/ScriptedPage.h"

namespace wevlin_test {

// A test fixture that hosts a scripted page end to end: a fresh process-wide
// host manager, a ScriptedPage of the test kit, a HostControlInstance on that
// page and the HostAPI through which the page's script calls the host (and to
// which the page is connected, so that it can call the host itself). The time-out timers
// run on a simulated clock and a manual queue, so no real timer ever fires.
//
// A test derives its fixture from this class (or names it with a using
// declaration) and reaches the parts through the protected members. The
// instance starts in "NoContent"; Talk() brings it to "LoadedCanTalk".
//
// Ownership: the fixture owns the page, the instance and the API. At the end
// of each test it deletes every service still registered with the fresh
// manager or on the instance, and the instance's own service list (which the
// instance leaves alive on purpose); a test must therefore register only
// services created with new and never delete them itself. The manager that
// was in place before the test is put back afterwards.
//
// Use it on the test's main thread; the instance itself may be called from
// other threads as its own contract allows.
class HostedPageFixture : public ::testing::Test {
 protected:
  HostedPageFixture();
  ~HostedPageFixture() override;

  // Installs the fresh manager, then creates the instance and the API.
  void SetUp() override;

  // Destroys the API and the instance, releases what they leave behind and
  // restores the previous manager.
  void TearDown() override;

  // Launches the instance to target_, completes the page load and lets the
  // page run the handshake, so that calls into the page are allowed; then
  // forgets the script lines run so far. Fails the test fatally unless the
  // handshake answers "" and the instance is then in "LoadedCanTalk".
  void Talk();

  TimerEnvironmentScope env_;
  Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage page_;
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig target_{"app", "App",
                                                                            "https://app.example/"};
  // The fresh manager, valid from SetUp to TearDown.
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostManager* manager_ = nullptr;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>
      instance_;
  std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostAPI> api_;

 private:
  Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostManager* previousManager_ = nullptr;
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_HOSTEDPAGEFIXTURE_H_
