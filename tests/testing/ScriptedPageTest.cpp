#include "wevlin/testing/ScriptedPage.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CountingService.h"
#include "support/HostedPageFixture.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/base/IObservableList.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostContentState.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"
#include "wevlin/infrastructure/services/clientinfo/_2014_07/ClientInfoProxy.h"
#include "wevlin/infrastructure/services/core/_2014_02/StartupNotificationSvc.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::ClientInfo::_2014_07::ClientInfoProxy;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Core::_2014_02::StartupNotificationSvc;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using interop::ScriptQuoting;
using wevlin_test::CountingService;
using wevlin_test::ServiceCall;
using wevlin_test::StdoutCapture;
using Strings = std::vector<std::string>;

constexpr char kStartupFqn[] =
    "tavo.wevlin.infrastructure.services.startup.StartupNotification.host";
constexpr char kStartupDescriptor[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.startup.StartupNotification.host", )"
    R"("SvcVersion": "_2014_02"})";
constexpr char kClientInfoFqn[] =
    "tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client";

// Returns the names of `services` as "fqn@version", in order.
Strings Names(const std::vector<ScriptedPage::Service>& services) {
  Strings names;
  for (const ScriptedPage::Service& service : services) {
    names.push_back(service.fqn + "@" + service.version);
  }
  return names;
}

// Returns the names of the page services the instance knows, as
// "fqn@version", in order.
Strings KnownWebSideServices(const interop::HostControlInstance& instance) {
  Strings names;
  auto* list = instance.GetKnownWebSideServices();
  for (int i = 0; i < list->GetSize(); ++i) {
    names.push_back(list->GetAt(i)->GetFQN() + "@" + list->GetAt(i)->GetSvcVersion());
  }
  return names;
}

// Returns the text of the std::runtime_error that `body` throws, or a note
// that it threw none.
template <typename Body>
std::string RuntimeErrorOf(Body body) {
  try {
    body();
  } catch (const std::runtime_error& e) {
    return e.what();
  }
  return "no std::runtime_error";
}

// ---- The whole start of a page ------------------------------------------------

using ScriptedPageTest = wevlin_test::HostedPageFixture;

TEST_F(ScriptedPageTest, LogInBringsTheInstanceToLoggedInThroughTheStandardService) {
  manager_->RegisterService(new StartupNotificationSvc());
  page_.LogIn(*instance_, target_);
  EXPECT_EQ(instance_->GetContentState(), interop::LoggedIn);
  EXPECT_EQ(page_.Navigations(), Strings{"https://app.example/"});
  EXPECT_EQ(
      page_.Scripts(),
      (Strings{
          "tavoInterop_Ping('0.9');",
          "tavoInterop_Ping('0.9');",
          std::string("tavoInterop_HostServiceListUpdate('Add','[") + kStartupDescriptor + "]');",
          "tavoInterop_HostServiceListUpdate('Add','[]');",
          "tavoInterop_RequestWebServiceList();",
          std::string("tavoInterop_WebEvent('") + kStartupDescriptor + "','');",
      }));
  EXPECT_EQ(instance_->GetWebSideVersion(), "1.0");
  EXPECT_TRUE(page_.HostOffers(kStartupFqn, "_2014_02"));
  EXPECT_EQ(Names(page_.HostServices()), Strings{std::string(kStartupFqn) + "@_2014_02"});
}

TEST_F(ScriptedPageTest, LogInWithoutTheStartupServiceNamesTheHostsAnswer) {
  EXPECT_EQ(RuntimeErrorOf([this] { page_.LogIn(*instance_, target_); }),
            R"(ScriptedPage::LogIn: the host answered the startup notification with )"
            R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
            R"(descriptor found for: tavo.wevlin.infrastructure.services.startup.)"
            R"(StartupNotification.host ver: _2014_02"}})");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
}

TEST_F(ScriptedPageTest, TalkStopsAtLoadedCanTalk) {
  manager_->RegisterService(new StartupNotificationSvc());
  page_.Talk(*instance_, target_);
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(page_.CallsOf("tavoInterop_WebEvent").size(), 1u);
}

