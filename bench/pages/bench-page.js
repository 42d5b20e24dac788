// The page side of the browser benchmarks. Loaded after web/src/wevlin.js;
// the host control defines globalThis.wevlinHost before either runs.
//
// The page offers one service to the host, bench.browser.Echo.client
// (_2014_07), whose method answers its payload. It waits for the host's ping,
// starts the handshake, and is ready when the host's startup notification
// arrives.
//
// The host drives calls into the host through window.bench:
//   bench.ready()                      true once the handshake is done
//   bench.start(path, count, size)     starts `count` calls one after another
//                                      of the host's echo service with a
//                                      payload of `size` bytes, through
//                                      "library" (page.invokeMethod of
//                                      wevlin.js) or "bridge" (the control's
//                                      wevlinHost.tavoHostMethod directly)
//   bench.done()                       true once the calls have ended
//   bench.result()                     "count failures totalMs" followed by
//                                      each call's time in milliseconds
"use strict";

(() => {
  const page = wevlin.createPage({ version: "bench-page-1" });
  const HOST_ECHO = { fqn: "tavo.wevlin.infrastructure.services.bench.Echo.host", version: "_2014_07" };
  const HOST_ECHO_JSON = JSON.stringify({ FQN: HOST_ECHO.fqn, SvcVersion: HOST_ECHO.version });

  let ready = false;
  let run = null;

  page.register("bench.browser.Echo.client", "_2014_07", {
    method(payload) {
      return payload;
    },
  });
  page.install();
  page.on("ready", () => {
    ready = true;
  });

  const waitForPing = globalThis.setInterval(() => {
    if (page.hostVersion === null) return;
    globalThis.clearInterval(waitForPing);
    page.startHandshake();
  }, 5);

  async function calls(path, count, payload, state) {
    const call =
      path === "bridge"
        ? () => globalThis.wevlinHost.tavoHostMethod(HOST_ECHO_JSON, payload)
        : () => page.invokeMethod(HOST_ECHO, payload);
    const begin = performance.now();
    for (let i = 0; i < count; i++) {
      const start = performance.now();
      const answer = await call();
      state.times.push(performance.now() - start);
      if (answer !== payload) state.failures++;
    }
    state.totalMs = performance.now() - begin;
    state.done = true;
  }

  globalThis.bench = Object.freeze({
    ready: () => ready,
    start(path, count, size) {
      run = { done: false, failures: 0, totalMs: 0, times: [] };
      const state = run;
      calls(path, count, "x".repeat(size), state).catch(() => {
        state.failures++;
        state.done = true;
      });
      return true;
    },
    done: () => run !== null && run.done,
    result: () =>
      [run.times.length, run.failures, run.totalMs]
        .concat(run.times.map((t) => t.toFixed(4)))
        .join(" "),
    clock: () => {
      // The smallest step of performance.now(), to judge the per-call times.
      let step = Infinity;
      let last = performance.now();
      for (let i = 0; i < 100000 && step > 0.0001; i++) {
        const now = performance.now();
        if (now > last) {
          step = Math.min(step, now - last);
          last = now;
        }
      }
      return step;
    },
  });
})();
