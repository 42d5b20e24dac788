// Compiled by `npm run typecheck`: the global wevlin of a classic script.
/// <reference path="../index.d.ts" />
const scriptPage = wevlin.createPage({ version: "1.0" }).install();
const scriptReady: boolean = scriptPage.isReady();
