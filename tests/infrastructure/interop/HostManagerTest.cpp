#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/CountingService.h"
#include "support/ExceptionChecks.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/IListChangeListener.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/base/ListChangeEvent.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/IHostManager.h"
#include "wevlin/infrastructure/interop/IHostServiceDescriptor.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::BaseServiceDescriptor;
using interop::DataServiceDescriptor;
using interop::HostManager;
using interop::IHostManager;
using interop::IHostServiceDescriptor;
using interop::ITargetServiceDesc;
using interop::TargetConfig;
using interop::internal::HostManagerTestPeer;
using ::testing::_;
using ::testing::InSequence;
using ::testing::Invoke;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::CountingService;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

using ServiceList = base::IObservableList<IHostServiceDescriptor*>;
using ServiceEvent = base::ListChangeEvent<IHostServiceDescriptor*>;
using Services = std::vector<IHostServiceDescriptor*>;

class MockServiceListListener : public base::IListChangeListener<IHostServiceDescriptor*> {
 public:
  MOCK_METHOD(void, OnListChanged, (const ServiceEvent& event), (override));
};

// Matches an Add event for `item` at `index`, and nothing else in the event.
MATCHER_P2(IsAdd, item, index, "an Add event at the given index with the given item") {
  return arg.GetAction() == ServiceEvent::Add && arg.GetNewIndex() == index &&
         arg.GetOldIndex() == -1 && arg.GetNewItems() == Services{item} &&
         arg.GetOldItems().empty();
}

// Matches a Remove event for `item`, which had `index`, and nothing else.
MATCHER_P2(IsRemove, item, index, "a Remove event at the given index with the given item") {
  return arg.GetAction() == ServiceEvent::Remove && arg.GetOldIndex() == index &&
         arg.GetNewIndex() == -1 && arg.GetOldItems() == Services{item} &&
         arg.GetNewItems().empty();
}

// Returns the services in `list`, in order.
Services Contents(const ServiceList* list) {
  Services contents;
  for (int i = 0; i < list->GetSize(); ++i) contents.push_back(list->GetAt(i));
  return contents;
}

// Every test gets a fresh, empty process-wide manager, and the services still
// registered at the end are deleted (the manager never deletes those).
class HostManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = HostManagerTestPeer::InstallFresh();
    manager_ = HostManager::TheInstance();
  }

  void TearDown() override {
    if (observing_) manager_->KnownServices()->RemoveChangeListener(&listener_);
    std::set<IHostServiceDescriptor*> remaining;
    if (manager_ != nullptr) {
      for (IHostServiceDescriptor* service : Contents(manager_->KnownServices())) {
        remaining.insert(service);
      }
    }
    HostManagerTestPeer::Restore(previous_);
    for (IHostServiceDescriptor* service : remaining) delete service;
  }

  // Returns a new service reporting to probe_; the caller hands it on.
  CountingService* NewService(const std::string& fqn, const std::string& version) {
    return new CountingService(fqn, version, &probe_);
  }

  // Registers listener_ on the manager's list; TearDown removes it.
  void Observe() {
    manager_->KnownServices()->AddChangeListener(&listener_);
    observing_ = true;
  }

  HostManager* previous_ = nullptr;
  HostManager* manager_ = nullptr;
  // Probes outlive the services that TearDown deletes.
  ServiceProbe probe_;
  ServiceProbe secondProbe_;
  StrictMock<MockServiceListListener> listener_;
  bool observing_ = false;
};

// --- The single instance ---------------------------------------------------

TEST_F(HostManagerTest, TheInstanceReturnsTheSamePointerEveryTime) {
  HostManager* first = HostManager::TheInstance();
  HostManager* second = HostManager::TheInstance();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first, second);
  EXPECT_EQ(first, manager_);
}

TEST_F(HostManagerTest, TheInstanceCreatesAnEmptyManagerOnFirstUse) {
  // Destroys the fixture's manager and leaves no instance installed.
  HostManagerTestPeer::Restore(nullptr);
  manager_ = nullptr;

  HostManager* created = HostManager::TheInstance();
  manager_ = created;  // TearDown's Restore destroys it
  ASSERT_NE(created, nullptr);
  EXPECT_EQ(HostManager::TheInstance(), created);
  EXPECT_EQ(created->KnownServices()->GetSize(), 0);
  EXPECT_TRUE(created->GetTargetConfigs().empty());
}

