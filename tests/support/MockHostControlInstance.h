#ifndef WEVLIN_TESTS_SUPPORT_MOCKHOSTCONTROLINSTANCE_H_
#define WEVLIN_TESTS_SUPPORT_MOCKHOSTCONTROLINSTANCE_H_

#include <string>

#include <gmock/gmock.h>

#include "wevlin/infrastructure/base/INotifyPropertyChange.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/base/IPropertyChangeListener.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/IHostControlInstance.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {
class DataServiceDescriptor;
class IHostManager;
class TargetConfig;
}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

namespace wevlin_test {

// A GoogleMock host control instance: every pure virtual operation of
// IHostControlInstance, ILaunchIntegration and INotifyPropertyChange is a mock
// method, so that a service or proxy under test can be given an instance whose
// calls are expected and answered one by one.
//
// Wrap it in ::testing::NiceMock when uninteresting calls should pass
// silently, or ::testing::StrictMock when any unexpected call must fail. The
// mock owns nothing; a list returned from GetKnownWebSideServices or
// KnownServices must be kept alive by the test. Use it on the test's thread.
class MockHostControlInstance
    : public Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostControlInstance {
 public:
  using TargetConfig = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig;
  using IHostManager = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostManager;
  using ITargetServiceDesc =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ITargetServiceDesc;
  using IHostServiceDescriptor =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::IHostServiceDescriptor;
  using DataServiceDescriptor =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataServiceDescriptor;
  using HostContentState = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::HostContentState;
  using IPropertyChangeListener =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IPropertyChangeListener;
  using TargetList =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IObservableList<ITargetServiceDesc*>;
  using HostServiceList =
      Com::Velmora::TAVO::Wevlin::Infrastructure::Base::IObservableList<IHostServiceDescriptor*>;

  MockHostControlInstance() = default;
  ~MockHostControlInstance() override = default;

  // ILaunchIntegration
  MOCK_METHOD(bool, GetActiveContent, (), (const, override));
  MOCK_METHOD(bool, LaunchToTarget, (TargetConfig * target, bool force), (override));
  MOCK_METHOD(void, LaunchToTarget, (TargetConfig * target), (override));
  MOCK_METHOD(TargetConfig*, GetActiveTarget, (), (const, override));

  // INotifyPropertyChange
  MOCK_METHOD(void, AddChangeListener, (IPropertyChangeListener * listener), (override));
  MOCK_METHOD(void, RemoveChangeListener, (IPropertyChangeListener * listener), (override));

  // IHostControlInstance
  MOCK_METHOD(IHostManager*, GetGlobalConfig, (), (const, override));
  MOCK_METHOD(std::string, GetWebSideVersion, (), (const, override));
  MOCK_METHOD(TargetList*, GetKnownWebSideServices, (), (const, override));
  MOCK_METHOD(std::string, WebSideServiceListUpdate, (std::string action, std::string listJson),
              (override));
  MOCK_METHOD(void, WebSideStartHandShake, (), (override));
  MOCK_METHOD(std::string, InvokeWebMethod, (ITargetServiceDesc * service, std::string payload),
              (override));
  MOCK_METHOD(void, InvokeWebEvent, (ITargetServiceDesc * service, std::string payload),
              (override));
  MOCK_METHOD(HostContentState, GetContentState, (), (override));
  MOCK_METHOD(void, SetContentState, (HostContentState state), (override));
  MOCK_METHOD(bool, IsServiceSupported, (ITargetServiceDesc * service), (override));
  MOCK_METHOD(IHostServiceDescriptor*, LookupService, (ITargetServiceDesc * service), (override));
  MOCK_METHOD(IHostServiceDescriptor*, LookupService, (DataServiceDescriptor * service),
              (override));
  MOCK_METHOD(void, RegisterService, (IHostServiceDescriptor * service), (override));
  MOCK_METHOD(HostServiceList*, KnownServices, (), (const, override));
};

}  // namespace wevlin_test

#endif  // WEVLIN_TESTS_SUPPORT_MOCKHOSTCONTROLINSTANCE_H_
