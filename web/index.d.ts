// Type declarations of wevlin, the page-side library of a wevlin host control.
// The same API is globalThis.wevlin when src/wevlin.js is loaded as a classic
// script. The in-memory host for tests is declared in testing.d.ts
// (wevlin/testing). test/declarations.test.js checks that the values declared
// here are exactly those src/lib/index.mjs exports.

export as namespace wevlin;

// ----------------------------------------------------------------------------
// Versions, names and constants
// ----------------------------------------------------------------------------

/** Version of this package; it matches the native library's release ("0.9.0"). */
export const VERSION: string;

/** Version text the host framework reports through its ping ("0.9"); the default page version. */
export const FRAMEWORK_VERSION: string;

/** Names of the five functions every hosted page defines for the host. */
export const PAGE_FUNCTIONS: Readonly<{
  PING: "tavoInterop_Ping";
  HOST_SERVICE_LIST_UPDATE: "tavoInterop_HostServiceListUpdate";
  WEB_METHOD: "tavoInterop_WebMethod";
  WEB_EVENT: "tavoInterop_WebEvent";
  REQUEST_WEB_SERVICE_LIST: "tavoInterop_RequestWebServiceList";
}>;

/** Names of the five host functions the page calls. */
export const HOST_FUNCTIONS: Readonly<{
  METHOD: "tavoHostMethod";
  EVENT: "tavoHostEvent";
  PING: "tavoHostPing";
  SERVICE_LIST_UPDATE: "tavoHost_WebSideServiceListUpdate";
  START_HANDSHAKE: "tavoHost_WebSideStartHandShake";
}>;

/** A name of one of the five page functions. */
export type PageFunctionName = (typeof PAGE_FUNCTIONS)[keyof typeof PAGE_FUNCTIONS];

/** A name of one of the five host functions. */
export type HostFunctionName = (typeof HOST_FUNCTIONS)[keyof typeof HOST_FUNCTIONS];

/** The five page function names, in the order of PAGE_FUNCTIONS. */
export const PAGE_FUNCTION_NAMES: readonly PageFunctionName[];

/** The five host function names, in the order of HOST_FUNCTIONS. */
export const HOST_FUNCTION_NAMES: readonly HostFunctionName[];

/** Actions of a service-list update; the page accepts them in any letter case. */
export const LIST_ACTIONS: Readonly<{ ADD: "Add"; REPLACE: "Replace"; REMOVE: "Remove" }>;

/** The opening characters by which both sides recognise an exception record: {"Exception */
export const EXCEPTION_RECORD_PREFIX: string;

/** Wire names (FQNs) of the standard services. */
export const WIRE_NAMES: Readonly<{
  HOST_CONFIGURATION_HOST: string;
  STARTUP_NOTIFICATION_HOST: string;
  CLIENT_STATUS_HOST: string;
  ASYNC_SOA_JSON_MESSAGE_HOST: string;
  SOA_JSON_REQUEST_CLIENT: string;
  HOST_SESSION_INFO_HOST: string;
  REQUEST_HOST_AUTH_HOST: string;
  REQUEST_HOST_AUTH_REPLY_CLIENT: string;
  SESSION_HOST: string;
  SESSION_CLIENT: string;
  REFRESH_HOST: string;
  REFRESH_CLIENT: string;
  TEST_VERSION: string;
  LOGGER_FORWARD_HOST: string;
  OPEN_LOCATION_CLIENT: string;
  CLIENT_INFO_CLIENT: string;
  GET_AVAILABLE_THEMES_CLIENT: string;
  SET_THEME_CLIENT: string;
}>;

/** Interface versions of the standard services, each keyed by itself. */
export const VERSIONS: Readonly<{
  _2014_02: "_2014_02";
  _2014_03: "_2014_03";
  _2014_07: "_2014_07";
  _2015_10: "_2015_10";
  _2016_04: "_2016_04";
}>;

