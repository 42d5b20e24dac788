#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <exception>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/IListChangeListener.h"
#include "wevlin/infrastructure/base/INotifyListChange.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/base/ListChangeEvent.h"
#include "wevlin/infrastructure/base/ObservableList.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
using ::testing::_;
using ::testing::Invoke;
using ::testing::StrictMock;
using ::testing::Throw;
using wevlin_test::StdoutCapture;

struct Service {
  std::string name;
};

using List = base::ObservableList<Service*>;
using Event = base::ListChangeEvent<Service*>;
using Listener = base::IListChangeListener<Service*>;

const char kFailureLine[] =
    "ObservableList<T>::NotifyChange - caught exception from OnListChanged\n";

static_assert(std::is_base_of_v<base::IObservableList<Service*>, List>);
static_assert(std::is_base_of_v<base::INotifyListChange<Service*>, List>);
static_assert(std::is_base_of_v<base::IEventSource, List>);
static_assert(std::has_virtual_destructor_v<List>);
static_assert(std::is_copy_constructible_v<List>);
static_assert(std::is_copy_assignable_v<List>);

class MockListener : public Listener {
 public:
  MOCK_METHOD(void, OnListChanged, (const Event& event), (override));
};

// Keeps a copy of every event and, if given the list, what the list looked
// like when the event arrived.
class RecordingListener : public Listener {
 public:
  explicit RecordingListener(const List* list = nullptr) : list_(list) {}

  void OnListChanged(const Event& event) override {
    events.push_back(event);
    if (list_ != nullptr) {
      std::vector<Service*> items;
      for (int i = 0; i < list_->GetSize(); ++i) {
        items.push_back(list_->GetAt(i));
      }
      snapshots.push_back(items);
    }
  }

  std::vector<Event> events;
  std::vector<std::vector<Service*>> snapshots;

 private:
  const List* list_;
};

// Appends its tag to a shared journal.
class TaggingListener : public Listener {
 public:
  TaggingListener() = default;
  void Attach(int tag, std::vector<int>* journal) {
    tag_ = tag;
    journal_ = journal;
  }
  void OnListChanged(const Event&) override { journal_->push_back(tag_); }

 private:
  int tag_ = 0;
  std::vector<int>* journal_ = nullptr;
};

// Exposes the protected notification, as a derived list would use it.
class AnnouncingList : public List {
 public:
  using List::NotifyChange;
};

std::vector<Service*> Items(const List& list) {
  std::vector<Service*> items;
  for (int i = 0; i < list.GetSize(); ++i) {
    items.push_back(list.GetAt(i));
  }
  return items;
}

void ExpectEvent(const Event& event, const List& list, Event::ChangeAction action, int newIndex,
                 int oldIndex, const std::vector<Service*>& newItems,
                 const std::vector<Service*>& oldItems) {
  EXPECT_EQ(event.GetSource(), static_cast<const base::IEventSource*>(&list));
  EXPECT_EQ(event.GetAction(), action);
  EXPECT_EQ(event.GetNewIndex(), newIndex);
  EXPECT_EQ(event.GetOldIndex(), oldIndex);
  EXPECT_EQ(event.GetNewItems(), newItems);
  EXPECT_EQ(event.GetOldItems(), oldItems);
}

// Checks that `thrown` is a plain, default std::exception.
void ExpectDefaultException(const std::exception& thrown) {
  EXPECT_TRUE(typeid(thrown) == typeid(std::exception));
  EXPECT_STREQ(thrown.what(), std::exception().what());
}

class ObservableListTest : public ::testing::Test {
 protected:
  Service a_{"a"};
  Service b_{"b"};
  Service c_{"c"};
  List list_;
  RecordingListener recorder_{&list_};
};

TEST_F(ObservableListTest, NewListIsEmpty) {
  EXPECT_EQ(list_.GetSize(), 0);
  EXPECT_TRUE(Items(list_).empty());
}

