#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "wevlin/infrastructure/base/EventObject.h"
#include "wevlin/infrastructure/base/IEventSource.h"
#include "wevlin/infrastructure/base/PropertyChangeEvent.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;

static_assert(std::is_base_of_v<base::EventObject, base::PropertyChangeEvent>);
static_assert(std::has_virtual_destructor_v<base::PropertyChangeEvent>);
static_assert(std::is_destructible_v<base::PropertyChangeEvent>);
static_assert(
    std::is_same_v<decltype(std::declval<const base::PropertyChangeEvent&>().GetPropertyName()),
                   std::string>,
    "the name is returned as a copy");

TEST(PropertyChangeEventTest, CarriesSourceAndName) {
  base::IEventSource source;
  base::PropertyChangeEvent event(&source, "ContentState");
  EXPECT_EQ(event.GetSource(), &source);
  EXPECT_EQ(event.GetPropertyName(), "ContentState");
}

TEST(PropertyChangeEventTest, EmptyNameIsKeptAsItIs) {
  base::IEventSource source;
  base::PropertyChangeEvent event(&source, "");
  EXPECT_EQ(event.GetPropertyName(), "");
}

TEST(PropertyChangeEventTest, NameBytesAreKeptExactly) {
  const std::string name("Web\0Side Version \xc3\xa9", 20);
  base::PropertyChangeEvent event(nullptr, name);
  EXPECT_EQ(event.GetPropertyName(), name);
  EXPECT_EQ(event.GetPropertyName().size(), 20u);
  EXPECT_EQ(event.GetSource(), nullptr);
}

TEST(PropertyChangeEventTest, ReturnedNameIsACopy) {
  base::PropertyChangeEvent event(nullptr, "WebSideVersion");
  std::string name = event.GetPropertyName();
  name += "-changed";
  EXPECT_EQ(event.GetPropertyName(), "WebSideVersion");
}

TEST(PropertyChangeEventTest, CopyConstructionCopiesEveryField) {
  base::IEventSource source;
  base::PropertyChangeEvent original(&source, "InstanceDestroyed");
  base::PropertyChangeEvent copy(original);
  EXPECT_EQ(copy.GetSource(), &source);
  EXPECT_EQ(copy.GetPropertyName(), "InstanceDestroyed");
}

TEST(PropertyChangeEventTest, CopyAssignmentReplacesEveryField) {
  base::IEventSource first;
  base::IEventSource second;
  base::PropertyChangeEvent target(&first, "ContentState");
  const base::PropertyChangeEvent other(&second, "WebSideVersion");
  target = other;
  EXPECT_EQ(target.GetSource(), &second);
  EXPECT_EQ(target.GetPropertyName(), "WebSideVersion");
  EXPECT_EQ(other.GetPropertyName(), "WebSideVersion");
}

TEST(PropertyChangeEventTest, CopiesAreIndependent) {
  base::IEventSource first;
  base::IEventSource second;
  base::PropertyChangeEvent original(&first, "ContentState");
  base::PropertyChangeEvent copy(original);
  copy = base::PropertyChangeEvent(&second, "WebSideVersion");
  EXPECT_EQ(original.GetSource(), &first);
  EXPECT_EQ(original.GetPropertyName(), "ContentState");
  EXPECT_EQ(copy.GetSource(), &second);
  EXPECT_EQ(copy.GetPropertyName(), "WebSideVersion");
}

TEST(PropertyChangeEventTest, IsRecognisedThroughTheEventBase) {
  base::PropertyChangeEvent event(nullptr, "ContentState");
  const base::EventObject& asBase = event;
  const auto* recovered = dynamic_cast<const base::PropertyChangeEvent*>(&asBase);
  ASSERT_NE(recovered, nullptr);
  EXPECT_EQ(recovered->GetPropertyName(), "ContentState");
}

}  // namespace
