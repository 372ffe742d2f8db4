/// How a command to a device ended.
#ifndef ZYN_GIGE_RESULT_H
#define ZYN_GIGE_RESULT_H

namespace zyn::gige {

enum class Result {
  ok,
  noAnswer,          ///< all attempts timed out
  nobodyListens,     ///< the computer at that address says that there is no device on the port
  accessDenied,      ///< somebody else controls the device
  invalidAddress,    ///< no such register
  writeProtected,    ///< the register cannot be written
  invalidParameter,  ///< address or length is no multiple of 4, or the device does not like the value
  busy,              ///< the device asks to try later
  notImplemented,    ///< the device does not know this command
  deviceError,       ///< any other error answer, or an answer that makes no sense
  systemError        ///< the operating system could not send
};

}  // namespace zyn::gige

#endif
