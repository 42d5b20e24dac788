// The page half of the desktop example (examples/desktop). Loaded after
// wevlin.js; the host control defines globalThis.wevlinHost before either runs.
//
// What the page does:
//  - offers the session and refresh services, which the host's "Send
//    session" and "Refresh" buttons call, and the reply service to which the
//    host sends the answer of an asynchronous request;
//  - starts the handshake and, once the host is ready, sends the startup
//    notification, which logs the host in;
//  - tells the host it is busy, asks for the host's configuration, forwards a
//    log line, starts one asynchronous request and shows its answer, then
//    tells the host it is idle;
//  - shows every session and refresh it receives and forwards one log line
//    for each, so that the host sees that it arrived.
(() => {
  "use strict";

  const { SERVICES, WIRE_NAMES } = wevlin;
  const SOA_REPLY = Object.freeze({ fqn: WIRE_NAMES.SOA_JSON_REQUEST_CLIENT, version: "_2014_02" });
  const REQUEST = Object.freeze({ Warehouse: "North", Category: "Tea" });
  const REPLY_TIMEOUT_MS = 20000;
  const loadedAt = performance.now();

  const statusLine = document.getElementById("status");
  const fromHostList = document.getElementById("from-host");

  function setStatus(text, className) {
    statusLine.textContent = text;
    statusLine.className = "status " + (className || "");
  }

  function elapsed() {
    return ((performance.now() - loadedAt) / 1000).toFixed(2) + " s";
  }

  function describeObjects(objects) {
    const names = (objects || []).map((object) => object.ObjId + " (" + object.ObjType + ")");
    return names.length === 0 ? "nothing" : names.join(", ");
  }

  function decodeBase64(text) {
    const binary = atob(text);
    return new TextDecoder().decode(Uint8Array.from(binary, (c) => c.charCodeAt(0)));
  }

  const page = wevlin.createPage({ version: "desktop-page 1.0" });

  // Sends one line to the host's log, as an event: nothing waits for it.
  function forwardLog(level, text) {
    page
      .raiseEvent(SERVICES.LOGGER_FORWARD, { FormatMessage: text, Level: level, Version: "_2014_02" })
      .catch((error) => setStatus("log forwarding failed: " + error.message, "failed"));
  }

  // Lists what the host sent and tells the host that it arrived.
  function received(text) {
    const item = document.createElement("li");
    item.textContent = elapsed() + "  " + text;
    fromHostList.append(item);
    forwardLog("Info", text);
  }

  // --- Page services, called by the host ------------------------------------

  page.register(SERVICES.SESSION_CLIENT.fqn, SERVICES.SESSION_CLIENT.version, {
    event(payload) {
      const session = wevlin.readJson(payload);
      const preferences = (session.Preferences || []).map((p) => p.Name + " = " + p.Values.join(", "));
      received(
        "Session received: " +
          describeObjects(session.SessionObjects) +
          "; preferences: " +
          (preferences.length === 0 ? "none" : preferences.join("; ")),
      );
    },
  });

  page.register(SERVICES.REFRESH_CLIENT.fqn, SERVICES.REFRESH_CLIENT.version, {
    event(payload) {
      const refresh = wevlin.readJson(payload);
      received(
        "Refresh received: updated " +
          describeObjects(refresh.UpdatedObjects) +
          "; deleted " +
          describeObjects(refresh.DeletedObjects),
      );
    },
  });

  // The host answers the asynchronous request later, through this service.
  let deliverReply = null;
  page.register(SOA_REPLY.fqn, SOA_REPLY.version, {
    event(payload) {
      if (deliverReply !== null) deliverReply(wevlin.readJson(payload));
    },
  });

  page.install();

  // --- The page's own calls into the host -----------------------------------

  function showSettings(configuration) {
    const list = document.getElementById("settings");
    list.replaceChildren();
    for (const { Key, Value } of configuration.Settings) {
      const term = document.createElement("dt");
      term.textContent = Key;
      const value = document.createElement("dd");
      value.textContent = Value;
      list.append(term, value);
      if (Key === "Accent") document.documentElement.style.setProperty("--accent", Value);
    }
  }

  // Starts the request, then waits for the reply that the host's worker
  // sends a moment later.
  async function countItems() {
    const request = document.getElementById("request");
    const answer = document.getElementById("answer");
    request.textContent = "Inventory.CountItems " + wevlin.writeJson(REQUEST) + ", sent at " + elapsed();
    const reply = new Promise((resolve, reject) => {
      const timer = setTimeout(() => reject(new Error("no reply within " + REPLY_TIMEOUT_MS + " ms")), REPLY_TIMEOUT_MS);
      deliverReply = (value) => {
        clearTimeout(timer);
        resolve(value);
      };
    });
    const sentAt = performance.now();
    await page.raiseEvent(SERVICES.ASYNC_SOA_JSON_MESSAGE, {
      CacheId: "count-1",
      ReplyServiceDescriptor: wevlin.descriptorToJson(SOA_REPLY),
      ServiceName: "Inventory",
      OperationName: "CountItems",
      Message: wevlin.writeJson(REQUEST),
      Version: "_2014_02",
    });
    request.textContent += "; the host is working on it";
    const { SoaResponse, Exception } = await reply;
    if (Exception) throw new Error(Exception.name + " " + Exception.message);
    const { Count } = wevlin.readJson(decodeBase64(SoaResponse));
    const took = (performance.now() - sentAt).toFixed(0);
    answer.textContent = Count + " items of " + REQUEST.Category + " in " + REQUEST.Warehouse;
    request.textContent += "; answered after " + took + " ms";
    forwardLog("Info", "Request answered: " + Count + " items of " + REQUEST.Category);
  }

  (async () => {
    try {
      await page.startHandshake();
      await page.whenReady({ timeoutMs: REPLY_TIMEOUT_MS });
      await page.sendStartupNotification(); // the host is now LoggedIn
      setStatus("logged in to host " + page.hostVersion + " at " + elapsed(), "ready");
      await page.raiseEvent(SERVICES.CLIENT_STATUS, { State: "busy", Version: "_2014_07" });
      showSettings(wevlin.readJson(await page.invokeMethod(SERVICES.HOST_CONFIGURATION_2014_07, "")));
      forwardLog("Info", "The desktop page is up (wevlin.js " + wevlin.VERSION + ")");
      await countItems();
      await page.raiseEvent(SERVICES.CLIENT_STATUS, { State: "idle", Version: "_2014_07" });
    } catch (error) {
      setStatus("failed: " + error.message, "failed");
      forwardLog("Error", "The desktop page failed: " + error.message);
    }
  })();
})();
