// ZynTL.cti as any consumer sees it: through the C functions of the loaded file, against a camera nobody here wrote.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "FakeGigeCamera.h"
#include "GenTL/GenTL.h"
#include "gige/RegisterClient.h"

namespace zyn::test {
namespace {

using namespace GenTL;
using std::chrono::seconds;
using std::chrono::steady_clock;
using zyntest::FakeGigeCamera;

constexpr std::uint64_t kAcquisition = 0x124;  // registers of the fake camera
constexpr std::uint64_t kFramePeriod = 0x138;
constexpr std::uint64_t kWidth = 0x100;
constexpr std::size_t kRowBytes = 512;
constexpr std::size_t kImageBytes = kRowBytes * 512;

// The loaded file. A function is looked up by name at its first use.
class Producer {
 public:
  Producer() { Load(); }
  ~Producer() { dlclose(library_); }
  Producer(const Producer&) = delete;
  Producer& operator=(const Producer&) = delete;

  void Reload() {
    dlclose(library_);
    Load();
  }

  template <class Function>
  Function Find(const char* name) const {
    void* symbol = dlsym(library_, name);
    if (symbol == nullptr) throw std::runtime_error(name);
    return reinterpret_cast<Function>(symbol);
  }

 private:
  void Load() {
    library_ = dlopen(ZYN_TEST_PRODUCER, RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) throw std::runtime_error("cannot load " ZYN_TEST_PRODUCER);
  }

