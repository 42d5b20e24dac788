// What a newcomer writes first, with nothing but the umbrella header: reading
// an exception record that came back from the page, filling a key/value
// message, and naming a standard service by its wire name. Each of these
// types lives in a header that the umbrella has to reach on its own.
#include "wevlin/wevlin.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace Interop = Com::Velmora::TAVO::Wevlin::Infrastructure::Interop;
namespace Services = Com::Velmora::TAVO::Wevlin::Infrastructure::Services;

TEST(UmbrellaHeaderTest, ReadsAnExceptionRecordBack) {
  const std::string record =
      Interop::JsonSerializationHelper::GetJsonForException(std::out_of_range("index 7"));
  EXPECT_EQ(record, R"({"Exception": {"name": "std::out_of_range", "message": "index 7"}})");

  Interop::ExceptionHolder holder;
  ASSERT_TRUE(holder.FromJsonString(record));
  EXPECT_EQ(holder.Exception.name, "std::out_of_range");
  EXPECT_EQ(holder.Exception.message, "index 7");
}

TEST(UmbrellaHeaderTest, WritesAnEmptyExceptionRecord) {
  const Interop::ExceptionInfo empty;
  EXPECT_EQ(empty.ToJsonString(), "null");
  const Interop::ExceptionHolder holder;
  EXPECT_EQ(holder.ToJsonString(), R"({"Exception": null})");
}

TEST(UmbrellaHeaderTest, FillsAKeyValueMessage) {
  Services::Core::_2014_07::BaseKeyValueMessage message;
  EXPECT_EQ(message.GetVersion(), "_2014_07");
  message.Data.emplace_back("theme", "dark");
  EXPECT_EQ(message.ToJsonString(),
            R"({"Version": "_2014_07", "Data": [{"Key": "theme", "Value": "dark"}]})");

  Services::Core::_2014_07::BaseKeyValueMessage read;
  ASSERT_TRUE(read.FromJsonString(
      R"({"Data":[{"Key":"a","Value":"1"},7,{"Key":"b","Value":"2"}],"Version":"_2014_07"})"));
  ASSERT_EQ(read.Data.size(), 2U);
  EXPECT_EQ(read.Data[0].Key, "a");
  EXPECT_EQ(read.Data[1].Value, "2");
}

TEST(UmbrellaHeaderTest, NamesStandardServicesByTheirWireNames) {
  EXPECT_STREQ(Services::ServiceNames::kHostConfigurationHost,
               "tavo.wevlin.infrastructure.services.core.HostConfiguration.host");
  EXPECT_STREQ(Services::ServiceVersions::k2014_02, "_2014_02");
  const Interop::DataServiceDescriptor descriptor(Services::ServiceNames::kSessionClient,
                                                  Services::ServiceVersions::k2014_07);
  EXPECT_EQ(descriptor.ToJsonString(),
            R"({"FQN": "tavo.wevlin.infrastructure.services.session.Session.client", )"
            R"("SvcVersion": "_2014_07"})");
  EXPECT_EQ(static_cast<int>(Interop::ScriptQuoting::Strict), 1);
}

}  // namespace
