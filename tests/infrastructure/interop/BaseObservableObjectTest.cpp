#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/INotifyPropertyChange.h"
#include "wevlin/infrastructure/base/IPropertyChangeListener.h"
#include "wevlin/infrastructure/base/PropertyChangeEvent.h"
#include "wevlin/infrastructure/interop/BaseObservableObject.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using ::testing::_;
using ::testing::InSequence;
using ::testing::Invoke;
using ::testing::Property;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::StdoutCapture;

static_assert(std::is_base_of_v<base::INotifyPropertyChange, interop::BaseObservableObject>);
static_assert(std::is_base_of_v<base::IEventSource, interop::BaseObservableObject>);
static_assert(std::has_virtual_destructor_v<interop::BaseObservableObject>);
static_assert(std::is_copy_constructible_v<interop::BaseObservableObject>);
static_assert(std::is_copy_assignable_v<interop::BaseObservableObject>);

class MockListener : public base::IPropertyChangeListener {
 public:
  MOCK_METHOD(void, OnPropertyChanged, (const base::PropertyChangeEvent& event), (override));
};

// Appends what it sees to a shared journal: its own tag, the source and the
// property name.
struct Notification {
  int listener;
  base::IEventSource* source;
  std::string propertyName;
  const base::PropertyChangeEvent* event;
};

class RecordingListener : public base::IPropertyChangeListener {
 public:
  RecordingListener() = default;
  RecordingListener(int tag, std::vector<Notification>* journal) : tag_(tag), journal_(journal) {}
  void Attach(int tag, std::vector<Notification>* journal) {
    tag_ = tag;
    journal_ = journal;
  }
  void OnPropertyChanged(const base::PropertyChangeEvent& event) override {
    journal_->push_back({tag_, event.GetSource(), event.GetPropertyName(), &event});
  }

 private:
  int tag_ = 0;
  std::vector<Notification>* journal_ = nullptr;
};

std::vector<int> Tags(const std::vector<Notification>& journal) {
  std::vector<int> tags;
  for (const Notification& entry : journal) {
    tags.push_back(entry.listener);
  }
  return tags;
}

// A property holder as the library's own classes build it: change the value,
// then announce it.
class Thermostat : public interop::BaseObservableObject {
 public:
  int Target() const { return target_; }
  void SetTarget(int target) {
    target_ = target;
    RaisePropertyChanged("Target");
  }

 private:
  int target_ = 18;
};

TEST(BaseObservableObjectTest, RaisingWithNoListenersDoesNothingAndWritesNothing) {
  interop::BaseObservableObject object;
  StdoutCapture capture;
  object.RaisePropertyChanged("ContentState");
  EXPECT_EQ(capture.Text(), "");
}

TEST(BaseObservableObjectTest, ListenerReceivesNameAndTheObjectAsSource) {
  interop::BaseObservableObject object;
  StrictMock<MockListener> listener;
  object.AddChangeListener(&listener);
  base::IEventSource* expectedSource = &object;
  EXPECT_CALL(listener, OnPropertyChanged(_))
      .WillOnce(Invoke([expectedSource](const base::PropertyChangeEvent& event) {
        EXPECT_EQ(event.GetSource(), expectedSource);
        EXPECT_EQ(event.GetPropertyName(), "ContentState");
      }));
  StdoutCapture capture;
  object.RaisePropertyChanged("ContentState");
  EXPECT_EQ(capture.Text(), "");
}

TEST(BaseObservableObjectTest, SameListenerRegisteredTwiceIsCalledOnce) {
  interop::BaseObservableObject object;
  StrictMock<MockListener> listener;
  object.AddChangeListener(&listener);
  object.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnPropertyChanged(Property(&base::PropertyChangeEvent::GetPropertyName,
                                                   "WebSideVersion")))
      .Times(1);
  object.RaisePropertyChanged("WebSideVersion");
}

TEST(BaseObservableObjectTest, DuplicateRegistrationIsUndoneByOneRemoval) {
  interop::BaseObservableObject object;
  StrictMock<MockListener> listener;
  object.AddChangeListener(&listener);
  object.AddChangeListener(&listener);
  object.RemoveChangeListener(&listener);
  object.RaisePropertyChanged("ContentState");  // a strict mock fails on any call
}

TEST(BaseObservableObjectTest, ListenersAreCalledInPointerOrderNotRegistrationOrder) {
  std::vector<Notification> journal;
  std::array<RecordingListener, 4> listeners;  // ascending addresses
  for (int i = 0; i < 4; ++i) {
    listeners[static_cast<std::size_t>(i)].Attach(i, &journal);
  }
  interop::BaseObservableObject object;
  for (int i = 3; i >= 0; --i) {
    object.AddChangeListener(&listeners[static_cast<std::size_t>(i)]);
  }
  object.RaisePropertyChanged("ContentState");
  EXPECT_EQ(Tags(journal), (std::vector<int>{0, 1, 2, 3}));
}

