// Calls into the page, the page's service list and the services registered on
// one host control instance, driven through a scripted page.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/CountingService.h"
#include "support/ExceptionChecks.h"
#include "support/HostCleanup.h"
#include "support/StdoutCapture.h"
#include "support/TimerEnvironmentScope.h"
#include "wevlin/infrastructure/base/IListChangeListener.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"
#include "wevlin/testing/ScriptedPage.h"

namespace {

namespace base = Com::Velmora::TAVO::Wevlin::Infrastructure::Base;
namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using interop::BaseServiceDescriptor;
using interop::DataServiceDescriptor;
using interop::HostContentState;
using interop::HostControlInstance;
using interop::HostManager;
using interop::IHostServiceDescriptor;
using interop::ITargetServiceDesc;
using interop::TargetConfig;
using interop::internal::HostManagerTestPeer;
using wevlin_test::CountingService;
using wevlin_test::DestroyHostControlInstance;
using wevlin_test::RestoreHostManager;
using wevlin_test::ServiceProbe;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;
using wevlin_test::TimerEnvironmentScope;
using Strings = std::vector<std::string>;

const char kDescriptorJson[] =
    "{\"FQN\": \"tavo.page.Greeter.client\", \"SvcVersion\": \"_2014_07\"}";

std::string MethodLine(const std::string& quotedPayload) {
  return std::string("tavoInterop_WebMethod('") + kDescriptorJson + "','" + quotedPayload + "');";
}

std::string EventLine(const std::string& quotedPayload) {
  return std::string("tavoInterop_WebEvent('") + kDescriptorJson + "','" + quotedPayload + "');";
}

// Records the changes of one observable list as short texts: "Reset",
// "Add 0", "Remove 2" (action and index).
template <typename T>
class ListRecorder : public base::IListChangeListener<T> {
 public:
  void OnListChanged(const base::ListChangeEvent<T>& event) override {
    switch (event.GetAction()) {
      case base::ListChangeEvent<T>::Add:
        changes.push_back("Add " + std::to_string(event.GetNewIndex()));
        break;
      case base::ListChangeEvent<T>::Remove:
        changes.push_back("Remove " + std::to_string(event.GetOldIndex()));
        break;
      case base::ListChangeEvent<T>::Reset:
        changes.push_back("Reset");
        break;
    }
  }

  Strings changes;
};

template <typename T>
std::vector<T> Contents(base::IObservableList<T>* list) {
  std::vector<T> items;
  for (int i = 0; i < list->GetSize(); ++i) items.push_back(list->GetAt(i));
  return items;
}

class HostControlInstanceExchangeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previousManager_ = HostManagerTestPeer::InstallFresh();
    manager_ = HostManager::TheInstance();
    instance_ = std::make_unique<HostControlInstance>(&page_);
  }

  void TearDown() override {
    DestroyInstance();
    RestoreHostManager(previousManager_);
  }

  // Destroys the instance, then releases what it leaves alive on purpose: the
  // list of services registered on it alone, and those services.
  void DestroyInstance() { DestroyHostControlInstance(instance_); }

  // Puts the instance into a state in which it may call the page.
  void LetTalk() { instance_->SetContentState(interop::LoadedCanTalk); }

  TimerEnvironmentScope env_;
  ScriptedPage page_;
  // Outlives every service that reports to it, also those released in
  // TearDown.
  ServiceProbe probe_;
  BaseServiceDescriptor greeter_{"tavo.page.Greeter.client", "_2014_07"};
  HostManager* previousManager_ = nullptr;
  HostManager* manager_ = nullptr;
  std::unique_ptr<HostControlInstance> instance_;
};

// ---- Calls into the page -------------------------------------------------------

TEST_F(HostControlInstanceExchangeTest, MethodRunsOneScriptLineAndReturnsTheAnswer) {
  LetTalk();
  page_.MethodReply = "{\"greeting\": \"hello\"}";
  EXPECT_EQ(instance_->InvokeWebMethod(&greeter_, "{\"name\": \"Ann\"}"),
            "{\"greeting\": \"hello\"}");
  EXPECT_EQ(page_.Scripts(), Strings{MethodLine("{\"name\": \"Ann\"}")});
}

