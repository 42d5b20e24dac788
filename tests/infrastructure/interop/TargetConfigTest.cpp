#include <gtest/gtest.h>

#include <string>

#include "wevlin/infrastructure/interop/TargetConfig.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::TargetConfig;

TEST(TargetConfigTest, ReturnsIdNameAndTargetInConstructorOrder) {
  TargetConfig config("main", "Main page", "https://example.test/app/index.html");
  EXPECT_EQ(config.GetId(), "main");
  EXPECT_EQ(config.GetName(), "Main page");
  EXPECT_EQ(config.GetTarget(), "https://example.test/app/index.html");
}

TEST(TargetConfigTest, KeepsEmptyAndUnusualTextsUnchanged) {
  TargetConfig empty("", "", "");
  EXPECT_EQ(empty.GetId(), "");
  EXPECT_EQ(empty.GetName(), "");
  EXPECT_EQ(empty.GetTarget(), "");

  const std::string name("Start \"page\"\n\0x", 15);
  TargetConfig unusual(" Id ", name, "file:///C:/a b/c.html?x=1&y=%20");
  EXPECT_EQ(unusual.GetId(), " Id ");
  EXPECT_EQ(unusual.GetName(), name);
  EXPECT_EQ(unusual.GetName().size(), 15u);
  EXPECT_EQ(unusual.GetTarget(), "file:///C:/a b/c.html?x=1&y=%20");
}

TEST(TargetConfigTest, ReturnsCopiesThatCallersMayChange) {
  TargetConfig config("main", "Main page", "https://example.test/");
  std::string id = config.GetId();
  id = "other";
  std::string target = config.GetTarget();
  target.clear();
  EXPECT_EQ(config.GetId(), "main");
  EXPECT_EQ(config.GetTarget(), "https://example.test/");
}

TEST(TargetConfigTest, CopyConstructionCopiesEveryField) {
  TargetConfig original("main", "Main page", "https://example.test/");
  TargetConfig copy(original);
  EXPECT_EQ(copy.GetId(), "main");
  EXPECT_EQ(copy.GetName(), "Main page");
  EXPECT_EQ(copy.GetTarget(), "https://example.test/");
}

TEST(TargetConfigTest, CopyAssignmentReplacesEveryField) {
  TargetConfig source("help", "Help", "https://example.test/help");
  TargetConfig target("main", "Main page", "https://example.test/");
  target = source;
  EXPECT_EQ(target.GetId(), "help");
  EXPECT_EQ(target.GetName(), "Help");
  EXPECT_EQ(target.GetTarget(), "https://example.test/help");
  EXPECT_EQ(source.GetId(), "help");
}

}  // namespace
