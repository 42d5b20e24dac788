#include <fcntl.h>
#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): POSIX kill() and sigset_t
#include <spawn.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): POSIX mkdtemp()
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <thread>

#include "wevlin/webcontrols/chromium/ChromiumError.h"
#include "wevlin/webcontrols/chromium/internal/ChromiumProcess.h"

// POSIX has the application declare it; glibc does too, but only for _GNU_SOURCE.
extern char** environ;  // NOLINT(readability-redundant-declaration)

namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal {

namespace {

// The longest wait for a killed browser to end.
constexpr std::chrono::milliseconds kReapTimeout{5000};

std::string SystemMessage(int error) { return std::system_category().message(error); }

bool IsExecutableFile(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

// Returns the path to start: `executable` itself when it names a path, else
// the first executable of that name on PATH; "" when there is none.
std::string ResolveExecutable(const std::string& executable) {
  if (executable.find('/') != std::string::npos) {
    return IsExecutableFile(executable) ? executable : std::string();
  }
  const char* path =
      std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe): the library never sets it
  std::string directories = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
  std::size_t start = 0;
  while (start <= directories.size()) {
    std::size_t end = directories.find(':', start);
    if (end == std::string::npos) end = directories.size();
    std::string candidate = directories.substr(start, end - start);
    if (candidate.empty()) candidate = ".";
    candidate += '/';
    candidate += executable;
    if (IsExecutableFile(candidate)) return candidate;
    start = end + 1;
  }
  return {};
}

void CloseQuietly(int& fd) {
  if (fd >= 0) {
    ::close(fd);
    fd = -1;
  }
}

// Moves `fd` above the browser's pipe descriptors (3 and 4), so that the
// spawn's dup2 onto them never finds source and target equal.
int MoveAbovePipeDescriptors(int fd) {
  if (fd > 4) return fd;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): fcntl(2) is variadic
  const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, 5);
  ::close(fd);
  return moved;
}

// Returns the contents of the /proc file `path`, or "" when it cannot be read.
// A process may end while its files are being read; read() then fails (with
// ESRCH), which std::ifstream would turn into an exception from inside its
// buffer, so the file is read with the system's calls.
std::string ReadProcFile(const std::string& path) {
  std::string text;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): open(2) is variadic
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return text;
  char buffer[4096];
  for (;;) {
    const ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count > 0) {
      text.append(buffer, static_cast<std::size_t>(count));
    } else if (count < 0 && errno == EINTR) {
      continue;
    } else {
      if (count < 0) text.clear();
      break;
    }
  }
  ::close(fd);
  return text;
}

// Reads the state letter, the parent's id and the process group, separated by
// blanks, from the start of `text`; false when one of them is missing.
bool ReadStatFields(const char* text, char& state, long& parent, long& processGroup) {
  while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
  if (*text == '\0') return false;
  state = *text++;
  char* end = nullptr;
  parent = std::strtol(text, &end, 10);
  if (end == text) return false;
  text = end;
  processGroup = std::strtol(text, &end, 10);
  return end != text;
}

// Returns the ids of the processes that still run (zombies have ended) and
// are in the process group `group` or name `text` on their command line,
// read from /proc where the system has one (else none are found).
std::vector<pid_t> LeftoverProcesses(pid_t group, const std::string& text) {
  std::vector<pid_t> found;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename().string();
    if (name.empty() || !std::all_of(name.begin(), name.end(),
                                     [](unsigned char c) { return std::isdigit(c) != 0; })) {
      continue;
    }
    // The fields after the command name in parentheses: state, parent, group.
    const std::string status = ReadProcFile("/proc/" + name + "/stat");
    const std::size_t close = status.rfind(')');
    if (close == std::string::npos) continue;
    char state = 0;
    long parent = 0;
    long processGroup = 0;
    if (!ReadStatFields(status.c_str() + close + 1, state, parent, processGroup) || state == 'Z' ||
        state == 'X') {
      continue;
    }
    bool ours = processGroup == group;
    if (!ours) {
      const std::string commandLine = ReadProcFile("/proc/" + name + "/cmdline");
      ours = commandLine.find(text) != std::string::npos;
    }
    if (ours) found.push_back(static_cast<pid_t>(std::stol(name)));
  }
  return found;
}

