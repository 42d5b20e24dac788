#include "support/BrowserFixture.h"

#include <filesystem>
#include <utility>

#include "support/PageFiles.h"
#include "support/ProcessScan.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"

namespace wevlin_e2e {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;

BrowserFixture::BrowserFixture() = default;

BrowserFixture::~BrowserFixture() = default;

ControlSettings BrowserFixture::Settings() const { return ControlSettings(); }

Engine BrowserFixture::TheEngine() { return CurrentEngine(); }

std::string BrowserFixture::ByEngine(const std::string& chromium, const std::string& webkitgtk) {
  return TheEngine() == Engine::Chromium ? chromium : webkitgtk;
}

std::string BrowserFixture::ControlName() {
  return TheEngine() == Engine::Chromium ? "ChromiumWebControl" : "WebKitGtkWebControl";
}

void BrowserFixture::CrashPage() { engine_->CrashPage(); }

BrowserFixture::ChromiumWebControl* BrowserFixture::Chromium() const {
  return engine_ ? engine_->Chromium() : nullptr;
}

void BrowserFixture::SetUp() {
  previousManager_ = interop::internal::HostManagerTestPeer::InstallFresh();
  managerInstalled_ = true;
  RegisterService(new Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::
                      StartupNotificationSvc());
  engine_ = StartEngine(TheEngine(), Settings());
  ASSERT_NE(engine_, nullptr);
  control_ = &engine_->Control();
  instance_ = std::make_unique<HostControlInstance>(control_);
  api_ = std::make_unique<HostAPI>(instance_.get());
  control_->SetHostAPI(api_.get());
  listener_ = std::make_unique<wevlin_test::RecordingPropertyListener>(instance_.get());
  instance_->AddChangeListener(listener_.get());
}

void BrowserFixture::TearDown() { ShutDown(); }

void BrowserFixture::ShutDown() {
  if (instance_ && listener_) instance_->RemoveChangeListener(listener_.get());
  if (control_) control_->SetHostAPI(nullptr);
  api_.reset();
  instance_.reset();
  if (engine_) {
    control_ = nullptr;
    engine_->Close();
    engine_.reset();
  }
  if (managerInstalled_) {
    interop::internal::HostManagerTestPeer::Restore(previousManager_);
    managerInstalled_ = false;
    // The test manager does not delete its services; they were the test's.
    for (IHostServiceDescriptor* service : services_) delete service;
    services_.clear();
  }
}

void BrowserFixture::RegisterService(IHostServiceDescriptor* service) {
  services_.push_back(service);
  HostManager::TheInstance()->RegisterService(service);
}

void BrowserFixture::Launch(const std::string& pageName) {
  HostManager* manager = HostManager::TheInstance();
  manager->RegisterTargetConfig(
      new interop::TargetConfig("e2e", pageName, PageFiles::Url(pageName)));
  instance_->LaunchToTarget(manager->GetTargetConfig("e2e"));
}

bool BrowserFixture::WaitForState(HostContentState state, std::chrono::milliseconds timeout) {
  return control_->RunUntil([&] { return instance_->GetContentState() == state; }, timeout);
}

void BrowserFixture::LaunchAndLogIn(const std::string& pageName) {
  Launch(pageName);
  ASSERT_TRUE(WaitForState(HostContentState::LoggedIn))
      << "state " << HostControlInstance::NameOfState(instance_->GetContentState())
      << ", page milestones " << Eval("e2e.milestones()");
}

std::string BrowserFixture::Eval(const std::string& script) {
  return control_->ExecuteScript(script);
}

BrowserFixture::Json BrowserFixture::PageCall(const std::string& startScript) {
  const std::string id = Eval(startScript);
  const bool settled =
      control_->RunUntil([&] { return Eval("e2e.done(" + id + ")") == "true"; }, kWait);
  EXPECT_TRUE(settled) << "the call " << startScript << " did not settle";
  if (!settled) return Json();
  return Json::parse(Eval("e2e.outcome(" + id + ")"));
}

std::string BrowserFixture::JsString(const std::string& text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

void ExpectNothingLeft(std::int64_t pid, const std::string& profileDirectory) {
  // The browser is a child of this process: once the control is gone it must
  // have been reaped too, not merely killed.
  if (ProcessScan::IsRunning(pid)) {
    ADD_FAILURE() << "browser process " << pid << " still runs";
  } else {
    EXPECT_FALSE(ProcessScan::Exists(pid)) << "browser process " << pid << " was not reaped";
  }
  EXPECT_EQ(ProcessScan::Running(pid, profileDirectory), std::vector<long>())
      << "processes of the browser are left behind";
  EXPECT_FALSE(std::filesystem::exists(profileDirectory))
      << "the profile " << profileDirectory << " is left behind";
}

}  // namespace wevlin_e2e
