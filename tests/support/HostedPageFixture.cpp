#include "support/HostedPageFixture.h"

#include "support/HostCleanup.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
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
}

void HostedPageFixture::TearDown() {
  api_.reset();
  DestroyHostControlInstance(instance_);
  RestoreHostManager(previousManager_);
  manager_ = nullptr;
}

void HostedPageFixture::Talk() {
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  ASSERT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
  ASSERT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  page_.ClearRecords();
}

}  // namespace wevlin_test
