// ES module entry point of wevlin. The implementation lives in wevlin.js, which
// also works as a classic script and as a CommonJS module: under Node (and
// bundlers) the import below yields its module.exports as the default export;
// in a browser, where a classic file has no exports, it defines
// globalThis.wevlin while it runs, and that object is re-exported instead.
import * as loaded from "./wevlin.js";

const wevlin =
  loaded.default !== undefined && typeof loaded.default.createPage === "function"
    ? loaded.default
    : globalThis.wevlin;

export default wevlin;

export const {
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
  escapeJsonString,
  formatJsonString,
  writeJson,
  readJson,
  normalizeDescriptor,
  descriptorToJson,
  serviceListToJson,
  parseDescriptor,
  parseServiceList,
  HostError,
  ReadyTimeoutError,
  ScriptError,
  formatExceptionRecord,
  errorToExceptionRecord,
  describeError,
  isExceptionRecord,
  readExceptionRecord,
  errorFromExceptionRecord,
  quoteScriptArgument,
  buildScriptLine,
  decodeScriptString,
  scriptArgumentRoundTrip,
  createBindingTransport,
  createHostObjectTransport,
  detectTransport,
  Page,
  createPage,
  MemoryHost,
  createMemoryHost,
} = wevlin;
