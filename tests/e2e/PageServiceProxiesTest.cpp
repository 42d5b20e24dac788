// The host calling services of a real page through the proxies of the
// standard catalogue: refresh, open location, client information, both
// versions of the version test service, and whether the page offers each.

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/BrowserFixture.h"
#include "support/StdoutCapture.h"
#include "wevlin/infrastructure/interop/ScriptQuoting.h"
#include "wevlin/infrastructure/services/clientinfo/_2014_07/ClientInfoProxy.h"
#include "wevlin/infrastructure/services/core/_2014_02/InteropObjRef.h"
#include "wevlin/infrastructure/services/core/_2014_07/InteropObjWithProperties.h"
#include "wevlin/infrastructure/services/core/_2014_07/StringArrayProperty.h"
#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationMsg.h"
#include "wevlin/infrastructure/services/openlocation/_2014_02/OpenLocationProxy.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshMsg.h"
#include "wevlin/infrastructure/services/refresh/_2014_07/RefreshProxy.h"
#include "wevlin/infrastructure/services/session/_2014_07/SessionProxy.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionProxy.h"
#include "wevlin/infrastructure/services/version/_2014_02/TestVersionResponseMsg.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionProxy01.h"
#include "wevlin/infrastructure/services/version/_2014_03/TestVersionResponseMsg.h"

