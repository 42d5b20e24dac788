// Compiled by `npm run typecheck`: the globals wevlin and wevlinTesting of
// classic scripts.
/// <reference path="../index.d.ts" />
/// <reference path="../testing.d.ts" />
const scriptPage = wevlin.createPage({ version: "1.0" }).install();
const scriptReady: boolean = scriptPage.isReady();
const scriptHost = wevlinTesting.createMemoryHost({ target: {} });
const scriptTransport: wevlin.Transport = scriptHost.syncTransport;
