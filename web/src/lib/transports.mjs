// Transports: how a page reaches its host. A transport is an object with the
// five host functions, each answering with a Promise of a string.

import { HOST_FUNCTION_NAMES } from "./constants.mjs";
import { checkHostObject, describeValue } from "./helpers.mjs";

export async function callHostFunction(target, name, args, what) {
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

/**
 * Returns a transport over a binding whose five host functions answer with
 * Promises of strings: the object the wevlin host control injects as
 * globalThis.wevlinHost. Without an argument globalThis.wevlinHost is looked
 * up at each call, so the transport may be made before the binding exists.
 */
export function createBindingTransport(binding) {
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
export function createHostObjectTransport(hostObject) {
  checkHostObject(hostObject, "The host object");
  return makeTransport("hostObject", () => hostObject, "The host object");
}

/**
 * Returns the binding transport over globalThis.wevlinHost when the page
 * runs inside a wevlin host control that defines it, else null.
 */
export function detectTransport(scope) {
  const root = scope === undefined ? globalThis : scope;
  const binding = root === null || root === undefined ? undefined : root.wevlinHost;
  if ((typeof binding === "object" || typeof binding === "function") && binding !== null) {
    return createBindingTransport(binding);
  }
  return null;
}