TEST_F(HostControlInstanceExchangeTest, EventRunsOneScriptLineAndDropsTheAnswer) {
  LetTalk();
  page_.EventReply = "whatever the page says";
  instance_->InvokeWebEvent(&greeter_, "{\"n\": 1}");
  EXPECT_EQ(page_.Scripts(), Strings{EventLine("{\"n\": 1}")});
}

TEST_F(HostControlInstanceExchangeTest, SingleQuoteReachesThePageWithOneBackslash) {
  LetTalk();
  std::string seen;
  page_.MethodHandler = [&seen](const std::string&, const std::string& payload) {
    seen = payload;
    return std::string();
  };
  instance_->InvokeWebMethod(&greeter_, "it's 'quoted'");
  EXPECT_EQ(page_.Scripts(), Strings{MethodLine("it\\'s \\'quoted\\'")});
  EXPECT_EQ(seen, "it's 'quoted'");
}

TEST_F(HostControlInstanceExchangeTest, BackslashAndLineBreakPassUnchanged) {
  LetTalk();
  instance_->InvokeWebEvent(&greeter_, "a\\b\nc\r\td\"e");
  EXPECT_EQ(page_.Scripts(), Strings{EventLine("a\\b\nc\r\td\"e")});
}

TEST_F(HostControlInstanceExchangeTest, BackslashBeforeAQuoteGetsAnotherOneOnlyForTheQuote) {
  LetTalk();
  std::string seen;
  page_.MethodHandler = [&seen](const std::string&, const std::string& payload) {
    seen = payload;
    return std::string();
  };
  instance_->InvokeWebMethod(&greeter_, "x\\'y");
  EXPECT_EQ(page_.Scripts(), Strings{MethodLine("x\\\\'y")});
  EXPECT_EQ(seen, "x\\'y");
}

TEST_F(HostControlInstanceExchangeTest, QuoteInTheDescriptorIsQuotedToo) {
  LetTalk();
  BaseServiceDescriptor odd("o'clock", "1");
  instance_->InvokeWebMethod(&odd, "");
  EXPECT_EQ(
      page_.Scripts(),
      Strings{"tavoInterop_WebMethod('{\"FQN\": \"o\\'clock\", \"SvcVersion\": \"1\"}','');"});
}

TEST_F(HostControlInstanceExchangeTest, ErrorRecordBecomesRuntimeErrorNameBlankMessage) {
  LetTalk();
  page_.MethodReply = "{\"Exception\": {\"name\": \"E\", \"message\": \"M\"}}";
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { instance_->InvokeWebMethod(&greeter_, "p"); },
                                                "E M"));
  page_.EventReply = "{\"Exception\": {\"name\": \"TypeError\", \"message\": \"x is undefined\"}}";
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { instance_->InvokeWebEvent(&greeter_, "p"); },
                                                "TypeError x is undefined"));
}

TEST_F(HostControlInstanceExchangeTest, ErrorRecordWithOnlyOneTextKeepsTheBlank) {
  LetTalk();
  page_.MethodReply = "{\"Exception\": {\"name\": \"E\"}}";
  EXPECT_TRUE(
      ThrowsExactly<std::runtime_error>([&] { instance_->InvokeWebMethod(&greeter_, ""); }, "E "));
  page_.MethodReply = "{\"Exception\": {\"message\": \"M\"}}";
  EXPECT_TRUE(
      ThrowsExactly<std::runtime_error>([&] { instance_->InvokeWebMethod(&greeter_, ""); }, " M"));
}

TEST_F(HostControlInstanceExchangeTest, ErrorRecordThatNamesNothingIsInvalidArgument) {
  LetTalk();
  for (const std::string reply :
       {"{\"Exception\": {\"code\": 1}}", "{\"Exception\": {}}", "{\"Exceptional\": 1}"}) {
    SCOPED_TRACE(reply);
    page_.MethodReply = reply;
    EXPECT_TRUE(
        ThrowsExactly<std::invalid_argument>([&] { instance_->InvokeWebMethod(&greeter_, ""); },
                                             "Could not decipher web side error: " + reply));
  }
}

