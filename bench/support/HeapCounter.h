#ifndef WEVLIN_BENCH_SUPPORT_HEAPCOUNTER_H_
#define WEVLIN_BENCH_SUPPORT_HEAPCOUNTER_H_

#include <cstddef>

namespace wevlin_bench {

// Counts the heap that the process holds, for the benchmarks that compare the
// peak heap of the JSON libraries. The program that links
// port/HeapCounter_linux.cpp replaces malloc, calloc, realloc, free and the
// aligned forms (operator new calls malloc): while counting, every block adds
// the bytes the allocator reserved for it (malloc_usable_size) and every freed
// block takes them away, and the highest total since Start is kept. When not
// counting, the replacements only forward to the C library's allocator,
// behind one relaxed load.
//
// Linux only (glibc), like the benchmarks. Start and Stop are for one thread
// at a time; blocks of other threads count while counting is on.
class HeapCounter {
 public:
  HeapCounter() = delete;

  // Starts counting from zero: blocks already held count as nothing, and
  // freeing them while counting can take the total below zero.
  static void Start();

  // Returns the highest total since Start, in bytes, and stops counting.
  static std::size_t Stop();
};

}  // namespace wevlin_bench

#endif  // WEVLIN_BENCH_SUPPORT_HEAPCOUNTER_H_
