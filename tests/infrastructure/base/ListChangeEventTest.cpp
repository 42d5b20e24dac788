#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "wevlin/infrastructure/base/EventObject.h"
#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/ListChangeEvent.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;

struct Service {
  std::string name;
};

using Event = base::ListChangeEvent<Service*>;

static_assert(Event::Add == 0);
static_assert(Event::Remove == 1);
static_assert(Event::Reset == 3);
static_assert(std::is_base_of_v<base::EventObject, Event>);
static_assert(std::has_virtual_destructor_v<Event>);
static_assert(std::is_copy_constructible_v<Event>);
static_assert(std::is_copy_assignable_v<Event>);

// The number 2 is a valid value of the enumeration that has no name.
const Event::ChangeAction kUnnamedAction = static_cast<Event::ChangeAction>(2);

TEST(ListChangeEventTest, ActionOnlyConstructorHasNoIndexesAndNoItems) {
  base::IEventSource source;
  for (Event::ChangeAction action : {Event::Add, Event::Remove, Event::Reset, kUnnamedAction}) {
    Event event(&source, action);
    EXPECT_EQ(event.GetSource(), &source);
    EXPECT_EQ(event.GetAction(), action);
    EXPECT_EQ(event.GetNewIndex(), -1);
    EXPECT_EQ(event.GetOldIndex(), -1);
    EXPECT_TRUE(event.GetNewItems().empty());
    EXPECT_TRUE(event.GetOldItems().empty());
  }
}

TEST(ListChangeEventTest, AddCarriesTheNewIndexAndItem) {
  base::IEventSource source;
  Service service{"a"};
  Event event(&source, Event::Add, &service, 4);
  EXPECT_EQ(event.GetSource(), &source);
  EXPECT_EQ(event.GetAction(), Event::Add);
  EXPECT_EQ(event.GetNewIndex(), 4);
  EXPECT_EQ(event.GetOldIndex(), -1);
  EXPECT_EQ(event.GetNewItems(), std::vector<Service*>{&service});
  EXPECT_TRUE(event.GetOldItems().empty());
}

TEST(ListChangeEventTest, RemoveCarriesTheOldIndexAndItem) {
  base::IEventSource source;
  Service service{"a"};
  Event event(&source, Event::Remove, &service, 2);
  EXPECT_EQ(event.GetAction(), Event::Remove);
  EXPECT_EQ(event.GetNewIndex(), -1);
  EXPECT_EQ(event.GetOldIndex(), 2);
  EXPECT_TRUE(event.GetNewItems().empty());
  EXPECT_EQ(event.GetOldItems(), std::vector<Service*>{&service});
}

TEST(ListChangeEventTest, ResetIgnoresItemAndIndex) {
  Service service{"a"};
  Event event(nullptr, Event::Reset, &service, 5);
  EXPECT_EQ(event.GetAction(), Event::Reset);
  EXPECT_EQ(event.GetNewIndex(), -1);
  EXPECT_EQ(event.GetOldIndex(), -1);
  EXPECT_TRUE(event.GetNewItems().empty());
  EXPECT_TRUE(event.GetOldItems().empty());
}

TEST(ListChangeEventTest, NullItemIsCarriedLikeAnyOther) {
  Event event(nullptr, Event::Add, nullptr, 0);
  EXPECT_EQ(event.GetNewItems(), std::vector<Service*>{nullptr});
  EXPECT_EQ(event.GetNewIndex(), 0);
}

TEST(ListChangeEventTest, IndexIsTakenAsGiven) {
  Service service{"a"};
  Event add(nullptr, Event::Add, &service, -7);
  EXPECT_EQ(add.GetNewIndex(), -7);
  Event remove(nullptr, Event::Remove, &service, 2147483647);
  EXPECT_EQ(remove.GetOldIndex(), 2147483647);
}

// Catches what the item constructor throws for `action` and returns it; the
// caller owns the result.
std::exception* ThrownBy(Event::ChangeAction action) {
  Service service{"a"};
  try {
    Event event(nullptr, action, &service, 0);
  } catch (std::exception* thrown) {
    return thrown;
  }
  return nullptr;
}