TEST_F(HostManagerTest, GetVersionIsTheFrameworkVersion) {
  EXPECT_EQ(manager_->GetVersion(), "0.9");
  IHostManager* asInterface = manager_;
  EXPECT_EQ(asInterface->GetVersion(), "0.9");
}

TEST_F(HostManagerTest, StartsWithNoServicesAndNoTargets) {
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
  EXPECT_TRUE(manager_->GetTargetConfigs().empty());
}

TEST_F(HostManagerTest, KnownServicesIsTheListItselfNotACopy) {
  ServiceList* list = manager_->KnownServices();
  EXPECT_EQ(manager_->KnownServices(), list);
  CountingService* service = NewService("a.b", "_2014_02");
  manager_->RegisterService(service);
  EXPECT_EQ(Contents(list), Services{service});
}

// --- Registration checks -----------------------------------------------------

TEST_F(HostManagerTest, RegisteringNullThrowsDescriptor) {
  Observe();
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>([&] { manager_->RegisterService(nullptr); },
                                                   "descriptor"));
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
}

TEST_F(HostManagerTest, RegisteringAnEmptyFqnThrowsFqn) {
  Observe();
  CountingService service("", "_2014_02", &probe_);
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([&] { manager_->RegisterService(&service); }, "fqn"));
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
  EXPECT_EQ(probe_.destroyed, 0);
}

TEST_F(HostManagerTest, EmptyFqnIsCheckedBeforeEmptyVersion) {
  Observe();
  CountingService service("", "", &probe_);
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([&] { manager_->RegisterService(&service); }, "fqn"));
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
}

TEST_F(HostManagerTest, RegisteringAnEmptyVersionThrowsVersion) {
  Observe();
  CountingService service("a.b", "", &probe_);
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>([&] { manager_->RegisterService(&service); },
                                                   "version"));
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
  EXPECT_EQ(probe_.destroyed, 0);
}

TEST_F(HostManagerTest, RefusedRegistrationLeavesEarlierServicesAlone) {
  CountingService* kept = NewService("a.b", "_2014_02");
  manager_->RegisterService(kept);
  Observe();
  CountingService sameNameNoVersion("a.b", "", &probe_);
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>(
      [&] { manager_->RegisterService(&sameNameNoVersion); }, "version"));
  EXPECT_EQ(Contents(manager_->KnownServices()), Services{kept});
  EXPECT_EQ(probe_.destroyed, 0);
}

// --- Registration and its events -----------------------------------------------

TEST_F(HostManagerTest, RegisteringAppendsAndRaisesOneAddEvent) {
  Observe();
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService* second = NewService("c.d", "_2014_07");
  {
    InSequence order;
    EXPECT_CALL(listener_, OnListChanged(IsAdd(first, 0)));
    EXPECT_CALL(listener_, OnListChanged(IsAdd(second, 1)));
  }
  manager_->RegisterService(first);
  manager_->RegisterService(second);
  EXPECT_EQ(Contents(manager_->KnownServices()), (Services{first, second}));
}

TEST_F(HostManagerTest, EventsComeFromTheKnownServicesList) {
  Observe();
  const base::IEventSource* source = nullptr;
  EXPECT_CALL(listener_, OnListChanged(_)).WillOnce(Invoke([&](const ServiceEvent& event) {
    source = event.GetSource();
  }));
  manager_->RegisterService(NewService("a.b", "_2014_02"));
  EXPECT_EQ(source, static_cast<base::IEventSource*>(manager_->KnownServices()));
}

TEST_F(HostManagerTest, RegisteringTheSameObjectTwiceKeepsOneEntryAndRaisesNoSecondEvent) {
  Observe();
  CountingService* service = NewService("a.b", "_2014_02");
  EXPECT_CALL(listener_, OnListChanged(IsAdd(service, 0))).Times(1);
  manager_->RegisterService(service);
  manager_->RegisterService(service);
  EXPECT_EQ(Contents(manager_->KnownServices()), Services{service});
  EXPECT_EQ(probe_.destroyed, 0);
}