TEST_F(ObservableListTest, AddAppendsAndRaisesAddWithTheNewLastIndex) {
  list_.AddChangeListener(&recorder_);
  EXPECT_TRUE(list_.Add(&a_));
  EXPECT_TRUE(list_.Add(&b_));
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&a_, &b_}));
  ASSERT_EQ(recorder_.events.size(), 2u);
  ExpectEvent(recorder_.events[0], list_, Event::Add, 0, -1, {&a_}, {});
  ExpectEvent(recorder_.events[1], list_, Event::Add, 1, -1, {&b_}, {});
}

TEST_F(ObservableListTest, SamePointerAddedTwiceGivesTwoElementsAndTwoAddEvents) {
  list_.AddChangeListener(&recorder_);
  EXPECT_TRUE(list_.Add(&a_));
  EXPECT_TRUE(list_.Add(&a_));
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&a_, &a_}));
  ASSERT_EQ(recorder_.events.size(), 2u);
  ExpectEvent(recorder_.events[0], list_, Event::Add, 0, -1, {&a_}, {});
  ExpectEvent(recorder_.events[1], list_, Event::Add, 1, -1, {&a_}, {});

  recorder_.events.clear();
  list_.Remove(&a_);
  EXPECT_EQ(list_.GetSize(), 0);
  ASSERT_EQ(recorder_.events.size(), 2u);
  ExpectEvent(recorder_.events[0], list_, Event::Remove, -1, 1, {}, {&a_});
  ExpectEvent(recorder_.events[1], list_, Event::Remove, -1, 0, {}, {&a_});
}

TEST_F(ObservableListTest, AddAtIndexInsertsBeforeThatPosition) {
  list_.Add(&a_);
  list_.AddChangeListener(&recorder_);
  list_.Add(0, &b_);  // first
  list_.Add(2, &c_);  // at the size: appended
  list_.Add(1, &c_);  // in the middle
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&b_, &c_, &a_, &c_}));
  ASSERT_EQ(recorder_.events.size(), 3u);
  ExpectEvent(recorder_.events[0], list_, Event::Add, 0, -1, {&b_}, {});
  ExpectEvent(recorder_.events[1], list_, Event::Add, 2, -1, {&c_}, {});
  ExpectEvent(recorder_.events[2], list_, Event::Add, 1, -1, {&c_}, {});
}

TEST_F(ObservableListTest, AddAtIndexZeroOfAnEmptyList) {
  list_.AddChangeListener(&recorder_);
  list_.Add(0, &a_);
  EXPECT_EQ(Items(list_), std::vector<Service*>{&a_});
  ASSERT_EQ(recorder_.events.size(), 1u);
  ExpectEvent(recorder_.events[0], list_, Event::Add, 0, -1, {&a_}, {});
}

TEST_F(ObservableListTest, RemoveAtReturnsTheItemAndRaisesRemove) {
  list_.Add(&a_);
  list_.Add(&b_);
  list_.Add(&c_);
  list_.AddChangeListener(&recorder_);
  EXPECT_EQ(list_.RemoveAt(1), &b_);
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&a_, &c_}));
  EXPECT_EQ(list_.RemoveAt(1), &c_);
  EXPECT_EQ(list_.RemoveAt(0), &a_);
  EXPECT_EQ(list_.GetSize(), 0);
  ASSERT_EQ(recorder_.events.size(), 3u);
  ExpectEvent(recorder_.events[0], list_, Event::Remove, -1, 1, {}, {&b_});
  ExpectEvent(recorder_.events[1], list_, Event::Remove, -1, 1, {}, {&c_});
  ExpectEvent(recorder_.events[2], list_, Event::Remove, -1, 0, {}, {&a_});
}

TEST_F(ObservableListTest, RemoveTakesEveryOccurrenceFromTheHighestIndexDown) {
  for (Service* item : {&a_, &b_, &a_, &c_, &a_}) {
    list_.Add(item);
  }
  list_.AddChangeListener(&recorder_);
  list_.Remove(&a_);
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&b_, &c_}));
  ASSERT_EQ(recorder_.events.size(), 3u);
  ExpectEvent(recorder_.events[0], list_, Event::Remove, -1, 4, {}, {&a_});
  ExpectEvent(recorder_.events[1], list_, Event::Remove, -1, 2, {}, {&a_});
  ExpectEvent(recorder_.events[2], list_, Event::Remove, -1, 0, {}, {&a_});
  // Each event is raised after its own occurrence is gone.
  ASSERT_EQ(recorder_.snapshots.size(), 3u);
  EXPECT_EQ(recorder_.snapshots[0], (std::vector<Service*>{&a_, &b_, &a_, &c_}));
  EXPECT_EQ(recorder_.snapshots[1], (std::vector<Service*>{&a_, &b_, &c_}));
  EXPECT_EQ(recorder_.snapshots[2], (std::vector<Service*>{&b_, &c_}));
}

