#include "wevlin/webcontrols/chromium/internal/HostShimScript.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal::HostShimScript;

TEST(HostShimScriptTest, EmbedsTheScriptFileByteForByte) {
  std::ifstream file(std::string(WEVLIN_SOURCE_DIR) + "/wevlin/webcontrols/chromium/host-shim.js",
                     std::ios::binary);
  ASSERT_TRUE(file);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  EXPECT_EQ(std::string(HostShimScript()), text);
}

TEST(HostShimScriptTest, IsOneFunctionExpressionOfTheTwoNames) {
  const std::string text(HostShimScript());
  EXPECT_NE(text.find("(function (bindingName, replyName) {"), std::string::npos);
  EXPECT_EQ(text.substr(text.size() - 4), "});\n");
}

}  // namespace