  void* library_ = nullptr;
};

#define ZYN_GC(name) producer_.Find<P##name>(#name)

class ProducerTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ZYN_GC(GCInitLib)(), GC_ERR_SUCCESS);
    ASSERT_EQ(ZYN_GC(TLOpen)(&system_), GC_ERR_SUCCESS);
    ASSERT_EQ(ZYN_GC(TLUpdateInterfaceList)(system_, nullptr, 1000), GC_ERR_SUCCESS);
    OpenLoopback();
    ASSERT_NE(interface_, nullptr);
  }

  void TearDown() override {
    EXPECT_EQ(ZYN_GC(TLClose)(system_), GC_ERR_SUCCESS);  // closes everything beneath
    EXPECT_EQ(ZYN_GC(GCCloseLib)(), GC_ERR_SUCCESS);
  }

  void OpenLoopback() {
    std::uint32_t count = 0;
    ASSERT_EQ(ZYN_GC(TLGetNumInterfaces)(system_, &count), GC_ERR_SUCCESS);
    for (std::uint32_t i = 0; i < count; ++i) {
      std::array<char, 256> id{};
      std::size_t size = id.size();
      ASSERT_EQ(ZYN_GC(TLGetInterfaceID)(system_, i, id.data(), &size), GC_ERR_SUCCESS);
      INFO_DATATYPE type = 0;
      std::array<char, 256> name{};
      size = name.size();
      ASSERT_EQ(ZYN_GC(TLGetInterfaceInfo)(system_, id.data(), INTERFACE_INFO_DISPLAYNAME, &type, name.data(),
                                           &size),
                GC_ERR_SUCCESS);
      if (std::string(name.data()) != "lo") continue;
      ASSERT_EQ(ZYN_GC(TLOpenInterface)(system_, id.data(), &interface_), GC_ERR_SUCCESS);
    }
  }

  std::vector<std::string> Search() {
    EXPECT_EQ(ZYN_GC(IFUpdateDeviceList)(interface_, nullptr, 1000), GC_ERR_SUCCESS);
    std::uint32_t count = 0;
    EXPECT_EQ(ZYN_GC(IFGetNumDevices)(interface_, &count), GC_ERR_SUCCESS);
    std::vector<std::string> ids;
    for (std::uint32_t i = 0; i < count; ++i) {
      std::array<char, 256> id{};
      std::size_t size = id.size();
      EXPECT_EQ(ZYN_GC(IFGetDeviceID)(interface_, i, id.data(), &size), GC_ERR_SUCCESS);
      ids.emplace_back(id.data());
    }
    return ids;
  }

  std::string DeviceText(const std::string& id, DEVICE_INFO_CMD command) {
    std::array<char, 256> text{};
    std::size_t size = text.size();
    INFO_DATATYPE type = 0;
    EXPECT_EQ(ZYN_GC(IFGetDeviceInfo)(interface_, id.c_str(), command, &type, text.data(), &size),
              GC_ERR_SUCCESS)
        << command;
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
    return text.data();
  }

  std::int32_t AccessStatus(const std::string& id) {
    std::int32_t status = 0;
    std::size_t size = sizeof status;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(
        ZYN_GC(IFGetDeviceInfo)(interface_, id.c_str(), DEVICE_INFO_ACCESS_STATUS, &type, &status, &size),
        GC_ERR_SUCCESS);
    return status;
  }

  GC_ERROR Open(const char* id = "GV01", DEVICE_ACCESS_FLAGS access = DEVICE_ACCESS_CONTROL) {
    const GC_ERROR error = ZYN_GC(IFOpenDevice)(interface_, id, access, &device_);
    if (error == GC_ERR_SUCCESS) {
      EXPECT_EQ(ZYN_GC(DevGetPort)(device_, &port_), GC_ERR_SUCCESS);
    }
    return error;
  }

  void OpenStream() {
    std::array<char, 256> id{};
    std::size_t size = id.size();
    ASSERT_EQ(ZYN_GC(DevGetDataStreamID)(device_, 0, id.data(), &size), GC_ERR_SUCCESS);
    ASSERT_EQ(ZYN_GC(DevOpenDataStream)(device_, id.data(), &stream_), GC_ERR_SUCCESS);
    ASSERT_EQ(ZYN_GC(GCRegisterEvent)(stream_, EVENT_NEW_BUFFER, &newBuffer_), GC_ERR_SUCCESS);
  }

  void StartStream(int buffers) {
    for (int i = 0; i < buffers; ++i) {
      BUFFER_HANDLE buffer = nullptr;
      ASSERT_EQ(ZYN_GC(DSAllocAndAnnounceBuffer)(stream_, kImageBytes, nullptr, &buffer), GC_ERR_SUCCESS);
      ASSERT_EQ(ZYN_GC(DSQueueBuffer)(stream_, buffer), GC_ERR_SUCCESS);
    }
    ASSERT_EQ(ZYN_GC(DSStartAcquisition)(stream_, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteWord(kAcquisition, 1), GC_ERR_SUCCESS);
  }

  GC_ERROR WriteWord(std::uint64_t address, std::uint32_t value) {
    const std::array<std::uint8_t, 4> bytes{
        static_cast<std::uint8_t>(value >> 24U), static_cast<std::uint8_t>(value >> 16U),
        static_cast<std::uint8_t>(value >> 8U), static_cast<std::uint8_t>(value)};
    std::size_t size = bytes.size();
    return ZYN_GC(GCWritePort)(port_, address, bytes.data(), &size);
  }

  GC_ERROR WaitForBuffer(BUFFER_HANDLE& buffer, std::uint64_t timeoutMs = 5000) {
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    const GC_ERROR error = ZYN_GC(EventGetData)(newBuffer_, &data, &size, timeoutMs);
    buffer = data.BufferHandle;
    return error;
  }

  template <class T>
  T BufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
    T value{};
    std::size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(ZYN_GC(DSGetBufferInfo)(stream_, buffer, command, &type, &value, &size), GC_ERR_SUCCESS)
        << command;
    EXPECT_EQ(size, sizeof value) << command;
    return value;
  }

  std::uint64_t StreamNumber(STREAM_INFO_CMD command) {
    std::uint64_t value = 0;
    std::size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(ZYN_GC(DSGetInfo)(stream_, command, &type, &value, &size), GC_ERR_SUCCESS);
    return value;
  }

  FakeGigeCamera camera_{1, FakeGigeCamera::Bare()};
  Producer producer_;
  TL_HANDLE system_ = nullptr;
  IF_HANDLE interface_ = nullptr;
  DEV_HANDLE device_ = nullptr;
  PORT_HANDLE port_ = nullptr;
  DS_HANDLE stream_ = nullptr;
  EVENT_HANDLE newBuffer_ = nullptr;
};