// Ends what the browser leaves once it is killed and waits, briefly, until
// it has ended: the processes of its group, which end when killed but not
// at the very moment, and the helpers that it started outside its group
// (its crash handlers start sessions of their own), which name the profile
// on their command line and would end by themselves shortly after the
// browser.
void EndLeftoverProcesses(pid_t group, const std::string& profileDirectory) {
  if (profileDirectory.empty()) return;
  for (int attempt = 0; attempt < 500; ++attempt) {
    const std::vector<pid_t> leftovers = LeftoverProcesses(group, profileDirectory);
    if (leftovers.empty()) return;
    for (pid_t leftover : leftovers) ::kill(leftover, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void RemoveDirectory(const std::string& directory) {
  if (directory.empty()) return;
  // Helper processes of the browser may still be writing for a moment after
  // it has been killed; try again briefly before giving up.
  for (int attempt = 0; attempt < 50; ++attempt) {
    std::error_code error;
    std::filesystem::remove_all(directory, error);
    if (!std::filesystem::exists(directory, error)) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

// The owned pieces of a start under way, released unless the start succeeds.
struct LaunchResources {
  int commandPair[2] = {-1, -1};
  int eventPair[2] = {-1, -1};
  std::string directory;
  ~LaunchResources() {
    for (int& fd : commandPair) CloseQuietly(fd);
    for (int& fd : eventPair) CloseQuietly(fd);
    RemoveDirectory(directory);
  }
};

}  // namespace

ChromiumProcess::ChromiumProcess(const std::string& executable,
                                 const std::vector<std::string>& arguments, bool showOutput)
    : executable_(ResolveExecutable(executable)) {
  if (executable_.empty()) {
    throw ChromiumError(ChromiumError::Kind::LaunchFailed,
                        "Cannot start the browser: " + executable +
                            " does not exist or is not executable (install the Debian package "
                            "chromium)");
  }

  LaunchResources resources;
  const char* tmp =
      std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): the library never sets it
  const std::string base = tmp != nullptr && *tmp != '\0' ? tmp : "/tmp";
  std::string pattern = base + "/wevlin-chromium-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) {
    const int error = errno;
    throw ChromiumError(
        ChromiumError::Kind::LaunchFailed,
        "Cannot create a temporary browser profile in " + base + ": " + SystemMessage(error));
  }
  resources.directory = pattern;
  // The browser's per-user configuration and cache go into the profile too,
  // so that nothing is left in the user's home directory.
  const std::string configHome = pattern + "/config";
  const std::string cacheHome = pattern + "/cache";
  ::mkdir(configHome.c_str(), 0700);
  ::mkdir(cacheHome.c_str(), 0700);

  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, resources.commandPair) != 0 ||
      ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, resources.eventPair) != 0) {
    const int error = errno;
    throw ChromiumError(ChromiumError::Kind::LaunchFailed,
                        "Cannot create the browser's DevTools pipe: " + SystemMessage(error));
  }
  resources.commandPair[1] = MoveAbovePipeDescriptors(resources.commandPair[1]);
  resources.eventPair[1] = MoveAbovePipeDescriptors(resources.eventPair[1]);
  if (resources.commandPair[1] < 0 || resources.eventPair[1] < 0) {
    const int error = errno;
    throw ChromiumError(ChromiumError::Kind::LaunchFailed,
                        "Cannot create the browser's DevTools pipe: " + SystemMessage(error));
  }
  // NOLINTBEGIN(cppcoreguidelines-pro-type-vararg): fcntl(2) is variadic
  ::fcntl(resources.commandPair[0], F_SETFL,
          ::fcntl(resources.commandPair[0], F_GETFL) | O_NONBLOCK);
  // NOLINTEND(cppcoreguidelines-pro-type-vararg)

  // Everything the child needs is prepared before the spawn.
  std::vector<std::string> argumentTexts;
  argumentTexts.push_back(executable_);
  argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
  argumentTexts.push_back("--user-data-dir=" + pattern);
  std::vector<char*> argv;
  argv.reserve(argumentTexts.size() + 1);
  for (std::string& text : argumentTexts) argv.push_back(text.data());
  argv.push_back(nullptr);

  std::vector<std::string> environmentTexts;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (text.rfind("XDG_CONFIG_HOME=", 0) == 0 || text.rfind("XDG_CACHE_HOME=", 0) == 0) continue;
    environmentTexts.push_back(text);
  }
  environmentTexts.push_back("XDG_CONFIG_HOME=" + configHome);
  environmentTexts.push_back("XDG_CACHE_HOME=" + cacheHome);
  std::vector<char*> envp;
  envp.reserve(environmentTexts.size() + 1);
  for (std::string& text : environmentTexts) envp.push_back(text.data());
  envp.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_init(&attributes);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  if (!showOutput) {
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  }
  posix_spawn_file_actions_adddup2(&actions, resources.commandPair[1], 3);
  posix_spawn_file_actions_adddup2(&actions, resources.eventPair[1], 4);
#if defined(__GLIBC__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 34))
  // No other descriptor of the application reaches the browser.
  posix_spawn_file_actions_addclosefrom_np(&actions, 5);