TEST_F(ScriptedPageTest, TalkReportsAHandshakeThatFails) {
  page_.Fail("tavoInterop_Ping", ScriptedPage::ScriptException("gone", "here"));
  StdoutCapture capture;
  EXPECT_EQ(RuntimeErrorOf([this] { page_.Talk(*instance_, target_); }),
            "ScriptedPage::Talk: the handshake ended in LoadedNoTalk, not in LoadedCanTalk");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedNoTalk);
}

TEST_F(ScriptedPageTest, CompleteLoadTellsTheInstanceThatThePageHasLoaded) {
  EXPECT_EQ(page_.ObserverCount(), 1u);
  instance_->LaunchToTarget(&target_);
  EXPECT_EQ(instance_->GetContentState(), interop::Navigating);
  EXPECT_TRUE(page_.Scripts().empty());
  page_.CompleteLoad();
  EXPECT_EQ(instance_->GetContentState(), interop::Waiting);
  EXPECT_EQ(page_.Scripts(), Strings{"tavoInterop_Ping('0.9');"});
  ASSERT_EQ(page_.Calls().size(), 1u);
  EXPECT_EQ(page_.Calls()[0].function, "tavoInterop_Ping");
  EXPECT_EQ(page_.Calls()[0].args, Strings{"0.9"});
  EXPECT_EQ(page_.StartHandshake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
}

// ---- The page calls the host ----------------------------------------------------

TEST_F(ScriptedPageTest, CallHostMethodReachesTheHostServiceAndReturnsItsAnswer) {
  auto* stock = new CountingService("app.Stock.host", "2");
  stock->SetAnswer(R"({"Count": 7})");
  instance_->RegisterService(stock);
  page_.Talk(*instance_, target_);
  EXPECT_EQ(page_.CallHostMethod("app.Stock.host", "2", R"({"Item": "pen"})"), R"({"Count": 7})");
  ASSERT_EQ(stock->Calls().size(), 1u);
  EXPECT_EQ(stock->Calls()[0].kind, ServiceCall::kMethod);
  EXPECT_EQ(stock->Calls()[0].instance, instance_.get());
  EXPECT_EQ(stock->Calls()[0].payload, R"({"Item": "pen"})");
}

TEST_F(ScriptedPageTest, AFailingHostServiceAnswersTheExceptionRecord) {
  auto* stock = new CountingService("app.Stock.host", "2");
  stock->ThrowOnInvoke(std::runtime_error("out of pens"));
  instance_->RegisterService(stock);
  page_.Talk(*instance_, target_);
  const std::string answer = page_.CallHostMethod("app.Stock.host", "2", "{}");
  EXPECT_EQ(answer, R"({"Exception": {"name": "std::runtime_error", "message": "out of pens"}})");
  EXPECT_TRUE(ScriptedPage::IsExceptionRecord(answer));
  EXPECT_EQ(page_.RaiseHostEvent("app.Stock.host", "2", "{}"), answer);
}

TEST_F(ScriptedPageTest, AHostServiceOfAnotherVersionIsNotFound) {
  instance_->RegisterService(new CountingService("app.Stock.host", "2"));
  EXPECT_EQ(page_.CallHostMethod("app.Stock.host", "3", ""),
            R"({"Exception": {"name": "std::invalid_argument", "message": "No matching service )"
            R"(descriptor found for: app.Stock.host ver: 3"}})");
}

TEST_F(ScriptedPageTest, RaiseHostEventHandsThePayloadToTheService) {
  auto* log = new CountingService("app.Log.host", "1");
  manager_->RegisterService(log);
  EXPECT_EQ(page_.RaiseHostEvent("app.Log.host", "1", "it's \"here\""), "");
  ASSERT_EQ(log->Calls().size(), 1u);
  EXPECT_EQ(log->Calls()[0].kind, ServiceCall::kEvent);
  EXPECT_EQ(log->Calls()[0].payload, "it's \"here\"");
}

