#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "support/ProcessMemory.h"

namespace wevlin_bench {

std::size_t ProcessMemory::ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t totalPages = 0;
  std::size_t residentPages = 0;
  if (!(statm >> totalPages >> residentPages)) return 0;
  return residentPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t ProcessMemory::HeapInUseBytes() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void ProcessMemory::ReleaseFreeHeap() { malloc_trim(0); }

bool ProcessMemory::ResetPeakResident() {
  std::ofstream clear("/proc/self/clear_refs");
  clear << "5";
  clear.flush();
  return static_cast<bool>(clear);
}

std::size_t ProcessMemory::PeakResidentBytes() {
  std::ifstream status("/proc/self/status");
  const std::string field = "VmHWM:";
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, field.size(), field) == 0) {
      return static_cast<std::size_t>(std::stoull(line.substr(field.size()))) * 1024;
    }
  }
  return 0;
}

}  // namespace wevlin_bench
