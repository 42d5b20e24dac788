// The in-memory host: a host written in JavaScript, for testing page code
// without a browser or a native host. It is the testing entry of the package
// (wevlin/testing), never part of the file every page loads.

import {
  FRAMEWORK_VERSION,
  HOST_FUNCTIONS,
  HOST_FUNCTION_NAMES,
  HostContentState,
  LIST_ACTIONS,
  PAGE_FUNCTIONS,
  SERVICES,
} from "./constants.mjs";
import { descriptorToJson, serviceListToJson } from "./descriptors.mjs";
import { asciiLower, checkHostObject, frozenDescriptor, serviceKey } from "./helpers.mjs";
import { readJson, writeJson } from "./json.mjs";
import {
  HostError,
  ScriptError,
  describeError,
  errorToExceptionRecord,
  readExceptionRecord,
} from "./records.mjs";
import { buildScriptLine, scriptArgumentRoundTrip } from "./script-lines.mjs";
import { createBindingTransport, createHostObjectTransport } from "./transports.mjs";

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
export class MemoryHost {
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
export function createMemoryHost(options) {
  return new MemoryHost(options);
}
