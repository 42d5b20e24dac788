// The bridge policy in a real browser: pages served by two test servers on
// two loopback origins, A (the launched target's) and B, with frames and
// popups of every kind. Each test asserts what each document sees (whether
// it has globalThis.wevlinHost, what its call gave) and whether the host's
// secret service was entered.
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/BrowserFixture.h"
#include "support/CountingService.h"
#include "support/PageFiles.h"
#include "support/StaticSiteServer.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/TargetConfig.h"
#include "wevlin/webcontrols/BridgePolicy.h"
#include "wevlin/webcontrols/PageCaller.h"

namespace wevlin_e2e {
namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::WebControls::BridgePolicy;
using wevlin_test::CountingService;
using wevlin_test::StdoutCapture;
using ScriptException = interop::IWebControl::ScriptException;

class BridgePolicyPageTest : public BrowserFixture {
 protected:
  // Popups open without a user's gesture here.
  ControlSettings Settings() const override {
    ControlSettings options;
    options.chromiumArguments.emplace_back("--disable-popup-blocking");
    return options;
  }

  void SetUp() override {
    const std::string pages = PageFiles::Path("security");
    const std::string web = std::string(WEVLIN_SOURCE_DIR) + "/web/src";
    a_ = std::make_unique<StaticSiteServer>(pages, web);
    b_ = std::make_unique<StaticSiteServer>(pages, web);
    BrowserFixture::SetUp();
    secret_ = new CountingService("tavo.e2e.Secret.host", "_2014_07");
    secret_->SetMethodHandler([this](CountingService::Instance*, CountingService::Descriptor*,
                                     const std::string& payload) {
      const auto* caller = control_->CurrentCaller();
      callers_.push_back(caller == nullptr ? std::string("(none)")
                                           : caller->origin + " " + caller->url + " " +
                                                 (caller->topFrame ? "top" : "frame"));
      return "secret for " + payload;
    });
    RegisterService(secret_);
  }

  void TearDown() override {
    BrowserFixture::TearDown();
    a_.reset();
    b_.reset();
  }

  // Launches the instance to top.html on server A (with `query`) and waits
  // for the top document's report.
  void LaunchTop(const std::string& query = "") {
    interop::HostManager::TheInstance()->RegisterTargetConfig(
        new interop::TargetConfig("top", "top", a_->Url("/top.html" + query)));
    instance_->LaunchToTarget(interop::HostManager::TheInstance()->GetTargetConfig("top"));
    ASSERT_TRUE(WaitForReports(1));
  }

  // Delivers events until the top document holds `count` reports.
  bool WaitForReports(std::size_t count) {
    return control_->RunUntil(
        [&] {
          try {
            return Reports().size() >= count;
          } catch (const ScriptException&) {
            return false;
          }
        },
        kWait);
  }

  Json Reports() {
    const Json reports = Json::parse(Eval("JSON.stringify(window.reports || [])"));
    return reports;
  }

  // Returns the report of the document named `name`, or null.
  Json Report(const std::string& name) {
    for (const Json& report : Reports()) {
      if (report.value("name", "") == name) return report;
    }
    return Json();
  }

  // Runs `start` in the top page, which starts a promise of an outcome, and
  // returns the outcome once it has settled.
  Json Outcome(const std::string& start) {
    Eval("window.outcome = null; (" + start + ").then((o) => { window.outcome = o; }); 0");
    Json outcome;
    control_->RunUntil(
        [&] {
          outcome = Json::parse(Eval("JSON.stringify(window.outcome)"));
          return !outcome.is_null();
        },
        kWait);
    return outcome;
  }

  std::string Script(const std::string& text) { return JsString(text); }

  std::unique_ptr<StaticSiteServer> a_;
  std::unique_ptr<StaticSiteServer> b_;
  CountingService* secret_ = nullptr;  // owned by the host manager
  std::vector<std::string> callers_;
};

// The record of a refused call: a std::runtime_error whose message is
// `message`, written with "/" escaped as every record of the host is.
std::string RefusalRecord(const std::string& message) {
  std::string escaped;
  for (const char c : message) escaped += c == '/' ? std::string("\\/") : std::string(1, c);
  return R"({"Exception": {"name": "std::runtime_error", "message": ")" + escaped + "\"}}";
}

