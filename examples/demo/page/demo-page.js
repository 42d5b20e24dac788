// The page half of the wevlin demo (examples/demo). Loaded after wevlin.js;
// the host control defines globalThis.wevlinHost before either runs.
//
// What the page does:
//  - offers the page services of the standard catalogue: session, refresh,
//    open location, client information and both version tests; the two
//    reply services to which the host sends its asynchronous answers (SOA
//    requests and host logins); and tavo.demo.Failing.client, which always
//    throws, to show how a page failure reaches the host;
//  - waits for the host's first ping (which follows the end of the load),
//    starts the handshake, and once the host is ready sends the startup
//    notification, which logs the host in;
//  - makes the demo's calls into the host when the host asks for them through
//    globalThis.demoPage: steps() lists them, start(id) starts one and
//    returns its number, done(n) and outcome(n) tell how it ended;
//  - in one of those steps, registers tavo.demo.Echo.client late and
//    announces its new service list (tavoHost_WebSideServiceListUpdate), so
//    that the host learns of the service and can call it;
//  - lists on screen every call that crossed, both ways, with its payload,
//    its answer and how long it took, so that a screenshot shows it all.
(() => {
  "use strict";

  const { SERVICES, WIRE_NAMES, PAGE_FUNCTIONS, HOST_FUNCTIONS } = wevlin;
  const PAGE_VERSION = "demo-page 1.0";
  const SHORT_PREFIX = "tavo.wevlin.infrastructure.services.";
  const SOA_REPLY = Object.freeze({ fqn: WIRE_NAMES.SOA_JSON_REQUEST_CLIENT, version: "_2014_02" });
  const AUTH_REPLY = Object.freeze({ fqn: WIRE_NAMES.REQUEST_HOST_AUTH_REPLY_CLIENT, version: "_2014_02" });
  const FAILING = Object.freeze({ fqn: "tavo.demo.Failing.client", version: "_2014_07" });
  const FAILING_MESSAGE = "The demo page refuses this call on purpose";
  const MISSING = Object.freeze({ fqn: "tavo.demo.Missing.host", version: "_2014_07" });
  const LATE = Object.freeze({ fqn: "tavo.demo.Echo.client", version: "_2014_07" });
  const LATE_ANSWER_PREFIX = "The page echoes: ";
  const REPLY_TIMEOUT_MS = 20000;
  const loadedAt = performance.now();

  // --- The on-screen log ----------------------------------------------------

  const fromHostList = document.getElementById("from-host");
  const toHostList = document.getElementById("to-host");
  const statusLine = document.getElementById("status");

  function setStatus(text, ready) {
    statusLine.textContent = text;
    statusLine.classList.toggle("ready", ready === true);
  }

  function shortName(fqn) {
    return fqn.startsWith(SHORT_PREFIX) ? fqn.slice(SHORT_PREFIX.length) : fqn;
  }

  function describeDescriptor(descriptorJson) {
    try {
      const { fqn, version } = wevlin.parseDescriptor(descriptorJson);
      return shortName(fqn) + " " + version;
    } catch {
      return String(descriptorJson);
    }
  }

  function describeList(action, listJson) {
    try {
      return action + ", " + wevlin.parseServiceList(listJson).length + " services";
    } catch {
      return action + " " + String(listJson);
    }
  }

  function shown(text) {
    return text === "" ? '""' : String(text);
  }

  // Adds one line to `list` and returns a function that completes it with the
  // answer once the call has ended.
  function logCall(list, name, service, detail) {
    const item = document.createElement("li");
    const time = document.createElement("span");
    time.className = "time";
    time.textContent = (performance.now() - loadedAt).toFixed(0) + " ms";
    const what = document.createElement("div");
    what.className = "what";
    what.textContent = name + " ";
    const serviceText = document.createElement("span");
    serviceText.className = "service";
    serviceText.textContent = service;
    what.append(serviceText);
    const details = document.createElement("div");
    details.className = "detail";
    details.textContent = detail;
    item.append(time, what, details);
    list.append(item);
    const begun = performance.now();
    return (answer, failed) => {
      const took = (performance.now() - begun).toFixed(1);
      // A long payload is cut short so that the answer stays in view.
      const payload = detail.length > 48 ? detail.slice(0, 45) + "\u2026" : detail;
      const tookText = document.createElement("span");
      tookText.className = "took";
      tookText.textContent = "  " + took + " ms";
      what.append(tookText);
      details.textContent = (payload === "" ? "" : payload + "  ") + "\u2192 " + shown(answer);
      item.classList.toggle("failed", failed === true);
    };
  }

  // What one call shows in the log: the service it names and its payload.
  function describeCall(name, args) {
    switch (name) {
      case PAGE_FUNCTIONS.WEB_METHOD:
      case PAGE_FUNCTIONS.WEB_EVENT:
      case HOST_FUNCTIONS.METHOD:
      case HOST_FUNCTIONS.EVENT:
        return { service: describeDescriptor(args[0]), detail: shown(args[1] === undefined ? "" : args[1]) };
      case PAGE_FUNCTIONS.PING:
        return { service: "", detail: "host version " + shown(args[0]) };
      case PAGE_FUNCTIONS.HOST_SERVICE_LIST_UPDATE:
      case HOST_FUNCTIONS.SERVICE_LIST_UPDATE:
        return { service: "", detail: describeList(args[0], args[1]) };
      default:
        return { service: "", detail: "" };
    }
  }

  // --- Calls into the host, logged ------------------------------------------

  // The binding transport over globalThis.wevlinHost, with every call listed
  // on screen as it goes and when it is answered.
  function loggingTransport(inner) {
    const transport = {};
    for (const name of wevlin.HOST_FUNCTION_NAMES) {
      transport[name] = (...args) => {
        const { service, detail } = describeCall(name, args);
        const complete = logCall(toHostList, name, service, detail);
        return inner[name](...args).then(
          (answer) => {
            complete(answer, wevlin.isExceptionRecord(answer));
            return answer;
          },
          (error) => {
            complete(String(error), true);
            throw error;
          },
        );
      };
    }
    return transport;
  }

  const page = wevlin.createPage({
    version: PAGE_VERSION,
    transport: loggingTransport(wevlin.createBindingTransport()),
  });

  // --- Page services --------------------------------------------------------

  // The last payload each page service received, for the host to read back.
  const received = new Map();

  page.register(SERVICES.SESSION_CLIENT.fqn, SERVICES.SESSION_CLIENT.version, {
    event(payload) {
      received.set("session", payload);
    },
  });
  page.register(SERVICES.REFRESH_CLIENT.fqn, SERVICES.REFRESH_CLIENT.version, {
    event(payload) {
      received.set("refresh", payload);
    },
  });
  page.register(SERVICES.OPEN_LOCATION_CLIENT.fqn, SERVICES.OPEN_LOCATION_CLIENT.version, {
    event(payload) {
      received.set("openLocation", payload);
    },
  });
  page.register(SERVICES.CLIENT_INFO_CLIENT.fqn, SERVICES.CLIENT_INFO_CLIENT.version, {
    method() {
      return {
        Data: [
          { Key: "page", Value: "wevlin demo page" },
          { Key: "pageVersion", Value: PAGE_VERSION },
          { Key: "library", Value: "wevlin.js " + wevlin.VERSION },
          { Key: "language", Value: navigator.language },
          { Key: "viewport", Value: innerWidth + "x" + innerHeight },
        ],
        Version: "_2014_07",
      };
    },
  });

  // The version tests: answer with the name and version that the request
  // named; the later version also checks the extra text and says so.
  page.register(SERVICES.TEST_VERSION_2014_02.fqn, SERVICES.TEST_VERSION_2014_02.version, {
    method(payload) {
      const request = wevlin.readJson(payload);
      return {
        ServiceName: request.ServiceName,
        ServiceVersion: request.ServiceVersion,
        Version: "_2014_02",
      };
    },
  });
  page.register(SERVICES.TEST_VERSION_2014_03.fqn, SERVICES.TEST_VERSION_2014_03.version, {
    method(payload) {
      const request = wevlin.readJson(payload);
      return {
        ServiceName: request.ServiceName,
        ServiceVersion: request.ServiceVersion,
        Result: request.ExtraInfo === "Extra Info",
        Version: "_2014_03",
      };
    },
  });

  // The reply services of the two asynchronous host services. A call that
  // waits for a reply queues a resolver here; the reply settles the oldest.
  const waitingForReply = { soa: [], auth: [] };

  function deliverReply(kind, payload) {
    received.set(kind + "Reply", payload);
    const resolve = waitingForReply[kind].shift();
    if (resolve !== undefined) resolve(payload);
  }

  page.register(SOA_REPLY.fqn, SOA_REPLY.version, {
    event(payload) {
      deliverReply("soa", payload);
    },
  });
  page.register(AUTH_REPLY.fqn, AUTH_REPLY.version, {
    event(payload) {
      deliverReply("auth", payload);
    },
  });

  page.register(FAILING.fqn, FAILING.version, {
    method() {
      throw new RangeError(FAILING_MESSAGE);
    },
  });

  // --- The five page functions, logged --------------------------------------

  // The page's functions go onto globalThis as page.install() would put them,
  // each wrapped so that the host's call and the answer appear on screen.
  let handshakeStarted = false;
  for (const name of wevlin.PAGE_FUNCTION_NAMES) {
    const answerCall = page.functions[name];
    globalThis[name] = (...args) => {
      const { service, detail } = describeCall(name, args);
      const complete = logCall(fromHostList, name, service, detail);
      const answer = answerCall(...args);
      complete(answer, wevlin.isExceptionRecord(answer));
      if (name === PAGE_FUNCTIONS.PING && !handshakeStarted) {
        handshakeStarted = true;
        globalThis.setTimeout(startHandshake, 0);
      }
      return answer;
    };
  }

  // --- Handshake and startup notification -----------------------------------

  function startHandshake() {
    setStatus("pinged by host " + page.hostVersion + ", starting the handshake");
    page.startHandshake().catch((error) => setStatus("handshake failed: " + error.message));
  }

  page.on("ready", () => {
    setStatus("host ready, sending the startup notification");
    page.sendStartupNotification().then(
      () =>
        setStatus(
          "logged in: host " + page.hostVersion + ", " + page.hostServices().length + " host services",
          true,
        ),
      (error) => setStatus("startup notification failed: " + error.message),
    );
  });

  setStatus("waiting for the host's ping");

  // --- The demo's calls into the host ---------------------------------------

  function payloadText(payload) {
    return typeof payload === "string" ? payload : wevlin.writeJson(payload);
  }

  function step(id, title, kind, service, payload, awaits) {
    return Object.freeze({ id, title, kind, service, payload: payloadText(payload), awaits });
  }

  const steps = [
    step(
      "host-configuration-2014-02",
      "host configuration (fixed keys)",
      "method",
      SERVICES.HOST_CONFIGURATION_2014_02,
      "",
    ),
    step(
      "host-configuration-2014-07",
      "host configuration (settings list)",
      "method",
      SERVICES.HOST_CONFIGURATION_2014_07,
      "",
    ),
    step("client-status", "client status", "event", SERVICES.CLIENT_STATUS, {
      State: "busy",
      Version: "_2014_07",
    }),
    step("log", "log forwarding", "method", SERVICES.LOGGER_FORWARD, {
      FormatMessage: "The demo page is up and talking",
      Level: "Info",
      Version: "_2014_02",
    }),
    step("log-event", "log forwarding, raised as an event", "event", SERVICES.LOGGER_FORWARD, {
      FormatMessage: "The demo page raised this entry as an event",
      Level: "Warning",
      Version: "_2014_02",
    }),
    step("session", "session", "event", SERVICES.SESSION_HOST, {
      SessionObjects: [{ DBId: "demo-db", ObjId: "user-42", ObjType: "User" }],
      Preferences: [{ Name: "languages", Values: ["en", "de"] }],
      Version: "_2014_07",
    }),
    step("refresh", "refresh", "event", SERVICES.REFRESH_HOST, {
      CreatedObjects: [{ DBId: "demo-db", ObjId: "note-7", ObjType: "Note" }],
      UpdatedObjects: [{ DBId: "demo-db", ObjId: "folder-1", ObjType: "Folder" }],
      DeletedObjects: [],
      PlainObjects: [],
      ChildChangeObjects: [],
      DataObjects: [],
      Version: "_2014_07",
    }),
    step("test-version-2014-02", "version test, first version", "method", SERVICES.TEST_VERSION_2014_02, {
      ServiceName: WIRE_NAMES.TEST_VERSION,
      ServiceVersion: "_2014_02",
      Version: "_2014_02",
    }),
    step("test-version-2014-03", "version test, second version", "method", SERVICES.TEST_VERSION_2014_03, {
      ServiceName: WIRE_NAMES.TEST_VERSION,
      ServiceVersion: "_2014_03",
      ExtraInfo: "Extra Info",
      Version: "_2014_03",
    }),
    step(
      "async-soa",
      "asynchronous SOA request",
      "event",
      SERVICES.ASYNC_SOA_JSON_MESSAGE,
      {
        CacheId: "soa-1",
        ReplyServiceDescriptor: wevlin.descriptorToJson(SOA_REPLY),
        ServiceName: "Inventory",
        OperationName: "CountItems",
        Message: wevlin.writeJson({ Warehouse: "North", Category: "Tea" }),
        Version: "_2014_02",
      },
      "soa",
    ),
    step(
      "host-auth",
      "host login request",
      "event",
      SERVICES.REQUEST_HOST_AUTH,
      { CacheId: "auth-1", ReplyServiceDescriptor: wevlin.descriptorToJson(AUTH_REPLY), Version: "_2014_02" },
      "auth",
    ),
    step("host-session-info", "host session information", "method", SERVICES.HOST_SESSION_INFO, ""),
    step("ping", "ping", "ping", null, ""),
    step(
      "announce-services",
      "the page offers one more service and announces its list",
      "announce",
      LATE,
      "",
    ),
    step("missing-service", "a host service that does not exist", "method", MISSING, ""),
  ];

  function decodeBase64(text) {
    const binary = atob(text);
    return new TextDecoder().decode(Uint8Array.from(binary, (c) => c.charCodeAt(0)));
  }

  function waitForReply(kind) {
    return new Promise((resolve, reject) => {
      const timer = globalThis.setTimeout(
        () => reject(new Error("No reply within " + REPLY_TIMEOUT_MS + " ms")),
        REPLY_TIMEOUT_MS,
      );
      waitingForReply[kind].push((payload) => {
        globalThis.clearTimeout(timer);
        resolve(payload);
      });
    });
  }

  // Registers the late service, which answers with its payload behind a
  // prefix, and sends the page's whole service list to the host.
  async function announceLateService() {
    page.register(LATE.fqn, LATE.version, {
      method(payload) {
        return LATE_ANSWER_PREFIX + payload;
      },
    });
    await page.announceServices();
    return page.services().length;
  }

  // Makes the call of `which` and fills `outcome` with what came back.
  async function perform(which, outcome) {
    const begun = performance.now();
    if (which.kind === "ping") {
      outcome.value = await page.ping();
    } else if (which.kind === "announce") {
      outcome.services = await announceLateService();
      outcome.value = "";
    } else if (which.kind === "method") {
      outcome.value = await page.invokeMethod(which.service, which.payload);
    } else {
      const reply = which.awaits === undefined ? null : waitForReply(which.awaits);
      await page.raiseEvent(which.service, which.payload);
      outcome.value = "";
      if (reply !== null) {
        outcome.eventMs = performance.now() - begun;
        outcome.reply = await reply;
        if (which.awaits === "soa") {
          const answer = wevlin.readJson(outcome.reply).SoaResponse;
          outcome.answer = typeof answer === "string" ? decodeBase64(answer) : null;
        }
      }
    }
    outcome.ms = performance.now() - begun;
  }

  const outcomes = [];

  function start(id) {
    const which = steps.find((candidate) => candidate.id === id);
    if (which === undefined) throw new Error("No demo step " + id);
    const outcome = { id, done: false, ok: false };
    outcomes.push(outcome);
    const begun = performance.now();
    perform(which, outcome).then(
      () => Object.assign(outcome, { done: true, ok: true }),
      (error) =>
        Object.assign(outcome, {
          done: true,
          ok: false,
          ms: performance.now() - begun,
          name: error.name,
          message: error.message,
          record: error.record === undefined ? null : error.record,
        }),
    );
    return outcomes.length - 1;
  }

  globalThis.demoPage = Object.freeze({
    version: PAGE_VERSION,
    failingMessage: FAILING_MESSAGE,
    steps: () =>
      JSON.stringify(
        steps.map((which) => ({
          id: which.id,
          title: which.title,
          kind: which.kind,
          fqn: which.service === null ? "" : which.service.fqn,
          version: which.service === null ? "" : which.service.version,
          payload: which.payload,
          awaitsReply: which.awaits !== undefined,
        })),
      ),
    start,
    done: (number) => outcomes[number] !== undefined && outcomes[number].done,
    outcome: (number) => JSON.stringify(outcomes[number]),
    received: (name) =>
      JSON.stringify(
        received.has(name) ? { received: true, payload: received.get(name) } : { received: false },
      ),
  });
})();