TEST_F(ObservableListTest, RemoveOfAnAbsentItemRaisesNothing) {
  list_.Add(&a_);
  StrictMock<MockListener> listener;
  list_.AddChangeListener(&listener);
  list_.Remove(&b_);
  list_.Remove(nullptr);
  EXPECT_EQ(Items(list_), std::vector<Service*>{&a_});
}

TEST_F(ObservableListTest, RemoveComparesPointersNotValues) {
  Service twin{"a"};
  list_.Add(&a_);
  list_.Add(&twin);
  list_.Remove(&twin);
  EXPECT_EQ(Items(list_), std::vector<Service*>{&a_});
}

TEST_F(ObservableListTest, SetAtReturnsThePreviousItemAndRaisesResetWithoutDetails) {
  list_.Add(&a_);
  list_.Add(&b_);
  list_.AddChangeListener(&recorder_);
  EXPECT_EQ(list_.SetAt(1, &c_), &b_);
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&a_, &c_}));
  ASSERT_EQ(recorder_.events.size(), 1u);
  ExpectEvent(recorder_.events[0], list_, Event::Reset, -1, -1, {}, {});
}

TEST_F(ObservableListTest, SetAtWithTheSameItemStillRaisesReset) {
  list_.Add(&a_);
  list_.AddChangeListener(&recorder_);
  EXPECT_EQ(list_.SetAt(0, &a_), &a_);
  ASSERT_EQ(recorder_.events.size(), 1u);
  ExpectEvent(recorder_.events[0], list_, Event::Reset, -1, -1, {}, {});
}

TEST_F(ObservableListTest, ClearEmptiesTheListAndRaisesOneReset) {
  list_.Add(&a_);
  list_.Add(&b_);
  list_.AddChangeListener(&recorder_);
  list_.Clear();
  EXPECT_EQ(list_.GetSize(), 0);
  ASSERT_EQ(recorder_.events.size(), 1u);
  ExpectEvent(recorder_.events[0], list_, Event::Reset, -1, -1, {}, {});
  EXPECT_EQ(recorder_.snapshots[0], std::vector<Service*>{});
}

TEST_F(ObservableListTest, ClearOfAnEmptyListStillRaisesOneReset) {
  list_.AddChangeListener(&recorder_);
  list_.Clear();
  ASSERT_EQ(recorder_.events.size(), 1u);
  ExpectEvent(recorder_.events[0], list_, Event::Reset, -1, -1, {}, {});
}

TEST_F(ObservableListTest, ReadingRaisesNothing) {
  list_.Add(&a_);
  StrictMock<MockListener> listener;
  list_.AddChangeListener(&listener);
  EXPECT_EQ(list_.GetSize(), 1);
  EXPECT_EQ(list_.GetAt(0), &a_);
}

TEST_F(ObservableListTest, NullElementsAreAccepted) {
  list_.AddChangeListener(&recorder_);
  EXPECT_TRUE(list_.Add(nullptr));
  EXPECT_EQ(list_.GetAt(0), nullptr);
  ASSERT_EQ(recorder_.events.size(), 1u);
  ExpectEvent(recorder_.events[0], list_, Event::Add, 0, -1, {nullptr}, {});
}

