// Service descriptors: {fqn, version} in the library, {"FQN": ..., "SvcVersion": ...}
// on the wire.

import { describeValue } from "./helpers.mjs";
import { formatJsonString, readJson } from "./json.mjs";

/**
 * Returns {fqn, version} for a descriptor given as {fqn, version} or in the
 * wire spelling {FQN, SvcVersion}. Throws TypeError unless both are strings.
 */
export function normalizeDescriptor(descriptor) {
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
export function descriptorToJson(descriptor) {
  const { fqn, version } = normalizeDescriptor(descriptor);
  return '{"FQN": ' + formatJsonString(fqn) + ', "SvcVersion": ' + formatJsonString(version) + "}";
}

/** Returns the wire JSON of a list of descriptors; [] when the list is empty. */
export function serviceListToJson(descriptors) {
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
export function parseDescriptor(json) {
  return descriptorFromValue(readJson(json), "A service descriptor");
}

/**
 * Reads the JSON of a list of service descriptors and returns an array of
 * {fqn, version}. Throws SyntaxError or TypeError as parseDescriptor does;
 * the whole list is rejected when one entry is bad.
 */
export function parseServiceList(json) {
  const value = readJson(json);
  if (!Array.isArray(value)) {
    throw new TypeError("A service list must be a JSON array, not " + describeValue(value));
  }
  return value.map((entry, index) => descriptorFromValue(entry, "Service list entry " + index));
}
