#include "ReadyTransport.h"

#include <GenApi/GenApi.h>
#include <GevIpLib.h>
#include <KELGeniCam.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace ready {
namespace {

constexpr int kRowBytes = 2048;

constexpr const char* kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Ready" VendorName="Bench" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1"
  SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
  ProductGuid="1F3C6A72-7ACD-4F49-9C51-3D6A1D0C5B10" VersionGuid="1F3C6A72-7ACD-4F49-9C51-3D6A1D0C5B11"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root"><pFeature>Width</pFeature><pFeature>AcquisitionLineCount</pFeature>
    <pFeature>BatchNumber</pFeature><pFeature>OutlineLengthMax</pFeature><pFeature>EnableExtraction</pFeature>
    <pFeature>EnableImage</pFeature><pFeature>EnableCalibration</pFeature><pFeature>BatchEnable</pFeature>
    <pFeature>ZUpSizeInfo</pFeature><pFeature>ZDownSizeInfo</pFeature><pFeature>XSizeInfo</pFeature></Category>
  <Integer Name="Width"><pValue>WidthReg</pValue><Min>0</Min><Max>4096</Max></Integer>
  <IntReg Name="WidthReg"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="AcquisitionLineCount"><pValue>AcquisitionLineCountReg</pValue></Integer>
  <IntReg Name="AcquisitionLineCountReg"><Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="BatchNumber"><pValue>BatchNumberReg</pValue></Integer>
  <IntReg Name="BatchNumberReg"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="OutlineLengthMax"><pValue>OutlineLengthMaxReg</pValue></Integer>
  <IntReg Name="OutlineLengthMaxReg"><Address>12</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Boolean Name="EnableExtraction"><pValue>ModeReg</pValue></Boolean>
  <Boolean Name="EnableImage"><pValue>ModeReg</pValue></Boolean>
  <Boolean Name="EnableCalibration"><pValue>ModeReg</pValue></Boolean>
  <Boolean Name="BatchEnable"><pValue>ModeReg</pValue></Boolean>
  <IntReg Name="ModeReg"><Address>16</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Float Name="ZUpSizeInfo"><Value>40</Value></Float>
  <Float Name="ZDownSizeInfo"><Value>2</Value></Float>
  <Float Name="XSizeInfo"><Value>60</Value></Float>
  <Port Name="Device"/>
</RegisterDescription>)";

/// Registers in memory.
class MemoryPort : public GenApi_3_4::IPort {
 public:
  GenApi_3_4::EAccessMode GetAccessMode() const override { return GenApi_3_4::RW; }
  void Read(void* buffer, std::int64_t address, std::int64_t length) override {
    std::memcpy(buffer, registers_.data() + address, static_cast<std::size_t>(length));
  }
  void Write(const void* buffer, std::int64_t address, std::int64_t length) override {
    std::memcpy(registers_.data() + address, buffer, static_cast<std::size_t>(length));
  }

 private:
  std::array<std::uint8_t, 64> registers_{};
};

std::vector<unsigned char>& Frame() {
  static std::vector<unsigned char> frame;
  return frame;
}

/// The frames that were made ready and not taken yet.
class ReadyFrames {
 public:
  void Put() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++count_;
    }
    isReady_.notify_one();
  }
  bool Take(int timeoutMs) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!isReady_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return count_ > 0; }))
      return false;
    --count_;
    return true;
  }

 private:
  std::mutex mutex_;
  std::condition_variable isReady_;
  int count_ = 0;
};

ReadyFrames& Frames() {
  static ReadyFrames frames;
  return frames;
}

bool& Waiting() {
  static bool isWaiting = false;
  return isWaiting;
}

Laser& LaserShape() {
  static Laser shape;
  return shape;
}

std::vector<unsigned char>& ScanRecords() {
  static std::vector<unsigned char> records;
  return records;
}

std::size_t RecordBytes(const Laser& shape, int lines) {
  return static_cast<std::size_t>(shape.points) * static_cast<std::size_t>(lines) * 4;
}

class ReadyChunk : public KELGENICAM::IChunk {
 public:
  unsigned char* Data() override { return data; }
  unsigned long long Length() override { return length; }
  unsigned char* data = nullptr;
  unsigned long long length = 0;
};

class ReadyImage : public KELGENICAM::IImage {
 public:
  bool IsValid() override { return true; }
  long long FrameID() override { return 1; }
  int Width() override { return kRowBytes; }
  int Height() override { return static_cast<int>(Frame().size() / kRowBytes); }
  void Chunks(std::list<KELGENICAM::IChunk*>& chunks) override {
    chunks.clear();
    if (chunk.data) chunks.push_back(&chunk);
  }
  int Channels() override { return 1; }
  int Step() override { return kRowBytes; }
  unsigned char* Data() override { return Frame().data(); }
  void Release() override {}

  ReadyChunk chunk;
};

class Holder : public KELGENICAM::INodeMapHolder {
 public:
  explicit Holder(const Laser& laser) {
    const std::array<std::int32_t, 3> geometry = {laser.linesPerScan, laser.linesPerFrame, laser.points};
    port_.Write(geometry.data(), 4, sizeof(geometry));
    map_._LoadXMLFromString(kDescription);
    map_._Connect(&port_, "Device");
  }
  GenApi_3_4::INodeMap* NodeMap() override { return map_._Ptr; }

 private:
  MemoryPort port_;
  GenApi_3_4::CNodeMapRef map_;
};