TEST_F(HostControlInstanceExchangeTest, ExceptionAfterBraceAndBlankIsANormalResult) {
  LetTalk();
  const std::string reply = "{ \"Exception\": {\"name\": \"E\", \"message\": \"M\"}}";
  page_.MethodReply = reply;
  EXPECT_EQ(instance_->InvokeWebMethod(&greeter_, ""), reply);
  page_.MethodReply = "[{\"Exception\": 1}]";
  EXPECT_EQ(instance_->InvokeWebMethod(&greeter_, ""), "[{\"Exception\": 1}]");
}

class NotTalkingTest : public HostControlInstanceExchangeTest,
                       public ::testing::WithParamInterface<HostContentState> {};

TEST_P(NotTalkingTest, CallsIntoThePageAreRefusedWithoutScript) {
  instance_->SetContentState(GetParam());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { instance_->InvokeWebMethod(&greeter_, "p"); },
                                                "Cannot talk to hosted content"));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>([&] { instance_->InvokeWebEvent(&greeter_, "p"); },
                                                "Cannot talk to hosted content"));
  EXPECT_TRUE(page_.Scripts().empty());
}

INSTANTIATE_TEST_SUITE_P(States, NotTalkingTest,
                         ::testing::Values(interop::NoContent, interop::Navigating,
                                           interop::Waiting, interop::TimedOut,
                                           interop::Initializing, interop::LoadedNoTalk),
                         [](const ::testing::TestParamInfo<HostContentState>& info) {
                           return HostControlInstance::NameOfState(info.param);
                         });

TEST_F(HostControlInstanceExchangeTest, LoggedInMayCallThePage) {
  instance_->SetContentState(interop::LoggedIn);
  page_.MethodReply = "ok";
  EXPECT_EQ(instance_->InvokeWebMethod(&greeter_, ""), "ok");
  instance_->InvokeWebEvent(&greeter_, "");
  EXPECT_EQ(page_.Scripts(), (Strings{MethodLine(""), EventLine("")}));
}

TEST_F(HostControlInstanceExchangeTest, ScriptFailureOfAMethodIsLoggedAndRethrownAsACopy) {
  LetTalk();
  page_.Fail("tavoInterop_WebMethod", ScriptedPage::ScriptException("TypeError: boom", "line 7"));
  StdoutCapture capture;
  try {
    instance_->InvokeWebMethod(&greeter_, "p");
    ADD_FAILURE() << "no ScriptException";
  } catch (const interop::IWebControl::ScriptException& e) {
    EXPECT_EQ(e.message, "TypeError: boom");
    EXPECT_EQ(e.details, "line 7");
  }
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_HostServiceListUpdate\n");
}

TEST_F(HostControlInstanceExchangeTest, ScriptFailureOfAnEventIsLoggedAndRethrownAsACopy) {
  LetTalk();
  page_.Fail("tavoInterop_WebEvent", ScriptedPage::ScriptException("RangeError", "deep"));
  StdoutCapture capture;
  try {
    instance_->InvokeWebEvent(&greeter_, "p");
    ADD_FAILURE() << "no ScriptException";
  } catch (const interop::IWebControl::ScriptException& e) {
    EXPECT_EQ(e.message, "RangeError");
    EXPECT_EQ(e.details, "deep");
  }
  EXPECT_EQ(capture.Text(), "Caught exception running tavoInterop_HostServiceListUpdate\n");
}

TEST_F(HostControlInstanceExchangeTest, NullServiceIsRefusedBeforeAnyScript) {
  LetTalk();
  StdoutCapture capture;
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>([&] { instance_->InvokeWebMethod(nullptr, ""); },
                                                   "target"));
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>([&] { instance_->InvokeWebEvent(nullptr, ""); },
                                                   "target"));
  EXPECT_TRUE(page_.Scripts().empty());
  EXPECT_EQ(capture.Text(), "");
}

// ---- The page's service list ---------------------------------------------------

const char kTwoPageServices[] =
    "[{\"FQN\": \"page.one.client\", \"SvcVersion\": \"_2014_07\"}, "
    "{\"FQN\": \"page.two.client\", \"SvcVersion\": \"3\"}]";

