#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

#include "support/HeapCounter.h"

// glibc's own allocator entry points, which the functions below forward to.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace wevlin_bench {
namespace {

std::atomic<bool> counting{false};
std::atomic<long long> inUse{0};
std::atomic<long long> peak{0};

void Added(void* block) {
  if (block == nullptr || !counting.load(std::memory_order_relaxed)) return;
  const auto size = static_cast<long long>(malloc_usable_size(block));
  const long long now = inUse.fetch_add(size, std::memory_order_relaxed) + size;
  long long seen = peak.load(std::memory_order_relaxed);
  while (now > seen && !peak.compare_exchange_weak(seen, now, std::memory_order_relaxed)) {
  }
}

void Removed(void* block) {
  if (block == nullptr || !counting.load(std::memory_order_relaxed)) return;
  inUse.fetch_sub(static_cast<long long>(malloc_usable_size(block)), std::memory_order_relaxed);
}

}  // namespace

void HeapCounter::Start() {
  inUse.store(0, std::memory_order_relaxed);
  peak.store(0, std::memory_order_relaxed);
  counting.store(true, std::memory_order_seq_cst);
}

std::size_t HeapCounter::Stop() {
  counting.store(false, std::memory_order_seq_cst);
  const long long highest = peak.load(std::memory_order_relaxed);
  return highest > 0 ? static_cast<std::size_t>(highest) : 0;
}

}  // namespace wevlin_bench

// The C allocator's entry points, replaced for the whole process (the
// program's definitions come before the C library's), so that operator new
// (which calls malloc) and libraries that call malloc themselves are counted
// alike.
extern "C" {

void* malloc(std::size_t size) {
  void* block = __libc_malloc(size);
  wevlin_bench::Added(block);
  return block;
}

void* calloc(std::size_t count, std::size_t size) {
  void* block = __libc_calloc(count, size);
  wevlin_bench::Added(block);
  return block;
}

void* realloc(void* block, std::size_t size) {
  wevlin_bench::Removed(block);
  void* moved = __libc_realloc(block, size);
  if (moved == nullptr && block != nullptr && size != 0) {
    // The old block stays.
    wevlin_bench::Added(block);
    return nullptr;
  }
  wevlin_bench::Added(moved);
  return moved;
}

void free(void* block) {
  wevlin_bench::Removed(block);
  __libc_free(block);
}

void* memalign(std::size_t alignment, std::size_t size) {
  void* block = __libc_memalign(alignment, size);
  wevlin_bench::Added(block);
  return block;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
  if (alignment < sizeof(void*) || (alignment & (alignment - 1)) != 0) return EINVAL;
  void* block = memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *out = block;
  return 0;
}

}  // extern "C"
