#include "wevlin/infrastructure/services/soa/_2014_02/AsyncSoaPendingCall.h"

#include <memory>

#include <gtest/gtest.h>

#include "support/MockHostControlInstance.h"
#include "wevlin/infrastructure/interop/DataServiceDescriptor.h"
#include "wevlin/infrastructure/interop/WebSideServiceDescriptor.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::DataServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::WebSideServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::AsyncSoaPendingCall;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaJsonRequestMsg;
using wevlin_test::MockHostControlInstance;

constexpr char kReplyDescriptor[] = R"({"FQN": "app.Reply.client", "SvcVersion": "_2014_07"})";

WebSideServiceDescriptor* NewReplyTarget() {
  DataServiceDescriptor data("app.Reply.client", "_2014_07");
  return new WebSideServiceDescriptor(&data);
}

SoaJsonRequestMsg RequestOfVersion(const char* version) {
  SoaJsonRequestMsg request;
  request.CacheId = "7";
  request.ReplyServiceDescriptor = kReplyDescriptor;
  request.ServiceName = "Orders";
  request.OperationName = "List";
  request.Message = "{}";
  EXPECT_TRUE(request.FromJsonString(std::string(R"({"Version": ")") + version + "\"}"));
  return request;
}

TEST(AsyncSoaPendingCallTest, KeepsTargetInstanceRoutingAndACopyOfTheRequest) {
  MockHostControlInstance instance;
  WebSideServiceDescriptor* target = NewReplyTarget();
  SoaJsonRequestMsg request = RequestOfVersion("_2014_02");
  AsyncSoaPendingCall call(target, &instance, request);

  EXPECT_EQ(call.GetReplyDescriptor(), target);
  EXPECT_EQ(call.GetHostControlInstance(), &instance);
  EXPECT_TRUE(call.RequestWasVersion2014_02());
  EXPECT_EQ(call.CacheId, "7");
  EXPECT_EQ(call.ReplyServiceDescriptor, kReplyDescriptor);
  EXPECT_EQ(call.GetRequest().ToJsonString(), request.ToJsonString());
  // The record itself is routing data of version "_2014_02".
  EXPECT_EQ(call.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "7", "ReplyServiceDescriptor": )"
            R"("{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_07\"}"})");

  // The copy of the request is the record's own.
  request.Message = "changed";
  EXPECT_EQ(call.GetRequest().Message, "{}");
}

TEST(AsyncSoaPendingCallTest, TheFlagIsSetOnlyForExactlyVersion2014_02) {
  MockHostControlInstance instance;
  AsyncSoaPendingCall v07(NewReplyTarget(), &instance, RequestOfVersion("_2014_07"));
  AsyncSoaPendingCall v10(NewReplyTarget(), &instance, RequestOfVersion("_2015_10"));
  AsyncSoaPendingCall other(NewReplyTarget(), &instance, RequestOfVersion("_2014_02 "));
  EXPECT_FALSE(v07.RequestWasVersion2014_02());
  EXPECT_FALSE(v10.RequestWasVersion2014_02());
  EXPECT_FALSE(other.RequestWasVersion2014_02());
  EXPECT_EQ(v10.GetRequest().GetVersion(), "_2015_10");
}

TEST(AsyncSoaPendingCallTest, CopyHasItsOwnDescriptorAndSerialisesLikeTheOriginal) {
  MockHostControlInstance instance;
  auto original = std::make_unique<AsyncSoaPendingCall>(NewReplyTarget(), &instance,
                                                        RequestOfVersion("_2014_02"));
  AsyncSoaPendingCall copy(*original);
  EXPECT_NE(copy.GetReplyDescriptor(), original->GetReplyDescriptor());
  EXPECT_EQ(copy.GetReplyDescriptor()->GetFQN(), "app.Reply.client");
  EXPECT_EQ(copy.GetReplyDescriptor()->GetSvcVersion(), "_2014_07");
  EXPECT_EQ(copy.GetHostControlInstance(), &instance);
  EXPECT_TRUE(copy.RequestWasVersion2014_02());
  EXPECT_EQ(copy.ToJsonString(), original->ToJsonString());
  EXPECT_EQ(copy.GetRequest().ToJsonString(), original->GetRequest().ToJsonString());

  // Destroying the original leaves the copy whole.
  original.reset();
  EXPECT_EQ(copy.GetReplyDescriptor()->GetFQN(), "app.Reply.client");
  copy.CacheId = "8";
  EXPECT_EQ(copy.ToJsonString(),
            R"({"Version": "_2014_02", "CacheId": "8", "ReplyServiceDescriptor": )"
            R"("{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_07\"}"})");
}

TEST(AsyncSoaPendingCallTest, AssignmentReplacesEverythingWithOwnCopies) {
  MockHostControlInstance first;
  MockHostControlInstance second;
  AsyncSoaPendingCall source(NewReplyTarget(), &first, RequestOfVersion("_2014_02"));
  DataServiceDescriptor otherData("app.Other.client", "_2016_04");
  SoaJsonRequestMsg otherRequest = RequestOfVersion("_2014_07");
  otherRequest.CacheId = "99";
  AsyncSoaPendingCall target(new WebSideServiceDescriptor(&otherData), &second, otherRequest);

  target = source;
  EXPECT_NE(target.GetReplyDescriptor(), source.GetReplyDescriptor());
  EXPECT_EQ(target.GetReplyDescriptor()->GetFQN(), "app.Reply.client");
  EXPECT_EQ(target.GetHostControlInstance(), &first);
  EXPECT_TRUE(target.RequestWasVersion2014_02());
  EXPECT_EQ(target.CacheId, "7");
  EXPECT_EQ(target.GetRequest().GetVersion(), "_2014_02");
  EXPECT_EQ(target.ToJsonString(), source.ToJsonString());

  AsyncSoaPendingCall& same = target;
  target = same;  // assigning a record to itself keeps everything
  EXPECT_EQ(target.GetReplyDescriptor()->GetFQN(), "app.Reply.client");
}

}  // namespace
