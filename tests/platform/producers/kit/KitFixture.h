/// Test fixtures that use the C functions as a consumer does, one step further each.
#ifndef ZYN_TESTS_KIT_FIXTURE_H
#define ZYN_TESTS_KIT_FIXTURE_H

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "Getters.h"
#include "ScriptedBackend.h"

namespace kittest {

using scripted::TheScript;

/// The library is initialised, with the script reset.
class LibraryTest : public testing::Test {
 protected:
  LibraryTest() {
    TheScript().Reset();
    EXPECT_EQ(GCInitLib(), GC_ERR_SUCCESS);
  }
  ~LibraryTest() override {
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(TheScript().devicesAlive, 0);
    EXPECT_EQ(TheScript().streamsAlive, 0);
  }
};

/// The camera is open.
class DeviceTest : public LibraryTest {
 protected:
  DeviceTest() {
    EXPECT_EQ(TLOpen(&system_), GC_ERR_SUCCESS);
    EXPECT_EQ(TLUpdateInterfaceList(system_, nullptr, 1000), GC_ERR_SUCCESS);
    EXPECT_EQ(TLOpenInterface(system_, "eth0", &interface_), GC_ERR_SUCCESS);
    EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 1000), GC_ERR_SUCCESS);
    OpenDevice();
  }

  void OpenDevice(DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL) {
    EXPECT_EQ(IFOpenDevice(interface_, "CAM1", flags, &device_), GC_ERR_SUCCESS);
    EXPECT_EQ(DevGetPort(device_, &remote_), GC_ERR_SUCCESS);
  }

  TL_HANDLE system_ = nullptr;
  IF_HANDLE interface_ = nullptr;
  DEV_HANDLE device_ = nullptr;
  PORT_HANDLE remote_ = nullptr;
};

/// The stream is open, with the new-buffer event registered.
class StreamTest : public DeviceTest {
 protected:
  StreamTest() { OpenStream(); }

  void OpenStream() {
    EXPECT_EQ(DevOpenDataStream(device_, "Stream0", &stream_), GC_ERR_SUCCESS);
    EXPECT_EQ(GCRegisterEvent(stream_, EVENT_NEW_BUFFER, &event_), GC_ERR_SUCCESS);
  }

  BUFFER_HANDLE Announce(std::size_t size = 64) {
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(DSAllocAndAnnounceBuffer(stream_, size, this, &buffer), GC_ERR_SUCCESS);
    return buffer;
  }

  /// Announces and queues `count` buffers and starts.
  std::vector<BUFFER_HANDLE> StartWith(int count, std::size_t size = 64) {
    std::vector<BUFFER_HANDLE> buffers;
    for (int i = 0; i < count; ++i) {
      buffers.push_back(Announce(size));
      EXPECT_EQ(DSQueueBuffer(stream_, buffers.back()), GC_ERR_SUCCESS);
    }
    EXPECT_EQ(DSStartAcquisition(stream_, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_SUCCESS);
    return buffers;
  }

  /// The next delivered buffer; null when none comes at once.
  BUFFER_HANDLE Fetch() {
    EVENT_NEW_BUFFER_DATA data = {};
    std::size_t size = sizeof data;
    if (EventGetData(event_, &data, &size, 0) != GC_ERR_SUCCESS) return nullptr;
    EXPECT_EQ(data.pUserPointer, this);
    return data.BufferHandle;
  }

  Getter Ask(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const {
    return Bound(DSGetBufferInfo, stream_, buffer, command);
  }
  Getter Ask(STREAM_INFO_CMD command) const { return Bound(DSGetInfo, stream_, command); }

  std::size_t Queued() const { return Size(Ask(STREAM_INFO_NUM_QUEUED)); }
  std::size_t Awaiting() const { return Size(Ask(STREAM_INFO_NUM_AWAIT_DELIVERY)); }
  bool IsQueued(BUFFER_HANDLE buffer) const { return Bool(Ask(buffer, BUFFER_INFO_IS_QUEUED)); }

  DS_HANDLE stream_ = nullptr;
  EVENT_HANDLE event_ = nullptr;
};

}  // namespace kittest

#endif
