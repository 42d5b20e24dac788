#ifndef WEVLIN_TESTS_SUPPORT_HOSTCLEANUP_H_
#define WEVLIN_TESTS_SUPPORT_HOSTCLEANUP_H_

#include <memory>

#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"

// Releases what the hosting classes leave alive on purpose, so that tests end
// without leaks. Call them on the test's main thread, with no other thread
// inside the library.
namespace wevlin_test {

// Destroys `instance`, if it holds one, and then deletes what a destroyed
// instance leaves alive: the list of the services registered on it alone,
// and those services. Leaves `instance` empty.
void DestroyHostControlInstance(
    std::unique_ptr<Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostControlInstance>&
        instance);

// Puts `previous` back as the process-wide host manager in place of the fresh
// one a test installed with HostManagerTestPeer::InstallFresh(), destroying
// that one, and deletes the services still registered with it (a manager
// never deletes its services).
void RestoreHostManager(Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostManager* previous);

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_HOSTCLEANUP_H_
