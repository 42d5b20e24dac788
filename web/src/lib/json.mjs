// JSON in the host's format: the writer produces exactly the text the host's
// writer produces (one line, ", " between items, a blank after each colon, the
// eight two-character escapes and nothing else); the reader takes standard
// JSON plus the raw control characters the host leaves in its texts.

import { describeValue } from "./helpers.mjs";

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
export function escapeJsonString(text) {
  return String(text).replace(ESCAPE_PATTERN, (c) => ESCAPES[c]);
}

/** Returns text as a quoted, escaped JSON string. */
export function formatJsonString(text) {
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
export function writeJson(value) {
  const text = writeValue(value, "", new Set());
  if (text === undefined) throw new TypeError("Cannot write " + describeValue(value) + " as JSON");
  return text;
}

// The deepest nesting of arrays and objects readJson reads, the same bound as
// the host's readers: the outermost array or object is at depth 1, so a
// thousand levels read and the opening bracket of the 1001st fails. The
// recursion stops there, long before a script engine's stack runs out.
const MAX_JSON_DEPTH = 1000;
const NUMBER_PATTERN = /-?(?:0|[1-9][0-9]*)(?:\.[0-9]+)?(?:[eE][+-]?[0-9]+)?/y;
export const HEX4_PATTERN = /^[0-9A-Fa-f]{4}$/;
// Single-letter escapes for control characters, shared by JSON strings and
// script string literals.
export const CONTROL_ESCAPES = Object.freeze({ b: "\b", f: "\f", n: "\n", r: "\r", t: "\t" });

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
 * created without a prototype. Nesting deeper than 1000 levels throws
 * SyntaxError "... nesting too deep", as the host refuses it. Throws
 * SyntaxError for anything else, including text after the value.
 */
export function readJson(text) {
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
