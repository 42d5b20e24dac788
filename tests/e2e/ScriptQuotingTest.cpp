// What a real page function receives from the host in each quoting mode of
// HostControlInstance. Strict mode is checked against an oracle: for many
// texts, random ones among them, the page function gets exactly the host's
// characters. Compatible mode is shown as it is: the page's script engine
// reads the argument as a string literal, so escapes in it are decoded, and a
// backslash before a single quote ends the literal early.
//
// The page functions are those of e2e-page.js: tavo.e2e.Echo.client answers
// its payload as it arrived (and keeps event payloads), tavo.e2e.Inspect.client
// answers the payload's code points in hexadecimal.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/BrowserFixture.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/IWebControl.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::BaseServiceDescriptor;
using interop::ScriptQuoting;
using ScriptException = interop::IWebControl::ScriptException;
using wevlin_test::StdoutCapture;

// Appends code point `code` to `out` in UTF-8.
void AppendUtf8(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

std::string Utf8(const std::u32string& codes) {
  std::string out;
  for (char32_t code : codes) AppendUtf8(out, code);
  return out;
}

// Returns the code points of `codes` as tavo.e2e.Inspect.client writes them:
// lower-case hexadecimal, blank-separated.
std::string HexCodePoints(const std::u32string& codes) {
  std::string out;
  for (char32_t code : codes) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%x", static_cast<unsigned int>(code));
    if (!out.empty()) out += ' ';
    out += digits;
  }
  return out;
}

// Draws texts of random code points, weighted towards the characters that
// matter to a script string literal.
class RandomText {
 public:
  explicit RandomText(unsigned int seed) : random_(seed) {}

  std::u32string Next() {
    std::u32string codes;
    const int length = Below(41);
    for (int i = 0; i < length; ++i) codes += NextCode();
    return codes;
  }

 private:
  int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned int>(bound)); }

  char32_t Between(char32_t low, char32_t high) {
    return low + static_cast<char32_t>(random_() % (high - low + 1));
  }

  char32_t NextCode() {
    static const char32_t kSpecial[] = {U'\\',  U'\'',  U'"', U'\n', U'\r', U'\0', 0x7F,
                                        0x2028, 0x2029, U'/', U'<',  U'u',  U'x'};
    switch (Below(8)) {
      case 0:
        return kSpecial[Below(static_cast<int>(sizeof kSpecial / sizeof kSpecial[0]))];
      case 1:
        return Between(0x00, 0x1F);
      case 2:
      case 3:
        return Between(0x20, 0x7E);
      case 4:
        return Between(0x80, 0x7FF);
      case 5: {
        const char32_t code = Between(0x800, 0xFFFF - 0x800);
        return code < 0xD800 ? code : code + 0x800;  // no surrogates
      }
      case 6:
        return Between(0x10000, 0x10FFFF);
      default:
        return Between(0x2000, 0x206F);  // punctuation, separators among them
    }
  }

  std::mt19937 random_;
};

class ScriptQuotingTest : public wevlin_e2e::BrowserFixture {
 protected:
  // Calls method `fqn` of the page with `payload`.
  std::string CallPage(const std::string& fqn, const std::string& payload) {
    BaseServiceDescriptor descriptor(fqn, "_2014_07");
    return instance_->InvokeWebMethod(&descriptor, payload);
  }

  std::string Echo(const std::string& payload) { return CallPage(kEcho, payload); }

  std::string Inspect(const std::string& payload) { return CallPage(kInspect, payload); }

  // Returns the text of the ScriptException that calling Echo with
  // `payload` gives, or "no error".
  std::string EchoFailure(const std::string& payload) {
    try {
      Echo(payload);
    } catch (const ScriptException& exception) {
      return exception.message;
    }
    return "no error";
  }

  static constexpr char kEcho[] = "tavo.e2e.Echo.client";
  static constexpr char kInspect[] = "tavo.e2e.Inspect.client";
};

TEST_F(ScriptQuotingTest, StrictModeGivesThePageFunctionExactlyTheHostsText) {
  // Strict from the start: the handshake's own script calls are quoted
  // strictly too, and the page library reads them.
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  LaunchAndLogIn();

  // Every ASCII control character alone, then all of them in one text.
  std::u32string allControls;
  for (char32_t code = 0; code < 0x20; ++code) allControls += code;
  allControls += 0x7F;
  std::vector<std::u32string> texts;
  for (char32_t code : allControls) texts.push_back(std::u32string(1, code) + U"|");
  texts.push_back(allControls);
  // Quotes, backslashes and what they could be read as together.
  for (const char32_t* text :
       {U"", U"\\", U"'", U"\"", U"\\'", U"\\\\'", U"'\\", U"ends with \\",
        U"\\n is two characters", U"\\u0041 and \\x41 and \\0", U"\\');globalThis.injected=1;//",
        U"</script><!--", U"{\"text\": \"say \\\"hi\\\"\\n\", \"path\": \"C:\\\\temp\"}",
        U"\u2028\u2029", U"a\u2028b",
        U"Gr\u00fc\u00dfe, \u65e5\u672c, \U0001F600, \uFEFF, \uFFFD, \U0010FFFF"}) {
    texts.push_back(std::u32string(text, std::char_traits<char32_t>::length(text)));
  }
  // A NUL in the middle, which the literals above cannot hold.
  texts.push_back(std::u32string(U"nul ") + U'\0' + U" inside");

  const char* const fixedSeed = std::getenv("WEVLIN_E2E_SEED");
  const unsigned int seed = fixedSeed != nullptr
                                ? static_cast<unsigned int>(std::strtoul(fixedSeed, nullptr, 10))
                                : std::random_device()();
  RandomText random(seed);
  for (int i = 0; i < 300; ++i) texts.push_back(random.Next());

  SCOPED_TRACE("random texts from seed " + std::to_string(seed) +
               " (set WEVLIN_E2E_SEED to repeat them)");
  for (const std::u32string& codes : texts) {
    const std::string text = Utf8(codes);
    SCOPED_TRACE("text " + testing::PrintToString(text));
    EXPECT_EQ(Echo(text), text);
    EXPECT_EQ(Inspect(text), HexCodePoints(codes));
  }
  // Nothing in any argument ran as script.
  EXPECT_EQ(Eval("typeof globalThis.injected"), "undefined");
  EXPECT_EQ(instance_->GetContentState(), HostContentState::LoggedIn);
}

