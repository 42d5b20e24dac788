// Type declarations of the ES module entry point: the named exports of
// index.d.ts, and the whole API as the default export.

export * from "./index.js";
import * as wevlin from "./index.js";
export default wevlin;
