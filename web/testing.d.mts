// Type declarations of the ES module entry point of wevlin/testing: the named
// exports of testing.d.ts, and the whole API as the default export.

export * from "./testing.js";
import * as wevlinTesting from "./testing.js";
export default wevlinTesting;
