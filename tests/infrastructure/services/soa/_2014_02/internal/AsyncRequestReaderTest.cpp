#include "wevlin/infrastructure/services/soa/_2014_02/internal/AsyncRequestReader.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include "wevlin/infrastructure/services/soa/_2014_02/RequestHostAuthRequestMessage.h"
#include "wevlin/infrastructure/services/soa/_2014_02/SoaJsonRequestMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::WebSideServiceDescriptor;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::
    RequestHostAuthRequestMessage;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::SoaJsonRequestMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Soa::_2014_02::internal::
    ReadAsyncRequest;

// Returns the what() text of the std::invalid_argument that reading `payload`
// throws, or a description of what happened instead.
std::string RejectionOf(const std::string& payload) {
  SoaJsonRequestMsg request;
  try {
    ReadAsyncRequest(payload, request);
  } catch (const std::exception& e) {
    if (typeid(e) != typeid(std::invalid_argument)) return std::string("wrong type: ") + e.what();
    return e.what();
  }
  return "accepted";
}

TEST(AsyncRequestReaderTest, ReadsTheWholeRequestAndBuildsTheReplyTarget) {
  SoaJsonRequestMsg request;
  std::unique_ptr<WebSideServiceDescriptor> target = ReadAsyncRequest(
      R"({"Version": "_2014_07", "CacheId": "7", )"
      R"("ReplyServiceDescriptor": "{\"FQN\": \"app.Reply.client\", \"SvcVersion\": \"_2014_02\"}", )"
      R"("ServiceName": "Orders", "OperationName": "List", "Message": "{}"})",
      request);
  ASSERT_NE(target, nullptr);
  EXPECT_EQ(target->GetFQN(), "app.Reply.client");
  EXPECT_EQ(target->GetSvcVersion(), "_2014_02");
  EXPECT_EQ(request.GetVersion(), "_2014_07");
  EXPECT_EQ(request.CacheId, "7");
  EXPECT_EQ(request.ServiceName, "Orders");
  EXPECT_EQ(request.OperationName, "List");
  EXPECT_EQ(request.Message, "{}");
}

TEST(AsyncRequestReaderTest, ReadsARequestWithoutMembersOfItsOwn) {
  RequestHostAuthRequestMessage request;
  std::unique_ptr<WebSideServiceDescriptor> target = ReadAsyncRequest(
      R"({"CacheId":"1","ReplyServiceDescriptor":"{\"FQN\":\"x.client\",\"SvcVersion\":\"v\"}"})",
      request);
  EXPECT_EQ(target->GetFQN(), "x.client");
  EXPECT_EQ(target->GetSvcVersion(), "v");
  EXPECT_EQ(request.CacheId, "1");
}

TEST(AsyncRequestReaderTest, TextThatIsNoRequestIsBadPayloadData) {
  EXPECT_EQ(RejectionOf("not json"), "Bad payload data");
  EXPECT_EQ(RejectionOf(""), "Bad payload data");
  EXPECT_EQ(RejectionOf("[1, 2]"), "Bad payload data");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7")"), "Bad payload data");
}

TEST(AsyncRequestReaderTest, AMissingCacheIdIsReportedBeforeAMissingDescriptor) {
  EXPECT_EQ(RejectionOf("{}"), "CacheId is missing");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "", "ReplyServiceDescriptor": ""})"), "CacheId is missing");
  EXPECT_EQ(RejectionOf(R"({"ReplyServiceDescriptor": "{\"FQN\": \"a\"}"})"), "CacheId is missing");
}

TEST(AsyncRequestReaderTest, AnEmptyDescriptorIsMissing) {
  EXPECT_EQ(RejectionOf(R"({"CacheId":"7","ReplyServiceDescriptor":"","Version":"_2014_02"})"),
            "ReplyServiceDescriptor is missing");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7"})"), "ReplyServiceDescriptor is missing");
}

TEST(AsyncRequestReaderTest, ADescriptorThatIsNoObjectIsIncorrect) {
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7", "ReplyServiceDescriptor": "abc"})"),
            "ReplyServiceDescriptor is incorrect");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7", "ReplyServiceDescriptor": "[1]"})"),
            "ReplyServiceDescriptor is incorrect");
  EXPECT_EQ(RejectionOf(R"({"CacheId": "7", "ReplyServiceDescriptor": "{\"FQN\": "})"),
            "ReplyServiceDescriptor is incorrect");
}

TEST(AsyncRequestReaderTest, ADescriptorObjectWithoutMembersIsAccepted) {
  SoaJsonRequestMsg request;
  std::unique_ptr<WebSideServiceDescriptor> target =
      ReadAsyncRequest(R"({"CacheId": "7", "ReplyServiceDescriptor": "{}"})", request);
  EXPECT_EQ(target->GetFQN(), "");
  EXPECT_EQ(target->GetSvcVersion(), "");
}

}  // namespace