TEST_F(HostControlInstanceExchangeTest, ReplaceTakesThePagesList) {
  EXPECT_EQ(instance_->WebSideServiceListUpdate("Replace", kTwoPageServices), "");
  base::IObservableList<ITargetServiceDesc*>* list = instance_->GetKnownWebSideServices();
  ASSERT_EQ(list->GetSize(), 2);
  EXPECT_NE(dynamic_cast<interop::WebSideServiceDescriptor*>(list->GetAt(0)), nullptr);
  EXPECT_EQ(list->GetAt(0)->GetFQN(), "page.one.client");
  EXPECT_EQ(list->GetAt(0)->GetSvcVersion(), "_2014_07");
  EXPECT_EQ(list->GetAt(1)->GetFQN(), "page.two.client");
  EXPECT_EQ(list->GetAt(1)->GetSvcVersion(), "3");
  EXPECT_TRUE(page_.Scripts().empty());
}

TEST_F(HostControlInstanceExchangeTest, ReplaceIsAcceptedInAnyLetterCase) {
  for (const char* action : {"replace", "REPLACE", "rEpLaCe"}) {
    SCOPED_TRACE(action);
    EXPECT_EQ(instance_->WebSideServiceListUpdate(action,
                                                  "[{\"FQN\": \"a\", \"SvcVersion\": "
                                                  "\"1\"}]"),
              "");
    ASSERT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 1);
    EXPECT_EQ(instance_->GetKnownWebSideServices()->GetAt(0)->GetFQN(), "a");
  }
}

TEST_F(HostControlInstanceExchangeTest, AnyOtherActionIsUnknownAndChangesNothing) {
  instance_->WebSideServiceListUpdate("Replace", kTwoPageServices);
  const std::vector<ITargetServiceDesc*> before = Contents(instance_->GetKnownWebSideServices());
  ListRecorder<ITargetServiceDesc*> recorder;
  instance_->GetKnownWebSideServices()->AddChangeListener(&recorder);

  for (const char* action : {"Add", "Remove", "", "Replace ", "Replac"}) {
    SCOPED_TRACE(action);
    EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
        [&] {
          instance_->WebSideServiceListUpdate(action, "[{\"FQN\": \"x\", \"SvcVersion\": \"9\"}]");
        },
        "unknown action"));
  }
  EXPECT_EQ(Contents(instance_->GetKnownWebSideServices()), before);
  EXPECT_TRUE(recorder.changes.empty());
  instance_->GetKnownWebSideServices()->RemoveChangeListener(&recorder);
}

TEST_F(HostControlInstanceExchangeTest, TextThatIsNotAnArrayIsRefusedBeforeTheAction) {
  instance_->WebSideServiceListUpdate("Replace", kTwoPageServices);
  const std::vector<ITargetServiceDesc*> before = Contents(instance_->GetKnownWebSideServices());
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { instance_->WebSideServiceListUpdate("Replace", "{\"FQN\": \"a\"}"); },
      "JSON data is not an array"));
  EXPECT_TRUE(ThrowsExactly<std::runtime_error>(
      [&] { instance_->WebSideServiceListUpdate("Add", "x"); }, "JSON data is not an array"));
  EXPECT_EQ(Contents(instance_->GetKnownWebSideServices()), before);
}

TEST_F(HostControlInstanceExchangeTest, ReplaceClearsOnceThenAddsEachElement) {
  ListRecorder<ITargetServiceDesc*> recorder;
  instance_->GetKnownWebSideServices()->AddChangeListener(&recorder);

  instance_->WebSideServiceListUpdate("Replace", kTwoPageServices);
  EXPECT_EQ(recorder.changes, (Strings{"Reset", "Add 0", "Add 1"}));
  const std::vector<ITargetServiceDesc*> first = Contents(instance_->GetKnownWebSideServices());

  recorder.changes.clear();
  instance_->WebSideServiceListUpdate("Replace", "[{\"FQN\": \"c\", \"SvcVersion\": \"4\"}]");
  EXPECT_EQ(recorder.changes, (Strings{"Reset", "Add 0"}));
  ASSERT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 1);
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetAt(0)->GetFQN(), "c");
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetAt(0)->GetSvcVersion(), "4");

  recorder.changes.clear();
  instance_->WebSideServiceListUpdate("Replace", "[]");
  EXPECT_EQ(recorder.changes, Strings{"Reset"});
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 0);
  instance_->GetKnownWebSideServices()->RemoveChangeListener(&recorder);
}

