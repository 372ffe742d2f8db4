#include "SimDevice.h"

#include <array>
#include <cstdio>

#include "CameraRegisters.h"
#include "SimStream.h"
#include "producer/Error.h"

namespace zyn::simulation {

SimDevice::SimDevice(CameraSlot& slot, producer::DeviceListener& listener)
    : slot_(slot),
      listener_(listener),
      connection_(slot.Connect(listener)),
      cardFeatures_(slot.GetCard() ? std::make_unique<CardFeatures>(*slot.GetCard()) : nullptr) {
  slot_.Camera().SetEventListener(this);
}

SimDevice::~SimDevice() {
  slot_.Camera().SetEventListener(nullptr);
  slot_.Disconnect(*connection_);
}

producer::DeviceTraits SimDevice::Traits() const {
  producer::DeviceTraits traits;
  traits.bigEndian = true;
  char place[48];
  std::snprintf(place, sizeof place, ";%llX;%zX", static_cast<unsigned long long>(kDescriptionAddress),
                slot_.Camera().Description().size());
  producer::XmlLocation location;
  location.url = "local:" + slot_.ModelName() + ".xml" + place;
  traits.xml = {location};
  traits.streamIds = {"Stream0"};
  if (!slot_.IsShapedByCard()) traits.chunkFormat = producer::DeviceTraits::ChunkFormat::gigEVision;
  return traits;
}

void SimDevice::OnCameraEvent(const cameras::CameraEvent& event) {
  std::array<std::uint8_t, cameras::kEventItemBytes + cameras::kEventDataBytes> item{};
  const auto ticks = static_cast<std::uint64_t>(event.timestampNs);
  const std::size_t size = cameras::WriteEventItem(event, ticks, item.data());
  listener_.OnRemoteEvent(event.id, item.data(), size);
}

void SimDevice::RequireConnected() const {
  if (connection_->IsCut())
    throw producer::Error(GenTL::GC_ERR_IO, "The camera " + slot_.Serial() + " is lost.");
}

void SimDevice::Read(std::uint64_t address, void* data, std::size_t size) {
  RequireConnected();
  ReadBytes(slot_.Camera(), address, data, size);
}

void SimDevice::Write(std::uint64_t address, const void* data, std::size_t size) {
  RequireConnected();
  WriteBytes(slot_.Camera(), address, data, size);
  slot_.CutWhenReset();
}

std::unique_ptr<producer::Stream> SimDevice::OpenStream(std::size_t, producer::StreamSink& sink) {
  return std::make_unique<SimStream>(slot_, *connection_, sink);
}

void SimDevice::SetUserDefinedName(const std::string& name) {
  RequireConnected();
  WriteText(slot_.Camera(), "DeviceUserID", name);
  connection_->Invalidate("DeviceUserID");
}

}  // namespace zyn::simulation
