#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshSvc.h"

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
#include "wevlin/infrastructure/services/refresh/_2014_07/IHandleRefreshSvc.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"

namespace {

using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::IHandleRefreshSvc;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshMsg;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Refresh::_2014_07::RefreshSvc;
using wevlin_test::StdoutCapture;
using wevlin_test::ThrowsExactly;

static_assert(std::is_abstract_v<IHandleRefreshSvc>);
static_assert(!std::has_virtual_destructor_v<IHandleRefreshSvc>);
static_assert(!std::is_destructible_v<IHandleRefreshSvc>);
static_assert(std::is_copy_assignable_v<IHandleRefreshSvc>);

class RecordingHandler : public IHandleRefreshSvc {
 public:
  void OnRefresh(const RefreshMsg& refresh) override {
    if (fail_) throw std::domain_error("refresh refused");
    received.push_back(refresh);
  }

  std::vector<RefreshMsg> received;
  bool fail_ = false;
};

using RefreshSvcTest = wevlin_test::ServiceFixture<RefreshSvc, RecordingHandler>;

TEST_F(RefreshSvcTest, IsNamedAsTheWebSideExpects) {
  EXPECT_EQ(service_.GetFQN(), "tavo.wevlin.infrastructure.services.refresh.Refresh.host");
  EXPECT_EQ(service_.GetSvcVersion(), "_2014_07");
}

TEST_F(RefreshSvcTest, AMalformedDeletedObjectIsDroppedAndTheOthersArriveInOrder) {
  service_.InvokeEvent(&instance_, &service_,
                       R"({"Version":"_2014_07","DeletedObjects":[{"DBId":"db","ObjId":"1",)"
                       R"("ObjType":"T"},42,{"DBId":"db","ObjId":"2","ObjType":"T"}]})");
  ASSERT_EQ(handler_.received.size(), 1u);
  const RefreshMsg& refresh = handler_.received[0];
  ASSERT_EQ(refresh.DeletedObjects.size(), 2u);
  EXPECT_EQ(refresh.DeletedObjects[0].ObjId, "1");
  EXPECT_EQ(refresh.DeletedObjects[1].ObjId, "2");
  EXPECT_EQ(refresh.ToJsonString(),
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [{"DBId": "db", "ObjId": "1", "ObjType": "T"}, )"
            R"({"DBId": "db", "ObjId": "2", "ObjType": "T"}], "PlainObjects": [], )"
            R"("ChildChangeObjects": [], "DataObjects": []})");
}

TEST_F(RefreshSvcTest, AnEmptyObjectArrivesAsAnEmptyRefresh) {
  service_.InvokeEvent(&instance_, &service_, "{}");
  ASSERT_EQ(handler_.received.size(), 1u);
  EXPECT_EQ(handler_.received[0].ToJsonString(),
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [], "PlainObjects": [], "ChildChangeObjects": [], )"
            R"("DataObjects": []})");
}

TEST_F(RefreshSvcTest, TextThatDoesNotParseDoesNotReachTheHandler) {
  StdoutCapture capture;
  service_.InvokeEvent(&instance_, &service_, "refresh");
  service_.InvokeEvent(&instance_, &service_, R"({"CreatedObjects": {}})");
  service_.InvokeEvent(&instance_, &service_, "[]");
  EXPECT_TRUE(handler_.received.empty());
  EXPECT_EQ(capture.Text(), "");
}

TEST_F(RefreshSvcTest, WithoutHandlerEveryEventIsIgnored) {
  RefreshSvc unhandled(nullptr);
  unhandled.InvokeEvent(&instance_, &unhandled, R"({"Version":"_2014_07"})");
  EXPECT_EQ(unhandled.InvokeMethod(&instance_, &unhandled, "{}"), "");
}

TEST_F(RefreshSvcTest, AnExceptionOfTheHandlerPassesThrough) {
  handler_.fail_ = true;
  EXPECT_TRUE(ThrowsExactly<std::domain_error>(
      [&] { service_.InvokeEvent(&instance_, &service_, "{}"); }, "refresh refused"));
}

// ---- End to end: a host control instance on a scripted page ------------------

using RefreshSvcEndToEndTest = wevlin_test::HostedPageFixture;

constexpr char kRefreshHost[] =
    R"({"FQN": "tavo.wevlin.infrastructure.services.refresh.Refresh.host", )"
    R"("SvcVersion": "_2014_07"})";

TEST_F(RefreshSvcEndToEndTest, ThePagesRefreshReachesTheHandler) {
  RecordingHandler handler;
  manager_->RegisterService(new RefreshSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRefreshHost,
                                R"({"DeletedObjects":[{"ObjId":"1"},{"ObjId":2},{"ObjId":"3"}],)"
                                R"("DataObjects":[{"ObjRef":{"ObjId":"4"},"Properties":[]}]})"),
            "");
  ASSERT_EQ(handler.received.size(), 1u);
  const RefreshMsg& refresh = handler.received[0];
  ASSERT_EQ(refresh.DeletedObjects.size(), 3u);
  EXPECT_EQ(refresh.DeletedObjects[1].ObjId, "2");
  ASSERT_EQ(refresh.DataObjects.size(), 1u);
  EXPECT_EQ(refresh.DataObjects[0].ObjRef.ObjId, "4");
}

TEST_F(RefreshSvcEndToEndTest, AnUnreadableRefreshIsDroppedWithoutARecord) {
  RecordingHandler handler;
  manager_->RegisterService(new RefreshSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRefreshHost, R"({"CreatedObjects": "all"})"), "");
  EXPECT_TRUE(handler.received.empty());
}

TEST_F(RefreshSvcEndToEndTest, AFailingHandlerReachesThePageAsAnExceptionRecord) {
  RecordingHandler handler;
  handler.fail_ = true;
  manager_->RegisterService(new RefreshSvc(&handler));
  EXPECT_EQ(api_->tavoHostEvent(kRefreshHost, "{}"),
            R"({"Exception": {"name": "std::domain_error", "message": "refresh refused"}})");
}

}  // namespace
