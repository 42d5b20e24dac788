#include "wevlin/webcontrols/chromium/internal/EvaluateParams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::EvaluateParams;
using Json = nlohmann::ordered_json;

// Returns `text` as the JSON library writes a string.
std::string Quoted(const std::string& text) { return Json(text).dump(); }

TEST(EvaluateParamsTest, WritesTheParamsOfAnEvaluateInOneOrder) {
  EXPECT_EQ(EvaluateParams("6 * 7", "wevlin-script", 3).Text(),
            R"({"expression":"6 * 7","objectGroup":"wevlin-script","returnByValue":true,)"
            R"("awaitPromise":false,"contextId":3})");
  // Without a context the script runs in the page's default one.
  EXPECT_EQ(EvaluateParams("", "g\"1", 0).Text(),
            R"({"expression":"","objectGroup":"g\"1","returnByValue":true,"awaitPromise":false})");
}

TEST(EvaluateParamsTest, EscapesEveryCharacterAsTheJsonLibraryDoes) {
  std::string script;
  for (int byte = 1; byte < 0x80; ++byte) script += static_cast<char>(byte);
  script += "\xC3\xA9 \xE2\x80\xA8 \xF0\x9F\x98\x80";
  script += '\0';
  script += "tail";
  const EvaluateParams params(script, "group", 0);
  const std::string text = params.Text();
  EXPECT_EQ(text, "{\"expression\":" + Quoted(script) +
                      R"(,"objectGroup":"group","returnByValue":true,"awaitPromise":false})");
  EXPECT_EQ(params.Size(), text.size());
  EXPECT_EQ(Json::parse(text)["expression"].get<std::string>(), script);
}

TEST(EvaluateParamsTest, ABigScriptGoesInPiecesThatMakeTheWholeText) {
  // 3 MiB of script text with escapes scattered through it, and long runs
  // without any.
  std::mt19937 random(7);
  const std::string alphabet = "abc\"\\\n\t\x01/'\xC3\xA9";
  std::string script;
  while (script.size() < (std::size_t{3} << 20)) {
    if (random() % 4 == 0) {
      script.append(random() % 200000, 'x');
    } else {
      const std::size_t pick = random() % alphabet.size();
      // The two bytes of U+00E9 stay together.
      if (alphabet[pick] == '\xC3' || alphabet[pick] == '\xA9') {
        script += "\xC3\xA9";
      } else {
        script += alphabet[pick];
      }
    }
  }
  const EvaluateParams params(script, "wevlin-script", 12);
  std::vector<std::size_t> pieces;
  std::string text;
  params.Write([&](std::string_view piece) {
    pieces.push_back(piece.size());
    text.append(piece);
  });
  EXPECT_EQ(text, "{\"expression\":" + Quoted(script) +
                      R"(,"objectGroup":"wevlin-script","returnByValue":true,)"
                      R"("awaitPromise":false,"contextId":12})");
  EXPECT_EQ(params.Size(), text.size());
  // No piece holds much more than 64 KiB, however long a run without escapes.
  ASSERT_GT(pieces.size(), 40U);
  EXPECT_LE(*std::max_element(pieces.begin(), pieces.end()), std::size_t{64} * 1024 + 6);
}

}  // namespace