TEST_F(ScriptedPageTest, PingHostAnswersTheHostVersion) { EXPECT_EQ(page_.PingHost(), "0.9"); }

TEST(ScriptedPageWithoutHostTest, CallsIntoTheHostNeedAConnectedApi) {
  ScriptedPage page;
  try {
    page.CallHostMethod("a", "1", "");
    FAIL() << "no exception";
  } catch (const std::logic_error& e) {
    EXPECT_STREQ(e.what(), "ScriptedPage: no HostAPI connected");
  }
  EXPECT_THROW(page.StartHandshake(), std::logic_error);
  EXPECT_THROW(page.PingHost(), std::logic_error);
}

// ---- The host calls the page's services -----------------------------------------

TEST_F(ScriptedPageTest, AProxyGetsTheAnswerOfTheRegisteredMethod) {
  Strings payloads;
  page_.RegisterMethod(kClientInfoFqn, "_2014_07", [&payloads](const std::string& payload) {
    payloads.push_back(payload);
    return R"({"Version": "_2014_07", "Data": [{"Key": "os", "Value": "none"}]})";
  });
  page_.Talk(*instance_, target_);
  page_.ClearRecords();
  ClientInfoProxy proxy(instance_.get());
  EXPECT_TRUE(proxy.IsTargetServiceAvailable());
  EXPECT_EQ(proxy.GetClientInfo(), (std::map<std::string, std::string>{{"os", "none"}}));
  EXPECT_EQ(payloads, Strings{""});
  EXPECT_EQ(page_.Scripts(),
            Strings{R"(tavoInterop_WebMethod('{"FQN": "tavo.wevlin.infrastructure.services.)"
                    R"(clientinfo.ClientInfo.client", "SvcVersion": "_2014_07"}','');)"});
}

TEST_F(ScriptedPageTest, TheRegisteredServicesAreThePagesServiceList) {
  page_.RegisterMethod("app.Cart.client", "1", [](const std::string&) { return ""; });
  page_.RegisterEvent("app.Banner.client", "2", [](const std::string&) {});
  page_.RegisterEvent("app.Cart.client", "1", [](const std::string&) {});
  EXPECT_EQ(Names(page_.Services()), (Strings{"app.Cart.client@1", "app.Banner.client@2"}));
  EXPECT_EQ(page_.ServiceListJson(), R"([{"FQN": "app.Cart.client", "SvcVersion": "1"}, )"
                                     R"({"FQN": "app.Banner.client", "SvcVersion": "2"}])");
  page_.Talk(*instance_, target_);
  EXPECT_EQ(KnownWebSideServices(*instance_),
            (Strings{"app.Cart.client@1", "app.Banner.client@2"}));
}

TEST_F(ScriptedPageTest, AnnounceServicesSendsALateServiceToTheHost) {
  page_.Talk(*instance_, target_);
  EXPECT_TRUE(KnownWebSideServices(*instance_).empty());
  page_.RegisterEvent("app.Late.client", "1", [](const std::string&) {});
  EXPECT_EQ(page_.AnnounceServices(), "");
  EXPECT_EQ(KnownWebSideServices(*instance_), Strings{"app.Late.client@1"});
  EXPECT_TRUE(page_.UnregisterService("app.Late.client", "1"));
  EXPECT_FALSE(page_.UnregisterService("app.Late.client", "1"));
  EXPECT_EQ(page_.AnnounceServices(), "");
  EXPECT_TRUE(KnownWebSideServices(*instance_).empty());
}

TEST_F(ScriptedPageTest, AnEventReachesTheRegisteredEventHandler) {
  Strings payloads;
  page_.RegisterEvent("app.Banner.client", "2",
                      [&payloads](const std::string& payload) { payloads.push_back(payload); });
  page_.Talk(*instance_, target_);
  page_.ClearRecords();
  interop::BaseServiceDescriptor banner("app.Banner.client", "2");
  instance_->InvokeWebEvent(&banner, "it's new");
  EXPECT_EQ(payloads, Strings{"it's new"});
  EXPECT_EQ(page_.Scripts(), Strings{R"(tavoInterop_WebEvent('{"FQN": "app.Banner.client", )"
                                     R"("SvcVersion": "2"}','it\'s new');)"});
}

