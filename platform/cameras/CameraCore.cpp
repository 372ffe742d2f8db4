#include "cameras/CameraCore.h"

#include <cmath>

#include "cameras/ChunkLayout.h"

namespace zyn::cameras {

CameraCore::CameraCore(Identity identity, Clock& clock)
    : identity_(std::move(identity)), clock_(clock), poweredUpAt_(clock.NowNs()) {
  features_.LockWhile([this] { return pacer_.IsRunning(); });
}

void CameraCore::Finish(const std::string& summary) {
  features_.BuildRegisters(registers_);
  description_ = features_.BuildDescription(identity_.vendor, identity_.model, summary);
}

void CameraCore::TakeFrame(Frame& frame, std::size_t shortenBy) {
  frame = Frame();
  frame.timestampNs = pacer_.DueNs().value_or(0);
  frame.id = ++frameNumber_;
  PlanFrame(frame, shortenBy);
  NumberLayout(frame);
  pacer_.Take(NowNs());
  Raise(kExposureEnd, {kExposureEndEvent, frame.timestampNs, frame.id});
}

void CameraCore::SetLine(unsigned line, bool isHigh) {
  if (line >= std::size(lines_) || lines_[line] == isHigh) return;
  lines_[line] = isHigh;
  OnEdge(line, isHigh);
}

RegisterStatus CameraCore::Start() {
  if (pacer_.IsRunning()) return RegisterStatus::accessDenied;
  frameNumber_ = 0;
  OnStart();
  pacer_.Start(MakePace(), NowNs());
  Raise(kAcquisitionStart, {kAcquisitionStartEvent, NowNs(), 0});
  return RegisterStatus::ok;
}

void CameraCore::Raise(Event event, const CameraEvent& what) {
  if (listener_ != nullptr && notifies_[event] != 0) listener_->OnCameraEvent(what);
}

void CameraCore::Reset() {
  pacer_.Stop();
  latchedTime_ = 0;
  notifies_ = {};
  ++resets_;
  OnReset();
}

// Warms up from 32 to 44 degrees within some minutes.
double CameraCore::Temperature() const {
  const double minutes = static_cast<double>(NowNs() - poweredUpAt_) / 60e9;
  return 44.0 - 12.0 * std::exp(-minutes / 5.0);
}

void CameraCore::AddDeviceFeatures() {
  const auto text = [this](const char* name, const char* tip, std::string Identity::*member) {
    features_.Text(name, tip, 64, [this, member] { return identity_.*member; });
  };
  features_.Category("DeviceControl", "What the camera is, and its state.");
  text("DeviceVendorName", "Name of the maker.", &Identity::vendor);
  text("DeviceModelName", "Name of the model.", &Identity::model);
  text("DeviceVersion", "Version of the camera.", &Identity::version);
  text("DeviceSerialNumber", "Serial number: no two cameras of a maker have the same.", &Identity::serial);
  features_.Text("DeviceUserID", "A name that the user gives the camera.", 64, &identity_.userName);
  features_
      .Float("DeviceTemperature", "Temperature of the main board.",
             std::function<double()>([this] { return Temperature(); }))
      .Unit("C")
      .Expert()
      .Volatile();
  features_
      .Command("DeviceReset", "Restarts the camera: ends the acquisition and loads the start-up settings.",
               {[this] {
                 Reset();
                 return RegisterStatus::ok;
               }})
      .Guru();
  features_
      .Command("TimestampLatch", "Stores the camera's present time in TimestampLatchValue.", {[this] {
                 latchedTime_ = NowNs();
                 return RegisterStatus::ok;
               }})
      .Expert();
  features_
      .Int("TimestampLatchValue", "The time stored by TimestampLatch.",
           std::function<std::int64_t()>([this] { return latchedTime_; }))
      .Unit("ns")
      .Expert()
      .Volatile();
}

void CameraCore::AddAcquisitionCommands() {
  features_.Command("AcquisitionStart", "Starts the acquisition.", {[this] { return Start(); }});
  features_.Command("AcquisitionStop", "Ends the acquisition.", {[this] {
                      pacer_.Stop();
                      return RegisterStatus::ok;
                    }});
}

void CameraCore::AddLineFeatures() {
  features_.Category("DigitalIOControl", "The input lines.");
  features_
      .Int("LineStatusAll", "Levels of the input lines: bit 0 is Line0.",
           std::function<std::int64_t()>(
               [this] { return std::int64_t{lines_[0] ? 1 : 0} | std::int64_t{lines_[1] ? 2 : 0}; }))
      .Representation("HexNumber")
      .Expert()
      .Volatile();
}

void CameraCore::AddEventFeatures() {
  const auto number = [this](const char* name, const char* tip, std::uint16_t id) {
    features_.Int(name, tip, std::function<std::int64_t()>([id] { return std::int64_t{id}; }))
        .Representation("HexNumber")
        .Expert();
  };
  features_.Category("EventControl", "What the camera reports by itself.");
  features_.Selector("EventSelector", "The event that is meant.", {"AcquisitionStart", "ExposureEnd"});
  features_
      .Enum("EventNotification", "Whether the event is reported.", {{"Off", 0}, {"On", 1}},
            {&notifies_[kAcquisitionStart], &notifies_[kExposureEnd]})
      .SelectedBy("EventSelector")
      .NotStored();
  number("EventAcquisitionStart", "Number of the event: the acquisition has started.",
         kAcquisitionStartEvent);
  number("EventExposureEnd", "Number of the event: the last exposure of a frame has ended.",
         kExposureEndEvent);
  features_.EventPort("EventExposureEndPort", kExposureEndEvent);
  features_
      .ChunkInt("EventExposureEndTimestamp", "When the exposure ended.", "EventExposureEndPort",
                kEventTimestampAt)
      .Unit("ns")
      .Expert();
  features_
      .ChunkInt("EventExposureEndFrameID", "Number of the frame.", "EventExposureEndPort", kEventFrameIdAt)
      .Expert();
}

void CameraCore::AddTransportFeatures() {
  features_.Category("TransportLayerControl", "What the transport needs to know.");
  features_
      .Int("PayloadSize", "Bytes of the largest frame with the present settings.",
           std::function<std::int64_t()>([this] { return static_cast<std::int64_t>(PayloadSize()); }))
      .Unit("B")
      .Expert()
      .Volatile();
  features_
      .HostInt("TLParamsLocked",
               "1 while a stream is prepared: settings that change the frames' size are locked.")
      .Range(0, 1)
      .Invisible();
}

}  // namespace zyn::cameras
