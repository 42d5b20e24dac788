// Type declarations of wevlin/testing, the in-memory host for testing page
// code without a host. The same API is globalThis.wevlinTesting when
// src/wevlin-testing.js is loaded as a classic script after src/wevlin.js.

import type {
  ContentStateName,
  DescriptorLike,
  HostBinding,
  HostFunctionName,
  HostObject,
  ServiceDescriptor,
  Transport,
} from "./index.js";

export as namespace wevlinTesting;

/** What a host-service handler of the in-memory host gets besides the payload. */
export interface HostCall {
  readonly fqn: string;
  readonly version: string;
  readonly host: MemoryHost;
}

/** Handlers of a host service of the in-memory host; throw a HostError to choose the record's name. */
export interface HostServiceHandlers {
  method?(payload: string, call: HostCall): unknown;
  event?(payload: string, call: HostCall): void;
}

/** Which host list a service belongs to: the process-wide one or the control's own (searched first). */
export type HostServiceScope = "manager" | "instance";

/** Options of createMemoryHost(). */
export interface MemoryHostOptions {
  /** The host's version text ("0.9" by default). */
  version?: string;
  /** The initial content state ("Waiting" by default). */
  contentState?: ContentStateName;
  /** The object holding the page functions (globalThis by default). */
  target?: object;
  /** Runs each script line instead of calling the page function directly. */
  evaluate?: (scriptLine: string) => unknown;
  /** Whether arguments pass through the script-string quoting (true by default). */
  quoting?: boolean;
  /** Whether to register the startup-notification host service (true by default). */
  startupNotificationService?: boolean;
}

/** A call the page made into the in-memory host. */
export interface RecordedCall {
  name: HostFunctionName;
  args: string[];
  result: string;
}

/**
 * A host in JavaScript for testing page code: host services, the handshake,
 * content states, exception records and log lines as the native host has
 * them, and a record of every call in both directions.
 */
export class MemoryHost {
  constructor(options?: MemoryHostOptions);
  /** Calls the page made into the host. */
  calls: RecordedCall[];
  /** Script lines the host ran in the page. */
  scriptLines: string[];
  /** Diagnostic lines the host wrote. */
  log: string[];
  /** Every content state the host entered. */
  stateHistory: ContentStateName[];
  /** The host's version text. */
  readonly version: string;
  /** The current content state. */
  readonly contentState: ContentStateName;
  /** The version the page returned to the last ping. */
  readonly webSideVersion: string;
  /** The host functions answering with strings. */
  readonly hostObject: Readonly<HostObject>;
  /** The host functions answering with Promises, shaped like globalThis.wevlinHost. */
  readonly bindingObject: Readonly<HostBinding>;
  /** A binding transport over bindingObject. */
  readonly transport: Transport;
  /** A host-object transport over hostObject. */
  readonly syncTransport: Transport;

  /** Sets the object holding the page functions. */
  attach(target: object): this;
  /** Sets the content state. */
  setContentState(state: ContentStateName): void;
  /** Registers a host service; returns a function that unregisters it. */
  registerService(
    fqn: string,
    version: string,
    handlers?: HostServiceHandlers,
    options?: { scope?: HostServiceScope },
  ): () => boolean;
  /** Unregisters a host service; returns whether it was registered. */
  unregisterService(fqn: string, version: string, options?: { scope?: HostServiceScope }): boolean;
  /** Returns the host services of a scope ("manager" by default). */
  hostServices(options?: { scope?: HostServiceScope }): ServiceDescriptor[];
  /** Returns the page's services as the host took them in. */
  webServices(): ServiceDescriptor[];
  /** Starts a launch: the state becomes Navigating. */
  launch(): void;
  /** Reports that the page finished loading. */
  loadCompleted(): void;
  /** Pings the page; returns whether its script answered. */
  pingPage(): boolean;
  /** Calls a page service method; throws HostError or ScriptError as the native host fails. */
  invokeWebMethod(descriptor: DescriptorLike, payload?: string): string;
  /** Raises a page service event; fails like invokeWebMethod. */
  invokeWebEvent(descriptor: DescriptorLike, payload?: string): void;
  /** Runs one page function through its script line; throws ScriptError when the script fails. */
  runScript(name: string, args?: Iterable<string>): string;
}

/** Returns a new MemoryHost. */
export function createMemoryHost(options?: MemoryHostOptions): MemoryHost;
