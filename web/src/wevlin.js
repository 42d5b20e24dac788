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
 * It has no dependencies and needs no build step.
 */
(function () {
  "use strict";

  // ---------------------------------------------------------------------------
  // Versions, names and constants
  // ---------------------------------------------------------------------------

  /** Version of this package; it matches the native library's release. */
  const VERSION = "0.9.0";

  /** Version text the host framework reports through its ping ("0.9"). */
  const FRAMEWORK_VERSION = "0.9";

  /** Names of the five functions every hosted page defines for the host. */
  const PAGE_FUNCTIONS = Object.freeze({
    PING: "tavoInterop_Ping",
    HOST_SERVICE_LIST_UPDATE: "tavoInterop_HostServiceListUpdate",
    WEB_METHOD: "tavoInterop_WebMethod",
    WEB_EVENT: "tavoInterop_WebEvent",
    REQUEST_WEB_SERVICE_LIST: "tavoInterop_RequestWebServiceList",
  });

  /** Names of the five functions of the host API that the page calls. */
  const HOST_FUNCTIONS = Object.freeze({
    METHOD: "tavoHostMethod",
    EVENT: "tavoHostEvent",
    PING: "tavoHostPing",
    SERVICE_LIST_UPDATE: "tavoHost_WebSideServiceListUpdate",
    START_HANDSHAKE: "tavoHost_WebSideStartHandShake",
  });

  /** The five page function names as a list, in the order of PAGE_FUNCTIONS. */
  const PAGE_FUNCTION_NAMES = Object.freeze(Object.values(PAGE_FUNCTIONS));

  /** The five host function names as a list, in the order of HOST_FUNCTIONS. */
  const HOST_FUNCTION_NAMES = Object.freeze(Object.values(HOST_FUNCTIONS));

  /** Actions of a service-list update. The page accepts all three, in any letter case. */
  const LIST_ACTIONS = Object.freeze({ ADD: "Add", REPLACE: "Replace", REMOVE: "Remove" });

  /** The opening characters by which both sides recognise an exception record. */
  const EXCEPTION_RECORD_PREFIX = '{"Exception';

  const SERVICE_PREFIX = "tavo.wevlin.infrastructure.services.";

  /** Wire names of the standard services. */
  const WIRE_NAMES = Object.freeze({
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
  const VERSIONS = Object.freeze({
    _2014_02: "_2014_02",
    _2014_03: "_2014_03",
    _2014_07: "_2014_07",
    _2015_10: "_2015_10",
    _2016_04: "_2016_04",
  });

  function frozenDescriptor(fqn, version) {
    return Object.freeze({ fqn, version });
  }

  /** Descriptors ({fqn, version}) of the standard services that have a version. */
  const SERVICES = Object.freeze({
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
  const HostContentState = Object.freeze({
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
  const CONTENT_STATE_NAMES = Object.freeze(Object.keys(HostContentState));

  /** Returns the name of a content-state number, or "Unknown". */
  function nameOfState(state) {
    return Number.isInteger(state) && state >= 0 && state < CONTENT_STATE_NAMES.length
      ? CONTENT_STATE_NAMES[state]
      : "Unknown";
  }

  // ---------------------------------------------------------------------------
  // Small helpers
  // ---------------------------------------------------------------------------

  // Lower-cases ASCII letters only, so that action names compare the way the
  // host compares them (byte-wise, ignoring the case of A-Z).
  function asciiLower(text) {
    return text.replace(/[A-Z]/g, (c) => String.fromCharCode(c.charCodeAt(0) + 32));
  }

  function isThenable(value) {
    return (
      ((typeof value === "object" && value !== null) || typeof value === "function") &&
      typeof value.then === "function"
    );
  }

  // A short description of a value for error messages.
  function describeValue(value) {
    if (value === null) return "null";
    if (Array.isArray(value)) return "an array";
    switch (typeof value) {
      case "undefined":
        return "undefined";
      case "string":
        return "a string";
      case "object":
        return "an object";
      default:
        return "a " + typeof value;
    }
  }

  // Services are kept in Maps keyed by this text; the length prefix keeps every
  // (fqn, version) pair distinct whatever characters the two texts hold.
  function serviceKey(fqn, version) {
    return fqn.length + ":" + fqn + version;
  }

  // ---------------------------------------------------------------------------
  // JSON in the host's format
  // ---------------------------------------------------------------------------

  const ESCAPES = Object.freeze({
    "\b": "\\b",
    "\t": "\\t",
    "\n": "\\n",
    "\f": "\\f",
    "\r": "\\r",
    '"': '\\"',
    "/": "\\/",
    "\\": "\\\\",
  });
  const ESCAPE_PATTERN = /[\b\t\n\f\r"/\\]/g;

  /**
   * Returns text with the eight characters the host escapes replaced by their
   * two-character escapes. Every other character, control characters included,
   * is copied unchanged.
   */
  function escapeJsonString(text) {
    return String(text).replace(ESCAPE_PATTERN, (c) => ESCAPES[c]);
  }

  /** Returns text as a quoted, escaped JSON string. */
  function formatJsonString(text) {
    return '"' + escapeJsonString(text) + '"';
  }

  function classOf(value) {
    return Object.prototype.toString.call(value);
  }

  function writeValue(value, key, seen) {
    if (
      ((typeof value === "object" && value !== null) || typeof value === "bigint") &&
      typeof value.toJSON === "function"
    ) {
      value = value.toJSON(key);
    }
    switch (typeof value) {
      case "string":
        return formatJsonString(value);
      case "number":
        return Number.isFinite(value) ? String(value) : "null";
      case "boolean":
        return value ? "true" : "false";
      case "bigint":
        throw new TypeError("Cannot write a BigInt as JSON");
      case "undefined":
      case "function":
      case "symbol":
        return undefined;
      default:
        break;
    }
    if (value === null) return "null";
    switch (classOf(value)) {
      case "[object Number]":
        return writeValue(Number(value), key, seen);
      case "[object String]":
        return formatJsonString(String(value));
      case "[object Boolean]":
        return value.valueOf() ? "true" : "false";
      default:
        break;
    }
    if (seen.has(value)) throw new TypeError("Cannot write a circular structure as JSON");
    seen.add(value);
    try {
      const parts = [];
      if (Array.isArray(value)) {
        for (let i = 0; i < value.length; i++) {
          const item = writeValue(value[i], String(i), seen);
          parts.push(item === undefined ? "null" : item);
        }
        return "[" + parts.join(", ") + "]";
      }
      for (const name of Object.keys(value)) {
        const item = writeValue(value[name], name, seen);
        if (item !== undefined) parts.push(formatJsonString(name) + ": " + item);
      }
      return "{" + parts.join(", ") + "}";
    } finally {
      seen.delete(value);
    }
  }

  /**
   * Returns the JSON text of value in the host's format. Values are walked as
   * JSON.stringify walks them (toJSON is honoured, undefined members are left
   * out, non-finite numbers become null); properties keep their order.
   * Throws TypeError for undefined, a function or a symbol at the top, for a
   * BigInt and for a circular structure.
   */
  function writeJson(value) {
    const text = writeValue(value, "", new Set());
    if (text === undefined) throw new TypeError("Cannot write " + describeValue(value) + " as JSON");
    return text;
  }

  const MAX_JSON_DEPTH = 512;
  const NUMBER_PATTERN = /-?(?:0|[1-9][0-9]*)(?:\.[0-9]+)?(?:[eE][+-]?[0-9]+)?/y;
  const HEX4_PATTERN = /^[0-9A-Fa-f]{4}$/;
  // Single-letter escapes for control characters, shared by JSON strings and
  // script string literals.
  const CONTROL_ESCAPES = Object.freeze({ b: "\b", f: "\f", n: "\n", r: "\r", t: "\t" });

  function jsonFailure(reader, what) {
    throw new SyntaxError("Invalid JSON at offset " + reader.pos + ": " + what);
  }

  // Between tokens every character up to the blank, and DEL, counts as white
  // space: the host trims control characters the same way.
  function skipBlanks(reader) {
    const text = reader.text;
    let pos = reader.pos;
    while (pos < text.length) {
      const c = text.charCodeAt(pos);
      if (c > 0x20 && c !== 0x7f) break;
      pos++;
    }
    reader.pos = pos;
  }

  function readStringToken(reader) {
    const text = reader.text;
    let pos = reader.pos + 1;
    let start = pos;
    let out = "";
    for (;;) {
      if (pos >= text.length) {
        reader.pos = pos;
        jsonFailure(reader, "unterminated string");
      }
      const c = text.charCodeAt(pos);
      if (c === 0x22) {
        reader.pos = pos + 1;
        return out + text.slice(start, pos);
      }
      if (c !== 0x5c) {
        pos++;
        continue;
      }
      out += text.slice(start, pos);
      const escape = text[pos + 1];
      switch (escape) {
        case '"':
        case "\\":
        case "/":
          out += escape;
          break;
        case "u": {
          const hex = text.slice(pos + 2, pos + 6);
          if (!HEX4_PATTERN.test(hex)) {
            reader.pos = pos;
            jsonFailure(reader, "invalid \\u escape");
          }
          out += String.fromCharCode(parseInt(hex, 16));
          pos += 6;
          start = pos;
          continue;
        }
        case undefined:
          reader.pos = pos;
          jsonFailure(reader, "unterminated string");
          break;
        default:
          if (Object.hasOwn(CONTROL_ESCAPES, escape)) {
            out += CONTROL_ESCAPES[escape];
            break;
          }
          reader.pos = pos;
          jsonFailure(reader, "invalid escape character");
      }
      pos += 2;
      start = pos;
    }
  }

  function readLiteral(reader, word, value) {
    if (reader.text.startsWith(word, reader.pos)) {
      reader.pos += word.length;
      return value;
    }
    return jsonFailure(reader, "unexpected character");
  }

  function readNumberToken(reader) {
    NUMBER_PATTERN.lastIndex = reader.pos;
    const match = NUMBER_PATTERN.exec(reader.text);
    if (match === null) jsonFailure(reader, "invalid number");
    reader.pos += match[0].length;
    return Number(match[0]);
  }

  function readArrayToken(reader, depth) {
    if (depth > MAX_JSON_DEPTH) jsonFailure(reader, "nesting too deep");
    const result = [];
    reader.pos++;
    skipBlanks(reader);
    if (reader.text[reader.pos] === "]") {
      reader.pos++;
      return result;
    }
    for (;;) {
      result.push(readValueToken(reader, depth));
      skipBlanks(reader);
      const c = reader.text[reader.pos];
      if (c === ",") {
        reader.pos++;
        skipBlanks(reader);
      } else if (c === "]") {
        reader.pos++;
        return result;
      } else {
        jsonFailure(reader, c === undefined ? "unexpected end of text" : "expected ',' or ']'");
      }
    }
  }

  function readObjectToken(reader, depth) {
    if (depth > MAX_JSON_DEPTH) jsonFailure(reader, "nesting too deep");
    // A prototype-free object: keys such as "__proto__" and "constructor" are
    // ordinary own properties and never reach Object.prototype.
    const result = Object.create(null);
    reader.pos++;
    skipBlanks(reader);
    if (reader.text[reader.pos] === "}") {
      reader.pos++;
      return result;
    }
    for (;;) {
      if (reader.text[reader.pos] !== '"') jsonFailure(reader, "expected a quoted property name");
      const name = readStringToken(reader);
      skipBlanks(reader);
      if (reader.text[reader.pos] !== ":") jsonFailure(reader, "expected ':'");
      reader.pos++;
      skipBlanks(reader);
      result[name] = readValueToken(reader, depth);
      skipBlanks(reader);
      const c = reader.text[reader.pos];
      if (c === ",") {
        reader.pos++;
        skipBlanks(reader);
      } else if (c === "}") {
        reader.pos++;
        return result;
      } else {
        jsonFailure(reader, c === undefined ? "unexpected end of text" : "expected ',' or '}'");
      }
    }
  }

  function readValueToken(reader, depth) {
    const c = reader.text[reader.pos];
    switch (c) {
      case '"':
        return readStringToken(reader);
      case "{":
        return readObjectToken(reader, depth + 1);
      case "[":
        return readArrayToken(reader, depth + 1);
      case "t":
        return readLiteral(reader, "true", true);
      case "f":
        return readLiteral(reader, "false", false);
      case "n":
        return readLiteral(reader, "null", null);
      case undefined:
        return jsonFailure(reader, "unexpected end of text");
      default:
        if (c === "-" || (c >= "0" && c <= "9")) return readNumberToken(reader);
        return jsonFailure(reader, "unexpected character");
    }
  }

  /**
   * Reads JSON text as the host writes it and returns the value. Besides
   * standard JSON it accepts raw control characters, inside strings and around
   * tokens, because the host copies every control character other than
   * backspace, tab, line feed, form feed and carriage return unescaped, and
   * because the narrow quoting of script arguments turns escapes such as \n
   * back into the raw character before the page sees the text. Objects are
   * created without a prototype. Throws SyntaxError for anything else,
   * including text after the value.
   */
  function readJson(text) {
    if (typeof text !== "string") {
      throw new TypeError("JSON text must be a string, not " + describeValue(text));
    }
    const reader = { text, pos: 0 };
    skipBlanks(reader);
    if (reader.pos >= text.length) jsonFailure(reader, "no value");
    const value = readValueToken(reader, 0);
    skipBlanks(reader);
    if (reader.pos < text.length) jsonFailure(reader, "unexpected text after the value");
    return value;
  }

  // ---------------------------------------------------------------------------
  // Service descriptors
  // ---------------------------------------------------------------------------

  /**
   * Returns {fqn, version} for a descriptor given as {fqn, version} or in the
   * wire spelling {FQN, SvcVersion}. Throws TypeError unless both are strings.
   */
  function normalizeDescriptor(descriptor) {
    if ((typeof descriptor !== "object" && typeof descriptor !== "function") || descriptor === null) {
      throw new TypeError("A service descriptor must be an object, not " + describeValue(descriptor));
    }
    const fqn = descriptor.fqn !== undefined ? descriptor.fqn : descriptor.FQN;
    const version = descriptor.version !== undefined ? descriptor.version : descriptor.SvcVersion;
    if (typeof fqn !== "string" || typeof version !== "string") {
      throw new TypeError("A service descriptor needs the strings fqn and version (or FQN and SvcVersion)");
    }
    return { fqn, version };
  }

  /** Returns the wire JSON of one descriptor: {"FQN": "...", "SvcVersion": "..."}. */
  function descriptorToJson(descriptor) {
    const { fqn, version } = normalizeDescriptor(descriptor);
    return '{"FQN": ' + formatJsonString(fqn) + ', "SvcVersion": ' + formatJsonString(version) + "}";
  }

  /** Returns the wire JSON of a list of descriptors; [] when the list is empty. */
  function serviceListToJson(descriptors) {
    const parts = [];
    for (const descriptor of descriptors) parts.push(descriptorToJson(descriptor));
    return "[" + parts.join(", ") + "]";
  }

  function descriptorField(object, key, where) {
    const value = object[key];
    if (value === undefined) return "";
    if (typeof value !== "string") {
      throw new TypeError(where + ' field "' + key + '" must be a string, not ' + describeValue(value));
    }
    return value;
  }

  function descriptorFromValue(value, where) {
    if (typeof value !== "object" || value === null || Array.isArray(value)) {
      throw new TypeError(where + " must be a JSON object, not " + describeValue(value));
    }
    // A missing field reads as the empty text, as on the host.
    return {
      fqn: descriptorField(value, "FQN", where),
      version: descriptorField(value, "SvcVersion", where),
    };
  }

  /**
   * Reads the JSON of one service descriptor and returns {fqn, version}.
   * A missing "FQN" or "SvcVersion" reads as "". Throws SyntaxError for text
   * that is not JSON and TypeError for a value of the wrong shape.
   */
  function parseDescriptor(json) {
    return descriptorFromValue(readJson(json), "A service descriptor");
  }

  /**
   * Reads the JSON of a list of service descriptors and returns an array of
   * {fqn, version}. Throws SyntaxError or TypeError as parseDescriptor does;
   * the whole list is rejected when one entry is bad.
   */
  function parseServiceList(json) {
    const value = readJson(json);
    if (!Array.isArray(value)) {
      throw new TypeError("A service list must be a JSON array, not " + describeValue(value));
    }
    return value.map((entry, index) => descriptorFromValue(entry, "Service list entry " + index));
  }

  // ---------------------------------------------------------------------------
  // Exception records
  // ---------------------------------------------------------------------------

  /**
   * An error reported by the other side as an exception record. Its name is
   * the record's "name" (for example "std::invalid_argument"), its message the
   * record's "message", and `record` holds the record text itself.
   */
  class HostError extends Error {
    constructor(name, message, record) {
      super(message === undefined || message === null ? "" : String(message));
      Object.defineProperty(this, "name", {
        value: typeof name === "string" && name !== "" ? name : "HostError",
        writable: true,
        configurable: true,
      });
      this.record = typeof record === "string" ? record : formatExceptionRecord(this.name, this.message);
    }
  }

  /** Rejection of a call that waited for the host's readiness longer than allowed. */
  class ReadyTimeoutError extends Error {
    constructor(timeoutMs) {
      super("The host did not become ready within " + timeoutMs + " ms");
      Object.defineProperty(this, "name", {
        value: "ReadyTimeoutError",
        writable: true,
        configurable: true,
      });
      this.timeoutMs = timeoutMs;
    }
  }

  /**
   * A failure of the script that the host ran in the page: the in-memory host
   * throws it where a real host control reports a script failure.
   */
  class ScriptError extends Error {
    constructor(message, details) {
      super(message);
      Object.defineProperty(this, "name", { value: "ScriptError", writable: true, configurable: true });
      this.details = details === undefined ? "" : String(details);
    }
  }

  /** Returns the exception record text for a name and a message. */
  function formatExceptionRecord(name, message) {
    return (
      '{"Exception": {"name": ' + formatJsonString(name) + ', "message": ' + formatJsonString(message) + "}}"
    );
  }

  /**
   * Returns {name, message} of anything thrown: an object's own string name
   * (or "Error" when it has none) and its message, or for a thrown primitive
   * the name "Error" and the primitive as text. Never throws.
   */
  function describeError(thrown) {
    let name = "Error";
    let message = "";
    if ((typeof thrown === "object" && thrown !== null) || typeof thrown === "function") {
      try {
        const value = thrown.name;
        if (typeof value === "string" && value !== "") name = value;
      } catch {
        // A throwing getter leaves the default name.
      }
      try {
        const value = thrown.message;
        if (value !== undefined && value !== null) message = String(value);
      } catch {
        // A throwing getter leaves the message empty.
      }
    } else {
      try {
        message = String(thrown);
      } catch {
        message = "";
      }
    }
    return { name, message };
  }

  /** Returns the exception record text describing anything thrown. */
  function errorToExceptionRecord(thrown) {
    const { name, message } = describeError(thrown);
    return formatExceptionRecord(name, message);
  }

  /** Returns true when text begins with the exception-record prefix {"Exception. */
  function isExceptionRecord(text) {
    return typeof text === "string" && text.startsWith(EXCEPTION_RECORD_PREFIX);
  }

  function recordField(value) {
    if (value === undefined || value === null) return "";
    if (typeof value === "string") return value;
    return writeJson(value);
  }

  /**
   * Returns {name, message} read from an exception record, or null when text
   * is not one. A record that cannot be read gives two empty texts.
   */
  function readExceptionRecord(text) {
    if (!isExceptionRecord(text)) return null;
    let name = "";
    let message = "";
    try {
      const document = readJson(text);
      const info = document.Exception;
      if (typeof info === "object" && info !== null && !Array.isArray(info)) {
        name = recordField(info.name);
        message = recordField(info.message);
      }
    } catch {
      name = "";
      message = "";
    }
    return { name, message };
  }

  /**
   * Returns the HostError for an exception record. A record that names
   * nothing becomes an Error-named HostError whose message is
   * "Could not decipher host error: " followed by the record.
   */
  function errorFromExceptionRecord(text) {
    const info = readExceptionRecord(text) || { name: "", message: "" };
    if (info.name === "" && info.message === "") {
      return new HostError("Error", "Could not decipher host error: " + text, text);
    }
    return new HostError(info.name === "" ? "Error" : info.name, info.message, text);
  }

  // ---------------------------------------------------------------------------
  // Script lines, as the host writes them
  // ---------------------------------------------------------------------------

  /**
   * Returns text quoted the way the host quotes a script argument: a backslash
   * before every single quote and nothing else.
   */
  function quoteScriptArgument(text) {
    return String(text).replace(/'/g, "\\'");
  }

  /**
   * Returns the line of script by which the host calls a page function, e.g.
   * tavoInterop_WebMethod('{"FQN": ...}','payload');
   */
  function buildScriptLine(name, args) {
    const list = args === undefined ? [] : Array.from(args);
    if (list.length === 0) return name + "();";
    return name + "('" + list.map(quoteScriptArgument).join("','") + "');";
  }

  const OCTAL_DIGIT = /[0-7]/;

  function scriptStringFailure(message) {
    throw new SyntaxError(message);
  }

  /**
   * Returns the string value of the body of a single-quoted script string
   * literal (the text between the quotes), decoded as a non-strict script
   * decodes it. Throws SyntaxError where the script would not parse: a raw
   * line feed or carriage return, an unescaped single quote (the literal
   * would end early), a bad \x or \u escape, or a final lone backslash.
   */
  function decodeScriptString(body) {
    const text = String(body);
    let out = "";
    let start = 0;
    let pos = 0;
    while (pos < text.length) {
      const c = text[pos];
      if (c === "'") {
        scriptStringFailure("An unescaped single quote at offset " + pos + " ends the script string early");
      }
      if (c === "\n" || c === "\r") {
        scriptStringFailure("A raw line break at offset " + pos + " is not allowed in a script string");
      }
      if (c !== "\\") {
        pos++;
        continue;
      }
      out += text.slice(start, pos);
      const escape = text[pos + 1];
      let length = 2;
      switch (escape) {
        case undefined:
          scriptStringFailure("A backslash at the end of a script string escapes its closing quote");
          break;
        case "v":
          out += "\v";
          break;
        case "\n":
        case "\u2028":
        case "\u2029":
          break; // line continuation
        case "\r":
          length = text[pos + 2] === "\n" ? 3 : 2;
          break;
        case "x": {
          const hex = text.slice(pos + 2, pos + 4);
          if (!/^[0-9A-Fa-f]{2}$/.test(hex)) scriptStringFailure("Invalid hexadecimal escape sequence");
          out += String.fromCharCode(parseInt(hex, 16));
          length = 4;
          break;
        }
        case "u": {
          if (text[pos + 2] === "{") {
            const end = text.indexOf("}", pos + 3);
            const hex = end < 0 ? "" : text.slice(pos + 3, end);
            const code = /^[0-9A-Fa-f]+$/.test(hex) ? parseInt(hex, 16) : -1;
            if (code < 0 || code > 0x10ffff) scriptStringFailure("Invalid Unicode escape sequence");
            out += String.fromCodePoint(code);
            length = end + 1 - pos;
          } else {
            const hex = text.slice(pos + 2, pos + 6);
            if (!HEX4_PATTERN.test(hex)) scriptStringFailure("Invalid Unicode escape sequence");
            out += String.fromCharCode(parseInt(hex, 16));
            length = 6;
          }
          break;
        }
        default:
          if (Object.hasOwn(CONTROL_ESCAPES, escape)) {
            out += CONTROL_ESCAPES[escape];
          } else if (escape >= "0" && escape <= "7") {
            // Legacy octal escapes: up to three digits from 0-3, two from 4-7.
            const maxDigits = escape <= "3" ? 3 : 2;
            let digits = 1;
            while (digits < maxDigits && OCTAL_DIGIT.test(text[pos + 1 + digits] || "")) digits++;
            out += String.fromCharCode(parseInt(text.slice(pos + 1, pos + 1 + digits), 8));
            length = 1 + digits;
          } else {
            out += escape; // \' \" \\ \8 \9 and any other character stand for themselves
          }
      }
      pos += length;
      start = pos;
    }
    return out + text.slice(start);
  }

  /**
   * Returns the string a page function receives when the host sends text as a
   * script argument: the text quoted by the host's rule, then decoded as the
   * script string literal. Throws SyntaxError where that script would not
   * parse.
   */
  function scriptArgumentRoundTrip(text) {
    return decodeScriptString(quoteScriptArgument(text));
  }

  // ---------------------------------------------------------------------------
  // Transports
  // ---------------------------------------------------------------------------

  async function callHostFunction(target, name, args, what) {
    if ((typeof target !== "object" && typeof target !== "function") || target === null) {
      throw new Error(what + " is not available");
    }
    const fn = target[name];
    if (typeof fn !== "function") throw new TypeError(what + " has no function " + name);
    const reply = await fn.apply(target, args);
    if (typeof reply !== "string") {
      throw new TypeError(
        "The host function " + name + " answered with " + describeValue(reply) + " instead of a string",
      );
    }
    return reply;
  }

  function makeTransport(kind, resolveTarget, what) {
    const transport = { kind };
    for (const name of HOST_FUNCTION_NAMES) {
      transport[name] = (...args) => {
        let target;
        try {
          target = resolveTarget();
        } catch (error) {
          return Promise.reject(error);
        }
        return callHostFunction(target, name, args, what);
      };
    }
    return Object.freeze(transport);
  }

  function checkHostObject(host, what) {
    if ((typeof host !== "object" && typeof host !== "function") || host === null) {
      throw new TypeError(what + " must be an object, not " + describeValue(host));
    }
  }

  /**
   * Returns a transport over a binding whose five host functions answer with
   * Promises of strings: the object the wevlin host control injects as
   * globalThis.wevlinHost. Without an argument globalThis.wevlinHost is looked
   * up at each call, so the transport may be made before the binding exists.
   */
  function createBindingTransport(binding) {
    if (binding === undefined) {
      return makeTransport("binding", () => globalThis.wevlinHost, "globalThis.wevlinHost");
    }
    checkHostObject(binding, "The host binding");
    return makeTransport("binding", () => binding, "The host binding");
  }

  /**
   * Returns a transport over a host object whose five host functions answer
   * with strings directly. The call reaches the host at once; the transport
   * still answers with Promises, like every transport.
   */
  function createHostObjectTransport(hostObject) {
    checkHostObject(hostObject, "The host object");
    return makeTransport("hostObject", () => hostObject, "The host object");
  }

  /**
   * Returns the binding transport over globalThis.wevlinHost when the page
   * runs inside a wevlin host control that defines it, else null.
   */
  function detectTransport(scope) {
    const root = scope === undefined ? globalThis : scope;
    const binding = root === null || root === undefined ? undefined : root.wevlinHost;
    if ((typeof binding === "object" || typeof binding === "function") && binding !== null) {
      return createBindingTransport(binding);
    }
    return null;
  }

  // ---------------------------------------------------------------------------
  // The page
  // ---------------------------------------------------------------------------

  function checkServiceName(value, what) {
    if (typeof value !== "string" || value === "") {
      throw new TypeError("The service " + what + " must be a non-empty string");
    }
  }

  function checkTimeout(value, what) {
    if (value === undefined || value === null) return undefined;
    if (typeof value !== "number" || !(value >= 0) || value === Infinity) {
      throw new TypeError(what + " must be a finite number of milliseconds, not " + describeValue(value));
    }
    return value;
  }

  function payloadText(payload) {
    if (payload === undefined || payload === null) return "";
    if (typeof payload === "string") return payload;
    return writeJson(payload);
  }

  const STARTUP_KEY = serviceKey(SERVICES.STARTUP_NOTIFICATION.fqn, SERVICES.STARTUP_NOTIFICATION.version);
  const EVENT_TYPES = Object.freeze(["ready", "hostservices", "error"]);

  /**
   * The page side of one hosted page: the page services it offers, the host
   * services the host announced, the host's readiness, and the calls into the
   * host. Create one with createPage() and call install() to define the five
   * global functions the host calls.
   *
   * Everything runs on the page's script thread; the host calls the page
   * functions synchronously, possibly while a call of the page into the host
   * is still under way.
   */
  class Page {
    #version;
    #transport;
    #autoTransport = null;
    #defaults;
    #services = new Map();
    #hostServices = new Map();
    #hostVersion = null;
    #ready = false;
    #waiters = new Set();
    #listeners = new Map();
    #installedOn = null;
    #disposed = false;
    #functions;

    /**
     * Makes a page. Options, all optional:
     *  - transport: how to reach the host; when omitted or null, the binding
     *    transport over globalThis.wevlinHost, detected at the first call;
     *  - version: the text answered to the host's ping (FRAMEWORK_VERSION);
     *  - waitForReady: whether calls into the host wait for readiness (false);
     *  - readyTimeoutMs: the default limit of that wait (none);
     *  - onError: an "error" listener (see on()).
     */
    constructor(options) {
      const settings = options === undefined || options === null ? {} : options;
      const version = settings.version === undefined ? FRAMEWORK_VERSION : settings.version;
      if (typeof version !== "string") throw new TypeError("The page version must be a string");
      const transport = settings.transport === undefined ? null : settings.transport;
      if (transport !== null) checkHostObject(transport, "The transport");
      this.#version = version;
      this.#transport = transport;
      this.#defaults = Object.freeze({
        waitForReady: settings.waitForReady === true,
        readyTimeoutMs: checkTimeout(settings.readyTimeoutMs, "readyTimeoutMs"),
      });
      for (const type of EVENT_TYPES) this.#listeners.set(type, new Set());
      if (settings.onError !== undefined) this.on("error", settings.onError);
      this.#functions = Object.freeze({
        [PAGE_FUNCTIONS.PING]: (hostVersion) => this.#guard(() => this.#onPing(hostVersion)),
        [PAGE_FUNCTIONS.HOST_SERVICE_LIST_UPDATE]: (action, listJson) =>
          this.#guard(() => this.#onHostServiceListUpdate(action, listJson)),
        [PAGE_FUNCTIONS.WEB_METHOD]: (descriptorJson, payload) =>
          this.#guard(() => this.#onWebMethod(descriptorJson, payload)),
        [PAGE_FUNCTIONS.WEB_EVENT]: (descriptorJson, payload) =>
          this.#guard(() => this.#onWebEvent(descriptorJson, payload)),
        [PAGE_FUNCTIONS.REQUEST_WEB_SERVICE_LIST]: () => this.#guard(() => this.#onRequestWebServiceList()),
      });
    }

    /** The version text this page returns to the host's ping. */
    get version() {
      return this.#version;
    }

    /** The host's version text from its last ping of the page or the page's ping of it, or null. */
    get hostVersion() {
      return this.#hostVersion;
    }

    /** The transport given to createPage(), or the one detected from globalThis.wevlinHost, or null. */
    get transport() {
      return this.#currentTransport();
    }

    /** The five page functions, by name, bound to this page. install() defines these. */
    get functions() {
      return this.#functions;
    }

    /** True while the five functions are installed. */
    get installed() {
      return this.#installedOn !== null;
    }

    // --- Page services ------------------------------------------------------

    /**
     * Registers a page service under exactly this FQN and version, replacing
     * an earlier registration of the same pair (which keeps its place in the
     * list). handlers.method(payload, context) answers method calls with a
     * string; handlers.event(payload, context) receives events. Returns a
     * function that unregisters this registration.
     */
    register(fqn, version, handlers) {
      checkServiceName(fqn, "FQN");
      checkServiceName(version, "version");
      if (typeof handlers !== "object" || handlers === null) {
        throw new TypeError("The handlers must be an object with a method or an event function");
      }
      const method = handlers.method;
      const event = handlers.event;
      if (method !== undefined && typeof method !== "function") {
        throw new TypeError("handlers.method must be a function");
      }
      if (event !== undefined && typeof event !== "function") {
        throw new TypeError("handlers.event must be a function");
      }
      if (method === undefined && event === undefined) {
        throw new TypeError("The handlers must be an object with a method or an event function");
      }
      const entry = Object.freeze({
        fqn,
        version,
        method,
        event,
        context: Object.freeze({ fqn, version, page: this }),
      });
      const key = serviceKey(fqn, version);
      this.#services.set(key, entry);
      return () => {
        if (this.#services.get(key) !== entry) return false;
        this.#services.delete(key);
        return true;
      };
    }

    /** Unregisters the page service of exactly this FQN and version; returns whether one was registered. */
    unregister(fqn, version) {
      if (typeof fqn !== "string" || typeof version !== "string") return false;
      return this.#services.delete(serviceKey(fqn, version));
    }

    /** Returns the page services as [{fqn, version}], in registration order. */
    services() {
      return Array.from(this.#services.values(), (entry) => frozenDescriptor(entry.fqn, entry.version));
    }

    /** Returns the host services the host announced, as [{fqn, version}], in the order received. */
    hostServices() {
      return Array.from(this.#hostServices.values());
    }

    /** Returns true when the host announced the service of exactly this descriptor. */
    hasHostService(descriptor) {
      const { fqn, version } = normalizeDescriptor(descriptor);
      return this.#hostServices.has(serviceKey(fqn, version));
    }

    // --- Installation -------------------------------------------------------

    /**
     * Defines the five page functions as properties of target (globalThis by
     * default) so that the host's script lines reach this page. Installing
     * again on the same target does nothing. Throws Error when the page is
     * installed elsewhere, when one of the names is already defined on the
     * target, or when the page was disposed.
     */
    install(target) {
      const scope = target === undefined ? globalThis : target;
      checkHostObject(scope, "The install target");
      if (this.#disposed) throw new Error("The page was disposed");
      if (this.#installedOn === scope) return this;
      if (this.#installedOn !== null) {
        throw new Error("The page is already installed on another object; uninstall it first");
      }
      for (const name of PAGE_FUNCTION_NAMES) {
        if (scope[name] !== undefined) {
          throw new Error(name + " is already defined; uninstall the page that defined it first");
        }
      }
      for (const name of PAGE_FUNCTION_NAMES) {
        Object.defineProperty(scope, name, {
          value: this.#functions[name],
          writable: true,
          configurable: true,
          enumerable: false,
        });
      }
      this.#installedOn = scope;
      return this;
    }

    /** Removes the page functions that install() defined and that are still this page's. Returns whether the page was installed. */
    uninstall() {
      const scope = this.#installedOn;
      if (scope === null) return false;
      for (const name of PAGE_FUNCTION_NAMES) {
        if (scope[name] === this.#functions[name]) delete scope[name];
      }
      this.#installedOn = null;
      return true;
    }

    /**
     * Uninstalls the page, rejects everything waiting for readiness and makes
     * every later call into the host reject. Page functions still held by
     * someone keep answering.
     */
    dispose() {
      if (this.#disposed) return;
      this.uninstall();
      this.#disposed = true;
      this.#rejectWaiters(new Error("The page was disposed"));
    }

    // --- Readiness ----------------------------------------------------------

    /** Returns true once the host announced the end of the handshake with the startup notification. */
    isReady() {
      return this.#ready;
    }

    /**
     * Returns a Promise that resolves when the host is ready (at once when it
     * is). With options.timeoutMs it rejects with ReadyTimeoutError when the
     * host is not ready in time.
     */
    whenReady(options) {
      let timeoutMs;
      try {
        timeoutMs = checkTimeout(
          options === undefined || options === null ? undefined : options.timeoutMs,
          "timeoutMs",
        );
      } catch (error) {
        return Promise.reject(error);
      }
      if (this.#disposed) return Promise.reject(new Error("The page was disposed"));
      if (this.#ready) return Promise.resolve();
      return new Promise((resolve, reject) => {
        const waiter = { resolve, reject, timer: null };
        if (timeoutMs !== undefined) {
          waiter.timer = globalThis.setTimeout(() => {
            this.#waiters.delete(waiter);
            reject(new ReadyTimeoutError(timeoutMs));
          }, timeoutMs);
        }
        this.#waiters.add(waiter);
      });
    }

    /**
     * Adds a listener: "ready" (no argument) when the host becomes ready,
     * "hostservices" (the new host service list) when it changes, "error"
     * (error, context) for failures the host cannot be told about. Returns a
     * function that removes the listener.
     */
    on(type, listener) {
      const set = this.#listeners.get(type);
      if (set === undefined) throw new TypeError("Unknown event type: " + String(type));
      if (typeof listener !== "function") throw new TypeError("The listener must be a function");
      const entry = { listener };
      set.add(entry);
      return () => set.delete(entry);
    }

    // --- Calls into the host ------------------------------------------------

    /**
     * Calls a host service method and resolves with its reply text. Rejects
     * with HostError when the host answers with an exception record. payload
     * is sent as it is when it is a string; undefined and null send "", other
     * values their JSON. options.waitForReady and options.readyTimeoutMs
     * override the page's defaults.
     */
    async invokeMethod(descriptor, payload, options) {
      const target = normalizeDescriptor(descriptor);
      const text = payloadText(payload);
      const waiting = this.#readiness(options);
      if (waiting !== null) await waiting;
      const reply = await this.#call(HOST_FUNCTIONS.METHOD, [descriptorToJson(target), text]);
      if (isExceptionRecord(reply)) throw errorFromExceptionRecord(reply);
      return reply;
    }

    /** Raises a host service event; resolves when the host took it, rejects like invokeMethod. */
    async raiseEvent(descriptor, payload, options) {
      const target = normalizeDescriptor(descriptor);
      const text = payloadText(payload);
      const waiting = this.#readiness(options);
      if (waiting !== null) await waiting;
      const reply = await this.#call(HOST_FUNCTIONS.EVENT, [descriptorToJson(target), text]);
      if (isExceptionRecord(reply)) throw errorFromExceptionRecord(reply);
    }

    /**
     * Sends the page's startup notification (the host event of the startup
     * notification service, empty payload), which moves the host control to
     * its logged-in state.
     */
    sendStartupNotification(options) {
      return this.raiseEvent(SERVICES.STARTUP_NOTIFICATION, "", options);
    }

    /** Pings the host and resolves with its version text. */
    async ping() {
      const reply = await this.#call(HOST_FUNCTIONS.PING, []);
      this.#hostVersion = reply;
      return reply;
    }

    /**
     * Asks the host to start the handshake. The page is no longer ready until
     * the host's startup notification arrives again.
     */
    async startHandshake() {
      this.#ready = false;
      const reply = await this.#call(HOST_FUNCTIONS.START_HANDSHAKE, []);
      if (isExceptionRecord(reply)) throw errorFromExceptionRecord(reply);
    }

    /** Sends the page's service list to the host, replacing what the host knew. */
    async announceServices() {
      const list = serviceListToJson(this.services());
      const reply = await this.#call(HOST_FUNCTIONS.SERVICE_LIST_UPDATE, [LIST_ACTIONS.REPLACE, list]);
      if (isExceptionRecord(reply)) throw errorFromExceptionRecord(reply);
    }

    // --- Internals ----------------------------------------------------------

    #currentTransport() {
      if (this.#transport !== null) return this.#transport;
      if (this.#autoTransport === null) this.#autoTransport = detectTransport();
      return this.#autoTransport;
    }

    async #call(name, args) {
      if (this.#disposed) throw new Error("The page was disposed");
      const transport = this.#currentTransport();
      if (transport === null) {
        throw new Error(
          "No host transport: pass one to createPage() or run the page in a host control that defines globalThis.wevlinHost",
        );
      }
      return callHostFunction(transport, name, args, "The transport");
    }

    // Returns null when the call may go at once, else a Promise of readiness.
    #readiness(options) {
      const settings = options === undefined || options === null ? {} : options;
      const wait =
        settings.waitForReady === undefined ? this.#defaults.waitForReady : settings.waitForReady === true;
      if (!wait || this.#ready) return null;
      const timeoutMs =
        settings.readyTimeoutMs === undefined ? this.#defaults.readyTimeoutMs : settings.readyTimeoutMs;
      return this.whenReady({ timeoutMs });
    }

    #setReady() {
      if (this.#ready) return;
      this.#ready = true;
      const waiters = Array.from(this.#waiters);
      this.#waiters.clear();
      for (const waiter of waiters) {
        if (waiter.timer !== null) globalThis.clearTimeout(waiter.timer);
        waiter.resolve();
      }
      this.#emit("ready", []);
    }

    #rejectWaiters(error) {
      const waiters = Array.from(this.#waiters);
      this.#waiters.clear();
      for (const waiter of waiters) {
        if (waiter.timer !== null) globalThis.clearTimeout(waiter.timer);
        waiter.reject(error);
      }
    }

    #emit(type, args) {
      const set = this.#listeners.get(type);
      for (const entry of Array.from(set)) {
        try {
          entry.listener(...args);
        } catch (error) {
          if (type !== "error") this.#report(error, { kind: "listener", type });
        }
      }
    }

    // Reports a failure that cannot travel to the host: to the "error"
    // listeners, or to the console when there are none.
    #report(error, context) {
      if (this.#listeners.get("error").size > 0) {
        this.#emit("error", [error, Object.freeze(context)]);
        return;
      }
      const console = globalThis.console;
      if (console !== undefined && typeof console.error === "function") console.error("wevlin:", error);
    }

    // Runs one page function: whatever happens, the host gets a string.
    #guard(body) {
      try {
        return body();
      } catch (error) {
        return errorToExceptionRecord(error);
      }
    }

    #onPing(hostVersion) {
      this.#hostVersion = hostVersion === undefined || hostVersion === null ? "" : String(hostVersion);
      return this.#version;
    }

    #onHostServiceListUpdate(action, listJson) {
      const verb = typeof action === "string" ? asciiLower(action) : "";
      if (verb !== "add" && verb !== "replace" && verb !== "remove") {
        throw new Error("Unknown service list action: " + String(action));
      }
      if (typeof listJson !== "string") throw new TypeError("The service list must be JSON text");
      const list = parseServiceList(listJson);
      const before = Array.from(this.#hostServices.keys());
      if (verb === "replace") this.#hostServices.clear();
      for (const { fqn, version } of list) {
        const key = serviceKey(fqn, version);
        if (verb === "remove") {
          this.#hostServices.delete(key);
        } else if (!this.#hostServices.has(key)) {
          this.#hostServices.set(key, frozenDescriptor(fqn, version));
        }
      }
      const after = Array.from(this.#hostServices.keys());
      if (after.length !== before.length || after.some((key, index) => key !== before[index])) {
        this.#emit("hostservices", [this.hostServices()]);
      }
      return "";
    }

    #lookup(descriptorJson) {
      if (typeof descriptorJson !== "string") throw new TypeError("The service descriptor must be JSON text");
      const { fqn, version } = parseDescriptor(descriptorJson);
      return { fqn, version, key: serviceKey(fqn, version) };
    }

    #onWebMethod(descriptorJson, payload) {
      const { fqn, version, key } = this.#lookup(descriptorJson);
      const entry = this.#services.get(key);
      if (entry === undefined) throw new Error("No web service registered for: " + fqn + " ver: " + version);
      if (entry.method === undefined) {
        throw new Error("The web service has no method handler: " + fqn + " ver: " + version);
      }
      const result = entry.method(payloadArgument(payload), entry.context);
      if (isThenable(result)) this.#refusePromise(result, entry, "method");
      return payloadText(result);
    }

    #onWebEvent(descriptorJson, payload) {
      const { fqn, version, key } = this.#lookup(descriptorJson);
      const entry = this.#services.get(key);
      if (key === STARTUP_KEY) {
        // The host ends its handshake with this event; it logs a failure for
        // any answer but "", so nothing here may produce an exception record.
        this.#setReady();
        if (entry !== undefined && entry.event !== undefined) {
          try {
            const result = entry.event(payloadArgument(payload), entry.context);
            if (isThenable(result)) this.#refusePromise(result, entry, "event");
          } catch (error) {
            this.#report(error, { kind: "event", fqn, version });
          }
        }
        return "";
      }
      if (entry === undefined) throw new Error("No web service registered for: " + fqn + " ver: " + version);
      if (entry.event === undefined) {
        throw new Error("The web service has no event handler: " + fqn + " ver: " + version);
      }
      const result = entry.event(payloadArgument(payload), entry.context);
      if (isThenable(result)) this.#refusePromise(result, entry, "event");
      return "";
    }

    // A handler answered with a Promise. The host evaluates each call as one
    // synchronous script and takes its value at once, so it could never see
    // the settled result: that is a failure of the call. A later rejection of
    // the Promise is reported instead of being left unhandled.
    #refusePromise(result, entry, kind) {
      try {
        result.then(undefined, (error) =>
          this.#report(error, { kind, fqn: entry.fqn, version: entry.version }),
        );
      } catch {
        // A broken thenable: the failure below is report enough.
      }
      throw new TypeError(
        "The " +
          kind +
          " handler of " +
          entry.fqn +
          " ver: " +
          entry.version +
          " returned a Promise; handlers must answer synchronously because the host evaluates each call as one synchronous script",
      );
    }

    #onRequestWebServiceList() {
      return serviceListToJson(this.services());
    }
  }

  function payloadArgument(payload) {
    if (typeof payload === "string") return payload;
    return payload === undefined || payload === null ? "" : String(payload);
  }

  /** Returns a new Page; see Page for the options. */
  function createPage(options) {
    return new Page(options);
  }

  // ---------------------------------------------------------------------------
  // In-memory host
  // ---------------------------------------------------------------------------

  const CAN_TALK = new Set(["LoadedCanTalk", "LoggedIn"]);

  function isStateName(state) {
    return typeof state === "string" && Object.prototype.hasOwnProperty.call(HostContentState, state);
  }

  // Returns the first character that is neither a blank nor a control
  // character, where the host's reader decides what kind of value it reads.
  function firstSignificant(text) {
    for (let i = 0; i < text.length; i++) {
      const c = text.charCodeAt(i);
      if (c > 0x20 && c !== 0x7f) return text[i];
    }
    return "";
  }

  function hostField(object, key) {
    const value = object[key];
    if (value === undefined || value === null) return "";
    return typeof value === "string" ? value : writeJson(value);
  }

  /**
   * A host in JavaScript, for testing page code without a browser. It keeps
   * host services with handlers, answers the five host functions the way the
   * native host does (exception records, the handshake, content states and
   * log lines included), calls the page's five functions through the same
   * script-line quoting, and records every call in both directions.
   *
   * Host services are kept in two lists, as on the native host: the
   * process-wide ("manager") list and the list of this control ("instance"),
   * which is searched first. The startup-notification service is registered
   * in the manager list unless options.startupNotificationService is false.
   */
  class MemoryHost {
    #version;
    #state;
    #target;
    #evaluate;
    #quoting;
    #managerServices = new Map();
    #instanceServices = new Map();
    #webServices = [];
    #webSideVersion = "";
    #hostObject;
    #bindingObject;

    /**
     * Makes a host. Options, all optional:
     *  - version: the host's version text ("0.9");
     *  - contentState: the initial state by name ("Waiting": a page has loaded);
     *  - target: the object holding the page functions (globalThis);
     *  - evaluate: a function that runs each script line, for running the
     *    host's lines through a real script engine;
     *  - quoting: false to hand arguments to the page functions unchanged
     *    instead of as the script string decodes them;
     *  - startupNotificationService: false to leave that service out.
     */
    constructor(options) {
      const settings = options === undefined || options === null ? {} : options;
      this.#version = settings.version === undefined ? FRAMEWORK_VERSION : String(settings.version);
      const state = settings.contentState === undefined ? "Waiting" : settings.contentState;
      if (!isStateName(state)) throw new TypeError("Unknown content state: " + String(state));
      this.#state = state;
      this.#target = settings.target === undefined ? globalThis : settings.target;
      this.#evaluate = settings.evaluate === undefined ? null : settings.evaluate;
      if (this.#evaluate !== null && typeof this.#evaluate !== "function") {
        throw new TypeError("evaluate must be a function");
      }
      this.#quoting = settings.quoting !== false;
      /** Calls the page made into the host: {name, args, result}. */
      this.calls = [];
      /** Script lines the host ran in the page, in order. */
      this.scriptLines = [];
      /** Diagnostic lines the host wrote, in order. */
      this.log = [];
      /** Every content state the host entered, in order. */
      this.stateHistory = [];
      if (settings.startupNotificationService !== false) {
        this.registerService(SERVICES.STARTUP_NOTIFICATION.fqn, SERVICES.STARTUP_NOTIFICATION.version, {
          event: () => this.setContentState("LoggedIn"),
        });
      }
      const hostObject = {};
      for (const name of HOST_FUNCTION_NAMES) {
        hostObject[name] = (...args) => this.#record(name, args);
      }
      this.#hostObject = Object.freeze(hostObject);
      const binding = {};
      for (const name of HOST_FUNCTION_NAMES) {
        // Like a real binding, the call reaches the host only once the
        // caller's synchronous code has finished, and answers with a Promise.
        binding[name] = (...args) => Promise.resolve().then(() => hostObject[name](...args));
      }
      this.#bindingObject = Object.freeze(binding);
    }

    /** The host's version text, sent with its ping. */
    get version() {
      return this.#version;
    }

    /** The name of the host's content state. */
    get contentState() {
      return this.#state;
    }

    /** The version text the page returned to the host's last ping. */
    get webSideVersion() {
      return this.#webSideVersion;
    }

    /** The host functions answering with strings, for createHostObjectTransport(). */
    get hostObject() {
      return this.#hostObject;
    }

    /** The host functions answering with Promises, shaped like globalThis.wevlinHost. */
    get bindingObject() {
      return this.#bindingObject;
    }

    /** A binding transport over bindingObject. */
    get transport() {
      return createBindingTransport(this.#bindingObject);
    }

    /** A host-object transport over hostObject. */
    get syncTransport() {
      return createHostObjectTransport(this.#hostObject);
    }

    /** Sets the object on which the page functions are looked up (globalThis by default; a Page's functions work too). */
    attach(target) {
      checkHostObject(target, "The page target");
      this.#target = target;
      return this;
    }

    /** Sets the content state by name. */
    setContentState(state) {
      if (!isStateName(state)) throw new TypeError("Unknown content state: " + String(state));
      if (state === this.#state) return;
      this.#state = state;
      this.stateHistory.push(state);
    }

    /**
     * Registers a host service; handlers.method(payload, call) answers with a
     * string, handlers.event(payload, call) receives events; both may throw
     * (a HostError names the record, as a native exception class would).
     * options.scope is "manager" (default) or "instance". A registration of
     * the same FQN and version replaces the earlier one. Returns a function
     * that unregisters it.
     */
    registerService(fqn, version, handlers, options) {
      if (typeof fqn !== "string" || fqn === "") throw new HostError("std::invalid_argument", "fqn");
      if (typeof version !== "string" || version === "") {
        throw new HostError("std::invalid_argument", "version");
      }
      const scope =
        options === undefined || options === null || options.scope === undefined ? "manager" : options.scope;
      if (scope !== "manager" && scope !== "instance") {
        throw new TypeError('The scope must be "manager" or "instance"');
      }
      const set = handlers === undefined || handlers === null ? {} : handlers;
      for (const kind of ["method", "event"]) {
        if (set[kind] !== undefined && typeof set[kind] !== "function") {
          throw new TypeError("handlers." + kind + " must be a function");
        }
      }
      const entry = Object.freeze({ fqn, version, method: set.method, event: set.event });
      const services = scope === "manager" ? this.#managerServices : this.#instanceServices;
      const key = serviceKey(fqn, version);
      services.delete(key); // a replacement goes to the end, as on the host
      services.set(key, entry);
      return () => {
        if (services.get(key) !== entry) return false;
        services.delete(key);
        return true;
      };
    }

    /** Unregisters a host service from the given scope (default "manager"); returns whether it was there. */
    unregisterService(fqn, version, options) {
      const scope =
        options === undefined || options === null || options.scope === undefined ? "manager" : options.scope;
      const services = scope === "instance" ? this.#instanceServices : this.#managerServices;
      return services.delete(serviceKey(String(fqn), String(version)));
    }

    /** Returns the host services of a scope ("manager" by default) as [{fqn, version}]. */
    hostServices(options) {
      const scope =
        options === undefined || options === null || options.scope === undefined ? "manager" : options.scope;
      const services = scope === "instance" ? this.#instanceServices : this.#managerServices;
      return Array.from(services.values(), (entry) => frozenDescriptor(entry.fqn, entry.version));
    }

    /** Returns the page's services as the host took them in, as [{fqn, version}]. */
    webServices() {
      return this.#webServices.slice();
    }

    /** Starts a launch: the state becomes Navigating. */
    launch() {
      this.setContentState("Navigating");
    }

    /** Reports that the page finished loading, as the browser control does. */
    loadCompleted() {
      if (this.#state === "Navigating") {
        this.setContentState("Waiting");
        this.pingPage();
      } else if (this.#state === "Initializing") {
        this.#doHandshake();
      } else {
        this.pingPage();
      }
    }

    /** Pings the page; returns whether its script answered. */
    pingPage() {
      try {
        this.#webSideVersion = this.runScript(PAGE_FUNCTIONS.PING, [this.#version]);
        return true;
      } catch (error) {
        if (!(error instanceof ScriptError)) throw error;
        this.log.push("Caught exception running " + PAGE_FUNCTIONS.PING);
        return false;
      }
    }

    /**
     * Calls a page service method and returns its reply. Throws HostError
     * "std::runtime_error" "Cannot talk to hosted content" unless the state
     * allows calls, HostError "std::runtime_error" "NAME MESSAGE" when the
     * page answers with a record, and ScriptError when its script fails.
     */
    invokeWebMethod(descriptor, payload) {
      return this.#invokeWeb(PAGE_FUNCTIONS.WEB_METHOD, descriptor, payload);
    }

    /** Raises a page service event; fails like invokeWebMethod. */
    invokeWebEvent(descriptor, payload) {
      this.#invokeWeb(PAGE_FUNCTIONS.WEB_EVENT, descriptor, payload);
    }

    /**
     * Runs one page function as the host does: builds the script line, records
     * it, and calls the function with the arguments as the page would receive
     * them. Returns the answer as a string; throws ScriptError when the script
     * fails (a syntax error from the quoting, a missing function, a throw).
     */
    runScript(name, args) {
      const list = args === undefined ? [] : Array.from(args, String);
      const line = buildScriptLine(name, list);
      this.scriptLines.push(line);
      let result;
      if (this.#evaluate !== null) {
        try {
          result = this.#evaluate(line);
        } catch (error) {
          throw new ScriptError(describeError(error).message, line);
        }
      } else {
        let received;
        try {
          received = this.#quoting ? list.map(scriptArgumentRoundTrip) : list;
        } catch (error) {
          throw new ScriptError("SyntaxError: " + error.message, line);
        }
        const target = this.#target;
        const fn = target === null || target === undefined ? undefined : target[name];
        if (typeof fn !== "function") throw new ScriptError(name + " is not defined", line);
        try {
          result = fn(...received);
        } catch (error) {
          const { name: errorName, message } = describeError(error);
          throw new ScriptError(errorName + ": " + message, line);
        }
      }
      if (typeof result === "string") return result;
      return result === undefined || result === null ? "" : String(result);
    }

    #invokeWeb(functionName, descriptor, payload) {
      if (!CAN_TALK.has(this.#state)) {
        throw new HostError("std::runtime_error", "Cannot talk to hosted content");
      }
      const text = descriptorToJson(descriptor);
      let result;
      try {
        result = this.runScript(functionName, [text, payload === undefined ? "" : String(payload)]);
      } catch (error) {
        if (error instanceof ScriptError) {
          // The native host names the list-update function in this line.
          this.log.push("Caught exception running " + PAGE_FUNCTIONS.HOST_SERVICE_LIST_UPDATE);
        }
        throw error;
      }
      this.#checkResponse(result);
      return result;
    }

    #checkResponse(response) {
      const info = readExceptionRecord(response);
      if (info === null) return;
      if (info.name === "" && info.message === "") {
        throw new HostError("std::invalid_argument", "Could not decipher web side error: " + response);
      }
      throw new HostError("std::runtime_error", info.name + " " + info.message);
    }

    #record(name, args) {
      const call = { name, args: args.slice(), result: "" };
      this.calls.push(call);
      try {
        call.result = this.#answer(
          name,
          args.map((arg) => (arg === undefined ? "" : String(arg))),
        );
      } catch (error) {
        call.result = errorToExceptionRecord(error);
      }
      return call.result;
    }

    #answer(name, args) {
      switch (name) {
        case HOST_FUNCTIONS.METHOD:
        case HOST_FUNCTIONS.EVENT: {
          const { fqn, version } = this.#readDescriptor(args[0]);
          const key = serviceKey(fqn, version);
          const entry = this.#instanceServices.get(key) || this.#managerServices.get(key);
          if (entry === undefined) {
            throw new HostError(
              "std::invalid_argument",
              "No matching service descriptor found for: " + fqn + " ver: " + version,
            );
          }
          const call = Object.freeze({ fqn, version, host: this });
          if (name === HOST_FUNCTIONS.METHOD) {
            if (entry.method === undefined) return "";
            const reply = entry.method(args[1], call);
            return reply === undefined || reply === null ? "" : String(reply);
          }
          if (entry.event !== undefined) entry.event(args[1], call);
          return "";
        }
        case HOST_FUNCTIONS.PING:
          return this.#version;
        case HOST_FUNCTIONS.SERVICE_LIST_UPDATE:
          return this.#webSideServiceListUpdate(args[0], args[1]);
        default:
          this.#startHandshake();
          return "";
      }
    }

    // Reads a descriptor as the host does: text that is not an object fails,
    // a malformed object reads as an empty descriptor.
    #readDescriptor(text) {
      if (firstSignificant(text) !== "{") {
        throw new HostError("std::runtime_error", "JSON data is not an object");
      }
      let value;
      try {
        value = readJson(text);
      } catch {
        return { fqn: "", version: "" };
      }
      return { fqn: hostField(value, "FQN"), version: hostField(value, "SvcVersion") };
    }

    #readServiceList(text) {
      if (firstSignificant(text) !== "[") {
        throw new HostError("std::runtime_error", "JSON data is not an array");
      }
      let value;
      try {
        value = readJson(text);
      } catch {
        return [];
      }
      if (!Array.isArray(value)) return [];
      const list = [];
      for (const entry of value) {
        if (typeof entry === "object" && entry !== null && !Array.isArray(entry)) {
          list.push(frozenDescriptor(hostField(entry, "FQN"), hostField(entry, "SvcVersion")));
        }
      }
      return list;
    }

    #webSideServiceListUpdate(action, listJson) {
      const list = this.#readServiceList(listJson);
      if (asciiLower(action) !== "replace") throw new HostError("std::runtime_error", "unknown action");
      this.#webServices = list;
      return "";
    }

    #startHandshake() {
      switch (this.#state) {
        case "Navigating":
          this.setContentState("Initializing");
          break;
        case "Waiting":
          this.setContentState("Initializing");
          this.#doHandshake();
          break;
        case "LoadedCanTalk":
        case "LoggedIn":
          this.#doHandshake();
          break;
        default:
          break;
      }
    }

    #doHandshake() {
      this.setContentState("Initializing");
      let ok = this.pingPage();
      if (ok) ok = this.#sendServiceList(this.#managerServices);
      if (ok) ok = this.#sendServiceList(this.#instanceServices);
      if (ok) ok = this.#requestWebServices();
      if (ok) {
        this.setContentState("LoadedCanTalk");
        try {
          this.invokeWebEvent(SERVICES.STARTUP_NOTIFICATION, "");
        } catch {
          this.log.push("Error invoking the startup notification.");
        }
      }
      this.setContentState(ok ? "LoadedCanTalk" : "LoadedNoTalk");
    }

    #sendServiceList(services) {
      const list = serviceListToJson(services.values());
      try {
        this.runScript(PAGE_FUNCTIONS.HOST_SERVICE_LIST_UPDATE, [LIST_ACTIONS.ADD, list]);
        return true;
      } catch (error) {
        if (!(error instanceof ScriptError)) throw error;
        this.log.push("Caught exception running " + PAGE_FUNCTIONS.HOST_SERVICE_LIST_UPDATE);
        return false;
      }
    }

    #requestWebServices() {
      let result;
      try {
        result = this.runScript(PAGE_FUNCTIONS.REQUEST_WEB_SERVICE_LIST, []);
      } catch (error) {
        if (!(error instanceof ScriptError)) throw error;
        this.log.push("Caught exception running " + PAGE_FUNCTIONS.REQUEST_WEB_SERVICE_LIST);
        return false;
      }
      if (result !== "") this.#webSideServiceListUpdate(LIST_ACTIONS.REPLACE, result);
      return true;
    }
  }

  /** Returns a new MemoryHost; see MemoryHost for the options. */
  function createMemoryHost(options) {
    return new MemoryHost(options);
  }

  // ---------------------------------------------------------------------------
  // Exports
  // ---------------------------------------------------------------------------

  const api = Object.freeze({
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
  });

  if (typeof module === "object" && module !== null && typeof module.exports === "object") {
    module.exports = api;
  }
  globalThis.wevlin = api;
})();