TEST_F(HostManagerTest, ReplacementRaisesRemoveOfTheOldThenAddOfTheNewAtTheEnd) {
  CountingService* old = NewService("a.b", "_2014_02");
  CountingService* other = NewService("c.d", "_2014_02");
  manager_->RegisterService(old);
  manager_->RegisterService(other);
  Observe();

  CountingService* replacement = NewService("a.b", "_2014_02");
  int destroyedWhenRemoveRaised = -1;
  Services contentsWhenAddRaised;
  {
    InSequence order;
    EXPECT_CALL(listener_, OnListChanged(IsRemove(old, 0)))
        .WillOnce(
            Invoke([&](const ServiceEvent&) { destroyedWhenRemoveRaised = probe_.destroyed; }));
    EXPECT_CALL(listener_, OnListChanged(IsAdd(replacement, 1)))
        .WillOnce(Invoke([&](const ServiceEvent&) {
          contentsWhenAddRaised = Contents(manager_->KnownServices());
        }));
  }
  manager_->RegisterService(replacement);

  // The old service is removed first, deleted afterwards, and only then is the
  // replacement appended.
  EXPECT_EQ(destroyedWhenRemoveRaised, 0);
  EXPECT_EQ(contentsWhenAddRaised, (Services{other, replacement}));
  EXPECT_EQ(Contents(manager_->KnownServices()), (Services{other, replacement}));
}

TEST_F(HostManagerTest, ReplacedServiceIsDestroyedExactlyOnceAndTheReplacementStays) {
  auto* old = new CountingService("a.b", "_2014_02", &probe_);
  auto* replacement = new CountingService("a.b", "_2014_02", &secondProbe_);
  manager_->RegisterService(old);
  manager_->RegisterService(replacement);

  EXPECT_EQ(probe_.destroyed, 1);
  EXPECT_EQ(secondProbe_.destroyed, 0);
  EXPECT_EQ(manager_->LookupService(static_cast<ITargetServiceDesc*>(replacement)), replacement);
  EXPECT_EQ(Contents(manager_->KnownServices()), Services{replacement});

  // Registering the replacement again deletes nothing more.
  manager_->RegisterService(replacement);
  EXPECT_EQ(probe_.destroyed, 1);
  EXPECT_EQ(secondProbe_.destroyed, 0);
}

TEST_F(HostManagerTest, ServicesOfOneFqnInTwoVersionsCoexist) {
  CountingService* v02 = NewService("a.b", "_2014_02");
  CountingService* v07 = NewService("a.b", "_2014_07");
  manager_->RegisterService(v02);
  manager_->RegisterService(v07);

  EXPECT_EQ(probe_.destroyed, 0);
  EXPECT_EQ(Contents(manager_->KnownServices()), (Services{v02, v07}));
  BaseServiceDescriptor ask02("a.b", "_2014_02");
  BaseServiceDescriptor ask07("a.b", "_2014_07");
  EXPECT_EQ(manager_->LookupService(&ask02), v02);
  EXPECT_EQ(manager_->LookupService(&ask07), v07);
}

TEST_F(HostManagerTest, FqnsThatDifferOnlyInCaseAreDifferentServices) {
  CountingService* lower = NewService("a.b", "_2014_02");
  CountingService* upper = NewService("A.B", "_2014_02");
  manager_->RegisterService(lower);
  manager_->RegisterService(upper);

  EXPECT_EQ(probe_.destroyed, 0);
  EXPECT_EQ(Contents(manager_->KnownServices()), (Services{lower, upper}));
  BaseServiceDescriptor askLower("a.b", "_2014_02");
  BaseServiceDescriptor askUpper("A.B", "_2014_02");
  EXPECT_EQ(manager_->LookupService(&askLower), lower);
  EXPECT_EQ(manager_->LookupService(&askUpper), upper);
}

TEST_F(HostManagerTest, AFailingListenerDoesNotStopTheRegistration) {
  Observe();
  EXPECT_CALL(listener_, OnListChanged(_)).WillOnce(Throw(std::runtime_error("listener")));
  CountingService* service = NewService("a.b", "_2014_02");
  StdoutCapture capture;
  EXPECT_NO_THROW(manager_->RegisterService(service));
  EXPECT_EQ(capture.Text(),
            "ObservableList<T>::NotifyChange - caught exception from OnListChanged\n");
  EXPECT_EQ(Contents(manager_->KnownServices()), Services{service});
}

// --- RegisterServices --------------------------------------------------------------

TEST_F(HostManagerTest, RegisterServicesRegistersInVectorOrder) {
  Observe();
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService* second = NewService("c.d", "_2014_02");
  CountingService* third = NewService("e.f", "_2014_02");
  {
    InSequence order;
    EXPECT_CALL(listener_, OnListChanged(IsAdd(first, 0)));
    EXPECT_CALL(listener_, OnListChanged(IsAdd(second, 1)));
    EXPECT_CALL(listener_, OnListChanged(IsAdd(third, 2)));
  }
  manager_->RegisterServices({first, second, third});
  EXPECT_EQ(Contents(manager_->KnownServices()), (Services{first, second, third}));
}

