/// A GenTL producer that does what a test says. Built as several .cti files; the test loads the same file and
/// reaches this interface through the exported function ZynMock.
#ifndef ZYN_TESTS_MOCK_PRODUCER_H
#define ZYN_TESTS_MOCK_PRODUCER_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <GenTL/GenTL.h>

namespace zyn::mock {

struct MockDevice {
  std::string id;
  std::string serial;  ///< "" : the command is not available
  std::string vendor = "Maker";
  std::string model = "Model";
  std::string userName = {};
  std::int32_t status = GenTL::DEVICE_ACCESS_STATUS_READWRITE;
  std::uint32_t ip = 0xC0A80163;  ///< 192.168.1.99
  std::uint32_t mask = 0xFFFFFF00;
  std::uint64_t mac = 0x0A0B0C0D0E0F;
  std::size_t payloadBytes = 64;
  bool hasStream = true;
};

struct MockInterface {
  std::string id;
  std::string tlType = "GEV";
  std::vector<MockDevice> devices = {};
};

/// One part of a multi-part buffer: `width` x `height` bytes filled with `fill`, then `padding` bytes.
struct MockPart {
  std::size_t type = GenTL::PART_DATATYPE_2D_IMAGE;
  std::size_t width = 4;
  std::size_t height = 2;
  std::uint64_t format = 0x01080001;  ///< Mono8
  unsigned char fill = 0;
  std::size_t padding = 0;
  /// What the producer tells instead of the truth; without a value it does not answer. The base is told as a
  /// distance from the start of the buffer.
  std::map<GenTL::BUFFER_PART_INFO_CMD, std::optional<std::uint64_t>> told = {};
};

struct MockChunk {
  std::uint64_t id;
  std::vector<unsigned char> data;
};

/// What the next buffer holds: an image of width x height bytes filled with `fill`, then the chunks with their
/// trailers.
struct MockFrame {
  std::uint64_t frameId = 1;
  std::size_t width = 4;
  std::size_t height = 2;
  std::uint64_t pixelFormat = 0x01080001;  ///< Mono8
  std::size_t payloadType = GenTL::PAYLOAD_TYPE_IMAGE;
  unsigned char fill = 0;
  bool isIncomplete = false;
  bool isTooLarge = false;
  bool isNew = true;
  std::vector<MockChunk> chunks = {};
  std::vector<MockPart> parts = {};             ///< for PAYLOAD_TYPE_MULTI_PART, instead of the image
  std::optional<std::uint32_t> partCount = {};  ///< told instead of the number of parts
  bool isDoubled = false;                       ///< the buffer is delivered twice
};

/// How the answers to questions for a text are wrong.
enum class TextLie {
  kNone,
  kHuge,          ///< the size is beyond all memory
  kEmpty,         ///< the size is 0
  kGrowing,       ///< never fits: whatever size is brought, it is one too few
  kUnterminated,  ///< no NUL at the end
};

/// Everything may be called from any thread.
class MockProducer {
 public:
  /// Runs at the start of the GenTL function of that name, without a lock; may block. `id` is the interface or
  /// device ID where there is one. A result other than 0 is returned instead of doing the work; kPretend stands for
  /// success there.
  using Hook = std::function<GenTL::GC_ERROR(const std::string& id)>;
  static constexpr GenTL::GC_ERROR kPretend = 1;

  virtual ~MockProducer() = default;
  /// Back to no interfaces, no hooks, no registers. Nothing may be open.
  virtual void Reset() = 0;
  virtual void SetInterfaces(std::vector<MockInterface> interfaces) = 0;
  virtual void SetHook(const std::string& function, Hook hook) = 0;

  /// From now on every text is told so.
  virtual void SetTextLie(TextLie lie) = 0;

  /// Begins to fill a queued buffer. False when there is none; that counts as an underrun.
  virtual bool BeginFrame() = 0;
  /// Ends the fill begun first and delivers the buffer.
  virtual void EndFrame(const MockFrame& frame) = 0;
  bool SendFrame(const MockFrame& frame) {
    if (!BeginFrame()) return false;
    EndFrame(frame);
    return true;
  }

  /// The device stops answering; `tells` sends the error event on the device module.
  virtual void LoseDevice(const std::string& id, bool tells) = 0;
  virtual void SendDeviceEvent(GenTL::EVENT_TYPE type, const std::string& id, std::int32_t code,
                               const std::string& value) = 0;

  /// The same on every open module of another kind; `kind` is "system", "interface", "device" or "stream".
  virtual void SendModuleEvent(const std::string& kind, GenTL::EVENT_TYPE type, const std::string& id,
                               std::int32_t code, const std::string& value) = 0;

  /// Waits until a thread waits for a new buffer and there is none. False after ten seconds.
  virtual bool AwaitFetching() = 0;
  /// Waits until that many buffers are queued for filling. False after ten seconds.
  virtual bool AwaitQueued(std::size_t count) = 0;

  /// Waits until nothing is open. False after ten seconds.
  virtual bool AwaitClosed() = 0;

  virtual std::size_t Queued() = 0;
  virtual std::size_t Announced() = 0;
  virtual std::size_t Allocated() = 0;  ///< announced buffers whose memory is the producer's
  virtual int OpenHandles() = 0;        ///< systems, interfaces, devices, streams
  virtual int Mistakes() = 0;           ///< calls with dead handles, double queues, revokes of queued buffers
  virtual std::string FirstMistake() = 0;
  virtual int Calls(const std::string& function) = 0;
  /// The remote device's registers, by address; 4 bytes, little endian.
  virtual std::uint32_t Register(std::uint64_t address) = 0;
  virtual void SetRegister(std::uint64_t address, std::uint32_t value) = 0;
};

// Addresses of the remote device's registers.
constexpr std::uint64_t kWidthAt = 0x100;
constexpr std::uint64_t kHeightAt = 0x104;
constexpr std::uint64_t kPixelFormatAt = 0x108;
constexpr std::uint64_t kPayloadSizeAt = 0x10C;
constexpr std::uint64_t kLockedAt = 0x110;
constexpr std::uint64_t kStartAt = 0x114;
constexpr std::uint64_t kStopAt = 0x118;

}  // namespace zyn::mock

extern "C" {
using ZynMockFunction = zyn::mock::MockProducer* (*)();
}

#endif
