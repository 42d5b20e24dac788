// Page services of the standard catalogue that the host reaches through its
// proxies, and the page services that receive the host's asynchronous
// replies, added to the page of e2e-page.js (load this after it):
//   version test service "_2014_02" and "_2014_03"  methods, as the host's
//                                                   proxies expect them
//   Refresh.client "_2014_07", OpenLocation.client  events, kept
//   "_2014_02"
//   ClientInfo.client "_2014_07"                    method: two pairs
//   tavo.e2e.SoaReply.client "_2014_02"             event: async SOA replies,
//                                                   kept
//   tavo.e2e.AuthReply.client "_2014_02"            event: login outcomes,
//                                                   kept
// Every payload that arrives is kept under the name of its service; the
// tests read them through window.catalogue.
"use strict";

(() => {
  const VERSION_TEST = "tavo.wevlin.infrastructure.services.version.TestVersionSvc";
  const received = {
    version02: [],
    version03: [],
    refresh: [],
    openLocation: [],
    clientInfo: [],
    soaReplies: [],
    authReplies: [],
  };

  e2e.page.register(VERSION_TEST, "_2014_02", {
    method(payload) {
      received.version02.push(payload);
      const request = JSON.parse(payload);
      return { ServiceName: request.ServiceName, ServiceVersion: request.ServiceVersion, Version: "_2014_02" };
    },
  });
  e2e.page.register(VERSION_TEST, "_2014_03", {
    method(payload) {
      received.version03.push(payload);
      const request = JSON.parse(payload);
      return {
        ServiceName: request.ServiceName,
        ServiceVersion: request.ServiceVersion,
        Result: request.ExtraInfo === "Extra Info",
        Version: "_2014_03",
      };
    },
  });
  e2e.page.register("tavo.wevlin.infrastructure.services.refresh.Refresh.client", "_2014_07", {
    event(payload) {
      received.refresh.push(payload);
    },
  });
  e2e.page.register("tavo.wevlin.infrastructure.services.openlocation.OpenLocation.client", "_2014_02", {
    event(payload) {
      received.openLocation.push(payload);
    },
  });
  e2e.page.register("tavo.wevlin.infrastructure.services.clientinfo.ClientInfo.client", "_2014_07", {
    method(payload) {
      received.clientInfo.push(payload);
      return {
        Data: [
          { Key: "page", Value: "catalogue" },
          { Key: "greeting", Value: "Grüße, it's \"here\"" },
        ],
        Version: "_2014_07",
      };
    },
  });
  e2e.page.register("tavo.e2e.SoaReply.client", "_2014_02", {
    event(payload) {
      received.soaReplies.push(payload);
    },
  });
  e2e.page.register("tavo.e2e.AuthReply.client", "_2014_02", {
    event(payload) {
      received.authReplies.push(payload);
    },
  });

  globalThis.catalogue = Object.freeze({
    // Returns the payloads that service `name` (a key of received) got, as
    // JSON text.
    received: (name) => JSON.stringify(received[name]),
    count: (name) => received[name].length,
  });
})();