TEST(BaseObservableObjectTest, EveryListenerReceivesTheSameEventObject) {
  std::vector<Notification> journal;
  std::array<RecordingListener, 3> listeners;
  for (int i = 0; i < 3; ++i) {
    listeners[static_cast<std::size_t>(i)].Attach(i, &journal);
  }
  interop::BaseObservableObject object;
  for (RecordingListener& listener : listeners) {
    object.AddChangeListener(&listener);
  }
  object.RaisePropertyChanged("InstanceDestroyed");
  ASSERT_EQ(journal.size(), 3u);
  for (const Notification& entry : journal) {
    EXPECT_EQ(entry.event, journal[0].event);
    EXPECT_EQ(entry.source, static_cast<base::IEventSource*>(&object));
    EXPECT_EQ(entry.propertyName, "InstanceDestroyed");
  }
}

TEST(BaseObservableObjectTest, SecondListenerThrowingStopsNotificationAndLogsOneLine) {
  std::array<StrictMock<MockListener>, 3> listeners;  // set order is array order
  interop::BaseObservableObject object;
  object.AddChangeListener(&listeners[2]);
  object.AddChangeListener(&listeners[0]);
  object.AddChangeListener(&listeners[1]);
  {
    InSequence order;
    EXPECT_CALL(listeners[0], OnPropertyChanged(_)).Times(1);
    EXPECT_CALL(listeners[1], OnPropertyChanged(_)).WillOnce(Throw(std::runtime_error("boom")));
  }
  EXPECT_CALL(listeners[2], OnPropertyChanged(_)).Times(0);

  StdoutCapture capture;
  EXPECT_NO_THROW(object.RaisePropertyChanged("ContentState"));
  EXPECT_EQ(capture.Text(), "Exception occurred when notifying change to property ContentState\n");
}

TEST(BaseObservableObjectTest, FirstListenerThrowingSkipsAllOthers) {
  std::array<StrictMock<MockListener>, 3> listeners;
  interop::BaseObservableObject object;
  for (auto& listener : listeners) {
    object.AddChangeListener(&listener);
  }
  EXPECT_CALL(listeners[0], OnPropertyChanged(_)).WillOnce(Throw(std::logic_error("first")));

  StdoutCapture capture;
  object.RaisePropertyChanged("WebSideVersion");
  EXPECT_EQ(capture.Text(),
            "Exception occurred when notifying change to property WebSideVersion\n");
}

TEST(BaseObservableObjectTest, ExceptionOfAnyTypeIsSwallowed) {
  StrictMock<MockListener> listener;
  interop::BaseObservableObject object;
  object.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnPropertyChanged(_)).WillOnce(Throw(42));

  StdoutCapture capture;
  EXPECT_NO_THROW(object.RaisePropertyChanged("InstanceDestroyed"));
  EXPECT_EQ(capture.Text(),
            "Exception occurred when notifying change to property InstanceDestroyed\n");
}

TEST(BaseObservableObjectTest, FailureLineCarriesAnEmptyNameAsItIs) {
  StrictMock<MockListener> listener;
  interop::BaseObservableObject object;
  object.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnPropertyChanged(_)).WillOnce(Throw(std::runtime_error("x")));

  StdoutCapture capture;
  object.RaisePropertyChanged("");
  EXPECT_EQ(capture.Text(), "Exception occurred when notifying change to property \n");
}

TEST(BaseObservableObjectTest, NextChangeAfterAFailureReachesEveryoneAgain) {
  std::array<StrictMock<MockListener>, 2> listeners;
  interop::BaseObservableObject object;
  for (auto& listener : listeners) {
    object.AddChangeListener(&listener);
  }
  EXPECT_CALL(listeners[0], OnPropertyChanged(_))
      .WillOnce(Throw(std::runtime_error("once")))
      .WillOnce(Invoke([](const base::PropertyChangeEvent&) {}));
  EXPECT_CALL(listeners[1], OnPropertyChanged(_)).Times(1);

  StdoutCapture capture;
  object.RaisePropertyChanged("ContentState");
  object.RaisePropertyChanged("ContentState");
  EXPECT_EQ(capture.Text(), "Exception occurred when notifying change to property ContentState\n");
}

TEST(BaseObservableObjectTest, EmptyPropertyNameIsDeliveredAsItIs) {
  StrictMock<MockListener> listener;
  interop::BaseObservableObject object;
  object.AddChangeListener(&listener);
  EXPECT_CALL(listener,
              OnPropertyChanged(Property(&base::PropertyChangeEvent::GetPropertyName, "")));
  object.RaisePropertyChanged("");
}