/** Descriptors of the standard services that have a version. */
export const SERVICES: Readonly<{
  HOST_CONFIGURATION_2014_02: ServiceDescriptor;
  HOST_CONFIGURATION_2014_07: ServiceDescriptor;
  STARTUP_NOTIFICATION: ServiceDescriptor;
  CLIENT_STATUS: ServiceDescriptor;
  ASYNC_SOA_JSON_MESSAGE: ServiceDescriptor;
  HOST_SESSION_INFO: ServiceDescriptor;
  REQUEST_HOST_AUTH: ServiceDescriptor;
  SESSION_HOST: ServiceDescriptor;
  SESSION_CLIENT: ServiceDescriptor;
  REFRESH_HOST: ServiceDescriptor;
  REFRESH_CLIENT: ServiceDescriptor;
  TEST_VERSION_2014_02: ServiceDescriptor;
  TEST_VERSION_2014_03: ServiceDescriptor;
  LOGGER_FORWARD: ServiceDescriptor;
  OPEN_LOCATION_CLIENT: ServiceDescriptor;
  CLIENT_INFO_CLIENT: ServiceDescriptor;
}>;

/** Name of a host content state. */
export type ContentStateName =
  | "NoContent"
  | "Navigating"
  | "Waiting"
  | "TimedOut"
  | "Initializing"
  | "LoadedCanTalk"
  | "LoadedNoTalk"
  | "LoggedIn";

/** Content states of a host control, by name, numbered 0 to 7 as the host numbers them. */
export const HostContentState: Readonly<{
  NoContent: 0;
  Navigating: 1;
  Waiting: 2;
  TimedOut: 3;
  Initializing: 4;
  LoadedCanTalk: 5;
  LoadedNoTalk: 6;
  LoggedIn: 7;
}>;

/** Names of the content states, indexed by their number. */
export const CONTENT_STATE_NAMES: readonly ContentStateName[];

/** Returns the name of a content-state number, or "Unknown". */
export function nameOfState(state: number): ContentStateName | "Unknown";

// ----------------------------------------------------------------------------
// JSON in the host's format
// ----------------------------------------------------------------------------

/**
 * Returns text with backspace, tab, line feed, form feed, carriage return,
 * double quote, slash and backslash replaced by their two-character escapes;
 * every other character is copied unchanged (never \u).
 */
export function escapeJsonString(text: string): string;

/** Returns text as a quoted, escaped JSON string. */
export function formatJsonString(text: string): string;

/**
 * Returns the JSON text of value in the host's format: one line, ", " between
 * items, a blank after each colon. Throws TypeError for undefined, a function
 * or a symbol at the top, a BigInt or a circular structure.
 */
export function writeJson(value: unknown): string;

/**
 * Reads JSON text as the host writes it, accepting raw control characters.
 * Objects are created without a prototype. Throws SyntaxError
 * ("Invalid JSON at offset N: reason") for anything else.
 */
export function readJson(text: string): unknown;

// ----------------------------------------------------------------------------
// Service descriptors
// ----------------------------------------------------------------------------

/** Identity of a service: its fully qualified name and version, compared exactly. */
export interface ServiceDescriptor {
  readonly fqn: string;
  readonly version: string;
}

/** A service descriptor in the wire spelling. */
export interface WireServiceDescriptor {
  readonly FQN: string;
  readonly SvcVersion: string;
}

/** A descriptor in either spelling. */
export type DescriptorLike = ServiceDescriptor | WireServiceDescriptor;

/** Returns {fqn, version} of a descriptor in either spelling; throws TypeError unless both are strings. */
export function normalizeDescriptor(descriptor: DescriptorLike): ServiceDescriptor;

/** Returns {"FQN": "...", "SvcVersion": "..."} in the host's format. */
export function descriptorToJson(descriptor: DescriptorLike): string;

/** Returns the JSON of a list of descriptors, entries joined by ", "; [] when empty. */
export function serviceListToJson(descriptors: Iterable<DescriptorLike>): string;

/** Reads one descriptor's JSON; a missing field reads as "". Throws SyntaxError or TypeError. */
export function parseDescriptor(json: string): ServiceDescriptor;

/** Reads a descriptor list's JSON; the whole list is refused when one entry is bad. */
export function parseServiceList(json: string): ServiceDescriptor[];

// ----------------------------------------------------------------------------
// Exception records and errors
// ----------------------------------------------------------------------------

/**
 * An error the other side reported as an exception record: name and message
 * come from the record (for example "std::invalid_argument"), and record is
 * the record text.
 */
export class HostError extends Error {
  /** Makes an error with that name (or "HostError" when empty); record defaults to the record of name and message. */
  constructor(name: string, message?: string, record?: string);
  /** The exception record text. */
  record: string;
}