TEST(ListChangeEventTest, ItemConstructorThrowsAnAllocatedExceptionForTheUnnamedAction) {
  std::exception* thrown = ThrownBy(kUnnamedAction);
  ASSERT_NE(thrown, nullptr);
  EXPECT_TRUE(typeid(*thrown) == typeid(std::exception));
  EXPECT_STREQ(thrown->what(), std::exception().what());
  delete thrown;
}

TEST(ListChangeEventTest, ItemConstructorThrowsForValuesOutsideTheEnumeration) {
  for (int value : {2, 4, 7, -1}) {
    std::exception* thrown = ThrownBy(static_cast<Event::ChangeAction>(value));
    ASSERT_NE(thrown, nullptr) << "value " << value;
    EXPECT_TRUE(typeid(*thrown) == typeid(std::exception));
    EXPECT_STREQ(thrown->what(), std::exception().what());
    delete thrown;
  }
}

TEST(ListChangeEventTest, ItemConstructorThrowsNothingForNamedActions) {
  for (Event::ChangeAction action : {Event::Add, Event::Remove, Event::Reset}) {
    EXPECT_EQ(ThrownBy(action), nullptr);
  }
}

TEST(ListChangeEventTest, ThrownValueIsAPointerNotAnExceptionObject) {
  Service service{"a"};
  bool caughtByValue = false;
  std::exception* caughtPointer = nullptr;
  try {
    Event event(nullptr, kUnnamedAction, &service, 0);
  } catch (const std::exception&) {
    caughtByValue = true;
  } catch (std::exception* thrown) {
    caughtPointer = thrown;
  }
  EXPECT_FALSE(caughtByValue);
  ASSERT_NE(caughtPointer, nullptr);
  delete caughtPointer;
}

TEST(ListChangeEventTest, CopyConstructionCopiesEveryField) {
  base::IEventSource source;
  Service service{"a"};
  const Event original(&source, Event::Remove, &service, 3);
  const Event copy(original);
  EXPECT_EQ(copy.GetSource(), &source);
  EXPECT_EQ(copy.GetAction(), Event::Remove);
  EXPECT_EQ(copy.GetNewIndex(), -1);
  EXPECT_EQ(copy.GetOldIndex(), 3);
  EXPECT_TRUE(copy.GetNewItems().empty());
  EXPECT_EQ(copy.GetOldItems(), std::vector<Service*>{&service});
}

TEST(ListChangeEventTest, CopyAssignmentReplacesEveryField) {
  base::IEventSource first;
  base::IEventSource second;
  Service a{"a"};
  Service b{"b"};
  Event target(&first, Event::Remove, &a, 9);
  const Event other(&second, Event::Add, &b, 1);
  target = other;
  EXPECT_EQ(target.GetSource(), &second);
  EXPECT_EQ(target.GetAction(), Event::Add);
  EXPECT_EQ(target.GetNewIndex(), 1);
  EXPECT_EQ(target.GetOldIndex(), -1);
  EXPECT_EQ(target.GetNewItems(), std::vector<Service*>{&b});
  EXPECT_TRUE(target.GetOldItems().empty());
}

TEST(ListChangeEventTest, CopiesAreIndependent) {
  Service a{"a"};
  Service b{"b"};
  Event original(nullptr, Event::Add, &a, 0);
  Event copy(original);
  copy = Event(nullptr, Event::Add, &b, 5);
  EXPECT_EQ(original.GetNewItems(), std::vector<Service*>{&a});
  EXPECT_EQ(original.GetNewIndex(), 0);
  EXPECT_EQ(copy.GetNewItems(), std::vector<Service*>{&b});
}

TEST(ListChangeEventTest, EventDoesNotOwnItsItems) {
  auto* service = new Service{"kept"};
  { Event event(nullptr, Event::Add, service, 0); }
  EXPECT_EQ(service->name, "kept");  // still alive: the event did not delete it
  delete service;
}

TEST(ListChangeEventTest, WorksForOtherPointerTypes) {
  const char* text = "x";
  base::ListChangeEvent<const char*> event(nullptr, base::ListChangeEvent<const char*>::Remove,
                                           text, 0);
  EXPECT_EQ(event.GetOldItems(), std::vector<const char*>{text});
  EXPECT_EQ(event.GetOldIndex(), 0);
}

}  // namespace