TEST_F(BridgePolicyPageTest, TheLaunchedTopPageTalksAndTheServiceLearnsWhoCalled) {
  LaunchTop();
  EXPECT_EQ(Report("top").value("hasHost", false), true);
  const Json outcome = Outcome("probe.call(wevlinHost, 'top')");
  EXPECT_EQ(outcome.value("answer", ""), "secret for top");
  EXPECT_THAT(callers_, ::testing::ElementsAre(a_->Origin() + " " + a_->Url("/top.html") + " top"));
  EXPECT_EQ(control_->CurrentCaller(), nullptr);
}

TEST_F(BridgePolicyPageTest, NoFrameOfAnyKindGetsTheBridge) {
  LaunchTop();
  Eval("probe.frame({src: " + Script(b_->Url("/frame.html#cross-origin")) + "}); 0");
  Eval("probe.frame({src: " + Script(a_->Url("/frame.html#same-origin")) + "}); 0");
  Eval("probe.frame({sandbox: 'allow-scripts', src: " + Script(a_->Url("/frame.html#sandboxed")) +
       "}); 0");
  Eval("probe.frame({src: " +
       Script(b_->Url("/frame.html?nest=" + a_->Url("/frame.html%23nested") + "#outer")) + "}); 0");
  Eval(R"(probe.frame({srcdoc: "<script>parent.postMessage({probe: true, name: 'srcdoc', )"
       R"(origin: self.origin, hasHost: typeof wevlinHost !== 'undefined'}, '*')</)" +
       std::string("script>\"}); 0"));
  Eval(R"(probe.frame({src: "data:text/html,<script>parent.postMessage({probe: true, )"
       R"(name: 'data', origin: self.origin, hasHost: typeof wevlinHost !== )"
       R"('undefined'}, '*')</)" +
       std::string("script>\"}); 0"));
  Eval("probe.blankFrame(); 0");
  ASSERT_TRUE(WaitForReports(9)) << Reports().dump()
                                 << "\nA: " << ::testing::PrintToString(a_->Requests())
                                 << "\nB: " << ::testing::PrintToString(b_->Requests());

  const std::vector<std::pair<std::string, std::string>> expected = {{"cross-origin", b_->Origin()},
                                                                     {"same-origin", a_->Origin()},
                                                                     {"sandboxed", "null"},
                                                                     {"outer", b_->Origin()},
                                                                     {"nested", a_->Origin()},
                                                                     {"srcdoc", a_->Origin()},
                                                                     {"data", "null"},
                                                                     {"about:blank", a_->Origin()}};
  for (const auto& [name, origin] : expected) {
    const Json report = Report(name);
    ASSERT_FALSE(report.is_null()) << name << ": " << Reports().dump();
    EXPECT_EQ(report.value("origin", ""), origin) << name;
    EXPECT_EQ(report.value("hasHost", true), false) << name;
  }
  EXPECT_TRUE(secret_->Calls().empty());
}

TEST_F(BridgePolicyPageTest, PopupsGetNoBridge) {
  LaunchTop();
  Eval("window.popups = [window.open(" + Script(a_->Url("/frame.html#popup-a")) +
       "), window.open(" + Script(b_->Url("/frame.html#popup-b")) + ")]; 0");
  if (TheEngine() == Engine::WebKitGtk) {
    // The WebKitGTK control opens no window the application did not make:
    // window.open gives null, and nothing reaches the host.
    EXPECT_EQ(Eval("window.popups.map(String).join()"), "null,null");
    control_->RunUntil([] { return false; }, std::chrono::milliseconds(500));
    EXPECT_TRUE(secret_->Calls().empty());
    return;
  }
  ASSERT_TRUE(WaitForReports(3)) << Reports().dump();
  EXPECT_EQ(Report("popup-a").value("hasHost", true), false);
  EXPECT_EQ(Report("popup-b").value("hasHost", true), false);
  EXPECT_TRUE(secret_->Calls().empty());
}

TEST_F(BridgePolicyPageTest, AnotherOriginInTheTopFrameIsRefusedAndTheLaunchedOneWorksAgain) {
  LaunchTop();
  // The top page goes to origin B by itself, and from there back to A.
  Eval("location.href = " + Script(b_->Url("/top.html?go=" + a_->Url("/top.html%23back"))) + "; 0");
  // While the documents change, a script meant for the one that went away
  // runs nowhere; once B's document is there, every script is refused.
  const std::string expected =
      "The page's origin " + b_->Origin() + " is not allowed to talk to the host";
  std::vector<std::string> failures;
  control_->RunUntil(
      [&] {
        try {
          control_->ExecuteScript("1");
        } catch (const ScriptException& error) {
          if (failures.empty() || failures.back() != error.message) {
            failures.push_back(error.message);
          }
        }
        return !failures.empty() && failures.back() == expected;
      },
      kWait);
  ASSERT_FALSE(failures.empty());
  EXPECT_EQ(failures.back(), expected);
  for (const std::string& failure : failures) {
    EXPECT_THAT(failure,
                ::testing::AnyOf(expected, "The page's document changed before the script ran"));
  }
  // Back on A: the page has the bridge again and the host runs scripts in it.
  ASSERT_TRUE(WaitForReports(1));
  EXPECT_EQ(Report("back").value("answer", ""), "secret for from back");
  EXPECT_EQ(Outcome("probe.call(wevlinHost, 'again')").value("answer", ""), "secret for again");
  EXPECT_EQ(secret_->Calls().size(), 2U);
  EXPECT_THAT(b_->Requests(), ::testing::Contains("/top.html"));
}

TEST_F(BridgePolicyPageTest, AnAllowedSecondOriginTalksInTheTopFrameAndItsFrames) {
  control_->SetBridgePolicy(BridgePolicy().AllowOrigin(b_->Origin()).AllowSubframes());
  LaunchTop();
  Eval("probe.frame({src: " + Script(b_->Url("/frame.html#allowed-b")) + "}); 0");
  ASSERT_TRUE(WaitForReports(2)) << Reports().dump();
  EXPECT_EQ(Report("allowed-b").value("answer", ""), "secret for from allowed-b");
  EXPECT_THAT(callers_, ::testing::Contains(b_->Origin() + " " + b_->Url("/frame.html#allowed-b") +
                                            " frame"));
}

TEST_F(BridgePolicyPageTest, TheHostRefusesACallOfADocumentItNoLongerAllows) {
  control_->SetBridgePolicy(BridgePolicy().AllowSubframes());
  LaunchTop();
  Eval("probe.frame({src: " + Script(a_->Url("/frame.html#kept")) + "}); 0");
  ASSERT_TRUE(WaitForReports(2)) << Reports().dump();
  ASSERT_EQ(Report("kept").value("answer", ""), "secret for from kept");
  ASSERT_EQ(secret_->Calls().size(), 1U);

  // The frame keeps the bridge it was given; the host checks every call.
  control_->SetBridgePolicy(BridgePolicy());
  Json outcome;
  std::string log;
  {
    StdoutCapture capture;
    outcome = Outcome("probe.callFromFrame(0, 'late')");
    log = capture.Text();
  }
  EXPECT_EQ(outcome.value("answer", ""),
            RefusalRecord("The host does not serve frames (" + a_->Origin() + ")"));
  EXPECT_EQ(log, ControlName() + ": refused tavoHostMethod from " + a_->Origin() + " (" +
                     a_->Url("/frame.html#kept") + ")\n");
  EXPECT_EQ(secret_->Calls().size(), 1U);
}

}  // namespace
}  // namespace wevlin_e2e
