// How a host control instance writes the arguments of its calls into the page
// as single-quoted script strings, in both quoting modes: the exact script
// lines, and what a page that undoes the quoting receives.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "support/CountingService.h"
#include "support/HostedPageFixture.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"
#include "wevlin/testing/ScriptedPage.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using Com::Velmora::TAVO::Wevlin::Testing::ScriptedPage;
using interop::BaseServiceDescriptor;
using interop::ScriptQuoting;
using Strings = std::vector<std::string>;

// The descriptor JSON of tavo.page.Echo.client as each mode writes it.
const char kCompatibleDescriptor[] =
    "{\"FQN\": \"tavo.page.Echo.client\", \"SvcVersion\": \"_2014_07\"}";
const char kStrictDescriptor[] =
    R"({\"FQN\": \"tavo.page.Echo.client\", \"SvcVersion\": \"_2014_07\"})";

class HostControlInstanceScriptQuotingTest : public wevlin_test::HostedPageFixture {
 protected:
  // Brings the instance to LoadedCanTalk with the page parsing `quoting`,
  // and makes the page's method answer what it received.
  void TalkWith(ScriptQuoting quoting) {
    instance_->SetScriptQuoting(quoting);
    page_.Quoting = quoting;
    page_.MethodHandler = [this](const std::string&, const std::string& payload) {
      received_.push_back(payload);
      return std::string("ok");
    };
    Talk();
  }

  // Calls the page's method with `payload` and returns the one script line
  // that the call ran.
  std::string LineFor(const std::string& payload) {
    page_.ClearRecords();
    instance_->InvokeWebMethod(&echo_, payload);
    const Strings scripts = page_.Scripts();
    return scripts.size() == 1 ? scripts[0] : "(" + std::to_string(scripts.size()) + " lines)";
  }

  static std::string CompatibleLine(const std::string& quotedPayload) {
    return std::string("tavoInterop_WebMethod('") + kCompatibleDescriptor + "','" + quotedPayload +
           "');";
  }

  static std::string StrictLine(const std::string& quotedPayload) {
    return std::string("tavoInterop_WebMethod('") + kStrictDescriptor + "','" + quotedPayload +
           "');";
  }

  BaseServiceDescriptor echo_{"tavo.page.Echo.client", "_2014_07"};
  Strings received_;
};

// Every kind of character that the two modes treat differently, in one text.
const std::string kMixed = std::string("a\\b 'q' \"d\" \n \r \t ") + std::string(1, '\0') +
                           " \x7F \xE2\x80\xA8 \xE2\x80\xA9 \xC3\xA9";

TEST_F(HostControlInstanceScriptQuotingTest, NewInstanceQuotesCompatibly) {
  EXPECT_EQ(instance_->GetScriptQuoting(), ScriptQuoting::Compatible);
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  EXPECT_EQ(instance_->GetScriptQuoting(), ScriptQuoting::Strict);
  instance_->SetScriptQuoting(ScriptQuoting::Compatible);
  EXPECT_EQ(instance_->GetScriptQuoting(), ScriptQuoting::Compatible);
}

TEST_F(HostControlInstanceScriptQuotingTest, CompatibleModeEscapesOnlySingleQuotes) {
  TalkWith(ScriptQuoting::Compatible);
  EXPECT_EQ(LineFor(kMixed),
            CompatibleLine(std::string("a\\b \\'q\\' \"d\" \n \r \t ") + std::string(1, '\0') +
                           " \x7F \xE2\x80\xA8 \xE2\x80\xA9 \xC3\xA9"));
  EXPECT_EQ(received_, Strings{kMixed});
}

TEST_F(HostControlInstanceScriptQuotingTest, StrictModeEscapesWhatAScriptStringWouldRead) {
  TalkWith(ScriptQuoting::Strict);
  EXPECT_EQ(LineFor(kMixed), StrictLine("a\\\\b \\'q\\' \\\"d\\\" \\n \\r \\u0009 \\u0000 \\u007f "
                                        "\\u2028 \\u2029 \xC3\xA9"));
  EXPECT_EQ(received_, Strings{kMixed});
}

TEST_F(HostControlInstanceScriptQuotingTest, StrictModeWritesEachAsciiCharacterAsItsOwnEscape) {
  TalkWith(ScriptQuoting::Strict);
  for (int code = 0; code < 0x80; ++code) {
    const std::string character(1, static_cast<char>(code));
    std::string expected;
    if (code == '\\') {
      expected = "\\\\";
    } else if (code == '\'') {
      expected = "\\'";
    } else if (code == '"') {
      expected = "\\\"";
    } else if (code == '\n') {
      expected = "\\n";
    } else if (code == '\r') {
      expected = "\\r";
    } else if (code < 0x20 || code == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", code);
      expected = escape;
    } else {
      expected = character;
    }
    EXPECT_EQ(LineFor("<" + character + ">"), StrictLine("<" + expected + ">")) << "code " << code;
  }
  EXPECT_EQ(received_.size(), 0x80u);
}

