/// libaravis' fake GigE Vision camera as a process of its own: a device that nobody here wrote. Needs a private network
/// namespace.
#ifndef ZYN_TESTS_FAKE_CAMERA_H
#define ZYN_TESTS_FAKE_CAMERA_H

#include <sys/types.h>

#include <string>

#include "gige/Address.h"

namespace zyn::test {

class FakeCamera {
 public:
  /// Starts it and waits until it answers. `address`: one of the loopback adapter, which gets it if it has it not.
  FakeCamera(const std::string& address, const std::string& serial);
  ~FakeCamera();
  FakeCamera(const FakeCamera&) = delete;
  FakeCamera& operator=(const FakeCamera&) = delete;

  /// Pulls the plug: no goodbye.
  void Kill();
  /// Plugs it in again, and waits until it answers.
  void Restart();
  /// It stays plugged in, but answers nothing any more, and its computer does not say so either.
  void Freeze();
  void Thaw();

 private:
  const std::string address_;
  const std::string serial_;
  pid_t process_ = -1;
};

}  // namespace zyn::test

#endif
