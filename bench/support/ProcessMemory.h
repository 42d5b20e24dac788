#ifndef WEVLIN_BENCH_SUPPORT_PROCESSMEMORY_H_
#define WEVLIN_BENCH_SUPPORT_PROCESSMEMORY_H_

#include <cstddef>

namespace wevlin_bench {

// Reads how much memory the process uses, for the scale benchmarks.
// Linux only (/proc and glibc), like the benchmarks. Any thread.
class ProcessMemory {
 public:
  ProcessMemory() = delete;

  // Returns the resident set size in bytes (/proc/self/statm).
  static std::size_t ResidentBytes();

  // Returns the bytes of heap blocks in use (glibc's mallinfo2), which unlike
  // the resident size does not hide allocations that reuse freed memory.
  static std::size_t HeapInUseBytes();

  // Returns the heap's free memory to the system where it can (glibc's
  // malloc_trim), so that a later rise of the resident set shows memory
  // that is needed rather than a heap that had room left.
  static void ReleaseFreeHeap();

  // Makes the kernel count the peak resident set anew from now on (writes 5
  // to /proc/self/clear_refs). Returns false when it cannot.
  static bool ResetPeakResident();

  // Returns the peak resident set since the last reset, or since the process
  // started (VmHWM of /proc/self/status), in bytes; 0 when unknown.
  static std::size_t PeakResidentBytes();
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_PROCESSMEMORY_H_
