#include "U3vDevice.h"

#include <algorithm>
#include <array>

#include "GlibError.h"
#include "U3vManifest.h"
#include "U3vRegisters.h"
#include "U3vSearch.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::Error;
using std::chrono::milliseconds;

// Giving up a camera takes milliseconds; one that hangs is not waited for.
constexpr milliseconds kGoodbyePatience{500};
// The command link is libaravis', whose times are fixed.
constexpr double kCommandTimeoutUs = 500'000;
constexpr std::int64_t kRetryCount = 5;

GlibPtr<ArvDevice> OpenArvDevice(const std::string& guid, const std::string& name) {
  GlibError error;
  GlibPtr<ArvDevice> device(arv_uv_device_new_from_guid(guid.c_str(), error.Out()));
  if (!device) error.Throw(name + " cannot be opened");
  return device;
}

}  // namespace

U3vDevice::U3vDevice(const producer::DeviceInfo& info, UsbContext& usb, Disposer& disposer,
                     producer::DeviceListener& listener)
    : disposer_(disposer), listener_(listener) {
  link_.name = info.vendor + " " + info.model + " (" + info.id + ")";
  link_.chunkTrailers = producer::ChunkTrailers::littleEndian;
  link_.hasPacketSocket = false;
  // libaravis writes to the console when it finds out by itself.
  CheckU3vDeviceIsFree(usb, info.u3v->guid, link_.name);
  link_.device = OpenArvDevice(info.u3v->guid, link_.name);
  // Transfers one after the other: with many at once libaravis waits without end when the camera is unplugged.
  arv_uv_device_set_usb_mode(reinterpret_cast<ArvUvDevice*>(link_.device.get()), ARV_UV_USB_MODE_SYNC);
  lossSignal_ = std::make_unique<LossSignal>(link_.device.get(), [this] { OnLost(); });
  traits_.bigEndian = false;
  traits_.chunkFormat = producer::DeviceTraits::ChunkFormat::custom;
  traits_.xml = ReadU3vManifest(*this, info.model);
  traits_.streamIds.push_back(info.id + "-Stream0");
}

U3vDevice::~U3vDevice() {
  lossSignal_.reset();
  const Disposer::Ticket goodbye = disposer_.Dispose(std::move(link_.device));
  goodbye.Wait(kGoodbyePatience);
}

void U3vDevice::OnLost() {
  link_.MarkLost();
  listener_.OnLost(link_.name + " was unplugged or switched off.");
}

void U3vDevice::CheckPresent() const {
  if (link_.isLost) throw Error(GC_ERR_IO, link_.name + " is lost.");
}

void U3vDevice::Read(std::uint64_t address, void* data, std::size_t size) {
  CheckPresent();
  GlibError error;
  if (arv_device_read_memory(link_.device.get(), address, static_cast<guint32>(size), data, error.Out()) ==
      FALSE)
    error.Throw("Reading from " + link_.name);
}

void U3vDevice::Write(std::uint64_t address, const void* data, std::size_t size) {
  CheckPresent();
  GlibError error;
  // The function only reads from the pointer it takes as writable.
  if (arv_device_write_memory(link_.device.get(), address, static_cast<guint32>(size),
                              const_cast<void*>(data), error.Out()) == FALSE)
    error.Throw("Writing to " + link_.name);
}

std::unique_ptr<producer::Stream> U3vDevice::OpenStream(std::size_t, producer::StreamSink& sink) {
  CheckPresent();
  return std::make_unique<AravisStream>(link_, disposer_, sink);
}

producer::LinkSettings U3vDevice::Link() const {
  return {kCommandTimeoutUs, kRetryCount};
}

void U3vDevice::SetUserDefinedName(const std::string& name) {
  if (name.size() >= kU3vUserNameBytes) {
    throw Error(GC_ERR_INVALID_VALUE,
                "The user-defined name of a USB3 Vision camera has at most 63 characters.");
  }
  std::array<char, kU3vUserNameBytes> field{};
  std::copy(name.begin(), name.end(), field.begin());
  Write(kU3vUserName, field.data(), field.size());
}

}  // namespace zyn::aravis
