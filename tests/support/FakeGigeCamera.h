/// A GigE Vision camera on the loopback adapter that nobody here wrote: Debian's arv-fake-gv-camera-0.8.
#ifndef ZYN_TEST_FAKE_GIGE_CAMERA_H
#define ZYN_TEST_FAKE_GIGE_CAMERA_H

#include <cstdint>
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
  /// The same without a MAC address and a subnet mask: all zeros, as the program has it.
  struct Bare {};
  FakeGigeCamera(int number, Bare);

  const std::string& Serial() const { return serial_; }
  const std::string& Address() const { return address_; }

  /// After Kill: plugs it in again, and waits until it answers. What was written to it is forgotten.
  void Start();
  /// From now on the camera says that it has this address and mask, as one that was set up for another network.
  /// It still answers searches, and Address() stays where it really is.
  void PretendAddress(std::uint32_t address, std::uint32_t mask) const;
  /// Like pulling the cable: the process is gone, without a word to anybody.
  void Kill();
  /// It stays plugged in, but answers nothing any more, and its computer does not say so either. Thaw ends that.
  void Freeze() const;
  void Thaw() const;

 private:
  FakeGigeCamera(int number, bool isBare);

  int number_;
  bool isBare_;
  std::string serial_;
  std::string address_;
  std::optional<ChildProcess> process_;
};

}  // namespace zyntest

#endif
