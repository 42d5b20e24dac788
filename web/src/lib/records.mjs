// Exception records, the texts by which each side reports a failure to the
// other ({"Exception": {"name": ..., "message": ...}}), and the errors of the
// library.

import { EXCEPTION_RECORD_PREFIX } from "./constants.mjs";
import { formatJsonString, readJson, writeJson } from "./json.mjs";

/**
 * An error reported by the other side as an exception record. Its name is
 * the record's "name" (for example "std::invalid_argument"), its message the
 * record's "message", and `record` holds the record text itself.
 */
export class HostError extends Error {
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
export class ReadyTimeoutError extends Error {
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
export class ScriptError extends Error {
  constructor(message, details) {
    super(message);
    Object.defineProperty(this, "name", { value: "ScriptError", writable: true, configurable: true });
    this.details = details === undefined ? "" : String(details);
  }
}

/** Returns the exception record text for a name and a message. */
export function formatExceptionRecord(name, message) {
  return (
    '{"Exception": {"name": ' + formatJsonString(name) + ', "message": ' + formatJsonString(message) + "}}"
  );
}

/**
 * Returns {name, message} of anything thrown: an object's own string name
 * (or "Error" when it has none) and its message, or for a thrown primitive
 * the name "Error" and the primitive as text. Never throws.
 */
export function describeError(thrown) {
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
export function errorToExceptionRecord(thrown) {
  const { name, message } = describeError(thrown);
  return formatExceptionRecord(name, message);
}

/** Returns true when text begins with the exception-record prefix {"Exception. */
export function isExceptionRecord(text) {
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
export function readExceptionRecord(text) {
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
export function errorFromExceptionRecord(text) {
  const info = readExceptionRecord(text) || { name: "", message: "" };
  if (info.name === "" && info.message === "") {
    return new HostError("Error", "Could not decipher host error: " + text, text);
  }
  return new HostError(info.name === "" ? "Error" : info.name, info.message, text);
}
