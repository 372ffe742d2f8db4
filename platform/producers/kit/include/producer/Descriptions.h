/// What a backend tells about the producer, its interfaces and the devices on them: plain values.
///
/// All texts are UTF-8 without control characters. IP addresses, masks and MAC addresses are numbers whose
/// most significant byte is the first one written: 192.168.0.1 is 0xC0A80001, 00:11:22:33:44:55 is
/// 0x001122334455.
#ifndef ZYN_PRODUCER_DESCRIPTIONS_H
#define ZYN_PRODUCER_DESCRIPTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "GenTL/GenTL.h"

namespace zyn::producer {

/// The producer itself. The kit adds the file name and the path, which it finds by asking the dynamic linker.
struct ProducerInfo {
  std::string vendor;
  std::string model;    ///< with the vendor the identity of this implementation
  std::string version;  ///< free form, such as "1.0.0"
  std::string displayName;
  std::string tlType = GENTL_TLTYPE_MIXED;  ///< a GENTL_TLTYPE_*; GENTL_TLTYPE_MIXED for several technologies
};

/// One IPv4 network that an adapter is part of.
struct Subnet {
  std::uint32_t address = 0;  ///< the adapter's own address in it
  std::uint32_t mask = 0;
  bool operator==(const Subnet&) const = default;
};

/// The network adapter behind a GigE Vision interface.
struct AdapterInfo {
  std::uint64_t mac = 0;                ///< 48 bits
  std::vector<Subnet> subnets;          ///< the one to prefer first; may be empty
  std::vector<std::uint32_t> gateways;  ///< may be empty
  bool operator==(const AdapterInfo&) const = default;
};

/// One interface: a network adapter, a USB host controller, a frame grabber.
struct InterfaceInfo {
  std::string id;                    ///< unique in this producer, the same in every session, < 256 bytes
  std::string displayName;           ///< for a network adapter its name in the operating system
  std::string tlType;                ///< a GENTL_TLTYPE_*, never GENTL_TLTYPE_MIXED
  std::uint32_t tlVersionMajor = 0;  ///< of the technology's standard, such as 2.0 of GigE Vision
  std::uint32_t tlVersionMinor = 0;
  std::optional<AdapterInfo> adapter;  ///< for GENTL_TLTYPE_GEV
  bool operator==(const InterfaceInfo&) const = default;
};

/// How a GigE Vision device came by its address: values of the feature GevDeviceIPConfigurationStatus.
enum class IpConfiguration : std::int32_t { none = 0, persistentIp = 1, dhcp = 2, linkLocal = 4 };

/// The network side of a GigE Vision device.
struct GevDeviceInfo {
  std::uint64_t mac = 0;  ///< 48 bits
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
  IpConfiguration configuration = IpConfiguration::none;
  bool operator==(const GevDeviceInfo&) const = default;
};

/// The USB side of a USB3 Vision device.
struct U3vDeviceInfo {
  std::string guid;          ///< twelve hexadecimal digits, as the device reports them
  std::string speedSupport;  ///< for people to read, such as "SuperSpeed"
  bool operator==(const U3vDeviceInfo&) const = default;
};

/// One device, as a search on its interface found it.
struct DeviceInfo {
  std::string id;  ///< unique on its interface, the same in every session, < 256 bytes of printable ASCII
  std::string vendor;
  std::string model;
  std::string displayName;      ///< empty: the kit writes "VENDOR MODEL (ID)"
  std::string userDefinedName;  ///< empty when there is none
  std::string serialNumber;     ///< empty when there is none
  std::string version;
  std::string familyName;
  std::string manufacturerInfo;
  std::string tlType;                ///< as that of the interface
  std::uint32_t tlVersionMajor = 0;  ///< of the technology's standard that the device speaks
  std::uint32_t tlVersionMinor = 0;
  /// Whether it could be opened: one of READWRITE, READONLY, NOACCESS, BUSY, UNKNOWN. The kit itself replaces
  /// it by OPEN_READWRITE or OPEN_READONLY while the device is open here, and by NOACCESS once it was lost.
  GenTL::DEVICE_ACCESS_STATUS accessStatus = GenTL::DEVICE_ACCESS_STATUS_UNKNOWN;
  std::uint64_t timestampFrequency = 0;  ///< ticks per second; 0 when unknown
  std::optional<GevDeviceInfo> gev;      ///< for GENTL_TLTYPE_GEV
  std::optional<U3vDeviceInfo> u3v;      ///< for GENTL_TLTYPE_U3V
  bool operator==(const DeviceInfo&) const = default;
};

/// Where a description file of the camera lies: one URL of its port.
struct XmlLocation {
  /// "local:name.xml;ADDRESS;LENGTH" (both hexadecimal, without prefix; read through Device::Read), or a
  /// "file:" or "http:" URL. Without a "SchemaVersion" query.
  std::string url;
  std::int32_t schemaMajor = 1;
  std::int32_t schemaMinor = 1;
  std::int32_t fileMajor = 1;
  std::int32_t fileMinor = 0;
  std::int32_t fileSubMinor = 0;
};

/// Constant facts about an open device.
struct DeviceTraits {
  /// Byte order of the camera's registers, for PORT_INFO_*_ENDIAN: big for GigE Vision, little for USB3
  /// Vision.
  bool bigEndian = false;
  std::vector<XmlLocation> xml;  ///< the best one first; at least one
  std::vector<std::string>
      streamIds;  ///< one per data stream, unique, the same in every session; may be empty
  /// How chunks lie in a payload: values of the feature DeviceChunkDataFormat.
  enum class ChunkFormat : std::int32_t { none = 0, gigEVision = 1, custom = 2 };
  ChunkFormat chunkFormat = ChunkFormat::none;
  /// How the data of events is laid out: values of the feature DeviceEventDataFormat.
  enum class EventFormat : std::int32_t { none = 0, gigEVision = 1, gigEVisionExtendedId = 2, custom = 3 };
  EventFormat eventFormat = EventFormat::none;
};

/// Constant facts about an open data stream.
struct StreamTraits {
  std::size_t minimumBuffers = 1;  ///< an acquisition needs that many announced
  std::size_t alignment = 1;       ///< bytes; a power of two
  std::size_t maximumChunks = 0;   ///< per buffer; 0 when unknown
  /// True when the backend takes buffers before frames for them arrive (StreamSink::TakeQueued), false when
  /// it takes one as each frame begins (StreamSink::TakeForFrame).
  bool takesAhead = false;
};

}  // namespace zyn::producer

#endif