TEST_F(HostManagerTest, RegisterServicesOfAnEmptyVectorChangesNothing) {
  Observe();
  manager_->RegisterServices({});
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
}

TEST_F(HostManagerTest, RegisterServicesReplacesWithinOneCall) {
  Observe();
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService* second = NewService("a.b", "_2014_02");
  {
    InSequence order;
    EXPECT_CALL(listener_, OnListChanged(IsAdd(first, 0)));
    EXPECT_CALL(listener_, OnListChanged(IsRemove(first, 0)));
    EXPECT_CALL(listener_, OnListChanged(IsAdd(second, 0)));
  }
  manager_->RegisterServices({first, second});
  EXPECT_EQ(probe_.destroyed, 1);
  EXPECT_EQ(Contents(manager_->KnownServices()), Services{second});
}

TEST_F(HostManagerTest, RegisterServicesStopsAtTheFirstFailureKeepingEarlierOnes) {
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService* second = NewService("c.d", "_2014_02");
  CountingService noVersion("e.f", "", &probe_);
  CountingService after("g.h", "_2014_02", &probe_);

  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>(
      [&] {
        manager_->RegisterServices({first, second, &noVersion, &after});
      },
      "version"));
  EXPECT_EQ(Contents(manager_->KnownServices()), (Services{first, second}));
  BaseServiceDescriptor askAfter("g.h", "_2014_02");
  EXPECT_EQ(manager_->LookupService(&askAfter), nullptr);
}

TEST_F(HostManagerTest, RegisterServicesReportsANullElementAsDescriptor) {
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService after("c.d", "_2014_02", &probe_);
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>(
      [&] {
        manager_->RegisterServices({first, nullptr, &after});
      },
      "descriptor"));
  EXPECT_EQ(Contents(manager_->KnownServices()), Services{first});
}

TEST_F(HostManagerTest, RegisterServicesReportsAnEmptyFqnAsFqn) {
  CountingService noName("", "", &probe_);
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([&] { manager_->RegisterServices({&noName}); }, "fqn"));
  EXPECT_EQ(manager_->KnownServices()->GetSize(), 0);
}

// --- Lookup ----------------------------------------------------------------------

TEST_F(HostManagerTest, LookupIsExactAndCaseSensitive) {
  CountingService* service = NewService("a.b", "_2014_02");
  manager_->RegisterService(service);

  BaseServiceDescriptor exact("a.b", "_2014_02");
  BaseServiceDescriptor otherVersion("a.b", "_2014_07");
  BaseServiceDescriptor otherCase("A.B", "_2014_02");
  BaseServiceDescriptor versionCase("a.b", "_2014_02 ");
  BaseServiceDescriptor prefix("a", "_2014_02");
  BaseServiceDescriptor longer("a.b.c", "_2014_02");
  BaseServiceDescriptor emptyVersion("a.b", "");
  EXPECT_EQ(manager_->LookupService(&exact), service);
  EXPECT_EQ(manager_->LookupService(&otherVersion), nullptr);
  EXPECT_EQ(manager_->LookupService(&otherCase), nullptr);
  EXPECT_EQ(manager_->LookupService(&versionCase), nullptr);
  EXPECT_EQ(manager_->LookupService(&prefix), nullptr);
  EXPECT_EQ(manager_->LookupService(&longer), nullptr);
  EXPECT_EQ(manager_->LookupService(&emptyVersion), nullptr);
}

TEST_F(HostManagerTest, LookupByWireDescriptorUsesItsFields) {
  CountingService* service = NewService("a.b", "_2014_02");
  manager_->RegisterService(service);

  DataServiceDescriptor exact("a.b", "_2014_02");
  DataServiceDescriptor otherVersion("a.b", "_2014_07");
  DataServiceDescriptor otherCase("A.B", "_2014_02");
  EXPECT_EQ(manager_->LookupService(&exact), service);
  EXPECT_EQ(manager_->LookupService(&otherVersion), nullptr);
  EXPECT_EQ(manager_->LookupService(&otherCase), nullptr);

  DataServiceDescriptor read;
  ASSERT_TRUE(read.FromJsonString("{\"FQN\": \"a.b\", \"SvcVersion\": \"_2014_02\"}"));
  EXPECT_EQ(manager_->LookupService(&read), service);
}

