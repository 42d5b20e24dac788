// The page: the five page functions the host calls, the page services they
// dispatch to, the host's readiness, and the Promise-based calls into the host.

import {
  FRAMEWORK_VERSION,
  HOST_FUNCTIONS,
  LIST_ACTIONS,
  PAGE_FUNCTIONS,
  PAGE_FUNCTION_NAMES,
  SERVICES,
} from "./constants.mjs";
import {
  descriptorToJson,
  normalizeDescriptor,
  parseDescriptor,
  parseServiceList,
  serviceListToJson,
} from "./descriptors.mjs";
import { asciiLower, checkHostObject, describeValue, frozenDescriptor, serviceKey } from "./helpers.mjs";
import { writeJson } from "./json.mjs";
import {
  ReadyTimeoutError,
  errorFromExceptionRecord,
  errorToExceptionRecord,
  isExceptionRecord,
} from "./records.mjs";
import { callHostFunction, detectTransport } from "./transports.mjs";

// Returns true for anything with a then method, as await would treat it.
function isThenable(value) {
  return (
    ((typeof value === "object" && value !== null) || typeof value === "function") &&
    typeof value.then === "function"
  );
}

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
export class Page {
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
export function createPage(options) {
  return new Page(options);
}
