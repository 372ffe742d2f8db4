#include "Failure.h"

#include <ZynCamera/Status.h>

#include <algorithm>
#include <iterator>

namespace zyncam {

using namespace ZYNSDK;  // the table below is all status codes
namespace {

struct StatusText {
  long status;
  const char* meaning;
  const char* advice;
};

// Positive numbers are the SDK's; negative ones come from the transport (KELGeniCam.h).
constexpr StatusText kTexts[] = {
    {ZYN_ERROR_NO_OBJECT, "no camera behind the handle", "search again with 'zyncam list'"},
    {ZYN_ERROR_NO_SUCH_CAMERA, "no camera with that serial number",
     "'zyncam list' shows the cameras that answer"},
    {ZYN_ERROR_NOT_CREATED, "the camera object could not be created", "search again with 'zyncam list'"},
    {ZYN_ERROR_OPEN_FAILED, "the camera refused to open",
     "another program may control it (close it there), or its address lies outside the adapter's subnet; "
     "'zyncam list' "
     "shows its status"},
    {ZYN_ERROR_NOT_3D_CAMERA, "not a 3D camera", ""},
    {ZYN_ERROR_NOT_OPEN, "the camera is not open, or was lost", "check cable and power, then try again"},
    {ZYN_ERROR_NOT_GRABBING, "the stream is not running", ""},
    {ZYN_ERROR_ALREADY_GRABBING, "the stream is running already", ""},
    {ZYN_ERROR_ALREADY_OPEN, "the camera is open already", ""},
    {ZYN_ERROR_START_FAILED, "the stream did not start", "check cable and power; restart the camera"},
    {ZYN_ERROR_GRAB_FAILED, "no frame came in time",
     "is the camera waiting for a trigger? raise --timeout, or set TriggerMode=Off"},
    {ZYN_ERROR_CONFIG_FILE, "the configuration file cannot be opened", "check its path and its rights"},
    {ZYN_ERROR_EXCEPTION, "the camera or its description reported an error",
     "check cable and power, then try again"},
    {ZYN_ERROR_INVALID_ARGUMENT, "invalid argument", ""},
    {ZYN_ERROR_NO_FRAME, "the transport delivered no frame", "try again"},
    {ZYN_ERROR_INVALID_FRAME, "the frame arrived incomplete",
     "lower the frame rate, or check the network (MTU, cable, switch); behind a frame grabber, check the "
     "card's width, "
     "height and taps"},
    {ZYN_ERROR_NO_SUCH_NODE, "no feature of that name",
     "'zyncam features' lists the names; they are case-sensitive"},
    {ZYN_ERROR_NO_NODE_MAP, "the camera has no such node map", "choose another one with --map"},
    {ZYN_ERROR_UNSUPPORTED_NODE, "the feature has a kind that the SDK's handles do not cover", ""},
    {ZYN_ERROR_NOT_READABLE, "the feature is of another kind, or cannot be read now", ""},
    {ZYN_ERROR_WRONG_NODE_TYPE, "the operation does not fit the feature's kind", ""},
    {-1, "the previous execution of the command had not ended in time",
     "the command was executed all the same"},
    {-6, "the camera is lost", "check cable and power; when 'zyncam list' shows it again, start over"},
    {-7, "the frame is larger than the buffers", "stop and start the grab again"},
    {-8, "not enough memory for the frame buffers", "use smaller frames, or free memory"},
    {-9, "the camera sends a payload that cannot be delivered", "choose another pixel format or payload"},
    {-16, "another program or computer controls the camera", "free it there first"},
    {-17, "every frame buffer is in use", ""},
    {-18, "all frames asked for have been delivered", ""},
    {-19, "the camera is open already in this program", ""},
    {-20, "the camera cannot be reached", "check that its address lies in the adapter's subnet"},
};

const StatusText* Find(long status) {
  const auto* found = std::find_if(std::begin(kTexts), std::end(kTexts),
                                   [status](const StatusText& text) { return text.status == status; });
  return found == std::end(kTexts) ? nullptr : found;
}

ExitCode ExitCodeFor(long status) {
  switch (status) {
    case ZYN_ERROR_NO_SUCH_CAMERA:
      return kExitNoCamera;
    case ZYN_ERROR_NO_SUCH_NODE:
    case ZYN_ERROR_NOT_READABLE:
    case ZYN_ERROR_WRONG_NODE_TYPE:
      return kExitFeature;
    default:
      return kExitFailed;
  }
}

}  // namespace

Failure Failure::OfStatus(const std::string& what, long status) {
  return {ExitCodeFor(status), what + ": " + MeaningOf(status) + " (status " + std::to_string(status) + ")",
          AdviceFor(status), status};
}

const char* MeaningOf(long status) {
  const StatusText* text = Find(status);
  return text != nullptr ? text->meaning : "the transport reported a failure";
}

const char* AdviceFor(long status) {
  const StatusText* text = Find(status);
  return text != nullptr ? text->advice : "";
}

}  // namespace zyncam