TEST_F(HostManagerTest, LookupFindsAServiceByItsOwnDescriptor) {
  CountingService* service = NewService("a.b", "_2014_02");
  manager_->RegisterService(service);
  EXPECT_EQ(manager_->LookupService(static_cast<ITargetServiceDesc*>(service)), service);
}

TEST_F(HostManagerTest, LookupOfNullGivesNull) {
  manager_->RegisterService(NewService("a.b", "_2014_02"));
  EXPECT_EQ(manager_->LookupService(static_cast<ITargetServiceDesc*>(nullptr)), nullptr);
  EXPECT_EQ(manager_->LookupService(static_cast<DataServiceDescriptor*>(nullptr)), nullptr);
  EXPECT_FALSE(manager_->IsServiceSupported(nullptr));
}

TEST_F(HostManagerTest, LookupInAnEmptyManagerGivesNull) {
  BaseServiceDescriptor ask("a.b", "_2014_02");
  DataServiceDescriptor wire("a.b", "_2014_02");
  EXPECT_EQ(manager_->LookupService(&ask), nullptr);
  EXPECT_EQ(manager_->LookupService(&wire), nullptr);
  EXPECT_FALSE(manager_->IsServiceSupported(&ask));
}

TEST_F(HostManagerTest, LookupReturnsTheFirstMatchingEntry) {
  // Only reachable by changing the list directly: registration never keeps two.
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService* second = NewService("a.b", "_2014_02");
  manager_->KnownServices()->Add(first);
  manager_->KnownServices()->Add(second);
  BaseServiceDescriptor ask("a.b", "_2014_02");
  EXPECT_EQ(manager_->LookupService(&ask), first);
}

TEST_F(HostManagerTest, IsServiceSupportedFollowsLookup) {
  manager_->RegisterService(NewService("a.b", "_2014_02"));
  BaseServiceDescriptor exact("a.b", "_2014_02");
  BaseServiceDescriptor otherVersion("a.b", "_2014_07");
  BaseServiceDescriptor otherCase("A.B", "_2014_02");
  EXPECT_TRUE(manager_->IsServiceSupported(&exact));
  EXPECT_FALSE(manager_->IsServiceSupported(&otherVersion));
  EXPECT_FALSE(manager_->IsServiceSupported(&otherCase));
}

TEST_F(HostManagerTest, WorksThroughTheInterface) {
  IHostManager* asInterface = manager_;
  CountingService* first = NewService("a.b", "_2014_02");
  CountingService* second = NewService("c.d", "_2014_07");
  asInterface->RegisterService(first);
  asInterface->RegisterServices({second});
  DataServiceDescriptor wire("c.d", "_2014_07");
  BaseServiceDescriptor ask("a.b", "_2014_02");
  EXPECT_EQ(asInterface->LookupService(&wire), second);
  EXPECT_EQ(asInterface->LookupService(&ask), first);
  EXPECT_TRUE(asInterface->IsServiceSupported(&ask));
  EXPECT_EQ(Contents(asInterface->KnownServices()), (Services{first, second}));
}

// --- Target configurations ----------------------------------------------------------

TEST_F(HostManagerTest, RegisteredTargetConfigIsFoundByItsId) {
  auto* main = new TargetConfig("main", "Main page", "https://example.test/");
  manager_->RegisterTargetConfig(main);
  EXPECT_EQ(manager_->GetTargetConfig("main"), main);
  EXPECT_EQ(manager_->GetTargetConfig("main")->GetTarget(), "https://example.test/");
}

TEST_F(HostManagerTest, GetTargetConfigOfAnUnknownIdGivesNull) {
  EXPECT_EQ(manager_->GetTargetConfig("main"), nullptr);
  manager_->RegisterTargetConfig(new TargetConfig("main", "Main page", "https://example.test/"));
  EXPECT_EQ(manager_->GetTargetConfig("other"), nullptr);
  EXPECT_EQ(manager_->GetTargetConfig(""), nullptr);
}

TEST_F(HostManagerTest, GetTargetConfigKeyIsExactAndCaseSensitive) {
  auto* main = new TargetConfig("main", "Main page", "https://example.test/");
  manager_->RegisterTargetConfig(main);
  EXPECT_EQ(manager_->GetTargetConfig("Main"), nullptr);
  EXPECT_EQ(manager_->GetTargetConfig("MAIN"), nullptr);
  EXPECT_EQ(manager_->GetTargetConfig("main "), nullptr);
  EXPECT_EQ(manager_->GetTargetConfig(" main"), nullptr);
  EXPECT_EQ(manager_->GetTargetConfig("mai"), nullptr);
  EXPECT_EQ(manager_->GetTargetConfig("main"), main);
}

