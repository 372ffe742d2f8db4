#include "InfoTables.h"

#include <algorithm>

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr bool kMust = true;
constexpr bool kMay = false;
constexpr bool kUnknownIsFine = true;

constexpr INFO_DATATYPE kString = INFO_DATATYPE_STRING;
constexpr INFO_DATATYPE kInt32 = INFO_DATATYPE_INT32;
constexpr INFO_DATATYPE kUInt32 = INFO_DATATYPE_UINT32;
constexpr INFO_DATATYPE kUInt64 = INFO_DATATYPE_UINT64;
constexpr INFO_DATATYPE kPointer = INFO_DATATYPE_PTR;
constexpr INFO_DATATYPE kBool = INFO_DATATYPE_BOOL8;
constexpr INFO_DATATYPE kSize = INFO_DATATYPE_SIZET;
constexpr INFO_DATATYPE kBytes = INFO_DATATYPE_BUFFER;

// Bytes of a value of that type; 0 for types of any length.
std::size_t SizeOf(INFO_DATATYPE type) {
  switch (type) {
    case kInt32:
    case kUInt32:
      return 4;
    case kUInt64:
      return 8;
    case kPointer:
      return sizeof(void*);
    case kSize:
      return sizeof(std::size_t);
    case kBool:
      return 1;
    default:
      return 0;
  }
}

void ExpectValue(const std::string& question, const Command& command, const Answer& answer) {
  Expect(answer.type == command.type, question + " answers with the type " + NameOfType(answer.type) +
                                          " instead of " + NameOfType(command.type));
  const std::size_t size = SizeOf(command.type);
  Expect(size == 0 || answer.bytes.size() == size, question + " answers with " +
                                                       std::to_string(answer.bytes.size()) +
                                                       " bytes instead of " + std::to_string(size));
  if (command.type == kString) {
    Expect(!answer.bytes.empty() && answer.bytes.back() == 0,
           question + " answers with a text without its NUL");
  }
  if (command.type == kBool) {
    Expect(answer.bytes[0] <= 1, question + " answers with a truth value that is neither 0 nor 1");
  }
}

}  // namespace

#define ZYN_COMMAND(id, ...) \
  { id, #id, __VA_ARGS__ }

const std::vector<Command>& SystemCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(TL_INFO_ID, kString, kMust),
      ZYN_COMMAND(TL_INFO_VENDOR, kString, kMust),
      ZYN_COMMAND(TL_INFO_MODEL, kString, kMust),
      ZYN_COMMAND(TL_INFO_VERSION, kString, kMust),
      ZYN_COMMAND(TL_INFO_TLTYPE, kString, kMust),
      ZYN_COMMAND(TL_INFO_NAME, kString, kMust),
      ZYN_COMMAND(TL_INFO_PATHNAME, kString, kMust),
      ZYN_COMMAND(TL_INFO_DISPLAYNAME, kString, kMust),
      ZYN_COMMAND(TL_INFO_CHAR_ENCODING, kInt32, kMust, 5),
      ZYN_COMMAND(TL_INFO_GENTL_VER_MAJOR, kUInt32, kMust, 5),
      ZYN_COMMAND(TL_INFO_GENTL_VER_MINOR, kUInt32, kMust, 5),
  };
  return commands;
}

const std::vector<Command>& InterfaceCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(INTERFACE_INFO_ID, kString, kMust),
      ZYN_COMMAND(INTERFACE_INFO_DISPLAYNAME, kString, kMust),
      ZYN_COMMAND(INTERFACE_INFO_TLTYPE, kString, kMust),
  };
  return commands;
}

const std::vector<Command>& DeviceCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(DEVICE_INFO_ID, kString, kMust),
      ZYN_COMMAND(DEVICE_INFO_VENDOR, kString, kMust),
      ZYN_COMMAND(DEVICE_INFO_MODEL, kString, kMust),
      ZYN_COMMAND(DEVICE_INFO_TLTYPE, kString, kMust),
      ZYN_COMMAND(DEVICE_INFO_DISPLAYNAME, kString, kMust),
      ZYN_COMMAND(DEVICE_INFO_ACCESS_STATUS, kInt32, kMay),
      ZYN_COMMAND(DEVICE_INFO_USER_DEFINED_NAME, kString, kMay, 4),
      ZYN_COMMAND(DEVICE_INFO_SERIAL_NUMBER, kString, kMay, 4),
      ZYN_COMMAND(DEVICE_INFO_VERSION, kString, kMay, 4),
      ZYN_COMMAND(DEVICE_INFO_TIMESTAMP_FREQUENCY, kUInt64, kMay, 4),
  };
  return commands;
}

