#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::BaseServiceDescriptor;
using interop::ITargetServiceDesc;

// Counts how often the destructor of a class derived from the descriptor runs,
// to show that deleting through the interface reaches it.
class ObservedDescriptor : public BaseServiceDescriptor {
 public:
  ObservedDescriptor(std::string fqn, std::string version, int* destroyed)
      : BaseServiceDescriptor(std::move(fqn), std::move(version)), destroyed_(destroyed) {}
  ~ObservedDescriptor() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

TEST(BaseServiceDescriptorTest, ReturnsTheTextsItWasGiven) {
  BaseServiceDescriptor descriptor(
      "tavo.wevlin.infrastructure.services.core.HostConfiguration.host", "_2014_07");
  EXPECT_EQ(descriptor.GetFQN(), "tavo.wevlin.infrastructure.services.core.HostConfiguration.host");
  EXPECT_EQ(descriptor.GetSvcVersion(), "_2014_07");
}

TEST(BaseServiceDescriptorTest, AcceptsEmptyTexts) {
  BaseServiceDescriptor descriptor("", "");
  EXPECT_EQ(descriptor.GetFQN(), "");
  EXPECT_EQ(descriptor.GetSvcVersion(), "");

  BaseServiceDescriptor noVersion("a.b", "");
  EXPECT_EQ(noVersion.GetFQN(), "a.b");
  EXPECT_EQ(noVersion.GetSvcVersion(), "");
}

TEST(BaseServiceDescriptorTest, KeepsTextsByteForByte) {
  const std::string fqn("a\0b \t\xC3\xA9", 7);
  const std::string version("_2014_07 ", 9);
  BaseServiceDescriptor descriptor(fqn, version);
  EXPECT_EQ(descriptor.GetFQN(), fqn);
  EXPECT_EQ(descriptor.GetFQN().size(), 7u);
  EXPECT_EQ(descriptor.GetSvcVersion(), version);
}

TEST(BaseServiceDescriptorTest, FqnsThatDifferOnlyInCaseStayDifferent) {
  BaseServiceDescriptor lower("a.b", "_2014_02");
  BaseServiceDescriptor upper("A.B", "_2014_02");
  EXPECT_NE(lower.GetFQN(), upper.GetFQN());
  EXPECT_EQ(lower.GetFQN(), "a.b");
  EXPECT_EQ(upper.GetFQN(), "A.B");
}

TEST(BaseServiceDescriptorTest, ReturnsCopiesThatCallersMayChange) {
  BaseServiceDescriptor descriptor("a.b", "_2014_02");
  std::string fqn = descriptor.GetFQN();
  std::string version = descriptor.GetSvcVersion();
  fqn += ".changed";
  version.clear();
  EXPECT_EQ(descriptor.GetFQN(), "a.b");
  EXPECT_EQ(descriptor.GetSvcVersion(), "_2014_02");
}

TEST(BaseServiceDescriptorTest, CopyConstructionCopiesBothTexts) {
  BaseServiceDescriptor original("a.b", "_2014_02");
  BaseServiceDescriptor copy(original);
  EXPECT_EQ(copy.GetFQN(), "a.b");
  EXPECT_EQ(copy.GetSvcVersion(), "_2014_02");
}

TEST(BaseServiceDescriptorTest, CopyAssignmentReplacesBothTexts) {
  BaseServiceDescriptor source("c.d", "_2015_10");
  BaseServiceDescriptor target("a.b", "_2014_02");
  target = source;
  EXPECT_EQ(target.GetFQN(), "c.d");
  EXPECT_EQ(target.GetSvcVersion(), "_2015_10");
  EXPECT_EQ(source.GetFQN(), "c.d");
  EXPECT_EQ(source.GetSvcVersion(), "_2015_10");
}

TEST(BaseServiceDescriptorTest, IsReadThroughTheInterface) {
  BaseServiceDescriptor descriptor("a.b", "_2014_02");
  const ITargetServiceDesc& target = descriptor;
  EXPECT_EQ(target.GetFQN(), "a.b");
  EXPECT_EQ(target.GetSvcVersion(), "_2014_02");
}

TEST(BaseServiceDescriptorTest, DeletingThroughTheInterfaceRunsTheDerivedDestructor) {
  int destroyed = 0;
  ITargetServiceDesc* target = new ObservedDescriptor("a.b", "_2014_02", &destroyed);
  EXPECT_EQ(target->GetFQN(), "a.b");
  delete target;
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
