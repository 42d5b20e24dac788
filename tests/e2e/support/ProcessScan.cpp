#include "support/ProcessScan.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

namespace wevlin_e2e {

namespace {

// Returns the contents of the /proc file `path`, or "" when it cannot be read.
// A process may end while its files are being read; read() then fails (with
// ESRCH), which std::ifstream would turn into an exception from inside its
// buffer, so the file is read with the system's calls.
std::string ReadProcFile(const std::string& path) {
  std::string text;
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

// Reads the state letter and process group of /proc/<pid>/stat; false when
// the process is gone.
bool ReadStat(const std::string& pid, char* state, long* group) {
  const std::string text = ReadProcFile("/proc/" + pid + "/stat");
  // The command name is in parentheses and may hold blanks; the fields
  // after its closing parenthesis are state, parent id, group id, ...
  const std::size_t close = text.rfind(')');
  if (close == std::string::npos) return false;
  std::istringstream fields(text.substr(close + 1));
  long parent = 0;
  fields >> *state >> parent >> *group;
  return static_cast<bool>(fields);
}

std::string ReadCommandLine(const std::string& pid) {
  std::string text = ReadProcFile("/proc/" + pid + "/cmdline");
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

}  // namespace

std::vector<long> ProcessScan::Running(std::int64_t group, const std::string& text) {
  std::vector<long> found;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    const std::string name = entry.path().filename().string();
    if (name.empty() || !std::all_of(name.begin(), name.end(),
                                     [](unsigned char c) { return std::isdigit(c) != 0; })) {
      continue;
    }
    char state = 0;
    long processGroup = 0;
    if (!ReadStat(name, &state, &processGroup) || state == 'Z' || state == 'X') continue;
    const bool inGroup = processGroup == group;
    const bool mentions = !text.empty() && ReadCommandLine(name).find(text) != std::string::npos;
    if (inGroup || mentions) found.push_back(std::stol(name));
  }
  std::sort(found.begin(), found.end());
  return found;
}

bool ProcessScan::IsRunning(std::int64_t pid) {
  char state = 0;
  long group = 0;
  return ReadStat(std::to_string(pid), &state, &group) && state != 'Z' && state != 'X';
}

bool ProcessScan::Exists(std::int64_t pid) {
  struct stat info;
  return pid > 0 && ::stat(("/proc/" + std::to_string(pid)).c_str(), &info) == 0;
}

std::vector<std::string> ProcessScan::Arguments(std::int64_t pid) {
  const std::string text = ReadProcFile("/proc/" + std::to_string(pid) + "/cmdline");
  std::vector<std::string> arguments;
  std::size_t start = 0;
  std::size_t end;
  while ((end = text.find('\0', start)) != std::string::npos) {
    arguments.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return arguments;
}

}  // namespace wevlin_e2e
