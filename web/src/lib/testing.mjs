/*
 * wevlin/testing: the in-memory host, for testing page code without a host.
 *
 * MemoryHost is a host written in JavaScript that behaves like the native
 * one: host services, the handshake, content states, exception records and
 * log lines, and a record of every call in both directions. It works with the
 * objects of the page library itself (its HostError, its transports), so page
 * code and tests see one set of classes.
 *
 * The file works as a classic <script> loaded after wevlin.js (it defines
 * globalThis.wevlinTesting), as a CommonJS module (it requires wevlin.js
 * beside it) and, through wevlin-testing.mjs, as an ES module.
 */

// The API of the testing entry: `npm run build` generates
// src/wevlin-testing.js and src/wevlin-testing.mjs from this list, and the
// tests check it against testing.d.ts and testing.d.mts.

export { MemoryHost, createMemoryHost } from "./memory-host.mjs";
