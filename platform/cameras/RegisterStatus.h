/// What became of a register access.
#ifndef ZYN_CAMERAS_REGISTER_STATUS_H
#define ZYN_CAMERAS_REGISTER_STATUS_H

namespace zyn::cameras {

/// After anything but `ok` nothing was read, and nothing was changed by a write of one register.
enum class RegisterStatus {
  ok,
  unmapped,      ///< no register at one of the addresses
  accessDenied,  ///< not readable, or not writable, or not now: locked while frames are acquired
  busy,          ///< the camera has no time now; the same access may work later
  outOfRange,    ///< the register does not take this value
  badAlignment,  ///< address or length not a multiple of 4, length 0, or a write that covers a part of a register
  noAnswer,      ///< the camera did not answer
};

/// For messages: "unmapped address", "access denied", ...
const char* Text(RegisterStatus status);

}  // namespace zyn::cameras

#endif
