/// A GigE Vision camera on the loopback adapter that nobody here wrote: Debian's arv-fake-gv-camera-0.8.
#ifndef ZYN_TEST_FAKE_GIGE_CAMERA_H
#define ZYN_TEST_FAKE_GIGE_CAMERA_H

#include <optional>
#include <string>

#include "ChildProcess.h"

namespace zyntest {

/// One fake camera process. Must only be used inside a private network (PrivateNetwork.h).
class FakeGigeCamera {
 public:
  /// number 1 gives serial number "GV01" at 127.0.0.1, 2 "GV02" at 127.0.0.2, and so on. Starts at once, and
  /// is ready when it answers on the control port: that is waited for.
  explicit FakeGigeCamera(int number);

  const std::string& Serial() const { return serial_; }
  const std::string& Address() const { return address_; }

  void Start();
  /// Like pulling the cable: the process is gone, without a word to anybody.
  void Kill();

 private:
  int number_;
  std::string serial_;
  std::string address_;
  std::optional<ChildProcess> process_;
};

}  // namespace zyntest

#endif