namespace {

namespace services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;
namespace core02 = services::Core::_2014_02;
namespace core07 = services::Core::_2014_07;
using Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::ScriptQuoting;
using services::ClientInfo::_2014_07::ClientInfoProxy;
using services::OpenLocation::_2014_02::OpenLocationMsg;
using services::OpenLocation::_2014_02::OpenLocationProxy;
using services::Refresh::_2014_07::RefreshMsg;
using services::Refresh::_2014_07::RefreshProxy;
using services::Session::_2014_07::SessionProxy;
using wevlin_test::StdoutCapture;
namespace version02 = services::Version::_2014_02;
namespace version03 = services::Version::_2014_03;

constexpr char kVersionTestFqn[] = "tavo.wevlin.infrastructure.services.version.TestVersionSvc";

class PageServiceProxiesTest : public wevlin_e2e::BrowserFixture {
 protected:
  // Returns the payloads that page service `name` of catalogue.html got.
  std::vector<std::string> Received(const std::string& name) {
    return Json::parse(Eval("catalogue.received('" + name + "')")).get<std::vector<std::string>>();
  }
};

TEST_F(PageServiceProxiesTest, RefreshReachesThePageAsTheHostWroteIt) {
  LaunchAndLogIn("catalogue.html");
  RefreshProxy proxy(instance_.get());
  ASSERT_TRUE(proxy.IsTargetServiceAvailable());
  RefreshMsg refresh;
  refresh.CreatedObjects.emplace_back("orders", "42", "Order");
  refresh.DeletedObjects.emplace_back("orders", "it's 7", "Order");
  core07::InteropObjWithProperties data;
  data.ObjRef = core02::InteropObjRef("people", "ann", "Person");
  data.Properties.emplace_back("roles", std::vector<std::string>{"admin", "Grüße"});
  refresh.DataObjects.push_back(data);
  proxy.SendRefresh(refresh);
  proxy.SendRefresh(RefreshMsg());
  EXPECT_EQ(Received("refresh"),
            (std::vector<std::string>{refresh.ToJsonString(), RefreshMsg().ToJsonString()}));
  const Json first = Json::parse(Received("refresh").at(0));
  EXPECT_EQ(first["DeletedObjects"][0]["ObjId"], "it's 7");
  EXPECT_EQ(first["DataObjects"][0]["Properties"][0]["Values"], Json::array({"admin", "Grüße"}));
  EXPECT_EQ(first["Version"], "_2014_07");
}

TEST_F(PageServiceProxiesTest, EscapesInAPayloadNeedStrictQuoting) {
  LaunchAndLogIn("catalogue.html");
  RefreshProxy proxy(instance_.get());
  RefreshMsg refresh;
  refresh.DeletedObjects.emplace_back("orders", R"(it's "7" in C:\temp a/b)", "Order");
  const std::string json = refresh.ToJsonString();
  ASSERT_EQ(json,
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [{"DBId": "orders", "ObjId": "it's \"7\" in C:\\temp a\/b", )"
            R"("ObjType": "Order"}], "PlainObjects": [], "ChildChangeObjects": [], )"
            R"("DataObjects": []})");

  // Compatible quoting: the page's script engine decodes the JSON escapes
  // \" \\ \/ of the host's text, and what arrives is no longer JSON.
  proxy.SendRefresh(refresh);
  EXPECT_EQ(Received("refresh").at(0),
            R"({"Version": "_2014_07", "CreatedObjects": [], "UpdatedObjects": [], )"
            R"("DeletedObjects": [{"DBId": "orders", "ObjId": "it's "7" in C:\temp a/b", )"
            R"("ObjType": "Order"}], "PlainObjects": [], "ChildChangeObjects": [], )"
            R"("DataObjects": []})");
  EXPECT_EQ(Eval("(() => { try { JSON.parse(JSON.parse(catalogue.received('refresh'))[0]); "
                 "return 'parsed'; } catch (e) { return e.name; } })()"),
            "SyntaxError");

  // Strict quoting: the page gets the host's text itself.
  instance_->SetScriptQuoting(ScriptQuoting::Strict);
  proxy.SendRefresh(refresh);
  EXPECT_EQ(Received("refresh").at(1), json);
  EXPECT_EQ(
      Eval("JSON.parse(JSON.parse(catalogue.received('refresh'))[1]).DeletedObjects[0].ObjId"),
      R"(it's "7" in C:\temp a/b)");
}

TEST_F(PageServiceProxiesTest, OpenLocationReachesThePage) {
  LaunchAndLogIn("catalogue.html");
  OpenLocationProxy proxy(instance_.get());
  ASSERT_TRUE(proxy.IsTargetServiceAvailable());
  const std::vector<core02::InteropObjRef> objects = {
      core02::InteropObjRef("orders", "42", "Order"),
      core02::InteropObjRef("orders", "43", "Order")};
  proxy.openLocation("inbox/today", objects);
  proxy.openLocation("", {});
  OpenLocationMsg expected;
  expected.location = "inbox/today";
  expected.OpenComponent = objects;
  // The host writes the slash as \/; the page's script engine reads that
  // escape, so the page gets a plain slash: other text, the same JSON value.
  ASSERT_EQ(expected.ToJsonString(),
            R"({"Version": "_2014_02", "location": "inbox\/today", "OpenComponent": )"
            R"([{"DBId": "orders", "ObjId": "42", "ObjType": "Order"}, )"
            R"({"DBId": "orders", "ObjId": "43", "ObjType": "Order"}]})");
  EXPECT_EQ(Received("openLocation"),
            (std::vector<std::string>{
                R"({"Version": "_2014_02", "location": "inbox/today", "OpenComponent": )"
                R"([{"DBId": "orders", "ObjId": "42", "ObjType": "Order"}, )"
                R"({"DBId": "orders", "ObjId": "43", "ObjType": "Order"}]})",
                OpenLocationMsg().ToJsonString()}));
  const Json first = Json::parse(Received("openLocation").at(0));
  EXPECT_EQ(first, Json::parse(expected.ToJsonString()));
  EXPECT_EQ(first["location"], "inbox/today");
  EXPECT_EQ(first["OpenComponent"][1]["ObjId"], "43");
  EXPECT_EQ(Json::parse(Received("openLocation").at(1)),
            (Json{{"location", ""}, {"OpenComponent", Json::array()}, {"Version", "_2014_02"}}));
}

TEST_F(PageServiceProxiesTest, ClientInfoComesFromThePage) {
  LaunchAndLogIn("catalogue.html");
  ClientInfoProxy proxy(instance_.get());
  ASSERT_TRUE(proxy.IsTargetServiceAvailable());
  EXPECT_EQ(proxy.GetClientInfo(),
            (std::map<std::string, std::string>{{"page", "catalogue"},
                                                {"greeting", "Grüße, it's \"here\""}}));
  // The request payload is the empty text, not a JSON object.
  EXPECT_EQ(Received("clientInfo"), std::vector<std::string>{""});
}

TEST_F(PageServiceProxiesTest, BothVersionTestProxiesReachTheirOwnVersion) {
  LaunchAndLogIn("catalogue.html");
  version02::TestVersionProxy proxy02(instance_.get());
  version03::TestVersionProxy01 proxy03(instance_.get());
  ASSERT_TRUE(proxy02.IsTargetServiceAvailable());
  ASSERT_TRUE(proxy03.IsTargetServiceAvailable());

  const version02::TestVersionResponseMsg response02 = proxy02.GetClientServiceVersion();
  EXPECT_EQ(response02.ServiceName, kVersionTestFqn);
  EXPECT_EQ(response02.ServiceVersion, "_2014_02");
  const version03::TestVersionResponseMsg response03 = proxy03.GetClientServiceVersion();
  EXPECT_EQ(response03.ServiceName, kVersionTestFqn);
  EXPECT_EQ(response03.ServiceVersion, "_2014_03");
  EXPECT_TRUE(response03.Result);

  // Each page handler got exactly its own version's request.
  const std::vector<std::string> got02 = Received("version02");
  const std::vector<std::string> got03 = Received("version03");
  ASSERT_EQ(got02.size(), 1u);
  ASSERT_EQ(got03.size(), 1u);
  EXPECT_EQ(Json::parse(got02[0]), (Json{{"ServiceName", kVersionTestFqn},
                                         {"ServiceVersion", "_2014_02"},
                                         {"Version", "_2014_02"}}));
  EXPECT_EQ(Json::parse(got03[0]), (Json{{"ServiceName", kVersionTestFqn},
                                         {"ServiceVersion", "_2014_03"},
                                         {"ExtraInfo", "Extra Info"},
                                         {"Version", "_2014_03"}}));
}

TEST_F(PageServiceProxiesTest, ServicesThePageDoesNotOfferAreUnavailable) {
  // services.html offers the version test service only in "_2014_03", and
  // none of refresh, open location and client information.
  LaunchAndLogIn("services.html");
  EXPECT_TRUE(version03::TestVersionProxy01(instance_.get()).IsTargetServiceAvailable());
  EXPECT_TRUE(SessionProxy(instance_.get()).IsTargetServiceAvailable());
  EXPECT_FALSE(version02::TestVersionProxy(instance_.get()).IsTargetServiceAvailable());
  EXPECT_FALSE(RefreshProxy(instance_.get()).IsTargetServiceAvailable());
  EXPECT_FALSE(OpenLocationProxy(instance_.get()).IsTargetServiceAvailable());
  ClientInfoProxy clientInfo(instance_.get());
  EXPECT_FALSE(clientInfo.IsTargetServiceAvailable());

  // Calling anyway: the page answers with its error record, which the
  // client-info proxy reports on one log line and the refresh proxy passes
  // on as a runtime error.
  std::map<std::string, std::string> info = {{"unchanged", "yes"}};
  std::string log;
  {
    StdoutCapture capture;
    info = clientInfo.GetClientInfo();
    log = capture.Text();
  }
  EXPECT_TRUE(info.empty());
  EXPECT_EQ(log, "Cannot call web content for GetClientInfo invocation.\n");
  try {
    RefreshProxy(instance_.get()).SendRefresh(RefreshMsg());
    ADD_FAILURE() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()),
              "Error No web service registered for: "
              "tavo.wevlin.infrastructure.services.refresh.Refresh.client ver: _2014_07");
  }
  EXPECT_EQ(instance_->GetContentState(), HostContentState::LoggedIn);
}

}  // namespace
