#include "GevDevice.h"

#include <algorithm>
#include <array>

#include "GevRegisters.h"
#include "GlibError.h"
#include "XmlUrl.h"
#include "gige/RegisterClient.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::Error;
using std::chrono::milliseconds;

constexpr gige::RegisterClient::Options kProbe{milliseconds{200}, 3};
// A camera that says goodbye does so in milliseconds; one that vanished just now is not waited for.
constexpr milliseconds kGoodbyePatience{500};
// The command link is libaravis', whose times are fixed.
constexpr double kCommandTimeoutUs = 500'000;
constexpr std::int64_t kRetryCount = 5;
constexpr std::uint64_t kUserName = 0x00E8;
constexpr std::size_t kUserNameBytes = 16;

GlibPtr<GInetAddress> InetAddress(gige::Ipv4 address) {
  return GlibPtr<GInetAddress>(g_inet_address_new_from_string(ToText(address).c_str()));
}

// libaravis would take 2.5 seconds to find out that nobody answers, and open a camera that somebody else controls.
void CheckIsFree(const GevRoute& route, const std::string& name) {
  const auto client = gige::RegisterClient::Connect(route.local, route.device, kProbe);
  std::uint32_t privilege = 0;
  const gige::Result result = client ? client->ReadRegister(gige::bootstrap::kControlPrivilege, privilege)
                                     : gige::Result::systemError;
  switch (result) {
    case gige::Result::ok:
      break;
    case gige::Result::accessDenied:
      privilege = gige::kExclusiveAccess;
      break;
    case gige::Result::noAnswer:
      throw Error(GC_ERR_TIMEOUT, name + " does not answer.");
    default:
      throw Error(GC_ERR_IO, name + " cannot be reached.");
  }
  if ((privilege & (gige::kExclusiveAccess | gige::kControlAccess)) != 0) {
    throw Error(GC_ERR_ACCESS_DENIED, name + " is controlled by another application.");
  }
}

GlibPtr<ArvDevice> OpenArvDevice(const GevRoute& route, const std::string& name) {
  GlibError error;
  GlibPtr<ArvDevice> device(
      arv_gv_device_new(InetAddress(route.local).get(), InetAddress(route.device).get(), error.Out()));
  if (!device) error.Throw(name + " cannot be opened");
  return device;
}

ArvGvDevice* AsGv(ArvDevice* device) {
  return reinterpret_cast<ArvGvDevice*>(device);
}

std::string ReadText(producer::Device& device, std::uint64_t address, std::size_t size) {
  std::string text(size, '\0');
  device.Read(address, text.data(), text.size());
  return text;
}

}  // namespace

producer::DeviceTraits ReadGevTraits(producer::Device& device, const std::string& deviceId,
                                     std::size_t streams) {
  producer::DeviceTraits traits;
  traits.bigEndian = true;
  traits.chunkFormat = producer::DeviceTraits::ChunkFormat::gigEVision;
  for (const std::uint32_t reg : {gige::bootstrap::kXmlUrl, gige::bootstrap::kSecondXmlUrl}) {
    try {
      if (auto location = ParseXmlUrl(ReadText(device, reg, gige::bootstrap::kXmlUrlBytes))) {
        traits.xml.push_back(std::move(*location));
      }
    } catch (const Error&) {
      if (reg == gige::bootstrap::kXmlUrl) throw;  // the second one is a spare that some cameras do not have
    }
  }
  if (traits.xml.empty()) throw Error(GC_ERR_IO, "The camera does not tell where its description is.");
  for (std::size_t i = 0; i < streams; ++i)
    traits.streamIds.push_back(deviceId + "-Stream" + std::to_string(i));
  return traits;
}

