#include "wevlin/infrastructure/services/session/_2014_07/SessionSvc.h"

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/ExceptionChecks.h"
#include "support/HostedPageFixture.h"
#include "support/ServiceFixture.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/HostControlInstance.h"
#include "wevlin/infrastructure/services/session/_2014_07/IHandleSessionSvc.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::IHandleSessionSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Session::_2014_07::SessionSvc;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

static_assert(std::is_abstract_v<IHandleSessionSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleSessionSvc>);
static_assert(!std::is_destructible_v<IHandleSessionSvc>);
static_assert(std::is_copy_assignable_v<IHandleSessionSvc>);

class RecordingHandler : public IHandleSessionSvc {
 public:
  void OnSession(const SessionMsg& session) override {
    if (fail_) throw std::invalid_argument("session refused");
    received.push_back(session);
  }

  std::vector<SessionMsg> received;
  bool fail_ = false;
};

using SessionSvcTest = wevlin_test::ServiceFixture<SessionSvc, RecordingHandler>;

TEST_F(SessionSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.session.Session.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
}

TEST_F(SessionSvcTest, ASessionReachesTheHandlerParsed) {
  service_.InvokeEvent(&instance_, &service_,
                       R"({"Version":"_2014_07","SessionObjects":[{"DBId":"db","ObjId":"1",)"
                       R"("ObjType":"User"}],"Preferences":[{"Name":"lang","Values":["en"]}]})");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].ToJsonString(),
            R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", "ObjId": "1", )"
            R"("ObjType": "User"}], "Preferences": [{"Name": "lang", "Values": ["en"]}]})");
}

TEST_F(SessionSvcTest, BadElementsAreDroppedAndTheOthersKeepTheirOrder) {
  service_.InvokeEvent(&instance_, &service_,
                       R"({"SessionObjects":[{"ObjId":"1"},false,{"ObjId":"2"}]})");
  ASSERT_EQ(handler_.received.size(), 1u);
  ASSERT_EQ(handler_.received[0].SessionObjects.size(), 2u);
  EXPECT_EQ(handler_.received[0].SessionObjects[0].ObjId, "1");
  EXPECT_EQ(handler_.received[0].SessionObjects[1].ObjId, "2");
}

TEST_F(SessionSvcTest, TextThatDoesNotParseDoesNotReachTheHandler) {
  StdoutCapture capture;
  service_.InvokeEvent(&instance_, &service_, "session");
  service_.InvokeEvent(&instance_, &service_, R"({"SessionObjects": 3})");
  service_.InvokeEvent(&instance_, &service_, R"({"SessionObjects": [{"ObjId": "1"}])");
  EXPECT_TRUE(handler_.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(SessionSvcTest, WithoutHandlerEveryEventIsIgnored) {
  SessionSvc unhandled(nullptr);
  unhandled.InvokeEvent(&instance_, &unhandled, R"({"Version":"_2014_07"})");
  EXPECT_EQ(unhandled.InvokeMethod(&instance_, &unhandled, "{}"), "");
}

TEST_F(SessionSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  handler_.fail_ = true;
  EXPECT_TRUE(ThrowsExactly<std::invalid_argument>(
      [&] { service_.InvokeEvent(&instance_, &service_, "{}"); }, "session refused"));
}

// ---- End to end: a host control instance on a scripted page ------------------

using SessionSvcEndToEndTest = wevlin_test::HostedPageFixture;

constexpr char kSessionHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.session.Session.host", )"
    R"("SvcVersion": "_2014_07"})";

TEST_F(SessionSvcEndToEndTest, ThePagesSessionReachesTheHandler) {
  RecordingHandler handler;
  manager_->RegisterService(new SessionSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kSessionHost,
                                R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", )"
                                R"("ObjId": "1", "ObjType": "User"}, 5], "Preferences": []})"),
            "");
  ASSERT_EQ(handler.received.size(), 1u);
  EXPECT_EQ(handler.received[0].ToJsonString(),
            R"({"Version": "_2014_07", "SessionObjects": [{"DBId": "db", "ObjId": "1", )"
            R"("ObjType": "User"}], "Preferences": []})");
}

TEST_F(SessionSvcEndToEndTest, AnUnreadableSessionIsDroppedWithoutARecord) {
  RecordingHandler handler;
  manager_->RegisterService(new SessionSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kSessionHost, "<session/>"), "");
  EXPECT_TRUE(handler.received.empty());
}

TEST_F(SessionSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHandler handler;
  handler.fail_ = true;
  manager_->RegisterService(new SessionSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kSessionHost, "{}"),
            R"({"Exception": {"name": "std::invalid_argument", "message": "session refused"}})");
}

}  // namespace
