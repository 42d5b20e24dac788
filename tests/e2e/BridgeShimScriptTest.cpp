#include "wevlin/webcontrols/internal/BridgeShimScript.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

using Com::Velmora::TAVO::Wevlin::WebControls::internal::BridgeShimScript;

TEST(BridgeShimScriptTest, EmbedsTheScriptFileByteForByte) {
  std::ifstream file(std::string(WEVLIN_SOURCE_DIR) + "/wevlin/webcontrols/bridge-shim.js",
                     std::ios::binary);
  ASSERT_TRUE(file);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  EXPECT_EQ(std::string(BridgeShimScript()), text);
}

TEST(BridgeShimScriptTest, IsOneFunctionExpressionOfTransportAndPolicy) {
  const std::string text(BridgeShimScript());
  EXPECT_NE(text.find("(function (transport, config) {"), std::string::npos);
  EXPECT_EQ(text.substr(text.size() - 4), "});\n");
}

}  // namespace
