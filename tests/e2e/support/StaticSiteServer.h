#ifndef WEVLIN_TESTS_E2E_SUPPORT_STATICSITESERVER_H_
#define WEVLIN_TESTS_E2E_SUPPORT_STATICSITESERVER_H_

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace wevlin_e2e {

// A small static web server for the end-to-end tests, so that a page can be
// served from its own origin: http://127.0.0.1:<port>, listening on the
// loopback address only, on a port the system picks. It serves the files
// below `root` (GET and HEAD; 404 for what is missing, 403 for a path that
// climbs out of the root, 405 for other methods), one request per
// connection, with no caching, and answers requests one after the other on
// its own thread until it is destroyed.
//
// The URL path "/web/" maps to the page library's folder `webRoot`, so that a
// page anywhere can load /web/wevlin.js.
//
// Threads: construct and destroy on one thread; Origin, Url and Requests may
// be called from any thread.
class StaticSiteServer {
 public:
  // Starts serving `root` (and `webRoot` under /web/). Throws
  // std::runtime_error when the socket cannot be set up.
  StaticSiteServer(std::string root, std::string webRoot);
  ~StaticSiteServer();
  StaticSiteServer(const StaticSiteServer&) = delete;
  StaticSiteServer& operator=(const StaticSiteServer&) = delete;

  // Returns "http://127.0.0.1:<port>".
  std::string Origin() const;

  // Returns the URL of `path` ("/a.html" or "a.html") on this server.
  std::string Url(const std::string& path) const;

  // Returns the paths requested so far, in order.
  std::vector<std::string> Requests() const;

 private:
  void Serve();
  void Answer(int connection);

  std::string root_;
  std::string webRoot_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

}  // namespace wevlin_e2e

#endif  // WEVLIN_TESTS_E2E_SUPPORT_STATICSITESERVER_H_