TEST(BaseObservableObjectTest, RemovedListenerIsNoLongerCalled) {
  StrictMock<MockListener> kept;
  StrictMock<MockListener> removed;
  interop::BaseObservableObject object;
  object.AddChangeListener(&kept);
  object.AddChangeListener(&removed);
  object.RemoveChangeListener(&removed);
  EXPECT_CALL(kept, OnPropertyChanged(_)).Times(1);
  object.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectTest, RemovingAnUnregisteredListenerChangesNothing) {
  StrictMock<MockListener> registered;
  StrictMock<MockListener> stranger;
  interop::BaseObservableObject object;
  object.AddChangeListener(&registered);
  EXPECT_NO_THROW(object.RemoveChangeListener(&stranger));
  EXPECT_NO_THROW(object.RemoveChangeListener(nullptr));
  EXPECT_CALL(registered, OnPropertyChanged(_)).Times(1);
  object.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectTest, NullListenerCanBeAddedAndRemovedAgain) {
  StrictMock<MockListener> listener;
  interop::BaseObservableObject object;
  EXPECT_NO_THROW(object.AddChangeListener(nullptr));
  object.RemoveChangeListener(nullptr);
  object.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnPropertyChanged(_)).Times(1);
  object.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectDeathTest, NullListenerIsNotRefusedAndIsCalledOnTheNextChange) {
  // Registering null is accepted; the next change calls through it, which
  // ends the process. This is why callers must never pass one.
  EXPECT_DEATH(
      {
        interop::BaseObservableObject object;
        object.AddChangeListener(nullptr);
        object.RaisePropertyChanged("ContentState");
      },
      "");
}

TEST(BaseObservableObjectTest, WorksThroughTheNotifyInterface) {
  StrictMock<MockListener> listener;
  interop::BaseObservableObject object;
  base::INotifyPropertyChange& notifier = object;
  notifier.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnPropertyChanged(_)).Times(1);
  object.RaisePropertyChanged("ContentState");
  notifier.RemoveChangeListener(&listener);
  object.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectTest, DerivedClassAnnouncesAfterTheChange) {
  Thermostat thermostat;
  StrictMock<MockListener> listener;
  thermostat.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnPropertyChanged(_))
      .WillOnce(Invoke([&thermostat](const base::PropertyChangeEvent& event) {
        auto* source = dynamic_cast<Thermostat*>(event.GetSource());
        ASSERT_EQ(source, &thermostat);
        EXPECT_EQ(event.GetPropertyName(), "Target");
        EXPECT_EQ(source->Target(), 21);
      }));
  thermostat.SetTarget(21);
}

TEST(BaseObservableObjectTest, CopyConstructionCopiesTheListenersAndNamesTheCopyAsSource) {
  StrictMock<MockListener> listener;
  interop::BaseObservableObject original;
  original.AddChangeListener(&listener);
  interop::BaseObservableObject copy(original);
  base::IEventSource* copySource = &copy;
  EXPECT_CALL(listener,
              OnPropertyChanged(Property(&base::PropertyChangeEvent::GetSource, copySource)))
      .Times(1);
  copy.RaisePropertyChanged("ContentState");

  // The sets are independent afterwards.
  copy.RemoveChangeListener(&listener);
  base::IEventSource* originalSource = &original;
  EXPECT_CALL(listener,
              OnPropertyChanged(Property(&base::PropertyChangeEvent::GetSource, originalSource)))
      .Times(1);
  original.RaisePropertyChanged("ContentState");
  copy.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectTest, CopyAssignmentReplacesTheListeners) {
  StrictMock<MockListener> oldListener;
  StrictMock<MockListener> newListener;
  interop::BaseObservableObject target;
  target.AddChangeListener(&oldListener);
  interop::BaseObservableObject other;
  other.AddChangeListener(&newListener);
  target = other;
  EXPECT_CALL(newListener, OnPropertyChanged(_)).Times(1);
  target.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectTest, DestructionLeavesListenersAlone) {
  // A strict mock fails on any call, so destroying the object must neither
  // notify nor otherwise touch its listener.
  StrictMock<MockListener> listener;
  StdoutCapture capture;
  {
    interop::BaseObservableObject object;
    object.AddChangeListener(&listener);
  }
  EXPECT_EQ(capture.Text(), "");
}

TEST(BaseObservableObjectTest, ListenerMayUnregisterItselfWhileNotified) {
  std::array<StrictMock<MockListener>, 3> listeners;
  interop::BaseObservableObject object;
  for (auto& listener : listeners) {
    object.AddChangeListener(&listener);
  }
  EXPECT_CALL(listeners[0], OnPropertyChanged(_)).Times(2);
  EXPECT_CALL(listeners[1], OnPropertyChanged(_))
      .WillOnce(Invoke(
          [&](const base::PropertyChangeEvent&) { object.RemoveChangeListener(&listeners[1]); }));
  EXPECT_CALL(listeners[2], OnPropertyChanged(_)).Times(2);
  object.RaisePropertyChanged("ContentState");
  object.RaisePropertyChanged("ContentState");
}

TEST(BaseObservableObjectTest, ListenerRemovedByAnEarlierOneIsNotCalled) {
  std::array<StrictMock<MockListener>, 3> listeners;
  interop::BaseObservableObject object;
  for (auto& listener : listeners) {
    object.AddChangeListener(&listener);
  }
  EXPECT_CALL(listeners[0], OnPropertyChanged(_))
      .WillOnce(Invoke(
          [&](const base::PropertyChangeEvent&) { object.RemoveChangeListener(&listeners[1]); }));
  EXPECT_CALL(listeners[2], OnPropertyChanged(_)).Times(1);
  object.RaisePropertyChanged("ContentState");
}

}  // namespace
