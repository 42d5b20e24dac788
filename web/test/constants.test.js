"use strict";

const test = require("node:test");
const assert = require("node:assert/strict");
const wevlin = require("../src/wevlin.js");

test("wire names of the standard services", () => {
  assert.deepEqual(
    { ...wevlin.WIRE_NAMES },
    {
      HOST_CONFIGURATION_HOST: "tavo.wevlin.infrastructure.services.core.HostConfiguration.host",
      STARTUP_NOTIFICATION_HOST: "tavo.wevlin.infrastructure.services.startup.StartupNotification.host",
      CLIENT_STATUS_HOST: "tavo.wevlin.infrastructure.services.core.ClientStatus.host",
      ASYNC_SOA_JSON_MESSAGE_HOST: "tavo.wevlin.infrastructure.services.soa.AsyncSoaJsonMessage.host",
      SOA_JSON_REQUEST_CLIENT: "tavo.wevlin.infrastructure.services.soa.SoaJsonRequest.client",
      HOST_SESSION_INFO_HOST: "tavo.wevlin.infrastructure.services.soa.HostSessionInfo.host",
      REQUEST_HOST_AUTH_HOST: "tavo.wevlin.infrastructure.services.soa.RequestHostAuth.host",
      REQUEST_HOST_AUTH_REPLY_CLIENT: "tavo.wevlin.infrastructure.services.soa.RequestHostAuthReply.client",
      SESSION_HOST: "tavo.wevlin.infrastructure.services.session.Session.host",
      SESSION_CLIENT: "tavo.wevlin.infrastructure.services.session.Session.client",
      REFRESH_HOST: "tavo.wevlin.infrastructure.services.refresh.Refresh.host",
      REFRESH_CLIENT: "tavo.wevlin.infrastructure.services.refresh.Refresh.client",
      TEST_VERSION: "tavo.wevlin.infrastructure.services.version.TestVersionSvc",
      LOGGER_FORWARD_HOST: "tavo.wevlin.infrastructure.services.LoggerForward.host",
      OPEN_LOCATION_CLIENT: "tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client",
      CLIENT_INFO_CLIENT: "tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client",
      GET_AVAILABLE_THEMES_CLIENT: "tavo.wevlin.infrastructure.services.theme.GetAvailableThemes.client",
      SET_THEME_CLIENT: "tavo.wevlin.infrastructure.services.theme.SetTheme.client",
    },
  );
});

test("versions of the standard services", () => {
  assert.deepEqual(Object.values(wevlin.VERSIONS), [
    "_2014_02",
    "_2014_03",
    "_2014_07",
    "_2015_10",
    "_2016_04",
  ]);
  for (const [key, value] of Object.entries(wevlin.VERSIONS)) assert.equal(key, value);
});

test("descriptors of the standard services pair each name with its version", () => {
  const rows = Object.entries(wevlin.SERVICES).map(([key, d]) => key + " " + d.fqn + " " + d.version);
  const prefix = "tavo.wevlin.infrastructure.services.";
  assert.deepEqual(rows, [
    "HOST_CONFIGURATION_2014_02 " + prefix + "core.HostConfiguration.host _2014_02",
    "HOST_CONFIGURATION_2014_07 " + prefix + "core.HostConfiguration.host _2014_07",
    "STARTUP_NOTIFICATION " + prefix + "startup.StartupNotification.host _2014_02",
    "CLIENT_STATUS " + prefix + "core.ClientStatus.host _2014_07",
    "ASYNC_SOA_JSON_MESSAGE " + prefix + "soa.AsyncSoaJsonMessage.host _2014_02",
    "HOST_SESSION_INFO " + prefix + "soa.HostSessionInfo.host _2014_02",
    "REQUEST_HOST_AUTH " + prefix + "soa.RequestHostAuth.host _2014_02",
    "SESSION_HOST " + prefix + "session.Session.host _2014_07",
    "SESSION_CLIENT " + prefix + "session.Session.client _2014_07",
    "REFRESH_HOST " + prefix + "refresh.Refresh.host _2014_07",
    "REFRESH_CLIENT " + prefix + "refresh.Refresh.client _2014_07",
    "TEST_VERSION_2014_02 " + prefix + "version.TestVersionSvc _2014_02",
    "TEST_VERSION_2014_03 " + prefix + "version.TestVersionSvc _2014_03",
    "LOGGER_FORWARD " + prefix + "LoggerForward.host _2014_02",
    "OPEN_LOCATION_CLIENT " + prefix + "openlocation.OpenLocation.client _2014_02",
    "CLIENT_INFO_CLIENT " + prefix + "clientinfo.ClientInfo.client _2014_07",
  ]);
  for (const descriptor of Object.values(wevlin.SERVICES)) assert.equal(Object.isFrozen(descriptor), true);
});

test("content states are numbered 0 to 7 and named", () => {
  assert.deepEqual(
    { ...wevlin.HostContentState },
    {
      NoContent: 0,
      Navigating: 1,
      Waiting: 2,
      TimedOut: 3,
      Initializing: 4,
      LoadedCanTalk: 5,
      LoadedNoTalk: 6,
      LoggedIn: 7,
    },
  );
  assert.deepEqual([0, 1, 2, 3, 4, 5, 6, 7, 8, -1, 2.5, "1"].map(wevlin.nameOfState), [
    "NoContent",
    "Navigating",
    "Waiting",
    "TimedOut",
    "Initializing",
    "LoadedCanTalk",
    "LoadedNoTalk",
    "LoggedIn",
    "Unknown",
    "Unknown",
    "Unknown",
    "Unknown",
  ]);
});

test("function names, actions and the record prefix", () => {
  assert.deepEqual(
    [...wevlin.PAGE_FUNCTION_NAMES],
    [
      "tavoInterop_Ping",
      "tavoInterop_HostServiceListUpdate",
      "tavoInterop_WebMethod",
      "tavoInterop_WebEvent",
      "tavoInterop_RequestWebServiceList",
    ],
  );
  assert.deepEqual(
    [...wevlin.HOST_FUNCTION_NAMES],
    [
      "tavoHostMethod",
      "tavoHostEvent",
      "tavoHostPing",
      "tavoHost_WebSideServiceListUpdate",
      "tavoHost_WebSideStartHandShake",
    ],
  );
  assert.deepEqual({ ...wevlin.LIST_ACTIONS }, { ADD: "Add", REPLACE: "Replace", REMOVE: "Remove" });
  assert.equal(wevlin.EXCEPTION_RECORD_PREFIX, '{"Exception');
  assert.equal(wevlin.EXCEPTION_RECORD_PREFIX.length, 11);
  assert.equal(wevlin.FRAMEWORK_VERSION, "0.9");
});