TEST_F(ObservableListTest, ListenersSeeTheChangeAlreadyApplied) {
  list_.AddChangeListener(&recorder_);
  list_.Add(&a_);
  list_.Add(0, &b_);
  list_.SetAt(1, &c_);
  list_.RemoveAt(0);
  list_.Clear();
  ASSERT_EQ(recorder_.snapshots.size(), 5u);
  EXPECT_EQ(recorder_.snapshots[0], (std::vector<Service*>{&a_}));
  EXPECT_EQ(recorder_.snapshots[1], (std::vector<Service*>{&b_, &a_}));
  EXPECT_EQ(recorder_.snapshots[2], (std::vector<Service*>{&b_, &c_}));
  EXPECT_EQ(recorder_.snapshots[3], (std::vector<Service*>{&c_}));
  EXPECT_EQ(recorder_.snapshots[4], (std::vector<Service*>{}));
}

TEST_F(ObservableListTest, ListenersAreCalledInRegistrationOrder) {
  std::vector<int> journal;
  std::array<TaggingListener, 4> listeners;  // ascending addresses
  for (int i = 0; i < 4; ++i) {
    listeners[static_cast<std::size_t>(i)].Attach(i, &journal);
  }
  for (int i = 3; i >= 0; --i) {
    list_.AddChangeListener(&listeners[static_cast<std::size_t>(i)]);
  }
  list_.Add(&a_);
  EXPECT_EQ(journal, (std::vector<int>{3, 2, 1, 0}));
}

TEST_F(ObservableListTest, EveryListenerReceivesTheSameEvent) {
  StrictMock<MockListener> first;
  StrictMock<MockListener> second;
  list_.AddChangeListener(&first);
  list_.AddChangeListener(&second);
  const Event* seen = nullptr;
  EXPECT_CALL(first, OnListChanged(_)).WillOnce(Invoke([&seen](const Event& event) {
    seen = &event;
  }));
  EXPECT_CALL(second, OnListChanged(_)).WillOnce(Invoke([&seen](const Event& event) {
    EXPECT_EQ(&event, seen);
  }));
  list_.Add(&a_);
}

TEST_F(ObservableListTest, RegisteringAListenerTwiceThrowsAndLeavesListenersUnchanged) {
  StrictMock<MockListener> listener;
  list_.AddChangeListener(&listener);
  try {
    list_.AddChangeListener(&listener);
    ADD_FAILURE() << "the second registration was accepted";
  } catch (const std::exception& thrown) {
    ExpectDefaultException(thrown);
  }
  EXPECT_CALL(listener, OnListChanged(_)).Times(1);
  list_.Add(&a_);
}

TEST_F(ObservableListTest, RegisteringNullTwiceThrowsToo) {
  list_.AddChangeListener(nullptr);
  EXPECT_THROW(list_.AddChangeListener(nullptr), std::exception);
  list_.RemoveChangeListener(nullptr);
  EXPECT_THROW(list_.RemoveChangeListener(nullptr), std::exception);
}

TEST_F(ObservableListTest, RemovingAnUnknownListenerThrowsAndLeavesListenersUnchanged) {
  StrictMock<MockListener> registered;
  StrictMock<MockListener> stranger;
  list_.AddChangeListener(&registered);
  try {
    list_.RemoveChangeListener(&stranger);
    ADD_FAILURE() << "an unknown listener was removed";
  } catch (const std::exception& thrown) {
    ExpectDefaultException(thrown);
  }
  EXPECT_CALL(registered, OnListChanged(_)).Times(1);
  list_.Add(&a_);
}

TEST_F(ObservableListTest, RemovingTheSameListenerTwiceThrowsTheSecondTime) {
  StrictMock<MockListener> listener;
  list_.AddChangeListener(&listener);
  list_.RemoveChangeListener(&listener);
  try {
    list_.RemoveChangeListener(&listener);
    ADD_FAILURE() << "the listener was removed twice";
  } catch (const std::exception& thrown) {
    ExpectDefaultException(thrown);
  }
  list_.Add(&a_);  // a strict mock fails on any call
}

TEST_F(ObservableListTest, RemovedListenerMayBeRegisteredAgainAndGoesLast) {
  std::vector<int> journal;
  std::array<TaggingListener, 3> listeners;
  for (int i = 0; i < 3; ++i) {
    listeners[static_cast<std::size_t>(i)].Attach(i, &journal);
    list_.AddChangeListener(&listeners[static_cast<std::size_t>(i)]);
  }
  list_.RemoveChangeListener(&listeners[0]);
  list_.AddChangeListener(&listeners[0]);
  list_.Clear();
  EXPECT_EQ(journal, (std::vector<int>{1, 2, 0}));
}

