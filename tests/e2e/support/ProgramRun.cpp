#include "support/ProgramRun.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

extern char** environ;

namespace wevlin_e2e {

namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// The test's environment with `additions` put in, each replacing a variable
// of the same name.
std::vector<std::string> MergedEnvironment(const std::vector<std::string>& additions) {
  std::vector<std::string> merged;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string variable(*entry);
    const std::string name = variable.substr(0, variable.find('='));
    bool replaced = false;
    for (const std::string& addition : additions) {
      if (addition.substr(0, addition.find('=')) == name) replaced = true;
    }
    if (!replaced) merged.push_back(variable);
  }
  merged.insert(merged.end(), additions.begin(), additions.end());
  return merged;
}

// A fresh private directory for one run's captured files, removed with the
// object.
class RunDirectory {
 public:
  RunDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "wevlin-program-run-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("cannot make a temporary directory: " +
                               std::string(std::strerror(errno)));
    }
    path_ = pattern;
  }
  RunDirectory(const RunDirectory&) = delete;
  RunDirectory& operator=(const RunDirectory&) = delete;
  ~RunDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::string File(const char* name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// Starts `program` with `arguments` and the merged `environment`, its
// standard input empty, standard error into the file `errorPath`, and
// standard output as `addStandardOutput` arranges. Returns its process id.
template <typename AddStandardOutput>
pid_t Spawn(const std::string& program, const std::vector<std::string>& arguments,
            const std::vector<std::string>& environment, const std::string& errorPath,
            AddStandardOutput addStandardOutput) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  addStandardOutput(&actions);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorPath.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);

  std::vector<std::string> argumentTexts = {program};
  argumentTexts.insert(argumentTexts.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& text : argumentTexts) argv.push_back(text.data());
  argv.push_back(nullptr);
  std::vector<std::string> environmentTexts = MergedEnvironment(environment);
  std::vector<char*> envp;
  for (std::string& text : environmentTexts) envp.push_back(text.data());
  envp.push_back(nullptr);

  pid_t pid = 0;
  const int failed =
      posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) {
    throw std::runtime_error("cannot start " + program + ": " + std::strerror(failed));
  }
  return pid;
}

// Waits for `pid` to end and returns its exit status, or 128 plus the
// signal's number when a signal ended it.
int WaitForExit(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) {
      throw std::runtime_error("waitpid failed: " + std::string(std::strerror(errno)));
    }
  }
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return -1;
}

}  // namespace

ProgramRun ProgramRun::Start(const std::string& program, const std::vector<std::string>& arguments,
                             const std::vector<std::string>& environment) {
  const RunDirectory directory;
  const std::string outPath = directory.File("stdout");
  const std::string errPath = directory.File("stderr");
  const pid_t pid =
      Spawn(program, arguments, environment, errPath, [&](posix_spawn_file_actions_t* actions) {
        posix_spawn_file_actions_addopen(actions, STDOUT_FILENO, outPath.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
      });
  ProgramRun run;
  run.exitStatus = WaitForExit(pid);
  run.standardOutput = ReadFile(outPath);
  run.standardError = ReadFile(errPath);
  return run;
}

ProgramRun ProgramRun::StartOnTerminal(const std::string& program,
                                       const std::vector<std::string>& arguments,
                                       const std::vector<std::string>& environment,
                                       std::chrono::seconds limit) {
  const RunDirectory directory;
  const std::string errPath = directory.File("stderr");
  int terminal = -1;
  int programSide = -1;
  if (openpty(&terminal, &programSide, nullptr, nullptr, nullptr) != 0) {
    throw std::runtime_error("openpty failed: " + std::string(std::strerror(errno)));
  }
  ::fcntl(terminal, F_SETFD, FD_CLOEXEC);
  pid_t pid = 0;
  try {
    pid = Spawn(program, arguments, environment, errPath, [&](posix_spawn_file_actions_t* actions) {
      posix_spawn_file_actions_adddup2(actions, programSide, STDOUT_FILENO);
      posix_spawn_file_actions_addclose(actions, programSide);
    });
  } catch (...) {
    ::close(programSide);
    ::close(terminal);
    throw;
  }
  ::close(programSide);

  // Reads until the program's side is closed (read fails with EIO), which
  // happens when the program and everything that inherited its output end.
  std::string output;
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (;;) {
    if (std::chrono::steady_clock::now() > deadline) {
      ::kill(pid, SIGKILL);
      ADD_FAILURE() << program << " did not end within " << limit.count() << " s";
      break;
    }
    pollfd ready = {terminal, POLLIN, 0};
    if (::poll(&ready, 1, 100) <= 0) continue;
    char buffer[4096];
    const ssize_t count = ::read(terminal, buffer, sizeof buffer);
    if (count > 0) {
      output.append(buffer, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  ::close(terminal);

  ProgramRun run;
  run.exitStatus = WaitForExit(pid);
  for (std::size_t at = output.find("\r\n"); at != std::string::npos;
       at = output.find("\r\n", at)) {
    output.erase(at, 1);
  }
  run.standardOutput = std::move(output);
  run.standardError = ReadFile(errPath);
  return run;
}

}  // namespace wevlin_e2e