/** Rejection of a call that waited for readiness longer than allowed. Its name is "ReadyTimeoutError". */
export class ReadyTimeoutError extends Error {
  constructor(timeoutMs: number);
  /** The time-out that elapsed, in milliseconds. */
  timeoutMs: number;
}

/** A failure of a script the in-memory host of wevlin/testing ran in the page. Its name is "ScriptError". */
export class ScriptError extends Error {
  constructor(message: string, details?: string);
  /** The script line that failed. */
  details: string;
}

/** Returns {"Exception": {"name": NAME, "message": MESSAGE}} with both texts escaped. */
export function formatExceptionRecord(name: string, message: string): string;

/** Returns the exception record describing anything thrown. */
export function errorToExceptionRecord(thrown: unknown): string;

/** Returns the name ("Error" when there is none) and message of anything thrown. Never throws. */
export function describeError(thrown: unknown): { name: string; message: string };

/** Returns true when text begins with {"Exception. */
export function isExceptionRecord(text: unknown): boolean;

/** Returns name and message of a record (both "" when unreadable), or null when text is not one. */
export function readExceptionRecord(text: string): { name: string; message: string } | null;

/** Returns the HostError of a record; an unreadable one gives "Could not decipher host error: " + record. */
export function errorFromExceptionRecord(text: string): HostError;

// ----------------------------------------------------------------------------
// Script lines
// ----------------------------------------------------------------------------

/** Returns text quoted as the host quotes a script argument: a backslash before each single quote. */
export function quoteScriptArgument(text: string): string;

/** Returns the host's script line for a call, e.g. tavoInterop_Ping('0.9'); */
export function buildScriptLine(name: string, args?: Iterable<string>): string;

/**
 * Returns the value of a single-quoted script string literal with this body,
 * decoded as a non-strict script decodes it. Throws SyntaxError where the
 * script would not parse.
 */
export function decodeScriptString(body: string): string;

/** Returns what a page function receives when the host sends text as a script argument. */
export function scriptArgumentRoundTrip(text: string): string;

// ----------------------------------------------------------------------------
// Transports
// ----------------------------------------------------------------------------

/**
 * The five host functions, answering with Promises of strings. This is the
 * shape of globalThis.wevlinHost, which the wevlin host control injects.
 */
export interface HostBinding {
  tavoHostMethod(descriptorJson: string, payload: string): Promise<string>;
  tavoHostEvent(descriptorJson: string, payload: string): Promise<string>;
  tavoHostPing(): Promise<string>;
  tavoHost_WebSideServiceListUpdate(action: string, listJson: string): Promise<string>;
  tavoHost_WebSideStartHandShake(): Promise<string>;
}

/** The five host functions, answering with strings directly. */
export interface HostObject {
  tavoHostMethod(descriptorJson: string, payload: string): string;
  tavoHostEvent(descriptorJson: string, payload: string): string;
  tavoHostPing(): string;
  tavoHost_WebSideServiceListUpdate(action: string, listJson: string): string;
  tavoHost_WebSideStartHandShake(): string;
}

/** How a page reaches its host: the five host functions, answering with Promises of strings. */
export interface Transport extends HostBinding {
  /** "binding", "hostObject", or any text a custom transport chooses. */
  readonly kind?: string;
}

/**
 * Returns a transport over a binding (globalThis.wevlinHost, looked up at
 * each call, when none is given).
 */
export function createBindingTransport(binding?: HostBinding): Transport;

/** Returns a transport over a host object whose functions answer with strings. */
export function createHostObjectTransport(hostObject: HostObject): Transport;

/** Returns the binding transport when scope (globalThis by default) has wevlinHost, else null. */
export function detectTransport(scope?: object): Transport | null;

// ----------------------------------------------------------------------------
// The page
// ----------------------------------------------------------------------------

/** What a page-service handler gets besides the payload. */
export interface ServiceContext {
  readonly fqn: string;
  readonly version: string;
  readonly page: Page;
}

/**
 * Handlers of a page service. Both run synchronously: the host takes the
 * value of one synchronous script evaluation, so returning a Promise is a
 * failure. A method's non-string answer is written as host-format JSON;
 * undefined and null answer "".
 */
export interface ServiceHandlers {
  method?(payload: string, context: ServiceContext): unknown;
  event?(payload: string, context: ServiceContext): unknown;
}

