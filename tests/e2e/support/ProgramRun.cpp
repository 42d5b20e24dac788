#include "support/ProgramRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

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

}  // namespace

ProgramRun ProgramRun::Start(const std::string& program, const std::vector<std::string>& arguments,
                             const std::vector<std::string>& environment) {
  std::string pattern =
      (std::filesystem::temp_directory_path() / "wevlin-program-run-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("cannot make a temporary directory: " +
                             std::string(std::strerror(errno)));
  }
  const std::filesystem::path directory(pattern);
  const std::string outPath = (directory / "stdout").string();
  const std::string errPath = (directory / "stderr").string();

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(),
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
    std::filesystem::remove_all(directory);
    throw std::runtime_error("cannot start " + program + ": " + std::strerror(failed));
  }

  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR)
      throw std::runtime_error("waitpid failed: " + std::string(std::strerror(errno)));
  }
  ProgramRun run;
  if (WIFEXITED(status)) {
    run.exitStatus = WEXITSTATUS(status);
  } else if (WIFSIGNALED(status)) {
    run.exitStatus = 128 + WTERMSIG(status);
  }
  run.standardOutput = ReadFile(outPath);
  run.standardError = ReadFile(errPath);
  std::filesystem::remove_all(directory);
  return run;
}

}  // namespace wevlin_e2e
