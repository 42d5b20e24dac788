// Small private helpers shared by the other modules. None of them is part of
// the API. The build copies this module into every generated file that uses
// it (the page library and its testing entry), so everything here must be a
// plain function without state of its own.

/**
 * Returns text with the ASCII letters lower-cased and nothing else changed, so
 * that action names compare the way the host compares them (byte-wise,
 * ignoring the case of A-Z).
 */
export function asciiLower(text) {
  return text.replace(/[A-Z]/g, (c) => String.fromCharCode(c.charCodeAt(0) + 32));
}

/** Returns a short description of a value for error messages ("null", "an array", "a number", ...). */
export function describeValue(value) {
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

/**
 * Returns the text under which a service is kept in a Map; the length prefix
 * keeps every (fqn, version) pair distinct whatever characters the two texts
 * hold.
 */
export function serviceKey(fqn, version) {
  return fqn.length + ":" + fqn + version;
}

/** Returns a frozen {fqn, version}. */
export function frozenDescriptor(fqn, version) {
  return Object.freeze({ fqn, version });
}

/** Throws TypeError, naming the value `what`, unless host is an object or a function. */
export function checkHostObject(host, what) {
  if ((typeof host !== "object" && typeof host !== "function") || host === null) {
    throw new TypeError(what + " must be an object, not " + describeValue(host));
  }
}