GevDevice::GevDevice(const producer::DeviceInfo& info, const GevRoute& route, bool isExclusive,
                     Disposer& disposer, producer::DeviceListener& listener)
    : disposer_(disposer), listener_(listener) {
  link_.name = info.vendor + " " + info.model + " (" + info.id + ")";
  CheckIsFree(route, link_.name);
  auto client = gige::RegisterClient::Connect(route.local, route.device, ControlMonitor::Options());
  if (!client) throw Error(GC_ERR_RESOURCE_EXHAUSTED, "The system has no socket left.");
  link_.device = OpenArvDevice(route, link_.name);
  if (arv_gv_device_is_controller(AsGv(link_.device.get())) == FALSE) {
    throw Error(GC_ERR_ACCESS_DENIED, link_.name + " is controlled by another application.");
  }
  if (isExclusive) {
    GlibError error;
    if (arv_device_write_register(link_.device.get(), gige::bootstrap::kControlPrivilege,
                                  gige::kExclusiveAccess, error.Out()) == FALSE) {
      error.Throw(link_.name + " gives no exclusive access", GC_ERR_ACCESS_DENIED);
    }
  }
  traits_ = ReadGevTraits(*this, info.id, 1);
  monitor_ = std::make_unique<ControlMonitor>(std::move(client), isExclusive,
                                              [this](const std::string& cause) { OnLost(cause); });
}

GevDevice::~GevDevice() {
  monitor_.reset();
  const Disposer::Ticket goodbye = disposer_.Dispose(std::move(link_.device));
  if (!link_.isLost) goodbye.Wait(kGoodbyePatience);
}

void GevDevice::OnLost(const std::string& cause) {
  link_.isLost = true;
  listener_.OnLost(link_.name + ": " + cause);
}

void GevDevice::CheckPresent() const {
  if (link_.isLost) throw Error(GC_ERR_IO, link_.name + " is lost.");
}

void GevDevice::Read(std::uint64_t address, void* data, std::size_t size) {
  CheckPresent();
  ReadBytes(address, static_cast<std::uint8_t*>(data), size,
            [this](auto... words) { ReadAligned(words...); });
}

void GevDevice::Write(std::uint64_t address, const void* data, std::size_t size) {
  CheckPresent();
  const MutexLock lock(writeMutex_);
  WriteBytes(
      address, static_cast<const std::uint8_t*>(data), size, [this](auto... words) { ReadAligned(words...); },
      [this](auto... words) { WriteAligned(words...); });
}

void GevDevice::ReadAligned(std::uint64_t address, std::uint8_t* data, std::size_t size) {
  GlibError error;
  const auto bytes = static_cast<guint32>(size);
  if (arv_device_read_memory(link_.device.get(), address, bytes, data, error.Out()) == FALSE) {
    error.Throw("Reading from " + link_.name);
  }
}

void GevDevice::WriteAligned(std::uint64_t address, const std::uint8_t* data, std::size_t size) {
  GlibError error;
  // The function only reads from the pointer it takes as writable.
  auto* bytes = const_cast<std::uint8_t*>(data);
  if (arv_device_write_memory(link_.device.get(), address, static_cast<guint32>(size), bytes, error.Out()) !=
      FALSE) {
    return;
  }
  // Writing memory is the one command that a device may lack.
  if (error.Code() == GC_ERR_NOT_IMPLEMENTED) return WriteRegisters(address, data, size);
  error.Throw("Writing to " + link_.name);
}

void GevDevice::WriteRegisters(std::uint64_t address, const std::uint8_t* data, std::size_t size) {
  for (std::size_t at = 0; at < size; at += 4) {
    const guint32 value = static_cast<guint32>(data[at]) << 24U | static_cast<guint32>(data[at + 1]) << 16U |
                          static_cast<guint32>(data[at + 2]) << 8U | data[at + 3];
    GlibError error;
    if (arv_device_write_register(link_.device.get(), address + at, value, error.Out()) == FALSE) {
      error.Throw("Writing to " + link_.name);
    }
  }
}

std::unique_ptr<producer::Stream> GevDevice::OpenStream(std::size_t, producer::StreamSink& sink) {
  CheckPresent();
  return std::make_unique<AravisStream>(link_, disposer_, sink);
}

producer::LinkSettings GevDevice::Link() const {
  return {kCommandTimeoutUs, kRetryCount};
}

void GevDevice::SetUserDefinedName(const std::string& name) {
  if (name.size() >= kUserNameBytes) {
    throw Error(GC_ERR_INVALID_VALUE,
                "The user-defined name of a GigE Vision camera has at most 15 characters.");
  }
  std::array<char, kUserNameBytes> field{};
  std::copy(name.begin(), name.end(), field.begin());
  Write(kUserName, field.data(), field.size());
}

}  // namespace zyn::aravis
