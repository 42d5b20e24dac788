#include "wevlin/infrastructure/interop/Timer.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "wevlin/infrastructure/base/internal/Log.h"
#include "wevlin/infrastructure/interop/internal/TimerEnvironment.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {
namespace {

using Base::internal::WriteLogLine;

// One call of a handler that a check is making right now. It lives on the
// stack of the check and is listed in TimerState::calls while the call runs.
struct CallInProgress {
  const Timer* timer = nullptr;
  std::thread::id thread;
  // Set by the timer's destructor when it runs during the call, so that the
  // check does not look the pointer up again afterwards (a new timer may by
  // then live at the same address).
  bool timerDeleted = false;
};

// What all timers share. Every member is guarded by `mutex`.
//
// Invariant outside the lock: a system timer is held only while some timer
// lives. A check clears the held handle when it starts (the one-shot timer
// has fired) and arms a new system timer at its end if timers remain.
struct TimerState {
  std::mutex mutex;
  // Signalled whenever a call of a handler has ended.
  std::condition_variable callEnded;
  // The live timers, in address order; a check visits them in this order.
  std::set<Timer*> live;
  // The armed system one-shot timer, or null.
  void* systemTimer = nullptr;
  std::vector<CallInProgress*> calls;
};

// Leaked on purpose: a system timer may still fire while static objects are
// destroyed at process exit.
TimerState& State() {
  static auto* state = new TimerState();
  return *state;
}

// Returns the timers' clock: whole seconds since the epoch times 1000, cut to
// 32 bits. Computed in unsigned 64-bit arithmetic, which wraps instead of
// overflowing; the low 32 bits are the same either way.
std::uint32_t NowMilliseconds() {
  const auto seconds = static_cast<std::uint64_t>(internal::CurrentTimerClock().NowSeconds());
  return static_cast<std::uint32_t>(seconds * 1000U);
}

void CheckLiveTimers();

// Cancels the held system timer, if any, without waiting for a check that is
// already running. Requires state.mutex.
void DisarmLocked(TimerState& state) {
  if (state.systemTimer != nullptr) {
    internal::CurrentSystemTimerQueue().Disarm(state.systemTimer);
    state.systemTimer = nullptr;
  }
}

// Replaces the held system timer by a new one that runs a check after one
// check period. Requires state.mutex.
void ArmLocked(TimerState& state) {
  DisarmLocked(state);
  state.systemTimer =
      internal::CurrentSystemTimerQueue().Arm(internal::CurrentCheckPeriodMs(), &CheckLiveTimers);
  if (state.systemTimer == nullptr) {
    WriteLogLine("Timer - could not arm the system timer");
  }
}

bool IsBeingCalled(const TimerState& state, const Timer* timer) {
  return std::any_of(state.calls.begin(), state.calls.end(),
                     [timer](const CallInProgress* call) { return call->timer == timer; });
}

// Calls `handler`, containing whatever it throws: this runs on the system
// timer thread, where nothing may escape.
void CallHandler(IHandleTimerEvent* handler) {
  if (handler == nullptr) {
    return;
  }
  try {
    handler->OnTimerElapsed();
  } catch (...) {
    WriteLogLine("Timer - caught exception from OnTimerElapsed");
  }
}

// The check, run by the system timer on its own thread.
//
// It walks a copy of the live timers, so that handlers and other threads may
// create and delete timers meanwhile. Before it touches a timer of the copy
// it makes sure, under the lock, that the timer still lives and that no
// other check is calling it; it then records the call, so that a destructor
// on another thread waits for it, and calls the handler without the lock.
void CheckLiveTimers() {
  TimerState& state = State();
  std::vector<Timer*> snapshot;
  std::uint32_t now = 0;
  {
    std::lock_guard<std::mutex> lock(state.mutex);
    state.systemTimer = nullptr;  // It has fired; a one-shot timer needs no cancelling.
    now = NowMilliseconds();
    snapshot.assign(state.live.begin(), state.live.end());
  }

  for (Timer* timer : snapshot) {
    CallInProgress call{timer, std::this_thread::get_id(), false};
    IHandleTimerEvent* handler = nullptr;
    {
      std::lock_guard<std::mutex> lock(state.mutex);
      if (state.live.count(timer) == 0 || !(now > timer->GetDueTime()) ||
          IsBeingCalled(state, timer)) {
        continue;
      }
      handler = timer->GetHandler();
      state.calls.push_back(&call);
    }

    CallHandler(handler);

    {
      std::lock_guard<std::mutex> lock(state.mutex);
      state.calls.erase(std::find(state.calls.begin(), state.calls.end(), &call));
      if (!call.timerDeleted) {
        state.live.erase(timer);  // A timer fires once.
      }
      if (state.live.empty()) {
        DisarmLocked(state);
      }
    }
    state.callEnded.notify_all();
  }

  std::lock_guard<std::mutex> lock(state.mutex);
  if (state.live.empty()) {
    DisarmLocked(state);
  } else {
    ArmLocked(state);
  }
}

}  // namespace

Timer::Timer(IHandleTimerEvent* handler, int intervalMs)
    : handler_(handler), dueTime_(NowMilliseconds() + static_cast<std::uint32_t>(intervalMs)) {
  TimerState& state = State();
  std::lock_guard<std::mutex> lock(state.mutex);
  if (state.live.empty()) {
    ArmLocked(state);
  }
  state.live.insert(this);
}

Timer::~Timer() {
  TimerState& state = State();
  std::unique_lock<std::mutex> lock(state.mutex);
  state.live.erase(this);
  if (state.live.empty()) {
    DisarmLocked(state);
  }
  for (CallInProgress* call : state.calls) {
    if (call->timer == this) {
      call->timerDeleted = true;
    }
  }
  // A call of this timer's handler on another thread must end before the
  // timer (and, with it, very likely its handler) goes away. A call on this
  // thread is the handler deleting its own timer: waiting for it would never
  // end.
  const std::thread::id self = std::this_thread::get_id();
  state.callEnded.wait(lock, [&state, this, self] {
    return std::none_of(state.calls.begin(), state.calls.end(),
                        [this, self](const CallInProgress* call) {
                          return call->timer == this && call->thread != self;
                        });
  });
}

namespace internal {

void RunTimerCheckForTesting() { CheckLiveTimers(); }

}  // namespace internal
}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop
