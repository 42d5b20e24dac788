#include "support/ProcessScan.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace wevlin_e2e {

namespace {

// Reads the state letter and process group of /proc/<pid>/stat; false when
// the process is gone.
bool ReadStat(const std::string& pid, char* state, long* group) {
  std::ifstream file("/proc/" + pid + "/stat");
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
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
  std::ifstream file("/proc/" + pid + "/cmdline", std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
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

}  // namespace wevlin_e2e
