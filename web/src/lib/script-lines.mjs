// Script lines, as the host writes them: the host calls a page function by
// running one line of script with its arguments in single quotes. These
// functions build such lines and tell what the page receives from them.

import { CONTROL_ESCAPES, HEX4_PATTERN } from "./json.mjs";

/**
 * Returns text quoted the way the host quotes a script argument: a backslash
 * before every single quote and nothing else.
 */
export function quoteScriptArgument(text) {
  return String(text).replace(/'/g, "\\'");
}

/**
 * Returns the line of script by which the host calls a page function, e.g.
 * tavoInterop_WebMethod('{"FQN": ...}','payload');
 */
export function buildScriptLine(name, args) {
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
export function decodeScriptString(body) {
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
export function scriptArgumentRoundTrip(text) {
  return decodeScriptString(quoteScriptArgument(text));
}
