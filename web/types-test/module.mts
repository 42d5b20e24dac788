// Compiled by `npm run typecheck`: the declarations seen from an ES module.
import wevlin, { createPage, PAGE_FUNCTIONS, type PageFunctions } from "wevlin";
import testing, { createMemoryHost } from "wevlin/testing";

const page = createPage({ transport: testing.createMemoryHost().syncTransport });
const host = createMemoryHost({ contentState: "LoggedIn" });
const state: string = host.contentState;
const functions: Readonly<PageFunctions> = page.functions;
const answer: string = functions[PAGE_FUNCTIONS.PING]("0.9");
const record: string = wevlin.formatExceptionRecord("Error", answer);
export { record, state };
