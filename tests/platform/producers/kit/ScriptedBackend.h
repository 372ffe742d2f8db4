/// A backend in memory that does what the test says: devices appear and vanish, registers are plain memory,
/// frames come when the test sends them.
#ifndef ZYN_TESTS_SCRIPTED_BACKEND_H
#define ZYN_TESTS_SCRIPTED_BACKEND_H

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "producer/Backend.h"

namespace scripted {

using namespace zyn::producer;

class ScriptedStream;

/// What the test decides and what the backend saw. One per process; `mutex` guards the plain members, which tests
/// otherwise change only while no other thread runs.
struct Script {
  std::vector<InterfaceInfo> interfaces;
  std::map<std::string, std::vector<DeviceInfo>> devices;  // by interface ID
  DeviceTraits deviceTraits;
  StreamTraits streamTraits;
  std::size_t payloadSize = 64;
  bool refusesToStart = false;  // making the backend fails
  GenTL::GC_ERROR openError = GenTL::GC_ERR_SUCCESS;
  GenTL::GC_ERROR startError = GenTL::GC_ERR_SUCCESS;
  std::function<void()> onFindDevices;        // runs inside the search
  std::function<void(std::uint64_t)> onRead;  // runs inside a register read; may throw
  std::vector<std::uint8_t> registers = std::vector<std::uint8_t>(0x400);
  std::vector<std::uint8_t> extension = std::vector<std::uint8_t>(16);

  std::mutex mutex;
  int devicesAlive = 0;
  int streamsAlive = 0;
  int buffersRevoked = 0;
  int hints = 0;
  int searches = 0;
  bool lastKill = false;
  ForcedAddress forced;
  DeviceListener* listener = nullptr;  // of the device opened last
  StreamSink* sink = nullptr;          // of the stream opened last
  std::vector<StreamBuffer*> ahead;    // taken ahead by the stream

  /// One interface "eth0" with the camera "CAM1" of one stream "Stream0".
  void Reset();

  /// A frame arrives: takes a buffer, fills it with `value`, delivers it. Returns false when it is lost.
  bool SendFrame(std::uint8_t value);
  bool SendFrame(std::uint8_t value, FrameInfo info);
  /// The same with a payload.
  bool SendPayload(const std::vector<std::uint8_t>& payload, FrameInfo info);
};

Script& TheScript();

}  // namespace scripted

#endif
