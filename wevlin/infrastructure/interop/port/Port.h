#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_PORT_PORT_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_PORT_PORT_H_

#include <cstdint>

// The few operating-system services the library needs, behind one small
// interface. Exactly one implementation file is compiled per platform
// (Port_windows.cpp or Port_posix.cpp); they are the only places that include
// platform headers. Nothing here is part of the installed interface.
//
// Every function may be called from any thread.
namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port {

// Returns the wall-clock time in whole seconds since 1970-01-01 00:00:00 UTC.
std::int64_t WallClockSeconds();

// Compares two NUL-terminated texts byte by byte, ignoring the case of
// letters (the ASCII letters in the C locale). Returns zero when they are equal that way, a
// negative number when `a` sorts first and a positive number otherwise. Requires that neither
// pointer is null.
int CompareIgnoreCase(const char* a, const char* b);

// Starts a one-shot system timer: after `dueMs` milliseconds `callback` runs
// once, on a system thread that is never the caller's. Returns an opaque
// non-null handle for DeleteOneShotTimer, or null when `callback` is null or
// the system could not create the timer (then nothing ever runs).
//
// `callback` must not throw. It may itself create and delete one-shot timers.
// The handle of a timer that has fired is not reused by a later timer.
void* CreateOneShotTimer(unsigned int dueMs, void (*callback)());

// Cancels the one-shot timer `handle` if it has not fired yet, and releases
// what the system keeps for it. Never waits: a callback that is already
// running is left to finish on its own thread. Does nothing for a null
// handle. Requires that `handle` came from CreateOneShotTimer and has not been
// passed here before.
void DeleteOneShotTimer(void* handle);

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::port

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_PORT_PORT_H_
