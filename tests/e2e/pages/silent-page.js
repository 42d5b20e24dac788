// A page that answers the host's ping but never starts the handshake by
// itself, so the host's time-out runs out. The tests can start the handshake
// late with silent.startHandshake() and see when that call has settled.
"use strict";

(() => {
  const page = wevlin.createPage({ version: "silent-page-1" });
  page.install();
  let settled = "no";

  globalThis.silent = Object.freeze({
    startHandshake() {
      settled = "pending";
      page.startHandshake().then(
        () => (settled = "resolved"),
        (error) => (settled = "rejected: " + error.message),
      );
    },
    settled: () => settled,
  });
})();
