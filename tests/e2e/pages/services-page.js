// Page services of the standard catalogue for the end-to-end tests, added to
// the page of e2e-page.js (load this after it): the version test service in
// its "_2014_03" interface, and the session service, whose events are kept.
"use strict";

(() => {
  const sessions = [];

  e2e.page.register("tavo.wevlin.infrastructure.services.version.TestVersionSvc", "_2014_03", {
    method(payload) {
      const request = JSON.parse(payload);
      return {
        ServiceName: request.ServiceName,
        ServiceVersion: request.ServiceVersion,
        Result: request.ExtraInfo === "Extra Info",
        Version: "_2014_03",
      };
    },
  });
  e2e.page.register("tavo.wevlin.infrastructure.services.session.Session.client", "_2014_07", {
    event(payload) {
      sessions.push(payload);
    },
  });

  globalThis.services = Object.freeze({
    sessions: () => JSON.stringify(sessions),
  });
})();
