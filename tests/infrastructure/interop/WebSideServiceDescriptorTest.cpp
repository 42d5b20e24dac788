#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "wevlin/infrastructure/interop/BaseServiceDescriptor.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/ITargetServiceDesc.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using interop::BaseServiceDescriptor;
using interop::DataServiceDescriptor;
using interop::ITargetServiceDesc;
using interop::WebSideServiceDescriptor;

TEST(WebSideServiceDescriptorTest, CopiesFqnAndVersionFromTheWireDescriptor) {
  DataServiceDescriptor data("tavo.wevlin.infrastructure.services.session.Session.client",
                             "_2014_07");
  WebSideServiceDescriptor descriptor(&data);
  EXPECT_EQ(descriptor.GetFQN(), "tavo.wevlin.infrastructure.services.session.Session.client");
  EXPECT_EQ(descriptor.GetSvcVersion(), "_2014_07");
}

TEST(WebSideServiceDescriptorTest, ChangingTheSourceAfterwardsDoesNotChangeIt) {
  DataServiceDescriptor data("a.b", "_2014_02");
  WebSideServiceDescriptor descriptor(&data);

  data.FQN = "changed";
  data.SvcVersion = "_2099_01";
  EXPECT_TRUE(data.FromJsonString("{\"FQN\": \"read.again\"}"));

  EXPECT_EQ(descriptor.GetFQN(), "a.b");
  EXPECT_EQ(descriptor.GetSvcVersion(), "_2014_02");
}

TEST(WebSideServiceDescriptorTest, DeletingTheSourceAfterwardsDoesNotChangeIt) {
  auto data = std::make_unique<DataServiceDescriptor>("a.b", "_2014_02");
  WebSideServiceDescriptor descriptor(data.get());
  data.reset();
  EXPECT_EQ(descriptor.GetFQN(), "a.b");
  EXPECT_EQ(descriptor.GetSvcVersion(), "_2014_02");
}

TEST(WebSideServiceDescriptorTest, TakesTheTextsAsReadFromJson) {
  DataServiceDescriptor data;
  ASSERT_TRUE(data.FromJsonString("{\"FQN\": \"x.y\"}"));
  WebSideServiceDescriptor descriptor(&data);
  EXPECT_EQ(descriptor.GetFQN(), "x.y");
  EXPECT_EQ(descriptor.GetSvcVersion(), "");
}

TEST(WebSideServiceDescriptorTest, AcceptsEmptyTexts) {
  DataServiceDescriptor data;
  WebSideServiceDescriptor descriptor(&data);
  EXPECT_EQ(descriptor.GetFQN(), "");
  EXPECT_EQ(descriptor.GetSvcVersion(), "");
}

TEST(WebSideServiceDescriptorTest, IsABaseServiceDescriptorAndATargetDescriptor) {
  DataServiceDescriptor data("a.b", "_2014_02");
  WebSideServiceDescriptor descriptor(&data);
  const BaseServiceDescriptor& base = descriptor;
  const ITargetServiceDesc& target = descriptor;
  EXPECT_EQ(base.GetFQN(), "a.b");
  EXPECT_EQ(target.GetSvcVersion(), "_2014_02");
}

TEST(WebSideServiceDescriptorTest, CanBeDeletedThroughTheTargetInterface) {
  DataServiceDescriptor data("a.b", "_2014_02");
  ITargetServiceDesc* target = new WebSideServiceDescriptor(&data);
  EXPECT_EQ(target->GetFQN(), "a.b");
  delete target;
}

TEST(WebSideServiceDescriptorTest, CopiesAreIndependentValues) {
  DataServiceDescriptor first("a.b", "_2014_02");
  DataServiceDescriptor second("c.d", "_2015_10");
  WebSideServiceDescriptor descriptor(&first);
  WebSideServiceDescriptor copy(descriptor);
  EXPECT_EQ(copy.GetFQN(), "a.b");
  EXPECT_EQ(copy.GetSvcVersion(), "_2014_02");

  WebSideServiceDescriptor other(&second);
  copy = other;
  EXPECT_EQ(copy.GetFQN(), "c.d");
  EXPECT_EQ(copy.GetSvcVersion(), "_2015_10");
  EXPECT_EQ(descriptor.GetFQN(), "a.b");
}

}  // namespace