TEST_F(HostControlInstanceExchangeTest, HandshakeTakesThePagesListWithReplace) {
  TargetConfig target("t", "T", "https://app.example/");
  instance_->WebSideServiceListUpdate("Replace", kTwoPageServices);
  ListRecorder<ITargetServiceDesc*> recorder;
  instance_->GetKnownWebSideServices()->AddChangeListener(&recorder);
  page_.WebServiceList = "[{\"FQN\": \"n\", \"SvcVersion\": \"5\"}]";

  instance_->LaunchToTarget(&target);
  page_.CompleteLoad();
  instance_->WebSideStartHandShake();
  ASSERT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(recorder.changes, (Strings{"Reset", "Add 0"}));
  ASSERT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 1);
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetAt(0)->GetFQN(), "n");
  instance_->GetKnownWebSideServices()->RemoveChangeListener(&recorder);
}

TEST_F(HostControlInstanceExchangeTest, EmptyAnswerToTheListRequestKeepsTheListAndSucceeds) {
  TargetConfig target("t", "T", "https://app.example/");
  instance_->WebSideServiceListUpdate("Replace", kTwoPageServices);
  const std::vector<ITargetServiceDesc*> before = Contents(instance_->GetKnownWebSideServices());
  ListRecorder<ITargetServiceDesc*> recorder;
  instance_->GetKnownWebSideServices()->AddChangeListener(&recorder);
  page_.WebServiceList = "";

  instance_->LaunchToTarget(&target);
  page_.CompleteLoad();
  instance_->WebSideStartHandShake();
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(Contents(instance_->GetKnownWebSideServices()), before);
  EXPECT_TRUE(recorder.changes.empty());
  instance_->GetKnownWebSideServices()->RemoveChangeListener(&recorder);
}

// ---- Services registered on the instance -------------------------------------------

TEST_F(HostControlInstanceExchangeTest, RegisterRefusesNullAndEmptyNames) {
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>([&] { instance_->RegisterService(nullptr); },
                                                   "descriptor"));
  CountingService noName("", "1");
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([&] { instance_->RegisterService(&noName); }, "fqn"));
  CountingService noVersion("a.b", "");
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>([&] { instance_->RegisterService(&noVersion); },
                                                   "version"));
  CountingService nothing("", "");
  EXPECT_TRUE(
      ThrowsExactly<std::invalid_argument>([&] { instance_->RegisterService(&nothing); }, "fqn"));
  EXPECT_EQ(instance_->KnownServices()->GetSize(), 0);
}

TEST_F(HostControlInstanceExchangeTest, RegisteringTheSameObjectTwiceKeepsOneEntry) {
  auto* service = new CountingService("a.b", "1", &probe_);
  ListRecorder<IHostServiceDescriptor*> recorder;
  instance_->KnownServices()->AddChangeListener(&recorder);
  instance_->RegisterService(service);
  instance_->RegisterService(service);
  EXPECT_EQ(Contents(instance_->KnownServices()), std::vector<IHostServiceDescriptor*>{service});
  EXPECT_EQ(recorder.changes, Strings{"Add 0"});
  EXPECT_EQ(probe_.destroyed, 0);
  instance_->KnownServices()->RemoveChangeListener(&recorder);
}

TEST_F(HostControlInstanceExchangeTest, ReplacementDestroysTheEarlierServiceExactlyOnce) {
  auto* before = new CountingService("x", "1");
  auto* first = new CountingService("a.b", "_2014_07", &probe_);
  auto* after = new CountingService("y", "1");
  auto* second = new CountingService("a.b", "_2014_07", &probe_);
  instance_->RegisterService(before);
  instance_->RegisterService(first);
  instance_->RegisterService(after);
  ListRecorder<IHostServiceDescriptor*> recorder;
  instance_->KnownServices()->AddChangeListener(&recorder);

  instance_->RegisterService(second);
  EXPECT_EQ(probe_.destroyed, 1);
  EXPECT_EQ(recorder.changes, (Strings{"Remove 1", "Add 2"}));
  EXPECT_EQ(Contents(instance_->KnownServices()),
            (std::vector<IHostServiceDescriptor*>{before, after, second}));
  instance_->KnownServices()->RemoveChangeListener(&recorder);

  DestroyInstance();
  EXPECT_EQ(probe_.destroyed, 2);  // the fixture released `second`, once
}

