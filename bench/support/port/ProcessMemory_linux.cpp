#include <malloc.h>
#include <unistd.h>

#include <fstream>

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

}  // namespace wevlin_bench
