#include "usb3vision/UsbDevice.h"

#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "usb3vision/Control.h"
#include "usb3vision/Descriptors.h"

namespace zyntest::usb3 {
namespace {

using zyn::MutexLock;

constexpr std::uint8_t kGetDescriptor = 6;
constexpr std::uint8_t kTextDescriptor = 3;
constexpr std::uint8_t kStandardToHost = 0x80;
constexpr std::uint8_t kStandardToEndpoint = 0x02;
constexpr std::uint8_t kSetFeature = 3;
constexpr std::uint8_t kClearFeature = 1;
constexpr std::size_t kSetupBytes = 8;

constexpr UsbDevice::Answer kDone{0, 0};

UsbDevice::Answer Refuse(int error) {
  return {-1, error};
}

std::uint8_t* Buffer(usbdevfs_urb& urb) {
  return static_cast<std::uint8_t*>(urb.buffer);
}

}  // namespace

UsbDevice::UsbDevice(zyn::cameras::CameraModel& camera, std::string guid, OnClaim onClaim)
    : identity_(camera.GetIdentity()),
      guid_(std::move(guid)),
      onClaim_(std::move(onClaim)),
      registers_(camera),
      source_(camera, [this] { Serve(); }) {}

UsbDevice::Answer UsbDevice::Request(const void* file, unsigned long request, void* argument) {
  const MutexLock lock(mutex_);
  if (request == USBDEVFS_REAPURB || request == USBDEVFS_REAPURBNDELAY) return Reap(file, argument);
  if (isGone_) return Refuse(ENODEV);
  switch (request) {
    case USBDEVFS_GET_CAPABILITIES: {
      const unsigned capabilities = USBDEVFS_CAP_ZERO_PACKET | USBDEVFS_CAP_BULK_CONTINUATION |
                                    USBDEVFS_CAP_NO_PACKET_SIZE_LIM | USBDEVFS_CAP_BULK_SCATTER_GATHER |
                                    USBDEVFS_CAP_REAP_AFTER_DISCONNECT;
      std::memcpy(argument, &capabilities, sizeof capabilities);
      return kDone;
    }
    case USBDEVFS_CLAIMINTERFACE:
      return Claim(file, *static_cast<unsigned*>(argument));
    case USBDEVFS_DISCONNECT_CLAIM:
      return Claim(file, static_cast<usbdevfs_disconnect_claim*>(argument)->interface);
    case USBDEVFS_RELEASEINTERFACE:
      return Release(file, *static_cast<unsigned*>(argument));
    case USBDEVFS_GETDRIVER:
      return Refuse(ENODATA);
    case USBDEVFS_SETINTERFACE:
    case USBDEVFS_SETCONFIGURATION:
    case USBDEVFS_CLEAR_HALT:
    case USBDEVFS_RESETEP:
      return kDone;
    case USBDEVFS_SUBMITURB:
      return Submit(file, *static_cast<usbdevfs_urb*>(argument));
    case USBDEVFS_DISCARDURB:
      return Discard(file, static_cast<usbdevfs_urb*>(argument));
    default:
      return Refuse(ENOTTY);
  }
}

void UsbDevice::Close(const void* file) {
  const MutexLock lock(mutex_);
  waiting_.remove_if([&](const Transfer& transfer) { return transfer.file == file; });
  for (const unsigned number : files_[file].claims) onClaim_(number, false);
  files_.erase(file);
}

bool UsbDevice::Hold(const void* file) {
  const MutexLock lock(mutex_);
  bool isHeld = true;
  for (unsigned number = 0; number < kInterfaces; ++number) isHeld &= Claim(file, number).result == 0;
  return isHeld;
}

void UsbDevice::Unplug() {
  {
    const MutexLock lock(mutex_);
    isGone_ = true;
    for (const Transfer& transfer : waiting_) Finish(transfer, -ESHUTDOWN, 0);
    waiting_.clear();
    answers_.clear();
  }
  source_.Enable(false);
}

std::size_t UsbDevice::Claims() const {
  const MutexLock lock(mutex_);
  std::size_t claims = 0;
  for (const auto& [id, file] : files_) claims += file.claims.size();
  return claims;
}

UsbDevice::Answer UsbDevice::Claim(const void* file, unsigned number) {
  if (number >= kInterfaces) return Refuse(EINVAL);
  for (const auto& [id, other] : files_) {
    if (id != file && other.claims.count(number) != 0) return Refuse(EBUSY);
  }
  if (files_[file].claims.insert(number).second) onClaim_(number, true);
  return kDone;
}

UsbDevice::Answer UsbDevice::Release(const void* file, unsigned number) {
  if (files_[file].claims.erase(number) == 0) return Refuse(EINVAL);
  onClaim_(number, false);
  return kDone;
}

UsbDevice::Answer UsbDevice::Submit(const void* file, usbdevfs_urb& urb) {
  if (urb.type == USBDEVFS_URB_TYPE_CONTROL) return SubmitControl(file, urb);
  if (urb.type != USBDEVFS_URB_TYPE_BULK) return Refuse(EINVAL);
  if (files_[file].claims.empty()) return Refuse(EBUSY);
  if (urb.endpoint == kControlOut) {
    const auto bytes = static_cast<std::size_t>(urb.buffer_length);
    for (Bytes& answer : Execute(registers_, {Buffer(urb), bytes})) answers_.push_back(std::move(answer));
    Finish({file, &urb}, 0, bytes);
    source_.Enable(registers_.IsStreamEnabled());
  } else if (urb.endpoint == kControlIn || urb.endpoint == kStreamIn) {
    waiting_.push_back({file, &urb});
  } else {
    return Refuse(ENOENT);
  }
  ServeLocked();
  return kDone;
}

UsbDevice::Answer UsbDevice::SubmitControl(const void* file, usbdevfs_urb& urb) {
  const std::uint8_t* const setup = Buffer(urb);
  if (setup[0] == kStandardToHost && setup[1] == kGetDescriptor && setup[3] == kTextDescriptor) {
    const Bytes text = TextDescriptor(Texts(identity_, guid_), setup[2]);
    const std::size_t bytes = std::min<std::size_t>(text.size(), Load(setup + 6, 2));
    std::copy_n(text.begin(), bytes, Buffer(urb) + kSetupBytes);
    Finish({file, &urb}, text.empty() ? -EPIPE : 0, bytes);
  } else if (setup[0] == kStandardToEndpoint && (setup[1] == kSetFeature || setup[1] == kClearFeature)) {
    Finish({file, &urb}, 0, 0);
  } else {
    Finish({file, &urb}, -EPIPE, 0);
  }
  return kDone;
}

UsbDevice::Answer UsbDevice::Discard(const void* file, const usbdevfs_urb* urb) {
  const auto found = std::find_if(waiting_.begin(), waiting_.end(), [&](const Transfer& transfer) {
    return transfer.file == file && transfer.urb == urb;
  });
  if (found == waiting_.end()) return Refuse(EINVAL);
  Finish(*found, -ENOENT, 0);
  waiting_.erase(found);
  return kDone;
}

UsbDevice::Answer UsbDevice::Reap(const void* file, void* argument) {
  std::deque<usbdevfs_urb*>& done = files_[file].done;
  if (done.empty()) return Refuse(isGone_ ? ENODEV : EAGAIN);
  std::memcpy(argument, &done.front(), sizeof(void*));
  done.pop_front();
  return kDone;
}

void UsbDevice::Finish(const Transfer& transfer, int status, std::size_t bytes) {
  transfer.urb->status = status;
  transfer.urb->actual_length = static_cast<int>(bytes);
  files_[transfer.file].done.push_back(transfer.urb);
}

void UsbDevice::Serve() {
  const MutexLock lock(mutex_);
  ServeLocked();
}

void UsbDevice::ServeLocked() {
  for (auto transfer = waiting_.begin(); transfer != waiting_.end();) {
    transfer = Fill(*transfer->urb)
                   ? (Finish(*transfer, 0, static_cast<std::size_t>(transfer->urb->actual_length)),
                      waiting_.erase(transfer))
                   : std::next(transfer);
  }
}

// False when there is nothing for it yet.
bool UsbDevice::Fill(usbdevfs_urb& urb) {
  const std::span<std::uint8_t> room(Buffer(urb), static_cast<std::size_t>(urb.buffer_length));
  std::size_t bytes = 0;
  if (urb.endpoint == kStreamIn) {
    if (!source_.Fetch(room, bytes)) return false;
  } else {
    if (answers_.empty()) return false;
    bytes = std::min(room.size(), answers_.front().size());
    std::copy_n(answers_.front().begin(), bytes, room.begin());
    answers_.pop_front();
  }
  urb.actual_length = static_cast<int>(bytes);
  return true;
}

}  // namespace zyntest::usb3
