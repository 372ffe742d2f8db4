/// The classes that make a producer out of the kit: implement these, and define CreateBackend() once.
///
/// The kit is everything between the C functions of GenTL and these classes: handles, error codes, events,
/// buffer queues, the register spaces and descriptions of all modules. A backend is only about reaching
/// devices.
///
/// Threads. The kit holds none of its locks while it calls a backend, so a call may block on a device. It
/// calls from any thread, and different objects at the same time. Per object:
/// - Backend::FindInterfaces and OpenInterface are called one at a time, and so are FindDevices, OpenDevice and
///   ForceAddress of one Interface. Devices and streams may be destroyed at any time.
/// - Device::Read and Device::Write may be called by several threads at once and during everything else; the
///   backend serialises them if its link needs that.
/// - Stream::Start and Stream::Stop are called one at a time. OnBuffersQueued may come at any time
///   in between, also while Stop runs.
/// - An object is destroyed when no call on it is running any more, and its children are destroyed before it.
///
/// The sinks and listeners that the kit hands over may be called from any thread, also from within a call
/// that the kit made. They never block, never throw and never call back into the backend on the same thread.
/// They stay valid until the object they were given to is destroyed: a destructor ends its threads first.
///
/// Failures are thrown as Error. Objects destroyed never throw.
#ifndef ZYN_PRODUCER_BACKEND_H
#define ZYN_PRODUCER_BACKEND_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "producer/Descriptions.h"
#include "producer/Error.h"
#include "producer/Frame.h"

namespace zyn::producer {

/// Features that a backend adds to one of the kit's modules (interface, local device, data stream): nodes of
/// its own, backed by registers of its own.
class ModuleExtension {
 public:
  /// The registers lie at kBase and above; the kit adds nothing there. Little-endian.
  static constexpr std::uint64_t kBase = 0x08000000;
  static constexpr std::uint64_t kEnd = 0x10000000;

  virtual ~ModuleExtension() = default;

  /// Node elements, put into the module's description as they stand; their registers name the module's port
  /// in <pPort> ("InterfacePort", "DevicePort", "StreamPort"). Called once per opened module.
  virtual std::string Nodes() const = 0;

  /// Names of the features or categories among them that shall appear beneath Root.
  virtual std::vector<std::string> RootFeatures() const = 0;

  /// Transfers `size` bytes of registers; address is absolute, kBase or more. Throws Error with
  /// GC_ERR_INVALID_ADDRESS, GC_ERR_ACCESS_DENIED or GC_ERR_INVALID_VALUE. Any thread.
  virtual void Read(std::uint64_t address, void* data, std::size_t size) = 0;
  virtual void Write(std::uint64_t address, const void* data, std::size_t size) = 0;
};

/// Where a stream fetches buffers and reports frames; implemented by the kit. See the top of this file for
/// threads.
class StreamSink {
 public:
  /// A queued buffer for frames to come, or null when none waits or the acquisition is over. For backends
  /// that take ahead. The order in which buffers come is unspecified.
  virtual StreamBuffer* TakeQueued() = 0;

  /// A buffer for a frame that begins now. Null when there is none: the frame is lost, and counted as such
  /// here.
  virtual StreamBuffer* TakeForFrame() = 0;

  /// The first data has come for a taken buffer. Optional, for backends that take ahead: without it the fill
  /// counts as begun when it is delivered.
  virtual void MarkStarted(StreamBuffer& buffer) = 0;

  /// Hands over a filled buffer; it belongs to the kit from here on. Depending on the handling mode that frees
  /// another buffer, so a backend that takes ahead calls TakeQueued after each delivery.
  virtual void Deliver(StreamBuffer& buffer, FrameInfo&& info) = 0;

  /// Returns a taken buffer without data: it waits to be taken again.
  virtual void GiveBack(StreamBuffer& buffer) = 0;

  /// Counts frames that were lost because no buffer was there. Not for frames that TakeForFrame refused.
  virtual void CountUnderruns(std::uint64_t frames) = 0;

  /// Raises EVENT_ERROR on the stream.
  virtual void ReportError(GenTL::GC_ERROR code, const std::string& text) = 0;

 protected:
  ~StreamSink() = default;
};

/// One open data stream. Destroying it closes it; the kit has stopped it and taken its buffers back by then.
class Stream {
 public:
  virtual ~Stream() = default;

  virtual StreamTraits Traits() const = 0;

  /// Bytes a buffer needs now, or 0 when the camera's own PayloadSize feature tells.
  virtual std::size_t PayloadSize() { return 0; }

  /// Begins to receive, on the host's side only: the consumer starts the camera afterwards. The sink is the
  /// one given to Device::OpenStream.
  virtual void Start() = 0;

  /// Ends receiving. Every taken buffer has been delivered or given back when this returns, and none is taken
  /// after that. kill: do not wait for the frame in progress; deliver its buffer as incomplete. Otherwise let
  /// it complete, but wait no longer than about a second. Must succeed on a lost device, without waiting for
  /// it.
  virtual void Stop(bool kill) = 0;

  /// Buffers were queued while the stream was started. Called on the thread that queued them; must not block.
  virtual void OnBuffersQueued() {}

  /// A buffer whose backendData is not null is about to go; it is not in the backend's hands.
  virtual void OnBufferRevoked(StreamBuffer& buffer) { buffer.backendData = nullptr; }