TEST_F(HostControlInstanceExchangeTest, LookupFindsInstanceServicesThenTheManagers) {
  auto* own = new CountingService("own.Svc.host", "_2014_07");
  auto* global = new CountingService("global.Svc.host", "_2014_07");
  instance_->RegisterService(own);
  manager_->RegisterService(global);

  BaseServiceDescriptor ownKey("own.Svc.host", "_2014_07");
  BaseServiceDescriptor globalKey("global.Svc.host", "_2014_07");
  DataServiceDescriptor ownData("own.Svc.host", "_2014_07");
  DataServiceDescriptor globalData("global.Svc.host", "_2014_07");
  EXPECT_EQ(instance_->LookupService(&ownKey), own);
  EXPECT_EQ(instance_->LookupService(&globalKey), global);
  EXPECT_EQ(instance_->LookupService(&ownData), own);
  EXPECT_EQ(instance_->LookupService(&globalData), global);
  EXPECT_TRUE(instance_->IsServiceSupported(&ownKey));
  EXPECT_TRUE(instance_->IsServiceSupported(&globalKey));

  // The manager does not see services registered on one instance.
  EXPECT_EQ(manager_->LookupService(&ownKey), nullptr);
}

TEST_F(HostControlInstanceExchangeTest, InstanceServiceShadowsTheManagersOfTheSameName) {
  auto* own = new CountingService("a.Svc.host", "_2014_07");
  auto* global = new CountingService("a.Svc.host", "_2014_07");
  auto* otherVersion = new CountingService("a.Svc.host", "_2014_10");
  manager_->RegisterService(global);
  manager_->RegisterService(otherVersion);
  instance_->RegisterService(own);

  BaseServiceDescriptor key("a.Svc.host", "_2014_07");
  DataServiceDescriptor data("a.Svc.host", "_2014_07");
  BaseServiceDescriptor newer("a.Svc.host", "_2014_10");
  EXPECT_EQ(instance_->LookupService(&key), own);
  EXPECT_EQ(instance_->LookupService(&data), own);
  EXPECT_EQ(instance_->LookupService(&newer), otherVersion);
  EXPECT_EQ(manager_->LookupService(&key), global);
}

TEST_F(HostControlInstanceExchangeTest, LookupMatchesNamesAndVersionsExactly) {
  instance_->RegisterService(new CountingService("a.Svc.host", "_2014_07"));
  manager_->RegisterService(new CountingService("b.Svc.host", "_2014_07"));
  for (const auto& [fqn, version] :
       std::vector<std::pair<std::string, std::string>>{{"A.Svc.host", "_2014_07"},
                                                        {"a.Svc.host", "_2014_7"},
                                                        {"a.Svc.host ", "_2014_07"},
                                                        {"b.svc.host", "_2014_07"},
                                                        {"b.Svc.host", "_2014_10"},
                                                        {"", ""}}) {
    SCOPED_TRACE(fqn + "/" + version);
    BaseServiceDescriptor key(fqn, version);
    DataServiceDescriptor data(fqn, version);
    EXPECT_EQ(instance_->LookupService(&key), nullptr);
    EXPECT_EQ(instance_->LookupService(&data), nullptr);
    EXPECT_FALSE(instance_->IsServiceSupported(&key));
  }
  EXPECT_EQ(instance_->LookupService(static_cast<ITargetServiceDesc*>(nullptr)), nullptr);
  EXPECT_EQ(instance_->LookupService(static_cast<DataServiceDescriptor*>(nullptr)), nullptr);
  EXPECT_FALSE(instance_->IsServiceSupported(nullptr));
}

TEST_F(HostControlInstanceExchangeTest, ServicesOfOneInstanceAreInvisibleToAnother) {
  ScriptedPage otherPage;
  auto other = std::make_unique<HostControlInstance>(&otherPage);
  instance_->RegisterService(new CountingService("a.Svc.host", "1"));
  BaseServiceDescriptor key("a.Svc.host", "1");
  EXPECT_NE(instance_->LookupService(&key), nullptr);
  EXPECT_EQ(other->LookupService(&key), nullptr);
  DestroyHostControlInstance(other);
}

}  // namespace