TEST_F(HostManagerTest, SameIdTwiceKeepsTheSecondAndDoesNotDeleteTheFirst) {
  auto* first = new TargetConfig("main", "First", "https://example.test/one");
  auto* second = new TargetConfig("main", "Second", "https://example.test/two");
  manager_->RegisterTargetConfig(first);
  manager_->RegisterTargetConfig(second);

  EXPECT_EQ(manager_->GetTargetConfig("main"), second);
  std::map<std::string, TargetConfig*> configs = manager_->GetTargetConfigs();
  ASSERT_EQ(configs.size(), 1u);
  EXPECT_EQ(configs.begin()->first, "main");
  EXPECT_EQ(configs.begin()->second, second);

  // The replaced configuration is the caller's again: still readable, and ours
  // to delete (a double deletion would show under the memory checker).
  EXPECT_EQ(first->GetName(), "First");
  delete first;
}

TEST_F(HostManagerTest, GetTargetConfigsHoldsEveryIdInKeyOrder) {
  auto* main = new TargetConfig("main", "Main page", "https://example.test/");
  auto* help = new TargetConfig("help", "Help", "https://example.test/help");
  auto* upper = new TargetConfig("Main", "Upper", "https://example.test/upper");
  manager_->RegisterTargetConfig(main);
  manager_->RegisterTargetConfig(help);
  manager_->RegisterTargetConfig(upper);

  std::map<std::string, TargetConfig*> configs = manager_->GetTargetConfigs();
  std::vector<std::string> ids;
  for (const auto& entry : configs) ids.push_back(entry.first);
  EXPECT_EQ(ids, (std::vector<std::string>{"Main", "help", "main"}));
  EXPECT_EQ(configs["main"], main);
  EXPECT_EQ(configs["help"], help);
  EXPECT_EQ(configs["Main"], upper);
}

TEST_F(HostManagerTest, GetTargetConfigsReturnsACopySharingThePointers) {
  auto* main = new TargetConfig("main", "Main page", "https://example.test/");
  manager_->RegisterTargetConfig(main);

  std::map<std::string, TargetConfig*> configs = manager_->GetTargetConfigs();
  EXPECT_EQ(configs["main"], main);
  configs.clear();
  configs["other"] = nullptr;

  EXPECT_EQ(manager_->GetTargetConfigs().size(), 1u);
  EXPECT_EQ(manager_->GetTargetConfig("main"), main);
  EXPECT_EQ(manager_->GetTargetConfig("other"), nullptr);
}

TEST_F(HostManagerTest, TargetConfigWithAnEmptyIdIsKeptUnderTheEmptyKey) {
  auto* unnamed = new TargetConfig("", "Unnamed", "about:blank");
  manager_->RegisterTargetConfig(unnamed);
  EXPECT_EQ(manager_->GetTargetConfig(""), unnamed);
}

// --- Destruction ------------------------------------------------------------------------

TEST_F(HostManagerTest, DestroyingAManagerLeavesItsServicesAlive) {
  HostManager* own = HostManagerTestPeer::NewManager();
  auto* service = new CountingService("a.b", "_2014_02", &probe_);
  own->RegisterService(service);
  own->RegisterTargetConfig(new TargetConfig("main", "Main page", "https://example.test/"));

  HostManagerTestPeer::DeleteManager(own);  // deletes the list and the configuration
  EXPECT_EQ(probe_.destroyed, 0);
  EXPECT_EQ(service->GetFQN(), "a.b");
  delete service;
  EXPECT_EQ(probe_.destroyed, 1);
}

TEST_F(HostManagerTest, SeparateManagersKeepSeparateRegistries) {
  HostManager* own = HostManagerTestPeer::NewManager();
  CountingService* service = NewService("a.b", "_2014_02");
  own->RegisterService(service);
  BaseServiceDescriptor ask("a.b", "_2014_02");
  EXPECT_EQ(own->LookupService(&ask), service);
  EXPECT_EQ(manager_->LookupService(&ask), nullptr);
  HostManagerTestPeer::DeleteManager(own);
  delete service;
}

}  // namespace
