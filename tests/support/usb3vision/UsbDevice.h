/// The USB side of a virtual camera: what its owner's requests to the system do.
#ifndef ZYN_TEST_USB3VISION_USB_DEVICE_H
#define ZYN_TEST_USB3VISION_USB_DEVICE_H

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ThreadAnnotations.h"
#include "cameras/CameraModel.h"
#include "usb3vision/Registers.h"
#include "usb3vision/StreamSource.h"

struct usbdevfs_urb;

namespace zyntest::usb3 {

/// Answers the requests of Linux' USB file system for one plugged camera. The requests come from this process:
/// pointers in them are followed as they stand. Thread-safe. The camera must outlive it.
class UsbDevice {
 public:
  /// Called when an interface is claimed, and when it is free again; must not call back.
  using OnClaim = std::function<void(unsigned number, bool isHeld)>;

  UsbDevice(zyn::cameras::CameraModel& camera, std::string guid, OnClaim onClaim);

  /// Of a request: what ioctl() returns, and errno when that is -1.
  struct Answer {
    long result = 0;
    int error = 0;
  };

  /// file: names the open file that asks.
  Answer Request(const void* file, unsigned long request, void* argument) ZYN_EXCLUDES(mutex_);
  /// The file was closed: its claims and transfers go.
  void Close(const void* file) ZYN_EXCLUDES(mutex_);

  /// The cable is pulled: transfers end, and every request is refused from now on.
  void Unplug() ZYN_EXCLUDES(mutex_);

  /// Claims all interfaces for `file`, as another application would. False when one is taken.
  bool Hold(const void* file) ZYN_EXCLUDES(mutex_);

  /// Interfaces that some file has claimed.
  std::size_t Claims() const ZYN_EXCLUDES(mutex_);

 private:
  struct File {
    std::set<unsigned> claims;
    std::deque<usbdevfs_urb*> done;
  };
  struct Transfer {
    const void* file;
    usbdevfs_urb* urb;
  };

  Answer Submit(const void* file, usbdevfs_urb& urb) ZYN_REQUIRES(mutex_);
  Answer SubmitControl(const void* file, usbdevfs_urb& urb) ZYN_REQUIRES(mutex_);
  Answer Discard(const void* file, const usbdevfs_urb* urb) ZYN_REQUIRES(mutex_);
  Answer Reap(const void* file, void* argument) ZYN_REQUIRES(mutex_);
  Answer Claim(const void* file, unsigned number) ZYN_REQUIRES(mutex_);
  Answer Release(const void* file, unsigned number) ZYN_REQUIRES(mutex_);
  void Finish(const Transfer& transfer, int status, std::size_t bytes) ZYN_REQUIRES(mutex_);
  void Serve() ZYN_EXCLUDES(mutex_);
  void ServeLocked() ZYN_REQUIRES(mutex_);
  bool Fill(usbdevfs_urb& urb) ZYN_REQUIRES(mutex_);

  const zyn::cameras::Identity identity_;
  const std::string guid_;
  const OnClaim onClaim_;
  Registers registers_;
  mutable zyn::Mutex mutex_;  // before those of the registers, of the source and of the camera
  bool isGone_ ZYN_GUARDED_BY(mutex_) = false;
  std::map<const void*, File> files_ ZYN_GUARDED_BY(mutex_);
  std::list<Transfer> waiting_ ZYN_GUARDED_BY(mutex_);  // in order
  std::deque<Bytes> answers_ ZYN_GUARDED_BY(mutex_);    // of the control endpoint
  StreamSource source_;                                 // its thread uses what stands above
};

}  // namespace zyntest::usb3

#endif