TEST_F(ObservableListTest, FirstListenerThrowingDoesNotStopTheSecondAndLogsOneLine) {
  StrictMock<MockListener> first;
  StrictMock<MockListener> second;
  list_.AddChangeListener(&first);
  list_.AddChangeListener(&second);
  EXPECT_CALL(first, OnListChanged(_)).WillOnce(Throw(std::runtime_error("boom")));
  EXPECT_CALL(second, OnListChanged(_)).Times(1);

  StdoutCapture capture;
  EXPECT_NO_THROW(list_.Add(&a_));
  EXPECT_EQ(capture.Text(), kFailureLine);
  EXPECT_EQ(list_.GetSize(), 1);
}

TEST_F(ObservableListTest, EveryThrowingListenerLogsItsOwnLine) {
  std::array<StrictMock<MockListener>, 3> listeners;
  for (auto& listener : listeners) {
    list_.AddChangeListener(&listener);
  }
  EXPECT_CALL(listeners[0], OnListChanged(_)).WillOnce(Throw(std::runtime_error("one")));
  EXPECT_CALL(listeners[1], OnListChanged(_)).WillOnce(Throw(17));
  EXPECT_CALL(listeners[2], OnListChanged(_)).WillOnce(Throw(std::string("three")));

  StdoutCapture capture;
  EXPECT_NO_THROW(list_.Clear());
  EXPECT_EQ(capture.Text(), std::string(kFailureLine) + kFailureLine + kFailureLine);
}

TEST_F(ObservableListTest, ThrownPointerFromAListenerIsSwallowedToo) {
  StrictMock<MockListener> listener;
  list_.AddChangeListener(&listener);
  static std::exception leaked;  // thrown by address, so nothing to free
  EXPECT_CALL(listener, OnListChanged(_)).WillOnce(Throw(&leaked));

  StdoutCapture capture;
  EXPECT_NO_THROW(list_.Add(&a_));
  EXPECT_EQ(capture.Text(), kFailureLine);
}

TEST_F(ObservableListTest, EachOccurrenceOfRemoveIsAnnouncedEvenWhenAListenerThrows) {
  list_.Add(&a_);
  list_.Add(&a_);
  StrictMock<MockListener> listener;
  list_.AddChangeListener(&listener);
  EXPECT_CALL(listener, OnListChanged(_)).Times(2).WillRepeatedly(Throw(std::logic_error("x")));

  StdoutCapture capture;
  list_.Remove(&a_);
  EXPECT_EQ(capture.Text(), std::string(kFailureLine) + kFailureLine);
  EXPECT_EQ(list_.GetSize(), 0);
}

TEST_F(ObservableListTest, FailureLineIsTheSameWhateverTheElementType) {
  base::ObservableList<const char*> names;
  class Thrower : public base::IListChangeListener<const char*> {
   public:
    void OnListChanged(const base::ListChangeEvent<const char*>&) override {
      throw std::runtime_error("no");
    }
  } thrower;
  names.AddChangeListener(&thrower);

  StdoutCapture capture;
  names.Add("x");
  EXPECT_EQ(capture.Text(), kFailureLine);
}

TEST_F(ObservableListTest, CopyConstructionCopiesItemsAndListeners) {
  list_.Add(&a_);
  list_.Add(&b_);
  RecordingListener listener;
  list_.AddChangeListener(&listener);

  List copy(list_);
  EXPECT_EQ(Items(copy), (std::vector<Service*>{&a_, &b_}));
  copy.Add(&c_);
  ASSERT_EQ(listener.events.size(), 1u);
  ExpectEvent(listener.events[0], copy, Event::Add, 2, -1, {&c_}, {});
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&a_, &b_}));  // the original is untouched

  // The copy has its own registrations.
  copy.RemoveChangeListener(&listener);
  list_.Clear();
  copy.Clear();
  ASSERT_EQ(listener.events.size(), 2u);
  ExpectEvent(listener.events[1], list_, Event::Reset, -1, -1, {}, {});
}

