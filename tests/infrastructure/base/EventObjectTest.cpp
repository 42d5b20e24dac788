#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "wevlin/infrastructure/base/EventObject.h"
#include "wevlin/infrastructure/base/IEventSource.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;

// The smallest concrete event: the base can only be built by a derived class.
class TestEvent : public base::EventObject {
 public:
  explicit TestEvent(base::IEventSource* source, int tag = 0) : EventObject(source), tag_(tag) {}
  int Tag() const { return tag_; }

 private:
  int tag_;
};

class CountingSource : public base::IEventSource {
 public:
  explicit CountingSource(int* destroyed) : destroyed_(destroyed) {}
  ~CountingSource() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

static_assert(std::is_polymorphic_v<base::IEventSource>);
static_assert(std::has_virtual_destructor_v<base::IEventSource>);
static_assert(sizeof(base::IEventSource) == sizeof(void*),
              "the marker interface holds nothing but its virtual table pointer");

static_assert(!std::is_constructible_v<base::EventObject, base::IEventSource*>,
              "only derived events are constructed");
static_assert(!std::is_destructible_v<base::EventObject>, "the destructor is protected");
static_assert(std::has_virtual_destructor_v<base::EventObject>);
static_assert(std::is_copy_constructible_v<TestEvent>);
static_assert(std::is_copy_assignable_v<TestEvent>);

TEST(EventObjectTest, GetSourceReturnsTheSourceGivenToTheConstructor) {
  base::IEventSource source;
  TestEvent event(&source);
  EXPECT_EQ(event.GetSource(), &source);
}

TEST(EventObjectTest, NullSourceIsKept) {
  TestEvent event(nullptr);
  EXPECT_EQ(event.GetSource(), nullptr);
}

TEST(EventObjectTest, CopyConstructionCopiesTheSource) {
  base::IEventSource source;
  TestEvent original(&source, 7);
  TestEvent copy(original);
  EXPECT_EQ(copy.GetSource(), &source);
  EXPECT_EQ(copy.Tag(), 7);
  EXPECT_EQ(original.GetSource(), &source);
}

TEST(EventObjectTest, CopyAssignmentReplacesTheSource) {
  base::IEventSource first;
  base::IEventSource second;
  TestEvent target(&first);
  const TestEvent other(&second);
  target = other;
  EXPECT_EQ(target.GetSource(), &second);
  EXPECT_EQ(other.GetSource(), &second);
}

TEST(EventObjectTest, BaseCopyOperationsArePublic) {
  base::IEventSource first;
  base::IEventSource second;
  TestEvent a(&first);
  TestEvent b(&second);
  base::EventObject& baseOfA = a;
  baseOfA = b;  // assigns through the base only
  EXPECT_EQ(a.GetSource(), &second);
}

TEST(EventObjectTest, EventDoesNotOwnItsSource) {
  int destroyed = 0;
  auto source = std::make_unique<CountingSource>(&destroyed);
  {
    TestEvent event(source.get());
    TestEvent copy(event);
    EXPECT_EQ(copy.GetSource(), source.get());
  }
  EXPECT_EQ(destroyed, 0);
  source.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(EventObjectTest, SourceCanBeRecoveredAsItsConcreteType) {
  int destroyed = 0;
  CountingSource source(&destroyed);
  TestEvent event(&source);
  EXPECT_EQ(dynamic_cast<CountingSource*>(event.GetSource()), &source);
}

TEST(EventObjectTest, DerivedEventIsRecognisedThroughTheBase) {
  TestEvent event(nullptr, 3);
  const base::EventObject& asBase = event;
  const auto* recovered = dynamic_cast<const TestEvent*>(&asBase);
  ASSERT_NE(recovered, nullptr);
  EXPECT_EQ(recovered->Tag(), 3);
}

TEST(EventObjectTest, SourceIsDeletableThroughTheMarkerInterface) {
  int destroyed = 0;
  std::unique_ptr<base::IEventSource> source = std::make_unique<CountingSource>(&destroyed);
  source.reset();
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