const std::vector<Command>& StreamCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(STREAM_INFO_ID, kString, kMust),
      ZYN_COMMAND(STREAM_INFO_NUM_DELIVERED, kUInt64, kMay),
      ZYN_COMMAND(STREAM_INFO_NUM_UNDERRUN, kUInt64, kMay),
      ZYN_COMMAND(STREAM_INFO_NUM_ANNOUNCED, kSize, kMay),
      ZYN_COMMAND(STREAM_INFO_NUM_QUEUED, kSize, kMay),
      ZYN_COMMAND(STREAM_INFO_NUM_AWAIT_DELIVERY, kSize, kMay),
      ZYN_COMMAND(STREAM_INFO_NUM_STARTED, kUInt64, kMay),
      ZYN_COMMAND(STREAM_INFO_PAYLOAD_SIZE, kSize, kMay),
      ZYN_COMMAND(STREAM_INFO_IS_GRABBING, kBool, kMust),
      ZYN_COMMAND(STREAM_INFO_DEFINES_PAYLOADSIZE, kBool, kMust),
      ZYN_COMMAND(STREAM_INFO_TLTYPE, kString, kMust),
      ZYN_COMMAND(STREAM_INFO_NUM_CHUNKS_MAX, kSize, kMay, 3),
      ZYN_COMMAND(STREAM_INFO_BUF_ANNOUNCE_MIN, kSize, kMust, 3, kUnknownIsFine),
      ZYN_COMMAND(STREAM_INFO_BUF_ALIGNMENT, kSize, kMay, 3),
      ZYN_COMMAND(STREAM_INFO_FLOW_TABLE, kBytes, kMay, 6),
      ZYN_COMMAND(STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR, kBytes, kMay, 6),
  };
  return commands;
}

const std::vector<Command>& BufferCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(BUFFER_INFO_BASE, kPointer, kMust),
      ZYN_COMMAND(BUFFER_INFO_SIZE, kSize, kMust),
      ZYN_COMMAND(BUFFER_INFO_USER_PTR, kPointer, kMay),
      ZYN_COMMAND(BUFFER_INFO_TIMESTAMP, kUInt64, kMay),
      ZYN_COMMAND(BUFFER_INFO_NEW_DATA, kBool, kMust),
      ZYN_COMMAND(BUFFER_INFO_IS_QUEUED, kBool, kMust),
      ZYN_COMMAND(BUFFER_INFO_IS_ACQUIRING, kBool, kMay),
      ZYN_COMMAND(BUFFER_INFO_IS_INCOMPLETE, kBool, kMust),
      ZYN_COMMAND(BUFFER_INFO_TLTYPE, kString, kMust),
      ZYN_COMMAND(BUFFER_INFO_SIZE_FILLED, kSize, kMay),
      ZYN_COMMAND(BUFFER_INFO_WIDTH, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_HEIGHT, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_XOFFSET, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_YOFFSET, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_XPADDING, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_YPADDING, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_FRAMEID, kUInt64, kMust, 2),
      ZYN_COMMAND(BUFFER_INFO_IMAGEPRESENT, kBool, kMust, 2),
      ZYN_COMMAND(BUFFER_INFO_IMAGEOFFSET, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_PAYLOADTYPE, kSize, kMust, 2),
      ZYN_COMMAND(BUFFER_INFO_PIXELFORMAT, kUInt64, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_PIXELFORMAT_NAMESPACE, kUInt64, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_DELIVERED_IMAGEHEIGHT, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, kSize, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_CHUNKLAYOUTID, kUInt64, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_FILENAME, kString, kMay, 2),
      ZYN_COMMAND(BUFFER_INFO_PIXEL_ENDIANNESS, kInt32, kMay, 4),
      ZYN_COMMAND(BUFFER_INFO_DATA_SIZE, kSize, kMay, 4),
      ZYN_COMMAND(BUFFER_INFO_TIMESTAMP_NS, kUInt64, kMay, 4),
      ZYN_COMMAND(BUFFER_INFO_DATA_LARGER_THAN_BUFFER, kBool, kMay, 4),
      ZYN_COMMAND(BUFFER_INFO_CONTAINS_CHUNKDATA, kBool, kMust, 4),
      ZYN_COMMAND(BUFFER_INFO_IS_COMPOSITE, kBool, kMust, 6),
  };
  return commands;
}