class ReadyCamera : public KELGENICAM::ICamera {
 public:
  explicit ReadyCamera(const Laser& laser) : laser_(laser), remote_(laser) {}
  int Open(int) override { return 0; }
  int Close() override { return 0; }
  bool IsOpen() override { return true; }
  bool IsOnline() override { return true; }
  int StartGrabbing(KELGENICAM::GRAB_STRATEGY, int) override {
    grabbing_ = true;
    line_ = 0;
    return 0;
  }
  int StopGrabbing() override {
    grabbing_ = false;
    return 0;
  }
  bool IsGrabbing() override { return grabbing_; }
  int Grab(KELGENICAM::IImage** image, int timeoutMs) override {
    if (isWaiting_ && !Frames().Take(timeoutMs)) return KELGENICAM::RESULT_TIMEOUT;
    if (laser_.points != 0) NextLines();
    *image = &image_;
    return 0;
  }
  KELGENICAM::INodeMapHolder* TLNodeMap() override { return nullptr; }
  KELGENICAM::INodeMapHolder* InterfaceNodeMap() override { return nullptr; }
  KELGENICAM::INodeMapHolder* LocalDeviceNodeMap() override { return nullptr; }
  KELGENICAM::INodeMapHolder* RemoteDeviceNodeMap() override { return &remote_; }
  KELGENICAM::INodeMapHolder* DataStreamNodeMap() override { return nullptr; }
  int SetCLCameraParam(const char*, const char*) override { return 0; }
  int RegisterNotify(KELGENICAM::NOTIFY_SRC, KELGENICAM::NOTIFY_TYPE, KELGENICAM::INotify*) override {
    return 0;
  }
  void Release() override { delete this; }

 private:
  void NextLines() {
    image_.chunk.data = ScanRecords().data() + RecordBytes(laser_, line_);
    image_.chunk.length = RecordBytes(laser_, laser_.linesPerFrame);
    line_ = (line_ + laser_.linesPerFrame) % laser_.linesPerScan;
  }

  const Laser laser_;
  const bool isWaiting_ = Waiting();
  bool grabbing_ = false;
  int line_ = 0;
  ReadyImage image_;
  Holder remote_;
};

class ReadyInfo : public KELGENICAM::ICameraInfo {
 public:
  ReadyInfo(char kind, const char* model, std::size_t number) : model_(model) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%c%04zu", kind, number);
    serial_ = text.data();
  }
  unsigned int ProtocolType() override { return KELGENICAM::PROTOCOL_USB3_VISION; }
  int DeviceState() override { return KELGENICAM::DEVICE_STATE_READWRITE; }
  const char* CameraID() override { return serial_.c_str(); }
  const char* SerialNumber() override { return serial_.c_str(); }
  const char* ManufacturerName() override { return "Bench"; }
  const char* ModelName() override { return model_; }
  const char* CameraName() override { return "Ready"; }
  const char* UserDefinedName() override { return ""; }
  const char* DeviceVersion() override { return "1"; }
  const char* InterfaceID() override { return "bench"; }
  const char* Text(int) override { return ""; }
  void CopyFrom(const KELGENICAM::ICameraInfo&) override {}

 private:
  const char* model_;
  std::string serial_;
};

std::vector<std::unique_ptr<ReadyInfo>>& Infos() {
  static std::vector<std::unique_ptr<ReadyInfo>> infos;
  return infos;
}

ReadyInfo& LaserInfo() {
  static ReadyInfo info('L', "KEL-LP Ready", 0);
  return info;
}

std::size_t& VisibleCount() {
  static std::size_t count = 0;
  return count;
}

}  // namespace

void SetCameraCount(std::size_t count) {
  while (Infos().size() < count) Infos().push_back(std::make_unique<ReadyInfo>('R', "Ready", Infos().size()));
  VisibleCount() = count;
}

void SetFrameBytes(std::size_t bytes) {
  Frame().assign(bytes, 0x5a);
}

void SetWaiting(bool isWaiting) {
  Waiting() = isWaiting;
}

void MakeFrameReady() {
  Frames().Put();
}

const unsigned char* FrameData() {
  return Frame().data();
}

void SetLaser(const Laser& laser) {
  LaserShape() = laser;
  ScanRecords().resize(RecordBytes(laser, laser.linesPerScan));
  unsigned state = 1;
  for (unsigned char& byte : ScanRecords()) {
    state = state * 1664525U + 1013904223U;
    byte = static_cast<unsigned char>(state >> 24);
  }
}

const unsigned char* Records() {
  return ScanRecords().data();
}

}  // namespace ready

namespace KELGENICAM {

int Init() {
  return 0;
}
int UnInit() {
  return 0;
}
int Discovery(const char*, std::list<ICameraInfo*>& found) {
  found.clear();
  for (std::size_t i = 0; i < ready::VisibleCount(); ++i) found.push_back(ready::Infos()[i].get());
  if (ready::LaserShape().points != 0) found.push_back(&ready::LaserInfo());
  return 0;
}
int DiscoveryByTLType(unsigned long, std::list<ICameraInfo*>& found) {
  return Discovery(nullptr, found);
}
ICamera* CreateCamera(ICameraInfo* info) {
  return new ready::ReadyCamera(info == &ready::LaserInfo() ? ready::LaserShape() : ready::Laser());
}
ICamera* CreateCameraBySN(const std::string&) {
  return new ready::ReadyCamera(ready::Laser());
}
int GetCLProtocols(std::list<std::string>&) {
  return 0;
}
int GetCLSerials(std::list<std::string>&) {
  return 0;
}
void LoadReport(std::list<LoadReportEntry>& entries) {
  entries.clear();
}

}  // namespace KELGENICAM

int SetCameraIP(const std::string&, const std::string&, const std::string&, const std::string&, bool) {
  return 0;
}