TEST_F(ScriptQuotingTest, CompatibleModeLetsThePageDecodeEscapesInThePayload) {
  LaunchAndLogIn();
  ASSERT_EQ(instance_->GetScriptQuoting(), ScriptQuoting::Compatible);
  // Each escape of JSON, and a few of script only, as the page function
  // receives it: decoded by the page's script engine.
  EXPECT_EQ(Inspect("<\\n>"), "3c a 3e");
  EXPECT_EQ(Inspect("<\\r>"), "3c d 3e");
  EXPECT_EQ(Inspect("<\\t>"), "3c 9 3e");
  EXPECT_EQ(Inspect("<\\b>"), "3c 8 3e");
  EXPECT_EQ(Inspect("<\\f>"), "3c c 3e");
  EXPECT_EQ(Inspect("<\\/>"), "3c 2f 3e");
  EXPECT_EQ(Inspect("<\\\">"), "3c 22 3e");
  EXPECT_EQ(Inspect("<\\\\>"), "3c 5c 3e");
  EXPECT_EQ(Inspect("<\\u0041>"), "3c 41 3e");
  EXPECT_EQ(Inspect("<\\u00e9>"), "3c e9 3e");
  EXPECT_EQ(Inspect("<\\ud83d\\ude00>"), "3c 1f600 3e");
  EXPECT_EQ(Inspect("<\\x41>"), "3c 41 3e");
  EXPECT_EQ(Inspect("<\\v>"), "3c b 3e");
  EXPECT_EQ(Inspect("<\\0>"), "3c 0 3e");
  EXPECT_EQ(Inspect("<\\q>"), "3c 71 3e");

  // So a JSON document with escaped characters in its strings arrives as
  // something else, which the page can no longer read as JSON.
  const std::string json = R"({"text": "say \"hi\"\n", "path": "C:\\temp"})";
  EXPECT_EQ(Echo(json), "{\"text\": \"say \"hi\"\n\", \"path\": \"C:\\temp\"}");
  // Strict mode gives the page the document itself.
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  EXPECT_EQ(Echo(json), json);
  instance_->SetScriptQuoting(ScriptQuoting::Compatible);

  // Raw characters: a line feed or carriage return ends the script line and
  // the call fails; other control characters, NUL among them, and the two
  // separators arrive as they are.
  std::string log;
  {
    StdoutCapture capture;
    const std::string unended =
        ByEngine("SyntaxError: Invalid or unexpected token", "SyntaxError: Unexpected EOF");
    EXPECT_EQ(EchoFailure("a\nb"), unended);
    EXPECT_EQ(EchoFailure("a\rb"), unended);
    // A backslash at the very end escapes the closing quote: the literal
    // never ends.
    EXPECT_EQ(EchoFailure("ends with \\"), unended);
    log = capture.Text();
  }
  EXPECT_EQ(log,
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Caught exception running tavoInterop_HostServiceListUpdate\n"
            "Caught exception running tavoInterop_HostServiceListUpdate\n");
  EXPECT_EQ(Inspect(std::string("a\0b", 3)), "61 0 62");
  EXPECT_EQ(Inspect("a\x01\x1f\x7f"
                    "b"),
            "61 1 1f 7f 62");
  EXPECT_EQ(Inspect("a\xE2\x80\xA8\xE2\x80\xA9"
                    "b"),
            "61 2028 2029 62");
  EXPECT_EQ(instance_->GetContentState(), HostContentState::LoggedIn);
}

TEST_F(ScriptQuotingTest, BackslashBeforeAQuoteBreaksOutOfTheCompatibleString) {
  LaunchAndLogIn();
  const std::string breakout = "\\');globalThis.injected=\"breakout\";//";
  BaseServiceDescriptor echo(kEcho, "_2014_07");

  // Compatible: the page function gets a lone backslash, and the rest of the
  // argument runs as script in the page; the method call's answer is the
  // value of that script, not the page function's.
  instance_->InvokeWebEvent(&echo, breakout);
  EXPECT_EQ(Eval("e2e.events()"), "[\"\\\\\"]");
  EXPECT_EQ(Eval("globalThis.injected"), "breakout");
  Eval("delete globalThis.injected");
  EXPECT_EQ(Echo(breakout), "breakout");
  EXPECT_EQ(Eval("globalThis.injected"), "breakout");
  Eval("delete globalThis.injected");

  // Strict: the page function gets the argument, and nothing runs.
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  EXPECT_EQ(Echo(breakout), breakout);
  instance_->InvokeWebEvent(&echo, breakout);
  EXPECT_EQ(Eval("JSON.parse(e2e.events())[1]"), breakout);
  EXPECT_EQ(Eval("typeof globalThis.injected"), "undefined");
}

}  // namespace
