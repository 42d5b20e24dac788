/*
 * wevlin page-side library.
 *
 * A page hosted by a wevlin host control talks to the native application in
 * two directions:
 *
 *  - The host calls the page by running one line of script that calls one of
 *    five global functions (tavoInterop_Ping, tavoInterop_HostServiceListUpdate,
 *    tavoInterop_WebMethod, tavoInterop_WebEvent,
 *    tavoInterop_RequestWebServiceList). Each must answer synchronously with a
 *    string, because the host takes the value of that one script evaluation.
 *    A `Page` provides these functions and dispatches to the page services
 *    registered on it.
 *  - The page calls the host through a transport, an object with the five
 *    host functions (tavoHostMethod, tavoHostEvent, tavoHostPing,
 *    tavoHost_WebSideServiceListUpdate, tavoHost_WebSideStartHandShake), each
 *    answering with a Promise of a string. A `Page` wraps them in a small
 *    Promise-based API and turns exception records into rejections.
 *
 * All text this library writes for the host follows the host's JSON format:
 * one line, ", " between items, a blank after each colon, strings escaped with
 * the eight two-character escapes the host reads back and nothing else (never
 * \u, which the host does not decode).
 *
 * The file works as a classic <script> (it defines globalThis.wevlin), as a
 * CommonJS module (module.exports) and, through wevlin.mjs, as an ES module.
 * It has no dependencies.
 */

// The API of the page library, in the order of the API object: this list is
// the one place that names the exports. `npm run build` generates
// src/wevlin.js and src/wevlin.mjs from it, and the tests check that the
// declarations in index.d.ts and index.d.mts name exactly these.

export {
  VERSION,
  FRAMEWORK_VERSION,
  PAGE_FUNCTIONS,
  HOST_FUNCTIONS,
  PAGE_FUNCTION_NAMES,
  HOST_FUNCTION_NAMES,
  LIST_ACTIONS,
  EXCEPTION_RECORD_PREFIX,
  WIRE_NAMES,
  VERSIONS,
  SERVICES,
  HostContentState,
  CONTENT_STATE_NAMES,
  nameOfState,
} from "./constants.mjs";
export { escapeJsonString, formatJsonString, writeJson, readJson } from "./json.mjs";
export {
  normalizeDescriptor,
  descriptorToJson,
  serviceListToJson,
  parseDescriptor,
  parseServiceList,
} from "./descriptors.mjs";
export {
  HostError,
  ReadyTimeoutError,
  ScriptError,
  formatExceptionRecord,
  errorToExceptionRecord,
  describeError,
  isExceptionRecord,
  readExceptionRecord,
  errorFromExceptionRecord,
} from "./records.mjs";
export {
  quoteScriptArgument,
  buildScriptLine,
  decodeScriptString,
  scriptArgumentRoundTrip,
} from "./script-lines.mjs";
export { createBindingTransport, createHostObjectTransport, detectTransport } from "./transports.mjs";
export { Page, createPage } from "./page.mjs";