TEST_F(ScriptedPageTest, AHandlerThatThrowsMakesThePageAnswerAnExceptionRecord) {
  page_.RegisterMethod("app.Cart.client", "1", [](const std::string&) -> std::string {
    throw std::invalid_argument("no such cart");
  });
  page_.RegisterEvent("app.Banner.client", "2",
                      [](const std::string&) { throw std::runtime_error("no banner"); });
  page_.Talk(*instance_, target_);
  interop::BaseServiceDescriptor cart("app.Cart.client", "1");
  interop::BaseServiceDescriptor banner("app.Banner.client", "2");
  EXPECT_EQ(RuntimeErrorOf([&] { instance_->InvokeWebMethod(&cart, "{}"); }),
            "std::invalid_argument no such cart");
  EXPECT_EQ(RuntimeErrorOf([&] { instance_->InvokeWebEvent(&banner, "{}"); }),
            "std::runtime_error no banner");
}

TEST_F(ScriptedPageTest, AServiceWithoutTheRequestedHandlerRefusesTheCall) {
  page_.RegisterEvent("app.Banner.client", "2", [](const std::string&) {});
  page_.RegisterMethod("app.Cart.client", "1", [](const std::string&) { return "ok"; });
  page_.Talk(*instance_, target_);
  interop::BaseServiceDescriptor cart("app.Cart.client", "1");
  interop::BaseServiceDescriptor banner("app.Banner.client", "2");
  EXPECT_EQ(RuntimeErrorOf([&] { instance_->InvokeWebMethod(&banner, ""); }),
            "Error The web service has no method handler: app.Banner.client ver: 2");
  EXPECT_EQ(RuntimeErrorOf([&] { instance_->InvokeWebEvent(&cart, ""); }),
            "Error The web service has no event handler: app.Cart.client ver: 1");
}

TEST_F(ScriptedPageTest, ACallOfAnotherServiceTakesTheCatchAllAnswers) {
  page_.RegisterMethod("app.Cart.client", "1", [](const std::string&) { return "cart"; });
  page_.Talk(*instance_, target_);
  interop::BaseServiceDescriptor cart("app.Cart.client", "1");
  interop::BaseServiceDescriptor cartTwo("app.Cart.client", "2");
  page_.MethodReply = "fixed";
  EXPECT_EQ(instance_->InvokeWebMethod(&cartTwo, ""), "fixed");
  std::string seen;
  page_.MethodHandler = [&seen](const std::string& descriptor, const std::string& payload) {
    seen = descriptor + " " + payload;
    return "handled";
  };
  EXPECT_EQ(instance_->InvokeWebMethod(&cartTwo, "p"), "handled");
  EXPECT_EQ(seen, R"({"FQN": "app.Cart.client", "SvcVersion": "2"} p)");
  EXPECT_EQ(instance_->InvokeWebMethod(&cart, ""), "cart");
}

TEST_F(ScriptedPageTest, StrictQuotingReachesTheHandlerUnchanged) {
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  page_.Quoting = ScriptQuoting::Strict;
  std::string seen;
  page_.RegisterMethod("app.Echo.client", "1", [&seen](const std::string& payload) {
    seen = payload;
    return payload;
  });
  page_.Talk(*instance_, target_);
  page_.ClearRecords();
  interop::BaseServiceDescriptor echo("app.Echo.client", "1");
  const std::string text = "a'b\\c\"d\ne";
  EXPECT_EQ(instance_->InvokeWebMethod(&echo, text), text);
  EXPECT_EQ(seen, text);
  EXPECT_EQ(page_.Scripts(), Strings{R"(tavoInterop_WebMethod('{\"FQN\": \"app.Echo.client\", )"
                                     R"(\"SvcVersion\": \"1\"}','a\'b\\c\"d\ne');)"});
}