TEST_F(ProducerTest, ListsCamerasWithAllTheirFields) {
  const FakeGigeCamera second(2, FakeGigeCamera::Bare());
  EXPECT_EQ(Search(), (std::vector<std::string>{"GV01", "GV02"}));
  EXPECT_EQ(DeviceText("GV02", DEVICE_INFO_SERIAL_NUMBER), "GV02");
  EXPECT_EQ(DeviceText("GV02", DEVICE_INFO_VENDOR), "Aravis");
  EXPECT_EQ(DeviceText("GV02", DEVICE_INFO_MODEL), "Fake");
  EXPECT_EQ(DeviceText("GV02", DEVICE_INFO_TLTYPE), "GEV");
  EXPECT_EQ(DeviceText("GV02", DEVICE_INFO_DISPLAYNAME), "Aravis Fake (GV02)");
  EXPECT_EQ(DeviceText("GV02", DEVICE_INFO_VERSION), "0.8.26");
  EXPECT_EQ(AccessStatus("GV02"), DEVICE_ACCESS_STATUS_READWRITE);
}

TEST_F(ProducerTest, ASearchIsDoneWithinAQuarterOfASecond) {
  const auto start = steady_clock::now();
  Search();
  EXPECT_LT(steady_clock::now() - start, std::chrono::milliseconds(250));
}

TEST_F(ProducerTest, OpensWithoutASearchAndReadsTheDescription) {
  ASSERT_EQ(Open(), GC_ERR_SUCCESS);
  std::array<char, 512> url{};
  std::size_t size = url.size();
  INFO_DATATYPE type = 0;
  ASSERT_EQ(ZYN_GC(GCGetPortURLInfo)(port_, 0, URL_INFO_URL, &type, url.data(), &size), GC_ERR_SUCCESS);
  unsigned long long address = 0;
  unsigned long long length = 0;
  ASSERT_EQ(std::sscanf(url.data(), "local:arv-fake-camera.xml;%llx;%llx", &address, &length), 2)
      << url.data();
  std::string xml(length, '\0');
  size = xml.size();
  ASSERT_EQ(ZYN_GC(GCReadPort)(port_, address, xml.data(), &size), GC_ERR_SUCCESS);
  EXPECT_EQ(size, xml.size());
  EXPECT_EQ(xml.find("<?xml"), 0U);
  EXPECT_NE(xml.find("</RegisterDescription>"), std::string::npos);
}

