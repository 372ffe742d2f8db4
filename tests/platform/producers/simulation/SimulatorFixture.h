/// The simulator, used through the C functions.
#ifndef ZYN_TESTS_SIMULATION_SIMULATOR_FIXTURE_H
#define ZYN_TESTS_SIMULATION_SIMULATOR_FIXTURE_H

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Getters.h"
#include "NodeMap.h"

namespace simtest {

using namespace kittest;

/// A file that goes when the test does.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& text) {
    std::string pattern = (std::filesystem::temp_directory_path() / "simulator-XXXXXX").string();
    const int file = mkstemp(pattern.data());
    if (file >= 0) ::close(file);
    path_ = pattern;
    std::ofstream(path_) << text;
  }
  ~TemporaryFile() { std::remove(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

/// Initialises the producer with a configuration; everything is closed at the end.
class SimulatorTest : public testing::Test {
 protected:
  static constexpr const char* kEthernet = "SimulatedEthernet";
  static constexpr const char* kGrabber = "SimulatedGrabber";

  ~SimulatorTest() override {
    simulator_.reset();
    GCCloseLib();
    unsetenv("ZYN_SIMULATOR_CONFIG");
  }

  /// Returns the result of GCInitLib.
  GC_ERROR Initialise(const std::string& json) {
    file_ = std::make_unique<TemporaryFile>(json);
    setenv("ZYN_SIMULATOR_CONFIG", file_->Path().c_str(), 1);
    return GCInitLib();
  }

  /// Opens the system and an interface, and searches.
  void Begin(const std::string& json, const char* interfaceId = kEthernet) {
    ASSERT_EQ(Initialise(json), GC_ERR_SUCCESS);
    ASSERT_EQ(TLOpen(&system_), GC_ERR_SUCCESS);
    ASSERT_EQ(TLUpdateInterfaceList(system_, nullptr, 1000), GC_ERR_SUCCESS);
    ASSERT_EQ(TLOpenInterface(system_, interfaceId, &interface_), GC_ERR_SUCCESS);
    ASSERT_EQ(IFUpdateDeviceList(interface_, nullptr, 1000), GC_ERR_SUCCESS);
    simulator_ = std::make_unique<NodeMap>(interface_);
  }

  std::vector<std::string> Devices() const {
    EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 1000), GC_ERR_SUCCESS);
    std::uint32_t count = 0;
    EXPECT_EQ(IFGetNumDevices(interface_, &count), GC_ERR_SUCCESS);
    std::vector<std::string> ids;
    for (std::uint32_t i = 0; i < count; ++i) {
      char id[256];
      std::size_t size = sizeof id;
      EXPECT_EQ(IFGetDeviceID(interface_, i, id, &size), GC_ERR_SUCCESS);
      ids.emplace_back(id);
    }
    return ids;
  }

  GC_ERROR Open(const char* serial, DEV_HANDLE* device) const {
    return IFOpenDevice(interface_, serial, DEVICE_ACCESS_CONTROL, device);
  }

  std::int32_t AccessStatus(const std::string& id) const {
    return Int32(Bound(IFGetDeviceInfo, interface_, id.c_str(), DEVICE_INFO_ACCESS_STATUS));
  }

  std::unique_ptr<TemporaryFile> file_;
  TL_HANDLE system_ = nullptr;
  IF_HANDLE interface_ = nullptr;
  std::unique_ptr<NodeMap> simulator_;  // the features of the interface
};

inline std::string LastErrorText() {
  char text[1024];
  std::size_t size = sizeof text;
  GC_ERROR code = 0;
  return GCGetLastError(&code, text, &size) == GC_ERR_SUCCESS ? text : "";
}

/// An open camera with its node map and, once asked for, its stream with buffers.
class OpenCamera {
 public:
  OpenCamera(IF_HANDLE interface, const char* serial) {
    EXPECT_EQ(IFOpenDevice(interface, serial, DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS)
        << LastErrorText();
    EXPECT_EQ(DevGetPort(device, &port), GC_ERR_SUCCESS);
    features = std::make_unique<NodeMap>(port);
  }
  ~OpenCamera() { Close(); }
  OpenCamera(const OpenCamera&) = delete;
  OpenCamera& operator=(const OpenCamera&) = delete;

  void Close() {
    features.reset();
    if (device != nullptr) {
      EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
    }
    device = nullptr;
  }

  void OpenStream(std::size_t bufferCount) {
    EXPECT_EQ(DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    EXPECT_EQ(GCRegisterEvent(stream, EVENT_NEW_BUFFER, &newBuffer), GC_ERR_SUCCESS);
    const auto size = static_cast<std::size_t>(features->Int("PayloadSize"));
    for (std::size_t i = 0; i < bufferCount; ++i) {
      BUFFER_HANDLE buffer = nullptr;
      EXPECT_EQ(DSAllocAndAnnounceBuffer(stream, size, nullptr, &buffer), GC_ERR_SUCCESS);
      EXPECT_EQ(DSQueueBuffer(stream, buffer), GC_ERR_SUCCESS);
    }
  }

  void Start(std::uint64_t frames = GENTL_INFINITE) const {
    EXPECT_EQ(DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, frames), GC_ERR_SUCCESS);
    features->Execute("AcquisitionStart");
  }
  void Stop(ACQ_STOP_FLAGS flags = ACQ_STOP_FLAGS_DEFAULT) const {
    features->Execute("AcquisitionStop");
    EXPECT_EQ(DSStopAcquisition(stream, flags), GC_ERR_SUCCESS);
  }

  /// The next frame; null when none comes in time.
  BUFFER_HANDLE Fetch(std::uint64_t timeoutMs = 20000) const {
    EVENT_NEW_BUFFER_DATA data = {};
    std::size_t size = sizeof data;
    return EventGetData(newBuffer, &data, &size, timeoutMs) == GC_ERR_SUCCESS ? data.BufferHandle : nullptr;
  }
  void Queue(BUFFER_HANDLE buffer) const { EXPECT_EQ(DSQueueBuffer(stream, buffer), GC_ERR_SUCCESS); }

  Getter Ask(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const {
    return Bound(DSGetBufferInfo, stream, buffer, command);
  }
  Getter Ask(STREAM_INFO_CMD command) const { return Bound(DSGetInfo, stream, command); }

  const std::uint8_t* Base(BUFFER_HANDLE buffer) const {
    return static_cast<const std::uint8_t*>(Pointer(Ask(buffer, BUFFER_INFO_BASE)));
  }

  std::vector<SINGLE_CHUNK_DATA> Chunks(BUFFER_HANDLE buffer) const {
    std::size_t count = 0;
    if (DSGetBufferChunkData(stream, buffer, nullptr, &count) != GC_ERR_SUCCESS) return {};
    std::vector<SINGLE_CHUNK_DATA> chunks(count);
    EXPECT_EQ(DSGetBufferChunkData(stream, buffer, chunks.data(), &count), GC_ERR_SUCCESS);
    return chunks;
  }

  DEV_HANDLE device = nullptr;
  PORT_HANDLE port = nullptr;
  DS_HANDLE stream = nullptr;
  EVENT_HANDLE newBuffer = nullptr;
  std::unique_ptr<NodeMap> features;
};

}  // namespace simtest

#endif
