// Compiled by `npm run typecheck`: the declarations seen from an ES module.
import wevlin, { createPage, PAGE_FUNCTIONS, type PageFunctions } from "wevlin";

const page = createPage({ transport: wevlin.createMemoryHost().syncTransport });
const functions: Readonly<PageFunctions> = page.functions;
const answer: string = functions[PAGE_FUNCTIONS.PING]("0.9");
const record: string = wevlin.formatExceptionRecord("Error", answer);
export { record };
