// The script of plain.html: notes what the page saw of the host bridge when
// it started, and offers a function that fails on a known line.
"use strict";

globalThis.hostSeenAtStart = typeof globalThis.wevlinHost;

function failInPageFile() {
  throw new TypeError("failed in the page file");
}
globalThis.failInPageFile = failInPageFile;