/** Options of createPage(). */
export interface PageOptions {
  /** How to reach the host; by default globalThis.wevlinHost when it exists. */
  transport?: Transport | null;
  /** The version text the page returns to the host's ping; FRAMEWORK_VERSION by default. */
  version?: string;
  /** Whether calls wait for readiness by default (false). */
  waitForReady?: boolean;
  /** Default limit of that wait, in milliseconds; none by default. */
  readyTimeoutMs?: number;
  /** Listener of failures that cannot be reported to the host. */
  onError?: ErrorListener;
}

/** Per-call options of the calls into the host. */
export interface CallOptions {
  /** Wait until the host is ready before sending. */
  waitForReady?: boolean;
  /** Reject with ReadyTimeoutError when the wait lasts longer. */
  readyTimeoutMs?: number;
}

/** Where a reported failure came from. */
export interface ErrorContext {
  readonly kind: "method" | "event" | "listener";
  readonly fqn?: string;
  readonly version?: string;
  readonly type?: string;
}

/** Listener of failures that cannot be reported to the host. */
export type ErrorListener = (error: unknown, context: ErrorContext) => void;

/** The five page functions the host calls. */
export interface PageFunctions {
  tavoInterop_Ping(hostVersion: string): string;
  tavoInterop_HostServiceListUpdate(action: string, listJson: string): string;
  tavoInterop_WebMethod(descriptorJson: string, payload: string): string;
  tavoInterop_WebEvent(descriptorJson: string, payload: string): string;
  tavoInterop_RequestWebServiceList(): string;
}

/**
 * The page side of one hosted page: its page services, the host's services,
 * the host's readiness and the calls into the host.
 */
export class Page {
  constructor(options?: PageOptions);
  /** The version text returned to the host's ping. */
  readonly version: string;
  /** The host's version from the last ping in either direction, or null. */
  readonly hostVersion: string | null;
  /** The transport in use, or null. */
  readonly transport: Transport | null;
  /** The five page functions bound to this page. */
  readonly functions: Readonly<PageFunctions>;
  /** True while the page functions are installed. */
  readonly installed: boolean;

  /** Registers a page service (a duplicate replaces the earlier one); returns a function that unregisters it. */
  register(fqn: string, version: string, handlers: ServiceHandlers): () => boolean;
  /** Unregisters the page service of exactly this FQN and version; returns whether one was registered. */
  unregister(fqn: string, version: string): boolean;
  /** Returns the page services in registration order. */
  services(): ServiceDescriptor[];
  /** Returns the host services the host announced. */
  hostServices(): ServiceDescriptor[];
  /** Returns true when the host announced exactly this service. */
  hasHostService(descriptor: DescriptorLike): boolean;

  /** Defines the five page functions on target (globalThis by default); again on the same target does nothing. */
  install(target?: object): this;
  /** Removes the page functions; returns whether the page was installed. */
  uninstall(): boolean;
  /** Uninstalls the page and makes waiting and later calls reject. */
  dispose(): void;

  /** Returns true once the host's startup notification arrived. */
  isReady(): boolean;
  /** Resolves when the host is ready; rejects with ReadyTimeoutError after options.timeoutMs. */
  whenReady(options?: { timeoutMs?: number }): Promise<void>;
  /** Adds a listener of readiness; returns a function that removes it. */
  on(type: "ready", listener: () => void): () => boolean;
  /** Adds a listener of changes of the host's service list; returns a function that removes it. */
  on(type: "hostservices", listener: (services: ServiceDescriptor[]) => void): () => boolean;
  /** Adds a listener of failures that cannot reach the host; returns a function that removes it. */
  on(type: "error", listener: ErrorListener): () => boolean;

  /** Calls a host service method; resolves with the reply, rejects with HostError on a record. */
  invokeMethod(descriptor: DescriptorLike, payload?: unknown, options?: CallOptions): Promise<string>;
  /** Raises a host service event; rejects with HostError on a record. */
  raiseEvent(descriptor: DescriptorLike, payload?: unknown, options?: CallOptions): Promise<void>;
  /** Raises the startup-notification event, which moves the host to LoggedIn. */
  sendStartupNotification(options?: CallOptions): Promise<void>;
  /** Resolves with the host's version text. */
  ping(): Promise<string>;
  /** Asks the host to start the handshake; the page is not ready until the next startup notification. */
  startHandshake(): Promise<void>;
  /** Sends the page's service list to the host with the action "Replace". */
  announceServices(): Promise<void>;
}

/** Returns a new Page. */
export function createPage(options?: PageOptions): Page;
