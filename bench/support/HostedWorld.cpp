#include "support/HostedWorld.h"

#include <map>
#include <stdexcept>

#include "support/EchoService.h"
#include "wevlin/infrastructure/base/LogSink.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"

namespace wevlin_bench {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

namespace {

constexpr char kVersion[] = "_2014_07";

}  // namespace

HostedWorld::HostedWorld(int services)
    : manager_(nullptr),
      pageEcho_("bench.dispatch.Echo.client", kVersion),
      target_("bench", "Benchmark page", "about:blank") {
  SilenceLog();
  // The replaced manager stays alive: instances of earlier worlds use it.
  interop::internal::HostManagerTestPeer::InstallFresh();
  manager_ = interop::HostManager::TheInstance();
  for (int i = 1; i < services; ++i) {
    manager_->RegisterService(new EchoService(
        "tavo.wevlin.infrastructure.services.bench.Filler" + std::to_string(i) + ".host",
        kVersion));
  }
  const std::string echo = "tavo.wevlin.infrastructure.services.bench.Echo.host";
  manager_->RegisterService(new EchoService(echo, kVersion));
  echoDescriptorJson_ = "{\"FQN\": \"" + echo + "\", \"SvcVersion\": \"" + kVersion + "\"}";

  page_ = std::make_unique<InstantPage>();
  instance_ = std::make_unique<interop::HostControlInstance>(page_.get());
  api_ = std::make_unique<interop::HostAPI>(instance_.get());
  instance_->LaunchToTarget(&target_);
  page_->CompleteLoad();
  api_->tavoHost_WebSideStartHandShake();
  if (instance_->GetContentState() != interop::LoadedCanTalk) {
    throw std::runtime_error("the benchmark page did not finish its handshake");
  }
}

HostedWorld::~HostedWorld() {
  api_.reset();
  instance_.reset();
  page_.reset();
}

HostedWorld& HostedWorld::Shared(int services) {
  static std::map<int, std::unique_ptr<HostedWorld>> worlds;
  std::unique_ptr<HostedWorld>& world = worlds[services];
  if (!world) world = std::make_unique<HostedWorld>(services);
  return *world;
}

void HostedWorld::SilenceLog() {
  Com::Velmora::TAVO::Wevlin::Infrastructure::Base::SetLogSink([](const std::string&) {});
}

int HostedWorld::ServiceCount() const { return manager_->KnownServices()->GetSize(); }

}  // namespace wevlin_bench
