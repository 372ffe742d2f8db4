#include <GenICam.h>
#include <ZynCamera.h>

#include <cstdio>

// Searches for nothing: the machine's networks are none of a test's business.
int main() {
  ZYNSDK::ZynCamera camera;
  const GenICam::gcstring text("linked");
  const bool isRight = camera.Open(nullptr) == ZYNSDK::ZYN_ERROR_NO_OBJECT &&
                       ZYNSDK::DiscoveryCameras(nullptr) == ZYNSDK::ZYN_ERROR_INVALID_ARGUMENT &&
                       text.length() == 6;
  std::puts(isRight ? "the installed SDK answers" : "the installed SDK answers wrongly");
  return isRight ? 0 : 1;
}