// ---- The host's services, as the page hears of them -----------------------------

TEST(ScriptedPageHostListTest, FollowsAddReplaceAndRemoveInAnyLetterCase) {
  ScriptedPage page;
  EXPECT_EQ(page.ExecuteScript(R"(tavoInterop_HostServiceListUpdate('Add','[{"FQN": "a", )"
                               R"("SvcVersion": "1"}, {"FQN": "b", "SvcVersion": "1"}]');)"),
            "");
  page.ExecuteScript(
      R"(tavoInterop_HostServiceListUpdate('add','[{"FQN": "a", "SvcVersion": "1"}, )"
      R"({"FQN": "a", "SvcVersion": "2"}]');)");
  EXPECT_EQ(Names(page.HostServices()), (Strings{"a@1", "b@1", "a@2"}));
  page.ExecuteScript(
      R"(tavoInterop_HostServiceListUpdate('REMOVE','[{"FQN": "b", "SvcVersion": "1"}]');)");
  EXPECT_EQ(Names(page.HostServices()), (Strings{"a@1", "a@2"}));
  EXPECT_FALSE(page.HostOffers("b", "1"));
  page.ExecuteScript(
      R"(tavoInterop_HostServiceListUpdate('Replace','[{"FQN": "c", "SvcVersion": "3"}]');)");
  EXPECT_EQ(Names(page.HostServices()), Strings{"c@3"});
  EXPECT_TRUE(page.HostOffers("c", "3"));
}

TEST(ScriptedPageHostListTest, AnUnknownActionOrAnUnreadableListChangesNothing) {
  ScriptedPage page;
  page.ExecuteScript(
      R"(tavoInterop_HostServiceListUpdate('Add','[{"FQN": "a", "SvcVersion": "1"}]');)");
  EXPECT_EQ(page.ExecuteScript(R"(tavoInterop_HostServiceListUpdate('Clear','[]');)"), "");
  EXPECT_EQ(page.ExecuteScript(R"(tavoInterop_HostServiceListUpdate('Replace','not a list');)"),
            "");
  EXPECT_EQ(Names(page.HostServices()), Strings{"a@1"});
}

// ---- Answers, failures and records without a host --------------------------------

TEST(ScriptedPageAnswerTest, ThePageFunctionsAnswerTheirFields) {
  ScriptedPage page;
  page.PageVersion = "2.5";
  page.MethodReply = "m";
  page.EventReply = "e";
  EXPECT_EQ(page.ExecuteScript("tavoInterop_Ping('0.9');"), "2.5");
  EXPECT_EQ(page.ExecuteScript("tavoInterop_RequestWebServiceList();"), "");
  EXPECT_EQ(page.ExecuteScript(R"(tavoInterop_WebMethod('{"FQN": "x", "SvcVersion": "1"}','');)"),
            "m");
  EXPECT_EQ(page.ExecuteScript(R"(tavoInterop_WebEvent('{"FQN": "x", "SvcVersion": "1"}','');)"),
            "e");
  page.RegisterEvent("x", "1", [](const std::string&) {});
  EXPECT_EQ(page.ExecuteScript("tavoInterop_RequestWebServiceList();"),
            R"([{"FQN": "x", "SvcVersion": "1"}])");
  page.WebServiceList = "[]";
  EXPECT_EQ(page.ExecuteScript("tavoInterop_RequestWebServiceList();"), "[]");
}