#endif
  // A process group of its own, default signal handling and nothing blocked,
  // whatever the application has set up.
  sigset_t noSignals;
  sigemptyset(&noSignals);
  sigset_t defaultSignals;
  sigemptyset(&defaultSignals);
  for (int signal : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGCHLD, SIGUSR1, SIGUSR2}) {
    sigaddset(&defaultSignals, signal);
  }
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setsigmask(&attributes, &noSignals);
  posix_spawnattr_setsigdefault(&attributes, &defaultSignals);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  pid_t pid = -1;
  const int spawnError =
      ::posix_spawn(&pid, executable_.c_str(), &actions, &attributes, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (spawnError != 0) {
    throw ChromiumError(
        ChromiumError::Kind::LaunchFailed,
        "Cannot start the browser " + executable_ + ": " + SystemMessage(spawnError));
  }

  pid_ = pid;
  commandFd_ = resources.commandPair[0];
  eventFd_ = resources.eventPair[0];
  resources.commandPair[0] = -1;
  resources.eventPair[0] = -1;
  profileDirectory_ = resources.directory;
  resources.directory.clear();
}

ChromiumProcess::~ChromiumProcess() {
  Terminate();
  CloseQuietly(commandFd_);
  CloseQuietly(eventFd_);
  RemoveDirectory(profileDirectory_);
}

const std::string& ChromiumProcess::ProfileDirectory() const { return profileDirectory_; }

std::int64_t ChromiumProcess::ProcessId() const { return pid_; }

bool ChromiumProcess::RunsAsAdministrator() { return ::geteuid() == 0; }

bool ChromiumProcess::Write(const char* data, std::size_t size,
                            std::chrono::steady_clock::time_point deadline, std::string* error) {
  std::lock_guard<std::mutex> lock(writeMutex_);
  std::size_t written = 0;
  while (written < size) {
    const ssize_t count =
        ::send(commandFd_, data + written, size - written, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count > 0) {
      written += static_cast<std::size_t>(count);
      continue;
    }
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
          deadline - std::chrono::steady_clock::now());
      if (left.count() <= 0) {
        *error = "timeout";
        return false;
      }
      pollfd entry{commandFd_, POLLOUT, 0};
      const int ready =
          ::poll(&entry, 1, static_cast<int>(std::min<long long>(left.count() + 1, 1000)));
      if (ready < 0 && errno != EINTR) {
        *error = SystemMessage(errno);
        return false;
      }
      continue;
    }
    *error = SystemMessage(count < 0 ? errno : EPIPE);
    return false;
  }
  return true;
}

std::ptrdiff_t ChromiumProcess::Read(char* buffer, std::size_t size) {
  while (true) {
    const ssize_t count = ::recv(eventFd_, buffer, size, 0);
    if (count >= 0) return count;
    if (errno == EINTR) continue;
    return -1;
  }
}

void ChromiumProcess::StopReading() { ::shutdown(eventFd_, SHUT_RDWR); }

bool ChromiumProcess::ObserveExitLocked() {
  if (exited_) return true;
  // The process is observed but left a zombie until Terminate(): while it
  // exists, its id (which names its process group) cannot be given to
  // another process, so killing the group never reaches a stranger.
  siginfo_t info;
  std::memset(&info, 0, sizeof info);
  int result = 0;
  do {
    result = ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT | WNOHANG);
  } while (result < 0 && errno == EINTR);
  if (result < 0) {
    // Someone else reaped it (an application that ignores SIGCHLD does).
    exited_ = true;
    return true;
  }
  if (info.si_pid == 0) return false;
  exited_ = true;
  statusKnown_ = true;
  if (info.si_code == CLD_EXITED) {
    exitCode_ = info.si_status;
  } else {
    exitSignal_ = info.si_status;
  }
  return true;
}

bool ChromiumProcess::WaitForExit(std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    {
      std::lock_guard<std::mutex> lock(stateMutex_);
      if (ObserveExitLocked()) return true;
    }
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

std::string ChromiumProcess::ExitDescription() {
  std::lock_guard<std::mutex> lock(stateMutex_);
  if (!ObserveExitLocked()) return {};
  if (!statusKnown_) return "ended";
  if (exitSignal_ != 0) return "killed by signal " + std::to_string(exitSignal_);
  return "exit code " + std::to_string(exitCode_);
}

void ChromiumProcess::Terminate() {
  std::lock_guard<std::mutex> lock(stateMutex_);
  if (terminated_ || pid_ <= 0) return;
  terminated_ = true;
  ::kill(-static_cast<pid_t>(pid_), SIGKILL);
  ::kill(static_cast<pid_t>(pid_), SIGKILL);
  // A killed process ends at once, unless the system holds it in an
  // uninterruptible wait; that is not waited for without end.
  const auto deadline = std::chrono::steady_clock::now() + kReapTimeout;
  while (!ObserveExitLocked() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  // While the browser is not reaped its id stays taken, so the group id
  // still names the browser's processes only.
  EndLeftoverProcesses(static_cast<pid_t>(pid_), profileDirectory_);
  if (exited_) {
    int status = 0;
    while (::waitpid(static_cast<pid_t>(pid_), &status, WNOHANG) < 0 && errno == EINTR) {
    }
  }
}

}  // namespace Com::Velmora::TAVO::Wevlin::WebControls::Chromium::internal
