#ifndef WEVLIN_INFRASTRUCTURE_INTEROP_HOSTCONTENTSTATE_H_
#define WEVLIN_INFRASTRUCTURE_INTEROP_HOSTCONTENTSTATE_H_

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop {

// The state of the content hosted in one browser control, as a
// HostControlInstance tracks it. The numbers are part of the interface.
enum HostContentState : int {
  NoContent = 0,      // nothing launched yet
  Navigating = 1,     // a launch started; the control is navigating
  Waiting = 2,        // loaded; waiting for the page to start the handshake
  TimedOut = 3,       // the time-out elapsed while Navigating or Waiting
  Initializing = 4,   // the handshake is under way
  LoadedCanTalk = 5,  // the handshake succeeded; calls to the page are allowed
  LoadedNoTalk = 6,   // loaded, but the handshake failed
  LoggedIn = 7        // set from outside by the startup notification; calls allowed
};

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop

#endif  // WEVLIN_INFRASTRUCTURE_INTEROP_HOSTCONTENTSTATE_H_
