#include "wevlin/infrastructure/interop/IWebControl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <string>
#include <type_traits>
#include <vector>

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::IWebControl;
using ScriptException = IWebControl::ScriptException;

// The exception is a plain value, so `catch (const std::exception&)` in the
// library's standard handlers does not swallow it.
static_assert(!std::is_base_of_v<std::exception, ScriptException>);
static_assert(!std::is_polymorphic_v<ScriptException>);
static_assert(std::is_default_constructible_v<ScriptException>);
static_assert(std::is_copy_constructible_v<ScriptException>);
static_assert(std::is_copy_assignable_v<ScriptException>);

// The control is the application's: the library can neither make nor delete
// one through the interface.
static_assert(std::is_abstract_v<IWebControl>);
static_assert(std::has_virtual_destructor_v<IWebControl>);
static_assert(!std::is_destructible_v<IWebControl>);
static_assert(!std::is_destructible_v<IWebControl::ILoadObserver>);
static_assert(!std::has_virtual_destructor_v<IWebControl::ILoadObserver>);
static_assert(std::is_abstract_v<IWebControl::ILoadObserver>);

// A browser control as small as the contract allows: a navigation "loads" when
// the test says so, and a script line either echoes or fails.
class FakeWebControl : public IWebControl {
 public:
  void Navigate(std::string target) override { navigations.push_back(target); }

  std::string ExecuteScript(std::string script) override {
    if (script == "missingFunction()") {
      throw ScriptException("'missingFunction' is undefined", "line 1, column 1");
    }
    return "ran: " + script;
  }

  void AddLoadObserver(IWebControl::ILoadObserver* observer) override {
    observers_.push_back(observer);
  }

  void RemoveLoadObserver(IWebControl::ILoadObserver* observer) override {
    observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
  }

  // Reports the end of a page load to every observer.
  void CompleteLoad() {
    const std::vector<IWebControl::ILoadObserver*> observers = observers_;
    for (IWebControl::ILoadObserver* observer : observers) {
      observer->OnLoadCompleted();
    }
  }

  std::vector<std::string> navigations;

 private:
  std::vector<IWebControl::ILoadObserver*> observers_;
};

class CountingObserver final : public IWebControl::ILoadObserver {
 public:
  void OnLoadCompleted() override { ++loads; }
  int loads = 0;
};

TEST(IWebControlTest, NavigateReachesTheControl) {
  FakeWebControl fake;
  IWebControl& control = fake;
  control.Navigate("https://intranet.example/app/index.html");
  ASSERT_EQ(fake.navigations.size(), 1U);
  EXPECT_EQ(fake.navigations[0], "https://intranet.example/app/index.html");
}

TEST(IWebControlTest, ExecuteScriptReturnsTheResultText) {
  FakeWebControl fake;
  IWebControl& control = fake;
  EXPECT_EQ(control.ExecuteScript("tavoInterop_Ping()"), "ran: tavoInterop_Ping()");
}

TEST(IWebControlTest, ScriptFailureArrivesAsScriptException) {
  FakeWebControl fake;
  IWebControl& control = fake;
  bool caughtAsStandard = false;
  bool caught = false;
  try {
    try {
      control.ExecuteScript("missingFunction()");
    } catch (const std::exception&) {
      caughtAsStandard = true;
    }
  } catch (const ScriptException& e) {
    caught = true;
    EXPECT_EQ(e.message, "'missingFunction' is undefined");
    EXPECT_EQ(e.details, "line 1, column 1");
  }
  EXPECT_FALSE(caughtAsStandard);
  EXPECT_TRUE(caught);
}

TEST(IWebControlTest, ObserversAreToldOfEveryLoadUntilRemoved) {
  FakeWebControl fake;
  IWebControl& control = fake;
  CountingObserver first;
  CountingObserver second;
  control.AddLoadObserver(&first);
  control.AddLoadObserver(&second);
  control.Navigate("about:blank");
  fake.CompleteLoad();
  EXPECT_EQ(first.loads, 1);
  EXPECT_EQ(second.loads, 1);

  control.RemoveLoadObserver(&first);
  fake.CompleteLoad();
  EXPECT_EQ(first.loads, 1);
  EXPECT_EQ(second.loads, 2);
}

TEST(IWebControlTest, ControlsCopyThroughTheInterface) {
  FakeWebControl original;
  original.Navigate("a");
  FakeWebControl copy(original);
  EXPECT_EQ(copy.navigations, std::vector<std::string>{"a"});
  FakeWebControl assigned;
  assigned = original;
  EXPECT_EQ(assigned.navigations, std::vector<std::string>{"a"});
}

TEST(ScriptExceptionTest, DefaultHasEmptyTexts) {
  const ScriptException e;
  EXPECT_EQ(e.message, "");
  EXPECT_EQ(e.details, "");
}

TEST(ScriptExceptionTest, ConstructorTakesMessageThenDetails) {
  const ScriptException e("Object expected", "at line 3");
  EXPECT_EQ(e.message, "Object expected");
  EXPECT_EQ(e.details, "at line 3");
}

TEST(ScriptExceptionTest, CopyCopiesBothTexts) {
  const ScriptException original("Object expected", "at line 3");
  const ScriptException copy(original);
  EXPECT_EQ(copy.message, "Object expected");
  EXPECT_EQ(copy.details, "at line 3");
  EXPECT_EQ(original.message, "Object expected");
  EXPECT_EQ(original.details, "at line 3");
}

TEST(ScriptExceptionTest, AssignmentReplacesBothTexts) {
  const ScriptException original("Object expected", "at line 3");
  ScriptException target("old message", "old details");
  target = original;
  EXPECT_EQ(target.message, "Object expected");
  EXPECT_EQ(target.details, "at line 3");
}

TEST(ScriptExceptionTest, FieldsArePublicAndWritable) {
  ScriptException e;
  e.message = "Syntax error";
  e.details = "tavoInterop_WebMethod('{', '')";
  ScriptException thrownCopy;
  try {
    throw e;
  } catch (const ScriptException& caught) {
    thrownCopy = caught;
  }
  EXPECT_EQ(thrownCopy.message, "Syntax error");
  EXPECT_EQ(thrownCopy.details, "tavoInterop_WebMethod('{', '')");
}

}  // namespace
