#include "support/HostedPageFixture.h"

#include "support/HostCleanup.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"

namespace wevlin_test {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

HostedPageFixture::HostedPageFixture() = default;

HostedPageFixture::~HostedPageFixture() = default;

void HostedPageFixture::SetUp() {
  previousManager_ = interop::internal::HostManagerTestPeer::InstallFresh();
  manager_ = interop::HostManager::TheInstance();
  instance_ = std::make_unique<interop::HostControlInstance>(&page_);
  api_ = std::make_unique<interop::HostAPI>(instance_.get());
  page_.ConnectHost(api_.get());
}

void HostedPageFixture::TearDown() {
  page_.ConnectHost(nullptr);
  api_.reset();
  DestroyHostControlInstance(instance_);
  RestoreHostManager(previousManager_);
  manager_ = nullptr;
}

void HostedPageFixture::Talk() {
  ASSERT_NO_THROW(page_.Talk(*instance_, target_));
  page_.ClearRecords();
}

}  // namespace wevlin_test