TEST_F(ObservableListTest, CopyAssignmentReplacesItemsAndListeners) {
  RecordingListener oldListener;
  RecordingListener newListener;
  list_.Add(&a_);
  list_.AddChangeListener(&oldListener);
  List other;
  other.Add(&b_);
  other.Add(&c_);
  other.AddChangeListener(&newListener);

  list_ = other;
  EXPECT_EQ(Items(list_), (std::vector<Service*>{&b_, &c_}));
  list_.RemoveAt(0);
  EXPECT_TRUE(oldListener.events.empty());
  ASSERT_EQ(newListener.events.size(), 1u);
  ExpectEvent(newListener.events[0], list_, Event::Remove, -1, 0, {}, {&b_});
  EXPECT_EQ(Items(other), (std::vector<Service*>{&b_, &c_}));
}

TEST_F(ObservableListTest, DestructionDeletesNeitherElementsNorListeners) {
  StrictMock<MockListener> listener;
  auto* service = new Service{"owned elsewhere"};
  {
    List local;
    local.Add(service);
    local.AddChangeListener(&listener);
  }  // a strict mock fails on any call
  EXPECT_EQ(service->name, "owned elsewhere");
  delete service;
}

TEST_F(ObservableListTest, WorksThroughTheListInterface) {
  base::IObservableList<Service*>& observable = list_;
  observable.AddChangeListener(&recorder_);
  EXPECT_TRUE(observable.Add(&a_));
  observable.Add(0, &b_);
  EXPECT_EQ(observable.GetSize(), 2);
  EXPECT_EQ(observable.GetAt(0), &b_);
  EXPECT_EQ(observable.SetAt(0, &c_), &b_);
  EXPECT_EQ(observable.RemoveAt(1), &a_);
  observable.Remove(&c_);
  observable.Clear();
  observable.RemoveChangeListener(&recorder_);
  observable.Add(&a_);
  ASSERT_EQ(recorder_.events.size(), 6u);
  EXPECT_EQ(recorder_.events[0].GetAction(), Event::Add);
  EXPECT_EQ(recorder_.events[1].GetAction(), Event::Add);
  EXPECT_EQ(recorder_.events[2].GetAction(), Event::Reset);
  EXPECT_EQ(recorder_.events[3].GetAction(), Event::Remove);
  EXPECT_EQ(recorder_.events[4].GetAction(), Event::Remove);
  EXPECT_EQ(recorder_.events[5].GetAction(), Event::Reset);
}

TEST_F(ObservableListTest, SourceCanBeRecoveredAsTheList) {
  list_.AddChangeListener(&recorder_);
  list_.Add(&a_);
  ASSERT_EQ(recorder_.events.size(), 1u);
  EXPECT_EQ(dynamic_cast<base::IObservableList<Service*>*>(recorder_.events[0].GetSource()),
            &list_);
}

TEST(ObservableListDerivedTest, DerivedListCanAnnounceItsOwnEvents) {
  AnnouncingList list;
  Service service{"s"};
  RecordingListener listener;
  list.AddChangeListener(&listener);
  list.NotifyChange(Event(&list, Event::Remove, &service, 8));
  ASSERT_EQ(listener.events.size(), 1u);
  EXPECT_EQ(listener.events[0].GetAction(), Event::Remove);
  EXPECT_EQ(listener.events[0].GetOldIndex(), 8);
  EXPECT_EQ(listener.events[0].GetOldItems(), std::vector<Service*>{&service});
  EXPECT_EQ(list.GetSize(), 0);  // notifying changes nothing by itself
}

TEST(ObservableListDerivedTest, ListenerThatUnregistersItselfDoesNotHideTheNextOne) {
  AnnouncingList list;
  StrictMock<MockListener> leaving;
  StrictMock<MockListener> staying;
  list.AddChangeListener(&leaving);
  list.AddChangeListener(&staying);
  EXPECT_CALL(leaving, OnListChanged(_)).WillOnce(Invoke([&](const Event&) {
    list.RemoveChangeListener(&leaving);
  }));
  EXPECT_CALL(staying, OnListChanged(_)).Times(2);
  list.Clear();
  list.Clear();
}

}  // namespace