TEST_F(HostControlInstanceScriptQuotingTest, StrictModeFindsLineSeparatorsByTheirUtf8Bytes) {
  TalkWith(ScriptQuoting::Strict);
  EXPECT_EQ(LineFor("\xE2\x80\xA8\xE2\x80\xA9"), StrictLine("\\u2028\\u2029"));
  // Neighbours of the two separators, a cut-off separator and other
  // non-ASCII text are copied as they are.
  EXPECT_EQ(LineFor("\xE2\x80\xA7\xE2\x80\xAA"), StrictLine("\xE2\x80\xA7\xE2\x80\xAA"));
  EXPECT_EQ(LineFor("x\xE2\x80"), StrictLine("x\xE2\x80"));
  EXPECT_EQ(LineFor("\xE2\x80\xE2\x80\xA8"), StrictLine("\xE2\x80\\u2028"));
  EXPECT_EQ(LineFor("\xC2\x85 \xE6\x97\xA5 \xF0\x9F\x98\x80"),
            StrictLine("\xC2\x85 \xE6\x97\xA5 \xF0\x9F\x98\x80"));
}

TEST_F(HostControlInstanceScriptQuotingTest, StrictModeQuotesEveryScriptCallOfTheHandshake) {
  manager_->RegisterService(new wevlin_test::CountingService("it's \"odd\"", "_2014_07"));
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  page_.Quoting = ScriptQuoting::Strict;
  page_.WebServiceList = R"([{"FQN": "tavo.page.Echo.client", "SvcVersion": "_2014_07"}])";
  instance_->LaunchToTarget(&target_);
  page_.CompleteLoad();
  ASSERT_EQ(api_->tavoHost_WebSideStartHandShake(), "");
  EXPECT_EQ(instance_->GetContentState(), interop::LoadedCanTalk);
  EXPECT_EQ(
      page_.Scripts(),
      (Strings{
          "tavoInterop_Ping('0.9');",
          "tavoInterop_Ping('0.9');",
          R"js(tavoInterop_HostServiceListUpdate('Add','[{\"FQN\": \"it\'s \\\"odd\\\"\", \"SvcVersion\": \"_2014_07\"}]');)js",
          "tavoInterop_HostServiceListUpdate('Add','[]');",
          "tavoInterop_RequestWebServiceList();",
          R"js(tavoInterop_WebEvent('{\"FQN\": \"tavo.wevlin.infrastructure.services.startup.StartupNotification.host\", \"SvcVersion\": \"_2014_02\"}','');)js",
      }));
  // The page read the list back exactly as the host wrote it.
  const auto lists = page_.CallsOf("tavoInterop_HostServiceListUpdate");
  ASSERT_EQ(lists.size(), 2u);
  EXPECT_EQ(lists[0].args,
            (Strings{"Add", R"([{"FQN": "it's \"odd\"", "SvcVersion": "_2014_07"}])"}));
  ASSERT_EQ(instance_->GetKnownWebSideServices()->GetSize(), 1);
  EXPECT_EQ(instance_->GetKnownWebSideServices()->GetAt(0)->GetFQN(), "tavo.page.Echo.client");
}

TEST_F(HostControlInstanceScriptQuotingTest, StrictModeGivesThePageExactlyTheHostsText) {
  TalkWith(ScriptQuoting::Strict);
  const unsigned int seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  // Characters drawn from: every ASCII byte, the two separators, and a few
  // longer UTF-8 sequences.
  const Strings pieces = {"\xE2\x80\xA8", "\xE2\x80\xA9", "\xC3\xA9", "\xE6\x97\xA5",
                          "\xF0\x9F\x98\x80"};
  Strings sent;
  for (int n = 0; n < 200; ++n) {
    std::string text;
    const int length = static_cast<int>(random() % 24);
    for (int k = 0; k < length; ++k) {
      const unsigned int pick = random() % (0x80 + pieces.size());
      text += pick < 0x80 ? std::string(1, static_cast<char>(pick)) : pieces[pick - 0x80];
    }
    sent.push_back(text);
    const std::string line = LineFor(text);
    // The line itself never holds a raw line break.
    EXPECT_EQ(line.find_first_of("\n\r"), std::string::npos) << testing::PrintToString(text);
  }
  EXPECT_EQ(received_, sent);
}

TEST_F(HostControlInstanceScriptQuotingTest, BackslashBeforeAQuoteEndsTheCompatibleStringEarly) {
  TalkWith(ScriptQuoting::Compatible);
  const std::string breakout = "\\');injected();//";
  // The backslash stays and the quote gets one more: \\' reads as an
  // escaped backslash followed by the string's end, so the rest of the
  // argument becomes script.
  EXPECT_EQ(LineFor(breakout), CompatibleLine("\\\\');injected();//"));
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  page_.Quoting = ScriptQuoting::Strict;
  EXPECT_EQ(LineFor(breakout), StrictLine("\\\\\\');injected();//"));
  EXPECT_EQ(received_.back(), breakout);
}

TEST_F(HostControlInstanceScriptQuotingTest, SwitchingBackRestoresTheCompatibleLines) {
  TalkWith(ScriptQuoting::Strict);
  EXPECT_EQ(LineFor("a\\'b"), StrictLine("a\\\\\\'b"));
  instance_->SetScriptQuoting(ScriptQuoting::Compatible);
  page_.Quoting = ScriptQuoting::Compatible;
  EXPECT_EQ(LineFor("a\\'b"), CompatibleLine("a\\\\'b"));
  EXPECT_EQ(received_, (Strings{"a\\'b", "a\\'b"}));
}

}  // namespace
