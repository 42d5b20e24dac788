#include "support/StandardServiceHandlers.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/HostCleanup.h"
#include "wevlin/infrastructure/interop/HostManager.h"
#include "wevlin/infrastructure/interop/internal/HostManagerTestPeer.h"

namespace {

namespace interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
using wevlin_test::StandardServiceHandlers;

// What the callbacks below were answered, one line per answer.
std::vector<std::string> answers;

void SoaAnswered(void* context, std::string response, const interop::ExceptionInfo& error) {
  answers.push_back(std::string("soa ") + static_cast<const char*>(context) + " " + response + " " +
                    error.name);
}

void AuthAnswered(void* context, bool authenticated, const interop::ExceptionInfo& error) {
  answers.push_back(std::string("auth ") + static_cast<const char*>(context) + " " +
                    (authenticated ? "true" : "false") + " " + error.name);
}

void ForwardNowhere(const Com::Velmora::TAVO::Wevlin::Infrastructure::Services::Logging::_2014_02::
                        LoggerEntryMsg& /*entry*/) {}

interop::ExceptionInfo Error(const std::string& name) {
  interop::ExceptionInfo error;
  error.name = name;
  return error;
}

TEST(StandardServiceHandlersTest, AnswersTheOldestRequestFirst) {
  answers.clear();
  StandardServiceHandlers handlers;
  char first[] = "1";
  char second[] = "2";
  handlers.OnSoaJsonRequest("svc", "op", "{}", first, &SoaAnswered);
  handlers.OnSoaJsonRequest("svc", "op", "[]", second, &SoaAnswered);
  handlers.OnRequestHostAuth(first, &AuthAnswered);
  ASSERT_EQ(handlers.soaRequests.size(), 2u);
  EXPECT_EQ(handlers.soaRequests[1].message, "[]");

  EXPECT_TRUE(handlers.AnswerOldestSoa("a", Error("E")));
  EXPECT_TRUE(handlers.AnswerOldestAuth(true, Error("")));
  EXPECT_FALSE(handlers.AnswerOldestAuth(true, Error("")));
  EXPECT_TRUE(handlers.AnswerOldestSoa("b", Error("")));
  EXPECT_FALSE(handlers.AnswerOldestSoa("c", Error("")));
  EXPECT_EQ(answers, (std::vector<std::string>{"soa 1 a E", "auth 1 true ", "soa 2 b "}));
}

TEST(StandardServiceHandlersTest, AnswerAllAnswersEveryPendingRequestEmptyAndFalse) {
  answers.clear();
  StandardServiceHandlers handlers;
  char first[] = "1";
  char second[] = "2";
  handlers.OnRequestHostAuth(first, &AuthAnswered);
  handlers.OnSoaJsonRequest("svc", "op", "{}", first, &SoaAnswered);
  handlers.OnSoaJsonRequest("svc", "op", "{}", second, &SoaAnswered);
  handlers.AnswerAll();
  EXPECT_TRUE(handlers.soaRequests.empty());
  EXPECT_TRUE(handlers.authRequests.empty());
  EXPECT_EQ(answers, (std::vector<std::string>{"soa 1  ", "soa 2  ", "auth 1 false "}));
}

TEST(StandardServiceHandlersTest, RegistersTheTenStandardServicesInOrder) {
  interop::HostManager* previous = interop::internal::HostManagerTestPeer::InstallFresh();
  StandardServiceHandlers handlers;
  interop::HostManager* manager = interop::HostManager::TheInstance();
  handlers.RegisterStandardServices(manager, &ForwardNowhere);

  std::vector<std::string> registered;
  auto* known = manager->KnownServices();
  for (int i = 0; i < known->GetSize(); ++i) {
    registered.push_back(known->GetAt(i)->GetFQN() + " " + known->GetAt(i)->GetSvcVersion());
  }
  wevlin_test::RestoreHostManager(previous);

  const std::string prefix = "tavo.wevlin.infrastructure.services.";
  EXPECT_EQ(registered, (std::vector<std::string>{
                            prefix + "core.HostConfiguration.host _2014_02",
                            prefix + "core.HostConfiguration.host _2014_07",
                            prefix + "startup.StartupNotification.host _2014_02",
                            prefix + "core.ClientStatus.host _2014_07",
                            prefix + "soa.AsyncSoaJsonMessage.host _2014_02",
                            prefix + "soa.HostSessionInfo.host _2014_02",
                            prefix + "soa.RequestHostAuth.host _2014_02",
                            prefix + "session.Session.host _2014_07",
                            prefix + "refresh.Refresh.host _2014_07",
                            prefix + "LoggerForward.host _2014_02",
                        }));
}

}  // namespace