TEST_F(ProducerTest, StreamsTwoHundredFramesInOrder) {
  ASSERT_EQ(Open(), GC_ERR_SUCCESS);
  OpenStream();
  ASSERT_EQ(WriteWord(kFramePeriod, 10'000), GC_ERR_SUCCESS);
  StartStream(8);
  std::uint64_t last = 0;
  for (int i = 0; i < 200; ++i) {
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(WaitForBuffer(buffer), GC_ERR_SUCCESS) << i;
    EXPECT_FALSE(BufferInfo<bool8_t>(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(BufferInfo<std::size_t>(buffer, BUFFER_INFO_WIDTH), 512U);
    EXPECT_EQ(BufferInfo<std::size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 512U);
    EXPECT_EQ(BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), kImageBytes);
    const auto id = BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID);
    EXPECT_EQ(id, i == 0 ? id : last + 1);
    last = id;
    // A diagonal pattern: each row is the row above moved by one.
    const auto* pixels = static_cast<const std::uint8_t*>(BufferInfo<void*>(buffer, BUFFER_INFO_BASE));
    for (std::size_t row = 1; row < 512; row += 41) {
      ASSERT_EQ(std::memcmp(pixels + row * kRowBytes, pixels + (row - 1) * kRowBytes + 1, kRowBytes - 1), 0)
          << i << " " << row;
    }
    ASSERT_EQ(ZYN_GC(DSQueueBuffer)(stream_, buffer), GC_ERR_SUCCESS);
  }
  EXPECT_GE(StreamNumber(STREAM_INFO_NUM_DELIVERED), 200U);
  EXPECT_EQ(StreamNumber(STREAM_INFO_NUM_UNDERRUN), 0U);
  EXPECT_EQ(WriteWord(kAcquisition, 0), GC_ERR_SUCCESS);
  EXPECT_EQ(ZYN_GC(DSStopAcquisition)(stream_, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
  EXPECT_EQ(ZYN_GC(DSFlushQueue)(stream_, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
  for (int i = 0; i < 8; ++i) {
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(ZYN_GC(DSGetBufferID)(stream_, 0, &buffer), GC_ERR_SUCCESS);
    EXPECT_EQ(ZYN_GC(DSRevokeBuffer)(stream_, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
  }
}

TEST_F(ProducerTest, ACameraThatSomebodyControlsIsRefusedAtOnce) {
  const auto other = gige::RegisterClient::Connect(gige::kNoAddress, gige::Ipv4{0x7F000001}, {});
  ASSERT_EQ(other->WriteRegister(gige::bootstrap::kControlPrivilege, gige::kControlAccess), gige::Result::ok);
  Search();
  EXPECT_EQ(AccessStatus("GV01"), DEVICE_ACCESS_STATUS_BUSY);
  const auto start = steady_clock::now();
  EXPECT_EQ(Open(), GC_ERR_ACCESS_DENIED);
  EXPECT_LT(steady_clock::now() - start, seconds(1));
  ASSERT_EQ(other->WriteRegister(gige::bootstrap::kControlPrivilege, 0), gige::Result::ok);
  EXPECT_EQ(Open(), GC_ERR_SUCCESS);
}

TEST_F(ProducerTest, AKilledCameraIsReportedAndOpensAgainAfterItsRestart) {
  ASSERT_EQ(Open(), GC_ERR_SUCCESS);
  EVENT_HANDLE errors = nullptr;
  ASSERT_EQ(ZYN_GC(GCRegisterEvent)(device_, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
  OpenStream();
  StartStream(4);
  BUFFER_HANDLE buffer = nullptr;
  ASSERT_EQ(WaitForBuffer(buffer), GC_ERR_SUCCESS);

  camera_.Kill();
  std::array<char, 1024> data{};
  std::size_t size = data.size();
  ASSERT_EQ(ZYN_GC(EventGetData)(errors, data.data(), &size, 3000), GC_ERR_SUCCESS)
      << "noticed within three seconds";
  EXPECT_EQ(WriteWord(kWidth, 64), GC_ERR_IO);
  const auto start = steady_clock::now();
  EXPECT_EQ(ZYN_GC(DSStopAcquisition)(stream_, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
  EXPECT_EQ(ZYN_GC(DevClose)(device_), GC_ERR_SUCCESS);
  EXPECT_LT(steady_clock::now() - start, seconds(1)) << "closing does not wait for a dead camera";

  camera_.Start();
  ASSERT_EQ(Open(), GC_ERR_SUCCESS);
  OpenStream();
  StartStream(4);
  EXPECT_EQ(WaitForBuffer(buffer), GC_ERR_SUCCESS);
}

TEST_F(ProducerTest, EndsInTheMiddleOfAStreamAndLoadsAgain) {
  for (int round = 0; round < 5; ++round) {
    ASSERT_EQ(Open(), GC_ERR_SUCCESS);
    OpenStream();
    StartStream(3);
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(WaitForBuffer(buffer), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteWord(kAcquisition, 0), GC_ERR_SUCCESS);
    TearDown();  // without closing anything itself
    producer_.Reload();
    SetUp();
  }
}

}  // namespace
}  // namespace zyn::test