TEST(ScriptedPageAnswerTest, AnUnknownFunctionOrAnUnparsableLineFailsTheScript) {
  ScriptedPage page;
  try {
    page.ExecuteScript("tavoInterop_Other();");
    FAIL() << "no exception";
  } catch (const ScriptedPage::ScriptException& e) {
    EXPECT_EQ(e.message, "ReferenceError: tavoInterop_Other is not defined");
    EXPECT_EQ(e.details, "tavoInterop_Other");
  }
  try {
    page.ExecuteScript("tavoInterop_Ping('0.9')");
    FAIL() << "no exception";
  } catch (const ScriptedPage::ScriptException& e) {
    EXPECT_EQ(e.message, "SyntaxError: unparsable script");
    EXPECT_EQ(e.details, "tavoInterop_Ping('0.9')");
  }
  EXPECT_EQ(page.Scripts(), (Strings{"tavoInterop_Other();", "tavoInterop_Ping('0.9')"}));
  EXPECT_EQ(page.Calls().size(), 1u);
}

TEST(ScriptedPageAnswerTest, FailAfterLetsTheGivenNumberOfCallsThroughUntilHealed) {
  ScriptedPage page;
  page.FailAfter("tavoInterop_Ping", 1, ScriptedPage::ScriptException("gone", "now"));
  EXPECT_EQ(page.ExecuteScript("tavoInterop_Ping('0.9');"), "1.0");
  EXPECT_THROW(page.ExecuteScript("tavoInterop_Ping('0.9');"), ScriptedPage::ScriptException);
  EXPECT_EQ(page.ExecuteScript("tavoInterop_RequestWebServiceList();"), "");
  page.Heal("tavoInterop_Ping");
  EXPECT_EQ(page.ExecuteScript("tavoInterop_Ping('0.9');"), "1.0");
  EXPECT_EQ(page.CallsOf("tavoInterop_Ping").size(), 3u);
  page.ClearRecords();
  EXPECT_TRUE(page.Scripts().empty());
  EXPECT_TRUE(page.Calls().empty());
}

TEST(ScriptedPageAnswerTest, AScriptExceptionFromAHandlerFailsTheScript) {
  ScriptedPage page;
  page.RegisterMethod("x", "1", [](const std::string&) -> std::string {
    throw ScriptedPage::ScriptException("TypeError: x is undefined", "line 3");
  });
  try {
    page.ExecuteScript(R"(tavoInterop_WebMethod('{"FQN": "x", "SvcVersion": "1"}','');)");
    FAIL() << "no exception";
  } catch (const ScriptedPage::ScriptException& e) {
    EXPECT_EQ(e.message, "TypeError: x is undefined");
    EXPECT_EQ(e.details, "line 3");
  }
}

TEST(ScriptedPageParseTest, UndoesEachQuoting) {
  const auto compatible = ScriptedPage::Parse(R"(f('it\'s','a\nb',''  );)");
  EXPECT_FALSE(compatible.has_value());
  const auto call = ScriptedPage::Parse(R"(f('it\'s','a\nb','');)");
  ASSERT_TRUE(call.has_value());
  EXPECT_EQ(call->function, "f");
  EXPECT_EQ(call->args, (Strings{"it's", "a\\nb", ""}));
  const auto strict = ScriptedPage::Parse(R"(f('it\'s','a\nb\\\u00e9');)", ScriptQuoting::Strict);
  ASSERT_TRUE(strict.has_value());
  EXPECT_EQ(strict->args, (Strings{"it's", "a\nb\\\xC3\xA9"}));
  EXPECT_FALSE(ScriptedPage::Parse(R"(f('a\tb');)", ScriptQuoting::Strict).has_value());
  EXPECT_FALSE(ScriptedPage::Parse("f('a\nb');", ScriptQuoting::Strict).has_value());
  EXPECT_FALSE(ScriptedPage::Parse("no call").has_value());
}

TEST(ScriptedPageRecordTest, WritesAndRecognisesExceptionRecords) {
  EXPECT_EQ(ScriptedPage::ExceptionRecord("TypeError", "it's \"x\""),
            R"({"Exception": {"name": "TypeError", "message": "it's \"x\""}})");
  EXPECT_TRUE(ScriptedPage::IsExceptionRecord(R"({"Exception": null})"));
  EXPECT_FALSE(ScriptedPage::IsExceptionRecord(R"( {"Exception": null})"));
  EXPECT_FALSE(ScriptedPage::IsExceptionRecord(""));
}

}  // namespace
