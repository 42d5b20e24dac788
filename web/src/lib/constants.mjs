// Versions, names and constants: the names of the functions the host and the
// page call, the wire names and versions of the standard services, and the
// host's content states.

import { frozenDescriptor } from "./helpers.mjs";

/** Version of this package; it matches the native library's release. */
export const VERSION = "0.9.0";

/** Version text the host framework reports through its ping ("0.9"). */
export const FRAMEWORK_VERSION = "0.9";

/** Names of the five functions every hosted page defines for the host. */
export const PAGE_FUNCTIONS = Object.freeze({
  PING: "tavoInterop_Ping",
  HOST_SERVICE_LIST_UPDATE: "tavoInterop_HostServiceListUpdate",
  WEB_METHOD: "tavoInterop_WebMethod",
  WEB_EVENT: "tavoInterop_WebEvent",
  REQUEST_WEB_SERVICE_LIST: "tavoInterop_RequestWebServiceList",
});

/** Names of the five functions of the host API that the page calls. */
export const HOST_FUNCTIONS = Object.freeze({
  METHOD: "tavoHostMethod",
  EVENT: "tavoHostEvent",
  PING: "tavoHostPing",
  SERVICE_LIST_UPDATE: "tavoHost_WebSideServiceListUpdate",
  START_HANDSHAKE: "tavoHost_WebSideStartHandShake",
});

/** The five page function names as a list, in the order of PAGE_FUNCTIONS. */
export const PAGE_FUNCTION_NAMES = Object.freeze(Object.values(PAGE_FUNCTIONS));

/** The five host function names as a list, in the order of HOST_FUNCTIONS. */
export const HOST_FUNCTION_NAMES = Object.freeze(Object.values(HOST_FUNCTIONS));

/** Actions of a service-list update. The page accepts all three, in any letter case. */
export const LIST_ACTIONS = Object.freeze({ ADD: "Add", REPLACE: "Replace", REMOVE: "Remove" });

/** The opening characters by which both sides recognise an exception record. */
export const EXCEPTION_RECORD_PREFIX = '{"Exception';

const SERVICE_PREFIX = "tavo.wevlin.infrastructure.services.";

/** Wire names of the standard services. */
export const WIRE_NAMES = Object.freeze({
  HOST_CONFIGURATION_HOST: SERVICE_PREFIX + "core.HostConfiguration.host",
  STARTUP_NOTIFICATION_HOST: SERVICE_PREFIX + "startup.StartupNotification.host",
  CLIENT_STATUS_HOST: SERVICE_PREFIX + "core.ClientStatus.host",
  ASYNC_SOA_JSON_MESSAGE_HOST: SERVICE_PREFIX + "soa.AsyncSoaJsonMessage.host",
  SOA_JSON_REQUEST_CLIENT: SERVICE_PREFIX + "soa.SoaJsonRequest.client",
  HOST_SESSION_INFO_HOST: SERVICE_PREFIX + "soa.HostSessionInfo.host",
  REQUEST_HOST_AUTH_HOST: SERVICE_PREFIX + "soa.RequestHostAuth.host",
  REQUEST_HOST_AUTH_REPLY_CLIENT: SERVICE_PREFIX + "soa.RequestHostAuthReply.client",
  SESSION_HOST: SERVICE_PREFIX + "session.Session.host",
  SESSION_CLIENT: SERVICE_PREFIX + "session.Session.client",
  REFRESH_HOST: SERVICE_PREFIX + "refresh.Refresh.host",
  REFRESH_CLIENT: SERVICE_PREFIX + "refresh.Refresh.client",
  TEST_VERSION: SERVICE_PREFIX + "version.TestVersionSvc",
  LOGGER_FORWARD_HOST: SERVICE_PREFIX + "LoggerForward.host",
  OPEN_LOCATION_CLIENT: SERVICE_PREFIX + "openlocation.OpenLocation.client",
  CLIENT_INFO_CLIENT: SERVICE_PREFIX + "clientinfo.ClientInfo.client",
  GET_AVAILABLE_THEMES_CLIENT: SERVICE_PREFIX + "theme.GetAvailableThemes.client",
  SET_THEME_CLIENT: SERVICE_PREFIX + "theme.SetTheme.client",
});

/** Interface versions of the standard services. */
export const VERSIONS = Object.freeze({
  _2014_02: "_2014_02",
  _2014_03: "_2014_03",
  _2014_07: "_2014_07",
  _2015_10: "_2015_10",
  _2016_04: "_2016_04",
});

/** Descriptors ({fqn, version}) of the standard services that have a version. */
export const SERVICES = Object.freeze({
  HOST_CONFIGURATION_2014_02: frozenDescriptor(WIRE_NAMES.HOST_CONFIGURATION_HOST, "_2014_02"),
  HOST_CONFIGURATION_2014_07: frozenDescriptor(WIRE_NAMES.HOST_CONFIGURATION_HOST, "_2014_07"),
  STARTUP_NOTIFICATION: frozenDescriptor(WIRE_NAMES.STARTUP_NOTIFICATION_HOST, "_2014_02"),
  CLIENT_STATUS: frozenDescriptor(WIRE_NAMES.CLIENT_STATUS_HOST, "_2014_07"),
  ASYNC_SOA_JSON_MESSAGE: frozenDescriptor(WIRE_NAMES.ASYNC_SOA_JSON_MESSAGE_HOST, "_2014_02"),
  HOST_SESSION_INFO: frozenDescriptor(WIRE_NAMES.HOST_SESSION_INFO_HOST, "_2014_02"),
  REQUEST_HOST_AUTH: frozenDescriptor(WIRE_NAMES.REQUEST_HOST_AUTH_HOST, "_2014_02"),
  SESSION_HOST: frozenDescriptor(WIRE_NAMES.SESSION_HOST, "_2014_07"),
  SESSION_CLIENT: frozenDescriptor(WIRE_NAMES.SESSION_CLIENT, "_2014_07"),
  REFRESH_HOST: frozenDescriptor(WIRE_NAMES.REFRESH_HOST, "_2014_07"),
  REFRESH_CLIENT: frozenDescriptor(WIRE_NAMES.REFRESH_CLIENT, "_2014_07"),
  TEST_VERSION_2014_02: frozenDescriptor(WIRE_NAMES.TEST_VERSION, "_2014_02"),
  TEST_VERSION_2014_03: frozenDescriptor(WIRE_NAMES.TEST_VERSION, "_2014_03"),
  LOGGER_FORWARD: frozenDescriptor(WIRE_NAMES.LOGGER_FORWARD_HOST, "_2014_02"),
  OPEN_LOCATION_CLIENT: frozenDescriptor(WIRE_NAMES.OPEN_LOCATION_CLIENT, "_2014_02"),
  CLIENT_INFO_CLIENT: frozenDescriptor(WIRE_NAMES.CLIENT_INFO_CLIENT, "_2014_07"),
});

/** Content states of a host control, by name, numbered as the host numbers them. */
export const HostContentState = Object.freeze({
  NoContent: 0,
  Navigating: 1,
  Waiting: 2,
  TimedOut: 3,
  Initializing: 4,
  LoadedCanTalk: 5,
  LoadedNoTalk: 6,
  LoggedIn: 7,
});

/** Names of the content states, indexed by their number. */
export const CONTENT_STATE_NAMES = Object.freeze(Object.keys(HostContentState));

/** Returns the name of a content-state number, or "Unknown". */
export function nameOfState(state) {
  return Number.isInteger(state) && state >= 0 && state < CONTENT_STATE_NAMES.length
    ? CONTENT_STATE_NAMES[state]
    : "Unknown";
}