const std::vector<Command>& PortCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(PORT_INFO_ID, kString, kMust),         ZYN_COMMAND(PORT_INFO_VENDOR, kString, kMust),
      ZYN_COMMAND(PORT_INFO_MODEL, kString, kMust),      ZYN_COMMAND(PORT_INFO_TLTYPE, kString, kMust),
      ZYN_COMMAND(PORT_INFO_MODULE, kString, kMust),     ZYN_COMMAND(PORT_INFO_LITTLE_ENDIAN, kBool, kMust),
      ZYN_COMMAND(PORT_INFO_BIG_ENDIAN, kBool, kMust),   ZYN_COMMAND(PORT_INFO_ACCESS_READ, kBool, kMust),
      ZYN_COMMAND(PORT_INFO_ACCESS_WRITE, kBool, kMust), ZYN_COMMAND(PORT_INFO_ACCESS_NA, kBool, kMust),
      ZYN_COMMAND(PORT_INFO_ACCESS_NI, kBool, kMust),    ZYN_COMMAND(PORT_INFO_VERSION, kString, kMust),
      ZYN_COMMAND(PORT_INFO_PORTNAME, kString, kMust),
  };
  return commands;
}

const std::vector<Command>& UrlCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(URL_INFO_URL, kString, kMust, 1),
      ZYN_COMMAND(URL_INFO_SCHEMA_VER_MAJOR, kInt32, kMay, 1),
      ZYN_COMMAND(URL_INFO_SCHEMA_VER_MINOR, kInt32, kMay, 1),
      ZYN_COMMAND(URL_INFO_FILE_VER_MAJOR, kInt32, kMay, 1),
      ZYN_COMMAND(URL_INFO_FILE_VER_MINOR, kInt32, kMay, 1),
      ZYN_COMMAND(URL_INFO_FILE_VER_SUBMINOR, kInt32, kMay, 1),
      ZYN_COMMAND(URL_INFO_FILE_SHA1_HASH, kBytes, kMay, 4),
      ZYN_COMMAND(URL_INFO_FILE_REGISTER_ADDRESS, kUInt64, kMay, 5),
      ZYN_COMMAND(URL_INFO_FILE_SIZE, kUInt64, kMay, 5),
      ZYN_COMMAND(URL_INFO_SCHEME, kInt32, kMay, 5),
      ZYN_COMMAND(URL_INFO_FILENAME, kString, kMay, 5),
  };
  return commands;
}

const std::vector<Command>& EventCommands() {
  static const std::vector<Command> commands = {
      ZYN_COMMAND(EVENT_EVENT_TYPE, kInt32, kMust),
      ZYN_COMMAND(EVENT_NUM_IN_QUEUE, kSize, kMust),
      ZYN_COMMAND(EVENT_NUM_FIRED, kUInt64, kMay),
      ZYN_COMMAND(EVENT_SIZE_MAX, kSize, kMust, 2, kUnknownIsFine),
      ZYN_COMMAND(EVENT_INFO_DATA_SIZE_MAX, kSize, kMust, 2, kUnknownIsFine),
  };
  return commands;
}

#undef ZYN_COMMAND

std::string NameOfType(INFO_DATATYPE type) {
  static constexpr const char* kNames[] = {"UNKNOWN", "STRING", "STRINGLIST", "INT16",  "UINT16",
                                           "INT32",   "UINT32", "INT64",      "UINT64", "FLOAT64",
                                           "PTR",     "BOOL8",  "SIZET",      "BUFFER", "PTRDIFF"};
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kNames) ? kNames[index] : std::to_string(type);
}

void ExpectCommands(Bench& bench, const InfoFunction& function) {
  for (const Command& command : *function.commands) {
    const std::string question = function.name + "(" + command.name + ")";
    const Answer answer = Get(function.Bound(command.id));
    if (answer.IsThere()) {
      ExpectValue(question, command, answer);
      continue;
    }
    const bool isMandatory = command.isMandatory && command.since <= bench.Version();
    const bool mayBeUnknown = command.mayLack && answer.error == GC_ERR_NOT_AVAILABLE;
    Expect(!isMandatory || mayBeUnknown, question + " is mandatory and returned " + NameOf(answer.error));
    bench.ExpectError(question + ", which is optional,", answer.error,
                      {GC_ERR_NOT_IMPLEMENTED, GC_ERR_NOT_AVAILABLE, GC_ERR_NO_DATA});
  }
}

}  // namespace zyn::producercheck
