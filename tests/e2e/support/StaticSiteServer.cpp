#include "support/StaticSiteServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace wevlin_e2e {

namespace {

// The longest request head read; browsers send far less.
constexpr std::size_t kMaxRequestBytes = 16 * 1024;

std::string ContentType(const std::string& path) {
  const auto dot = path.rfind('.');
  const std::string extension = dot == std::string::npos ? "" : path.substr(dot);
  if (extension == ".html") return "text/html; charset=utf-8";
  if (extension == ".js") return "application/javascript; charset=utf-8";
  if (extension == ".json") return "application/json";
  if (extension == ".css") return "text/css";
  return "text/plain; charset=utf-8";
}

void SendAll(int connection, const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t n = ::send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (n <= 0) return;
    sent += static_cast<std::size_t>(n);
  }
}

void Respond(int connection, int status, const char* reason, const std::string& type,
             const std::string& body, bool withBody) {
  std::string head = "HTTP/1.1 " + std::to_string(status) + " " + reason + "\r\n";
  head += "Content-Type: " + type + "\r\n";
  head += "Content-Length: " + std::to_string(body.size()) + "\r\n";
  head += "Cache-Control: no-store\r\nConnection: close\r\n\r\n";
  SendAll(connection, withBody ? head + body : head);
}

}  // namespace

StaticSiteServer::StaticSiteServer(std::string root, std::string webRoot)
    : root_(std::move(root)), webRoot_(std::move(webRoot)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener_ < 0) throw std::runtime_error(std::string("socket: ") + std::strerror(errno));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = 0;
  socklen_t length = sizeof(address);
  if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
      ::listen(listener_, 64) != 0 ||
      ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    const std::string reason = std::strerror(errno);
    ::close(listener_);
    throw std::runtime_error("Cannot listen on 127.0.0.1: " + reason);
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { Serve(); });
}

StaticSiteServer::~StaticSiteServer() {
  stopping_ = true;
  ::shutdown(listener_, SHUT_RDWR);
  thread_.join();
  ::close(listener_);
}

std::string StaticSiteServer::Origin() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::string StaticSiteServer::Url(const std::string& path) const {
  return Origin() + (path.empty() || path[0] != '/' ? "/" : "") + path;
}

std::vector<std::string> StaticSiteServer::Requests() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return requests_;
}

void StaticSiteServer::Serve() {
  while (!stopping_) {
    pollfd waiting{listener_, POLLIN, 0};
    if (::poll(&waiting, 1, 200) <= 0) continue;
    const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    timeval limit{5, 0};
    ::setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    Answer(connection);
    ::close(connection);
  }
}

void StaticSiteServer::Answer(int connection) {
  std::string request;
  char buffer[4096];
  while (request.find("\r\n\r\n") == std::string::npos) {
    if (request.size() > kMaxRequestBytes) {
      Respond(connection, 431, "Request Header Fields Too Large", "text/plain", "", true);
      return;
    }
    const ssize_t n = ::recv(connection, buffer, sizeof(buffer), 0);
    if (n <= 0) return;
    request.append(buffer, static_cast<std::size_t>(n));
  }
  const auto methodEnd = request.find(' ');
  const auto pathEnd = request.find(' ', methodEnd + 1);
  if (methodEnd == std::string::npos || pathEnd == std::string::npos) {
    Respond(connection, 400, "Bad Request", "text/plain", "", true);
    return;
  }
  const std::string method = request.substr(0, methodEnd);
  std::string path = request.substr(methodEnd + 1, pathEnd - methodEnd - 1);
  path = path.substr(0, path.find_first_of("?#"));
  {
    std::lock_guard<std::mutex> lock(mutex_);
    requests_.push_back(path);
  }
  if (method != "GET" && method != "HEAD") {
    Respond(connection, 405, "Method Not Allowed", "text/plain", "", true);
    return;
  }
  if (path.find("..") != std::string::npos || path.find('%') != std::string::npos || path.empty() ||
      path[0] != '/') {
    Respond(connection, 403, "Forbidden", "text/plain", "", method == "GET");
    return;
  }
  const std::string file = path.rfind("/web/", 0) == 0 ? webRoot_ + path.substr(4) : root_ + path;
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    Respond(connection, 404, "Not Found", "text/plain", "not found", method == "GET");
    return;
  }
  const std::string body((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  Respond(connection, 200, "OK", ContentType(path), body, method == "GET");
}

}  // namespace wevlin_e2e