  /// Features to add to the data stream module, or null. Owned by the stream.
  virtual ModuleExtension* Extension() { return nullptr; }
};

/// What a device tells about itself; implemented by the kit. See the top of this file for threads.
///
/// How a consumer learns that a device was lost, once OnLost was called:
/// - EVENT_ERROR on the local device module (DEV_HANDLE) comes with GC_ERR_IO, and once more on each data
///   stream that is open; EVENT_MODULE on the local device comes with the ID of the DeviceLost event of its
///   description;
/// - DEVICE_INFO_ACCESS_STATUS is DEVICE_ACCESS_STATUS_NOACCESS, from DevGetInfo at once and from
///   IFGetDeviceInfo as long as the device stays open;
/// - the remote port answers GC_ERR_IO without asking the device, and PORT_INFO_ACCESS_NA is true;
/// - a waiting EventGetData on EVENT_NEW_BUFFER does not end by itself: the consumer ends it with EventKill
/// when it
///   learns of the loss. Stopping, flushing, revoking and closing work as ever and do not wait for the
///   device.
class DeviceListener {
 public:
  /// The device is gone: cable, power, or control taken over. For good: only opening it anew helps. Later
  /// calls do nothing. text: the cause, for people to read.
  virtual void OnLost(const std::string& text) = 0;

  /// The camera sent an event. id: the number that the EventID of its description states in hexadecimal.
  /// data: what follows the identification, offset 0 being address 0 of the event port.
  virtual void OnRemoteEvent(std::uint64_t id, const void* data, std::size_t size) = 0;

  /// The backend changed a feature of the camera behind the consumer's back.
  virtual void OnFeatureInvalidated(const std::string& name) = 0;

  /// Raises EVENT_ERROR on the local device module.
  virtual void OnError(GenTL::GC_ERROR code, const std::string& text) = 0;

 protected:
  ~DeviceListener() = default;
};

/// Settings of the command link, features of the local device module.
struct LinkSettings {
  double commandTimeoutUs = 0;
  std::int64_t retryCount = 0;
};

/// One open device. Destroying it closes it and must not wait for a device that was lost.
class Device {
 public:
  virtual ~Device() = default;

  virtual DeviceTraits Traits() const = 0;

  /// Transfers exactly `size` bytes (at least 1) of the camera's registers, in the order they have there. Any
  /// address and size: the backend splits and aligns as its link needs. Throws Error: GC_ERR_INVALID_ADDRESS,
  /// GC_ERR_ACCESS_DENIED, GC_ERR_INVALID_VALUE, GC_ERR_TIMEOUT, GC_ERR_IO.
  virtual void Read(std::uint64_t address, void* data, std::size_t size) = 0;
  virtual void Write(std::uint64_t address, const void* data, std::size_t size) = 0;

  /// Opens data stream `index` of DeviceTraits::streamIds. sink outlives the stream.
  virtual std::unique_ptr<Stream> OpenStream(std::size_t index, StreamSink& sink) = 0;

  virtual LinkSettings Link() const { return {}; }
  /// Throws Error with GC_ERR_INVALID_VALUE, or GC_ERR_ACCESS_DENIED where the link is not adjustable.
  virtual void SetLink(const LinkSettings&) {
    throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The settings of the command link are fixed.");
  }

  /// Writes the user-defined name (feature DeviceUserID of the local device). Throws Error.
  virtual void SetUserDefinedName(const std::string&) {
    throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The user-defined name can only be set on the camera itself.");
  }

  /// Features to add to the local device module, or null. Owned by the device.
  virtual ModuleExtension* Extension() { return nullptr; }
};

/// How to open a device.
enum class Access {
  readOnly,
  control,   ///< read and write for us, others may read
  exclusive  ///< nobody else may even read
};

/// An address to give to a GigE Vision device until its next power-up.
struct ForcedAddress {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
};

/// One open interface. Destroying it closes it; its devices are destroyed before.
class Interface {
 public:
  virtual ~Interface() = default;

  /// Searches the devices of this interface anew, for at most `timeout`; shorter when the technology allows
  /// to know that all have answered. Returns all that are there, open or not, in an order that stays the same
  /// from search to search. A device that is open and lost may be left out.
  virtual std::vector<DeviceInfo> FindDevices(std::chrono::milliseconds timeout) = 0;

  /// Opens a device that a search returned. listener outlives the device. Throws Error: GC_ERR_ACCESS_DENIED
  /// when someone else owns it or it is out of reach, GC_ERR_NOT_IMPLEMENTED for a kind of access it does not
  /// have, GC_ERR_IO or GC_ERR_TIMEOUT when it does not answer. The kit refuses to open one device twice by
  /// itself.
  virtual std::unique_ptr<Device> OpenDevice(const DeviceInfo& info, Access access,
                                             DeviceListener& listener) = 0;

  /// Gives an address to a GigE Vision device that is not open here. Throws Error.
  virtual void ForceAddress(const DeviceInfo&, const ForcedAddress&) {
    throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED, "This interface cannot assign addresses.");
  }

  /// Features to add to the interface module, or null. Owned by the interface.
  virtual ModuleExtension* Extension() { return nullptr; }
};

/// The producer's side of the world: made by GCInitLib, destroyed by GCCloseLib. Construction is cheap and
/// opens nothing.
class Backend {
 public:
  virtual ~Backend() = default;

  /// Constant.
  virtual ProducerInfo Info() const = 0;

  /// Searches the interfaces anew, for at most `timeout`. Returns all, in an order that stays the same from
  /// search to search. Interfaces without devices belong to the list.
  virtual std::vector<InterfaceInfo> FindInterfaces(std::chrono::milliseconds timeout) = 0;

  /// Opens an interface that a search returned. Throws Error. The kit refuses to open one interface twice.
  virtual std::unique_ptr<Interface> OpenInterface(const InterfaceInfo& info) = 0;
};

/// Defined by each producer, once. Not called again before the previous object is destroyed.
std::unique_ptr<Backend> CreateBackend();

}  // namespace zyn::producer

#endif
