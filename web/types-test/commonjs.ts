// Compiled by `npm run typecheck`: the declarations seen from CommonJS code.
import {
  createPage,
  createBindingTransport,
  createHostObjectTransport,
  detectTransport,
  HostError,
  ReadyTimeoutError,
  SERVICES,
  WIRE_NAMES,
  VERSIONS,
  HostContentState,
  nameOfState,
  writeJson,
  readJson,
  parseServiceList,
  type ServiceDescriptor,
  type Transport,
  type HostBinding,
} from "wevlin";
import { createMemoryHost, MemoryHost, type RecordedCall } from "wevlin/testing";

const host = createMemoryHost({ version: "0.9", contentState: "Waiting", quoting: true });
host.registerService(WIRE_NAMES.CLIENT_STATUS_HOST, VERSIONS._2014_07, {
  event: (payload: string) => void payload,
});
const transport: Transport = host.transport;
const sameHost: MemoryHost = host;
const recorded: RecordedCall[] = sameHost.calls;
const binding: HostBinding = host.bindingObject;
const page = createPage({
  transport,
  version: "1.0",
  waitForReady: true,
  readyTimeoutMs: 1000,
  onError: () => {},
});
const unregister: () => boolean = page.register("a.client", "_2014_07", {
  method: (payload, context) => `${context.fqn} ${context.version} ${payload}`,
});
page.install(globalThis);

async function run(): Promise<string> {
  await page.startHandshake();
  await page.whenReady({ timeoutMs: 500 });
  await page.raiseEvent(SERVICES.CLIENT_STATUS, { State: "busy" });
  await page.sendStartupNotification({ waitForReady: false });
  const version: string = await page.ping();
  try {
    return await page.invokeMethod({ FQN: "x", SvcVersion: "y" }, "payload");
  } catch (error) {
    if (error instanceof HostError) return error.record + version;
    if (error instanceof ReadyTimeoutError) return String(error.timeoutMs);
    throw error;
  }
}

const list: ServiceDescriptor[] = parseServiceList(writeJson([{ FQN: "a", SvcVersion: "1" }]));
const state: string = nameOfState(HostContentState.LoggedIn);
const value: unknown = readJson("[]");
const detected: Transport | null = detectTransport();
const other: Transport = createBindingTransport(binding);
const direct: Transport = createHostObjectTransport(host.hostObject);
page.on("hostservices", (services) => services.map((service) => service.fqn));
unregister();
export { run, list, state, value, detected, other, direct, recorded };
