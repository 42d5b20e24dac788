#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <string.h>
#include <time.h>

#include <cstdint>
#include <cstring>

#include "wevlin/infrastructure/interop/port/Port.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port {
namespace {

using Callback = void (*)();

// The callback travels to the timer-queue thread as the timer's context
// parameter. A function pointer and an object pointer are not convertible in
// portable C++, so its bits are carried through an integer of the same size.
static_assert(sizeof(Callback) == sizeof(std::uintptr_t), "function pointers must fit a pointer");

PVOID PackCallback(Callback callback) {
  std::uintptr_t bits = 0;
  std::memcpy(&bits, &callback, sizeof bits);
  return reinterpret_cast<PVOID>(bits);
}

Callback UnpackCallback(PVOID parameter) {
  const auto bits = reinterpret_cast<std::uintptr_t>(parameter);
  Callback callback = nullptr;
  std::memcpy(&callback, &bits, sizeof callback);
  return callback;
}

// Runs on a thread of the default timer queue when a one-shot timer is due.
VOID CALLBACK OnTimerQueueTimer(PVOID parameter, BOOLEAN /*timerOrWaitFired*/) {
  try {
    UnpackCallback(parameter)();
  } catch (...) {
    // A callback must not throw; nothing may unwind into the system's thread.
  }
}

}  // namespace

std::int64_t WallClockSeconds() { return static_cast<std::int64_t>(::_time64(nullptr)); }

int CompareIgnoreCase(const char* a, const char* b) { return ::_stricmp(a, b); }

void* CreateOneShotTimer(unsigned int dueMs, void (*callback)()) {
  if (callback == nullptr) {
    return nullptr;
  }
  HANDLE timer = nullptr;
  // The default queue (null), a period of zero and WT_EXECUTEONLYONCE: one
  // call, on a thread of the queue.
  if (::CreateTimerQueueTimer(&timer, nullptr, &OnTimerQueueTimer, PackCallback(callback),
                              static_cast<DWORD>(dueMs), 0, WT_EXECUTEONLYONCE) == FALSE) {
    return nullptr;
  }
  return timer;
}

void DeleteOneShotTimer(void* handle) {
  if (handle == nullptr) {
    return;
  }
  // A null completion event means "do not wait": a callback that is running
  // finishes on its own, and the call reports ERROR_IO_PENDING, which is
  // expected here and needs no handling.
  ::DeleteTimerQueueTimer(nullptr, static_cast<HANDLE>(handle), nullptr);
}

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port
