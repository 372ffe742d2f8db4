/// The C interface of GenTL 1.6, which every transport layer producer (*.cti) exports and every consumer
/// loads.
///
/// Binary facts that hold on every platform: all structures are packed to one byte, every enumeration crosses
/// the interface as a signed 32-bit number (so that producers can add values of their own), every handle is a
/// pointer, `bool8_t` is one byte. Clean as C11 and as C++11. In C++ everything lives in the namespace GenTL;
/// the symbols keep their plain C names either way.
///
/// A consumer includes this header for the types, the constants and the function pointer types (`PGCInitLib`
/// for `GCInitLib` and so on) and resolves the functions by name. A producer defines GENTL_PRODUCER first and
/// implements the functions.
///
/// Conventions shared by the functions:
/// - Results are GC_ERROR: 0 or one of the negative codes in GC_ERROR_LIST. After a failure the
///   out-parameters mean nothing (except the entry count of the two stacked port functions).
/// - An information getter takes (type, buffer, size). With a null buffer it stores the type and the number
///   of bytes needed and succeeds; otherwise `*piSize` is the capacity on entry and the bytes written on return.
///   Sizes of strings include the terminating NUL.
/// - Time-outs are milliseconds; GENTL_INFINITE waits for ever.
#ifndef GENTL_GENTL_H
#define GENTL_GENTL_H

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#else
#include <stddef.h>
#include <stdint.h>
#endif

#define GENTL_VERSION_MAJOR 1
#define GENTL_VERSION_MINOR 6
#define GENTL_VERSION_SUBMINOR 0
#define GENTL_HEADER_VERSION_CODE(major, minor, subminor) (((major) << 24) + ((minor) << 16) + (subminor))
#define GENTL_HEADER_VERSION \
  GENTL_HEADER_VERSION_CODE(GENTL_VERSION_MAJOR, GENTL_VERSION_MINOR, GENTL_VERSION_SUBMINOR)

/// How the functions are called: "stdcall" on 32-bit x86, the platform's own convention everywhere else.
#if defined(_MSC_VER) || (defined(_WIN32) && defined(__i386__))
#define GC_CALLTYPE __stdcall
#elif defined(__i386__)
#define GC_CALLTYPE __attribute__((stdcall))
#else
#define GC_CALLTYPE
#endif

#if !defined(GENTL_PRODUCER)
#define GC_API
#elif defined(_WIN32)
#define GC_API __declspec(dllexport)
#else
#define GC_API __attribute__((visibility("default")))
#endif

/// A handle that refers to nothing.
#define GENTL_INVALID_HANDLE NULL
/// As a time-out: wait for ever. As a number of buffers to acquire: no limit.
#define GENTL_INFINITE 0xFFFFFFFFFFFFFFFFULL

/// Technology names that the *_INFO_TLTYPE commands return.
#define GENTL_TLTYPE_MIXED "Mixed" /**< only for a system whose interfaces differ */
#define GENTL_TLTYPE_CUSTOM "Custom"
#define GENTL_TLTYPE_GEV "GEV"
#define GENTL_TLTYPE_U3V "U3V"
#define GENTL_TLTYPE_CL "CL"
#define GENTL_TLTYPE_CLHS "CLHS"
#define GENTL_TLTYPE_CXP "CXP"
#define GENTL_TLTYPE_IIDC "IIDC"
#define GENTL_TLTYPE_UVC "UVC"
#define GENTL_TLTYPE_ETHERNET "Ethernet"
#define GENTL_TLTYPE_PCI "PCI"

/// Module names that PORT_INFO_MODULE returns.
#define GENTL_MODULE_SYSTEM "TLSystem"
#define GENTL_MODULE_INTERFACE "TLInterface"
#define GENTL_MODULE_DEVICE "TLDevice" /**< the producer's own device module */
#define GENTL_MODULE_STREAM "TLDataStream"
#define GENTL_MODULE_BUFFER "TLBuffer"
#define GENTL_MODULE_REMOTE_DEVICE "Device" /**< the camera itself */

#ifdef __cplusplus
namespace GenTL {
extern "C" {
typedef bool bool8_t;
#else
typedef uint8_t bool8_t;
#endif

/* ---- handles ------------------------------------------------------------------------------------------- */

typedef void* TL_HANDLE;       /**< the system module, one per process and producer */
typedef void* IF_HANDLE;       /**< an interface: an adapter, a host controller, a frame grabber */
typedef void* DEV_HANDLE;      /**< a device as the producer sees it */
typedef void* DS_HANDLE;       /**< a data stream of a device */
typedef void* BUFFER_HANDLE;   /**< a buffer announced to a data stream */
typedef void* PORT_HANDLE;     /**< any of the above, or what DevGetPort returns */
typedef void* EVENTSRC_HANDLE; /**< a module handle that events can be registered on */
typedef void* EVENT_HANDLE;    /**< a registered event */

/* ---- results ------------------------------------------------------------------------------------------- */

typedef int32_t GC_ERROR;
enum GC_ERROR_LIST {
  GC_ERR_SUCCESS = 0,
  GC_ERR_ERROR = -1001,             /**< no closer cause known */
  GC_ERR_NOT_INITIALIZED = -1002,   /**< GCInitLib is missing; also: the event was never registered */
  GC_ERR_NOT_IMPLEMENTED = -1003,   /**< unknown command, flag or event type; function without content */
  GC_ERR_RESOURCE_IN_USE = -1004,   /**< already open, registered, announced, queued, started or stopped */
  GC_ERR_ACCESS_DENIED = -1005,     /**< owned by another process or host; register not accessible this way */
  GC_ERR_INVALID_HANDLE = -1006,    /**< null, stale or of the wrong kind */
  GC_ERR_INVALID_ID = -1007,        /**< no module has this text as its ID */
  GC_ERR_NO_DATA = -1008,           /**< the question does not fit this buffer's payload */
  GC_ERR_INVALID_PARAMETER = -1009, /**< null pointer, count of 0, unknown flag */
  GC_ERR_IO = -1010,                /**< the link to the device failed */
  GC_ERR_TIMEOUT = -1011,           /**< the time given to the call ran out */
  GC_ERR_ABORT = -1012,             /**< the wait was ended by EventKill or by unregistering */
  GC_ERR_INVALID_BUFFER = -1013,    /**< too few buffers announced; memory not aligned as needed */
  GC_ERR_NOT_AVAILABLE = -1014,     /**< known, but without a value right now */
  GC_ERR_INVALID_ADDRESS = -1015,   /**< there is no such register */
  GC_ERR_BUFFER_TOO_SMALL = -1016,  /**< the memory handed in does not hold the result */
  GC_ERR_INVALID_INDEX = -1017,     /**< not below the count */
  GC_ERR_PARSING_CHUNK_DATA = -1018,
  GC_ERR_INVALID_VALUE = -1019, /**< the register refused the value */
  GC_ERR_RESOURCE_EXHAUSTED = -1020,
  GC_ERR_OUT_OF_MEMORY = -1021,
  GC_ERR_BUSY = -1022,      /**< announce or revoke refused while queued or acquiring */
  GC_ERR_AMBIGUOUS = -1023, /**< cannot be decided in this situation */
  GC_ERR_CUSTOM_ID = -10000 /**< this and everything below is a producer's own */
};

/* ---- value types --------------------------------------------------------------------------------------- */

typedef int32_t INFO_DATATYPE;
/// What lies in the buffer of an information getter.
enum INFO_DATATYPE_LIST {
  INFO_DATATYPE_UNKNOWN = 0, /**< never returned */
  INFO_DATATYPE_STRING = 1,
  INFO_DATATYPE_STRINGLIST = 2, /**< NUL-terminated strings back to back, then one more NUL */
  INFO_DATATYPE_INT16 = 3,
  INFO_DATATYPE_UINT16 = 4,
  INFO_DATATYPE_INT32 = 5,
  INFO_DATATYPE_UINT32 = 6,
  INFO_DATATYPE_INT64 = 7,
  INFO_DATATYPE_UINT64 = 8,
  INFO_DATATYPE_FLOAT64 = 9,
  INFO_DATATYPE_PTR = 10, /**< the pointer's value */
  INFO_DATATYPE_BOOL8 = 11,
  INFO_DATATYPE_SIZET = 12,
  INFO_DATATYPE_BUFFER = 13, /**< bytes, without a terminator */
  INFO_DATATYPE_PTRDIFF = 14,
  INFO_DATATYPE_CUSTOM_ID = 1000
};

/* ---- system module ------------------------------------------------------------------------------------- */

typedef int32_t TL_INFO_CMD;
/// Commands of GCGetInfo and TLGetInfo.
enum TL_INFO_CMD_LIST {
  TL_INFO_ID = 0,               /**< STRING */
  TL_INFO_VENDOR = 1,           /**< STRING */
  TL_INFO_MODEL = 2,            /**< STRING */
  TL_INFO_VERSION = 3,          /**< STRING */
  TL_INFO_TLTYPE = 4,           /**< STRING, one of GENTL_TLTYPE_* */
  TL_INFO_NAME = 5,             /**< STRING, file name with extension */
  TL_INFO_PATHNAME = 6,         /**< STRING, folder and file name */
  TL_INFO_DISPLAYNAME = 7,      /**< STRING */
  TL_INFO_CHAR_ENCODING = 8,    /**< INT32, a TL_CHAR_ENCODING */
  TL_INFO_GENTL_VER_MAJOR = 9,  /**< UINT32 */
  TL_INFO_GENTL_VER_MINOR = 10, /**< UINT32 */
  TL_INFO_CUSTOM_ID = 1000
};

typedef int32_t TL_CHAR_ENCODING;
enum TL_CHAR_ENCODING_LIST { TL_CHAR_ENCODING_ASCII = 0, TL_CHAR_ENCODING_UTF8 = 1 };

/* ---- interface module ---------------------------------------------------------------------------------- */

typedef int32_t INTERFACE_INFO_CMD;
/// Commands of TLGetInterfaceInfo and IFGetInfo.
enum INTERFACE_INFO_CMD_LIST {
  INTERFACE_INFO_ID = 0,          /**< STRING */
  INTERFACE_INFO_DISPLAYNAME = 1, /**< STRING */
  INTERFACE_INFO_TLTYPE = 2,      /**< STRING, never GENTL_TLTYPE_MIXED */
  INTERFACE_INFO_CUSTOM_ID = 1000
};

/* ---- device module ------------------------------------------------------------------------------------- */

typedef int32_t DEVICE_INFO_CMD;
/// Commands of IFGetDeviceInfo and DevGetInfo.
enum DEVICE_INFO_CMD_LIST {
  DEVICE_INFO_ID = 0,                  /**< STRING */
  DEVICE_INFO_VENDOR = 1,              /**< STRING */
  DEVICE_INFO_MODEL = 2,               /**< STRING */
  DEVICE_INFO_TLTYPE = 3,              /**< STRING */
  DEVICE_INFO_DISPLAYNAME = 4,         /**< STRING */
  DEVICE_INFO_ACCESS_STATUS = 5,       /**< INT32, a DEVICE_ACCESS_STATUS */
  DEVICE_INFO_USER_DEFINED_NAME = 6,   /**< STRING */
  DEVICE_INFO_SERIAL_NUMBER = 7,       /**< STRING */
  DEVICE_INFO_VERSION = 8,             /**< STRING */
  DEVICE_INFO_TIMESTAMP_FREQUENCY = 9, /**< UINT64, ticks per second of BUFFER_INFO_TIMESTAMP */
  DEVICE_INFO_CUSTOM_ID = 1000
};

typedef int32_t DEVICE_ACCESS_FLAGS;
/// How IFOpenDevice opens; the values exclude each other.
enum DEVICE_ACCESS_FLAGS_LIST {
  DEVICE_ACCESS_UNKNOWN = 0,
  DEVICE_ACCESS_NONE = 1, /**< do not use */
  DEVICE_ACCESS_READONLY = 2,
  DEVICE_ACCESS_CONTROL = 3, /**< read and write for us, others may read */
  DEVICE_ACCESS_EXCLUSIVE = 4,
  DEVICE_ACCESS_CUSTOM_ID = 1000
};

typedef int32_t DEVICE_ACCESS_STATUS;
enum DEVICE_ACCESS_STATUS_LIST {
  DEVICE_ACCESS_STATUS_UNKNOWN = 0,
  DEVICE_ACCESS_STATUS_READWRITE = 1,      /**< free, can be opened */
  DEVICE_ACCESS_STATUS_READONLY = 2,       /**< free, can be opened for reading */
  DEVICE_ACCESS_STATUS_NOACCESS = 3,       /**< seen, but out of reach */
  DEVICE_ACCESS_STATUS_BUSY = 4,           /**< owned by someone else */
  DEVICE_ACCESS_STATUS_OPEN_READWRITE = 5, /**< open in this process */
  DEVICE_ACCESS_STATUS_OPEN_READONLY = 6,  /**< open in this process, for reading */
  DEVICE_ACCESS_STATUS_CUSTOM_ID = 1000
};

/* ---- data stream module -------------------------------------------------------------------------------- */

typedef int32_t ACQ_START_FLAGS;
enum ACQ_START_FLAGS_LIST { ACQ_START_FLAGS_DEFAULT = 0, ACQ_START_FLAGS_CUSTOM_ID = 1000 };

typedef int32_t ACQ_STOP_FLAGS;
enum ACQ_STOP_FLAGS_LIST {
  ACQ_STOP_FLAGS_DEFAULT = 0, /**< the buffer in progress is completed */
  ACQ_STOP_FLAGS_KILL = 1,    /**< the buffer in progress is delivered as incomplete, or left queued */
  ACQ_STOP_FLAGS_CUSTOM_ID = 1000
};

typedef int32_t ACQ_QUEUE_TYPE;
/// Operations of DSFlushQueue.
enum ACQ_QUEUE_TYPE_LIST {
  ACQ_QUEUE_INPUT_TO_OUTPUT = 0,   /**< waiting buffers are delivered without new data */
  ACQ_QUEUE_OUTPUT_DISCARD = 1,    /**< undelivered buffers become unqueued */
  ACQ_QUEUE_ALL_TO_INPUT = 2,      /**< every buffer becomes queued for filling */
  ACQ_QUEUE_UNQUEUED_TO_INPUT = 3, /**< unqueued buffers become queued for filling */
  ACQ_QUEUE_ALL_DISCARD = 4,       /**< every buffer becomes unqueued */
  ACQ_QUEUE_CUSTOM_ID = 1000
};

typedef int32_t STREAM_INFO_CMD;
/// Commands of DSGetInfo.
enum STREAM_INFO_CMD_LIST {
  STREAM_INFO_ID = 0,            /**< STRING */
  STREAM_INFO_NUM_DELIVERED = 1, /**< UINT64, since the acquisition started */
  STREAM_INFO_NUM_UNDERRUN = 2,  /**< UINT64, frames lost for want of a buffer, since the stream opened */
  STREAM_INFO_NUM_ANNOUNCED = 3, /**< SIZET */
  STREAM_INFO_NUM_QUEUED = 4,    /**< SIZET, waiting for data or being filled */
  STREAM_INFO_NUM_AWAIT_DELIVERY = 5, /**< SIZET, filled and not fetched */
  STREAM_INFO_NUM_STARTED = 6,        /**< UINT64, fills begun since the stream opened */
  STREAM_INFO_PAYLOAD_SIZE = 7,       /**< SIZET, bytes a buffer needs */
  STREAM_INFO_IS_GRABBING = 8,        /**< BOOL8 */
  STREAM_INFO_DEFINES_PAYLOADSIZE =
      9,                   /**< BOOL8, STREAM_INFO_PAYLOAD_SIZE goes before the camera's PayloadSize */
  STREAM_INFO_TLTYPE = 10, /**< STRING */
  STREAM_INFO_NUM_CHUNKS_MAX = 11,            /**< SIZET */
  STREAM_INFO_BUF_ANNOUNCE_MIN = 12,          /**< SIZET */
  STREAM_INFO_BUF_ALIGNMENT = 13,             /**< SIZET, bytes */
  STREAM_INFO_FLOW_TABLE = 14,                /**< BUFFER */
  STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR = 15, /**< BUFFER */
  STREAM_INFO_CUSTOM_ID = 1000
};

typedef int32_t FLOW_INFO_CMD;
/// Commands of DSGetFlowInfo.
enum FLOW_INFO_CMD_LIST { FLOW_INFO_SIZE = 0 /**< SIZET */, FLOW_INFO_CUSTOM_ID = 1000 };

/* ---- buffers ------------------------------------------------------------------------------------------- */

typedef int32_t BUFFER_INFO_CMD;
/// Commands of DSGetBufferInfo.
enum BUFFER_INFO_CMD_LIST {
  BUFFER_INFO_BASE = 0,                        /**< PTR */
  BUFFER_INFO_SIZE = 1,                        /**< SIZET, capacity in bytes */
  BUFFER_INFO_USER_PTR = 2,                    /**< PTR */
  BUFFER_INFO_TIMESTAMP = 3,                   /**< UINT64, device ticks */
  BUFFER_INFO_NEW_DATA = 4,                    /**< BOOL8, false when a flush delivered it */
  BUFFER_INFO_IS_QUEUED = 5,                   /**< BOOL8, the producer owns it */
  BUFFER_INFO_IS_ACQUIRING = 6,                /**< BOOL8, being filled */
  BUFFER_INFO_IS_INCOMPLETE = 7,               /**< BOOL8 */
  BUFFER_INFO_TLTYPE = 8,                      /**< STRING */
  BUFFER_INFO_SIZE_FILLED = 9,                 /**< SIZET, bytes written */
  BUFFER_INFO_WIDTH = 10,                      /**< SIZET, pixels */
  BUFFER_INFO_HEIGHT = 11,                     /**< SIZET, lines expected */
  BUFFER_INFO_XOFFSET = 12,                    /**< SIZET, pixels */
  BUFFER_INFO_YOFFSET = 13,                    /**< SIZET, lines */
  BUFFER_INFO_XPADDING = 14,                   /**< SIZET, bytes after each line */
  BUFFER_INFO_YPADDING = 15,                   /**< SIZET, bytes after the image */
  BUFFER_INFO_FRAMEID = 16,                    /**< UINT64 */
  BUFFER_INFO_IMAGEPRESENT = 17,               /**< BOOL8 */
  BUFFER_INFO_IMAGEOFFSET = 18,                /**< SIZET, bytes from the base to the image */
  BUFFER_INFO_PAYLOADTYPE = 19,                /**< SIZET, a PAYLOADTYPE_INFO_ID */
  BUFFER_INFO_PIXELFORMAT = 20,                /**< UINT64 */
  BUFFER_INFO_PIXELFORMAT_NAMESPACE = 21,      /**< UINT64, a PIXELFORMAT_NAMESPACE_ID */
  BUFFER_INFO_DELIVERED_IMAGEHEIGHT = 22,      /**< SIZET, lines received */
  BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE = 23, /**< SIZET */
  BUFFER_INFO_CHUNKLAYOUTID = 24,              /**< UINT64 */
  BUFFER_INFO_FILENAME = 25,                   /**< STRING */
  BUFFER_INFO_PIXEL_ENDIANNESS = 26,           /**< INT32, a PIXELENDIANNESS_ID */
  BUFFER_INFO_DATA_SIZE = 27,                  /**< SIZET, bytes intended, lost ones included */
  BUFFER_INFO_TIMESTAMP_NS = 28,               /**< UINT64, nanoseconds */
  BUFFER_INFO_DATA_LARGER_THAN_BUFFER = 29,    /**< BOOL8 */
  BUFFER_INFO_CONTAINS_CHUNKDATA = 30,         /**< BOOL8 */
  BUFFER_INFO_IS_COMPOSITE = 31,               /**< BOOL8 */
  BUFFER_INFO_CUSTOM_ID = 1000
};

typedef int32_t PAYLOADTYPE_INFO_ID;
/// Values of BUFFER_INFO_PAYLOADTYPE; not the codes on the wire.
enum PAYLOADTYPE_INFO_IDS {
  PAYLOAD_TYPE_UNKNOWN = 0,
  PAYLOAD_TYPE_IMAGE = 1, /**< chunks may follow */
  PAYLOAD_TYPE_RAW_DATA = 2,
  PAYLOAD_TYPE_FILE = 3,
  PAYLOAD_TYPE_CHUNK_DATA = 4, /**< old chunk mode, an image may be one of the chunks */
  PAYLOAD_TYPE_JPEG = 5,
  PAYLOAD_TYPE_JPEG2000 = 6,
  PAYLOAD_TYPE_H264 = 7,
  PAYLOAD_TYPE_CHUNK_ONLY = 8,
  PAYLOAD_TYPE_DEVICE_SPECIFIC = 9,
  PAYLOAD_TYPE_MULTI_PART = 10,
  PAYLOAD_TYPE_GENDC = 11,
  PAYLOAD_TYPE_CUSTOM_ID = 1000
};

typedef int32_t PIXELFORMAT_NAMESPACE_ID;
enum PIXELFORMAT_NAMESPACE_IDS {
  PIXELFORMAT_NAMESPACE_UNKNOWN = 0,
  PIXELFORMAT_NAMESPACE_GEV = 1,
  PIXELFORMAT_NAMESPACE_IIDC = 2,
  PIXELFORMAT_NAMESPACE_PFNC_16BIT = 3,
  PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4,
  PIXELFORMAT_NAMESPACE_CUSTOM_ID = 1000
};

typedef int32_t PIXELENDIANNESS_ID;
enum PIXELENDIANNESS_IDS { PIXELENDIANNESS_UNKNOWN = 0, PIXELENDIANNESS_LITTLE = 1, PIXELENDIANNESS_BIG = 2 };

typedef int32_t SEGMENT_INFO_CMD;
/// Commands of DSGetBufferSegmentInfo.
enum SEGMENT_INFO_CMD_LIST {
  SEGMENT_INFO_BASE = 0,          /**< PTR */
  SEGMENT_INFO_SIZE = 1,          /**< SIZET */
  SEGMENT_INFO_IS_INCOMPLETE = 2, /**< BOOL8 */
  SEGMENT_INFO_SIZE_FILLED = 3,   /**< SIZET */
  SEGMENT_INFO_DATA_SIZE = 4,     /**< SIZET */
  SEGMENT_INFO_CUSTOM_ID = 1000
};

typedef int32_t BUFFER_PART_INFO_CMD;
/// Commands of DSGetBufferPartInfo.
enum BUFFER_PART_INFO_CMD_LIST {
  BUFFER_PART_INFO_BASE = 0,                   /**< PTR */
  BUFFER_PART_INFO_DATA_SIZE = 1,              /**< SIZET */
  BUFFER_PART_INFO_DATA_TYPE = 2,              /**< SIZET, a PARTDATATYPE_ID */
  BUFFER_PART_INFO_DATA_FORMAT = 3,            /**< UINT64 */
  BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE = 4,  /**< UINT64, a PIXELFORMAT_NAMESPACE_ID */
  BUFFER_PART_INFO_WIDTH = 5,                  /**< SIZET, pixels */
  BUFFER_PART_INFO_HEIGHT = 6,                 /**< SIZET, lines expected */
  BUFFER_PART_INFO_XOFFSET = 7,                /**< SIZET, pixels */
  BUFFER_PART_INFO_YOFFSET = 8,                /**< SIZET, lines */
  BUFFER_PART_INFO_XPADDING = 9,               /**< SIZET, pixels after each line */
  BUFFER_PART_INFO_SOURCE_ID = 10,             /**< UINT64 */
  BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT = 11, /**< SIZET, lines received */
  BUFFER_PART_INFO_REGION_ID = 12,             /**< UINT64 */
  BUFFER_PART_INFO_DATA_PURPOSE_ID = 13,       /**< UINT64 */
  BUFFER_PART_INFO_CUSTOM_ID = 1000
};

typedef int32_t PARTDATATYPE_ID;
/// Values of BUFFER_PART_INFO_DATA_TYPE; not the codes on the wire.
enum PARTDATATYPE_IDS {
  PART_DATATYPE_UNKNOWN = 0,
  PART_DATATYPE_2D_IMAGE = 1,
  PART_DATATYPE_2D_PLANE_BIPLANAR = 2,
  PART_DATATYPE_2D_PLANE_TRIPLANAR = 3,
  PART_DATATYPE_2D_PLANE_QUADPLANAR = 4,
  PART_DATATYPE_3D_IMAGE = 5,
  PART_DATATYPE_3D_PLANE_BIPLANAR = 6,
  PART_DATATYPE_3D_PLANE_TRIPLANAR = 7,
  PART_DATATYPE_3D_PLANE_QUADPLANAR = 8,
  PART_DATATYPE_CONFIDENCE_MAP = 9,
  PART_DATATYPE_JPEG = 10,
  PART_DATATYPE_JPEG2000 = 11,
  PART_DATATYPE_CUSTOM_ID = 1000
};

/* ---- ports --------------------------------------------------------------------------------------------- */

typedef int32_t PORT_INFO_CMD;
/// Commands of GCGetPortInfo.
enum PORT_INFO_CMD_LIST {
  PORT_INFO_ID = 0,            /**< STRING */
  PORT_INFO_VENDOR = 1,        /**< STRING */
  PORT_INFO_MODEL = 2,         /**< STRING */
  PORT_INFO_TLTYPE = 3,        /**< STRING */
  PORT_INFO_MODULE = 4,        /**< STRING, one of GENTL_MODULE_* */
  PORT_INFO_LITTLE_ENDIAN = 5, /**< BOOL8 */
  PORT_INFO_BIG_ENDIAN = 6,    /**< BOOL8 */
  PORT_INFO_ACCESS_READ = 7,   /**< BOOL8 */
  PORT_INFO_ACCESS_WRITE = 8,  /**< BOOL8 */
  PORT_INFO_ACCESS_NA = 9,     /**< BOOL8, out of reach right now */
  PORT_INFO_ACCESS_NI = 10,    /**< BOOL8, there is no port; only for buffers */
  PORT_INFO_VERSION = 11,      /**< STRING */
  PORT_INFO_PORTNAME = 12,     /**< STRING, name of the Port node in the module's description */
  PORT_INFO_CUSTOM_ID = 1000
};

typedef int32_t URL_INFO_CMD;
/// Commands of GCGetPortURLInfo.
enum URL_INFO_CMD_LIST {
  URL_INFO_URL = 0,                   /**< STRING */
  URL_INFO_SCHEMA_VER_MAJOR = 1,      /**< INT32 */
  URL_INFO_SCHEMA_VER_MINOR = 2,      /**< INT32 */
  URL_INFO_FILE_VER_MAJOR = 3,        /**< INT32 */
  URL_INFO_FILE_VER_MINOR = 4,        /**< INT32 */
  URL_INFO_FILE_VER_SUBMINOR = 5,     /**< INT32 */
  URL_INFO_FILE_SHA1_HASH = 6,        /**< BUFFER, 20 bytes */
  URL_INFO_FILE_REGISTER_ADDRESS = 7, /**< UINT64 */
  URL_INFO_FILE_SIZE = 8,             /**< UINT64, bytes */
  URL_INFO_SCHEME = 9,                /**< INT32, a URL_SCHEME_ID */
  URL_INFO_FILENAME = 10,             /**< STRING */
  URL_INFO_CUSTOM_ID = 1000
};

typedef int32_t URL_SCHEME_ID;
enum URL_SCHEME_IDS {
  URL_SCHEME_LOCAL = 0, /**< in the register space of the same port */
  URL_SCHEME_HTTP = 1,
  URL_SCHEME_FILE = 2,
  URL_SCHEME_CUSTOM_ID = 1000
};

/* ---- events -------------------------------------------------------------------------------------------- */

typedef int32_t EVENT_TYPE;
enum EVENT_TYPE_LIST {
  EVENT_ERROR = 0,              /**< any module; ID: INT32 code, value: STRING */
  EVENT_NEW_BUFFER = 1,         /**< data stream; ID: PTR buffer handle, value: PTR user pointer */
  EVENT_FEATURE_INVALIDATE = 2, /**< local device; ID: STRING feature of the remote device */
  EVENT_FEATURE_CHANGE = 3,     /**< local device; ID: STRING feature, value: STRING to set */
  EVENT_REMOTE_DEVICE = 4,      /**< local device; ID: STRING in hexadecimal, value: BUFFER */
  EVENT_MODULE = 5,             /**< any module; ID: STRING in hexadecimal, value: BUFFER */
  EVENT_CUSTOM_ID = 1000
};

typedef int32_t EVENT_INFO_CMD;
/// Commands of EventGetInfo.
enum EVENT_INFO_CMD_LIST {
  EVENT_EVENT_TYPE = 0,         /**< INT32, an EVENT_TYPE */
  EVENT_NUM_IN_QUEUE = 1,       /**< SIZET */
  EVENT_NUM_FIRED = 2,          /**< UINT64, since it was registered */
  EVENT_SIZE_MAX = 3,           /**< SIZET, bytes EventGetData can need */
  EVENT_INFO_DATA_SIZE_MAX = 4, /**< SIZET, bytes EVENT_DATA_VALUE can need */
  EVENT_INFO_CUSTOM_ID = 1000
};

typedef int32_t EVENT_DATA_INFO_CMD;
/// Commands of EventGetDataInfo; the types depend on the event, see EVENT_TYPE_LIST.
enum EVENT_DATA_INFO_CMD_LIST {
  EVENT_DATA_ID = 0,
  EVENT_DATA_VALUE = 1,
  EVENT_DATA_NUMID = 2, /**< UINT64, the ID where it is a number */
  EVENT_DATA_CUSTOM_ID = 1000
};

/* ---- structures ---------------------------------------------------------------------------------------- */

#pragma pack(push, 1)

/// What EventGetData stores for EVENT_NEW_BUFFER.
typedef struct S_EVENT_NEW_BUFFER {
  BUFFER_HANDLE BufferHandle;
  void* pUserPointer; /**< pPrivate of the announce call */
} EVENT_NEW_BUFFER_DATA;

/// One transfer of GCReadPortStacked or GCWritePortStacked.
typedef struct S_PORT_REGISTER_STACK_ENTRY {
  uint64_t Address;
  void* pBuffer;
  size_t Size; /**< bytes */
} PORT_REGISTER_STACK_ENTRY;

/// One chunk, from DSGetBufferChunkData.
typedef struct S_SINGLE_CHUNK_DATA {
  uint64_t ChunkID;
  ptrdiff_t ChunkOffset; /**< bytes from the start of the buffer */
  size_t ChunkLength;    /**< bytes */
} SINGLE_CHUNK_DATA;

/// One question of DSGetBufferInfoStacked. 28 bytes on 64-bit machines: in an array the pointers are
/// unaligned.
typedef struct S_DS_BUFFER_INFO_STACKED {
  BUFFER_INFO_CMD iInfoCmd; /**< in */
  INFO_DATATYPE iType;      /**< out */
  void* pBuffer;            /**< in: where to store, or null to ask for type and size */
  size_t iSize;             /**< in: capacity; out: size */
  GC_ERROR iResult;         /**< out: the result of this entry */
} DS_BUFFER_INFO_STACKED;

/// One question of DSGetBufferPartInfoStacked. Mind that the order differs from DS_BUFFER_INFO_STACKED.
typedef struct S_DS_BUFFER_PART_INFO_STACKED {
  uint32_t iPartIndex;           /**< in */
  BUFFER_PART_INFO_CMD iInfoCmd; /**< in */
  GC_ERROR iResult;              /**< out */
  INFO_DATATYPE iType;           /**< out */
  void* pBuffer;                 /**< in */
  size_t iSize;                  /**< in and out */
} DS_BUFFER_PART_INFO_STACKED;

#pragma pack(pop)

/* ---- functions ----------------------------------------------------------------------------------------- */

/* Declares one function and its pointer type together, so that the two cannot differ. */
#define GENTL_FUNCTION(name, parameters)       \
  GC_API GC_ERROR GC_CALLTYPE name parameters; \
  typedef GC_ERROR(GC_CALLTYPE* P##name) parameters

/* clang-format off */

/* Library. GCGetLastError describes the latest failure on the calling thread. */
GENTL_FUNCTION(GCInitLib, (void));
GENTL_FUNCTION(GCCloseLib, (void));
GENTL_FUNCTION(GCGetInfo, (TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(GCGetLastError, (GC_ERROR* piErrorCode, char* sErrText, size_t* piSize));

/* Ports. */
GENTL_FUNCTION(GCReadPort, (PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(GCWritePort, (PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize));
GENTL_FUNCTION(GCGetPortURL, (PORT_HANDLE hPort, char* sURL, size_t* piSize));
GENTL_FUNCTION(GCGetPortInfo, (PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                               void* pBuffer, size_t* piSize));
GENTL_FUNCTION(GCGetNumPortURLs, (PORT_HANDLE hPort, uint32_t* piNumURLs));
GENTL_FUNCTION(GCGetPortURLInfo, (PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd,
                                  INFO_DATATYPE* piType, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(GCReadPortStacked, (PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                   size_t* piNumEntries));
GENTL_FUNCTION(GCWritePortStacked, (PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries,
                                    size_t* piNumEntries));

/* Events. A null buffer given to EventGetData drops the event. */
GENTL_FUNCTION(GCRegisterEvent, (EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent));
GENTL_FUNCTION(GCUnregisterEvent, (EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID));
GENTL_FUNCTION(EventGetData, (EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout));
GENTL_FUNCTION(EventGetDataInfo, (EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize,
                                  EVENT_DATA_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pOutBuffer,
                                  size_t* piOutSize));
GENTL_FUNCTION(EventGetInfo, (EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType,
                              void* pBuffer, size_t* piSize));
GENTL_FUNCTION(EventFlush, (EVENT_HANDLE hEvent));
GENTL_FUNCTION(EventKill, (EVENT_HANDLE hEvent));

/* System. */
GENTL_FUNCTION(TLOpen, (TL_HANDLE* phTL));
GENTL_FUNCTION(TLClose, (TL_HANDLE hTL));
GENTL_FUNCTION(TLGetInfo, (TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                           size_t* piSize));
GENTL_FUNCTION(TLGetNumInterfaces, (TL_HANDLE hTL, uint32_t* piNumIfaces));
GENTL_FUNCTION(TLGetInterfaceID, (TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize));
GENTL_FUNCTION(TLGetInterfaceInfo, (TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd,
                                    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(TLOpenInterface, (TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface));
GENTL_FUNCTION(TLUpdateInterfaceList, (TL_HANDLE hTL, bool8_t* pbChanged, uint64_t iTimeout));

/* Interface. */
GENTL_FUNCTION(IFClose, (IF_HANDLE hIface));
GENTL_FUNCTION(IFGetInfo, (IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                           size_t* piSize));
GENTL_FUNCTION(IFGetNumDevices, (IF_HANDLE hIface, uint32_t* piNumDevices));
GENTL_FUNCTION(IFGetDeviceID, (IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize));
GENTL_FUNCTION(IFUpdateDeviceList, (IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout));
GENTL_FUNCTION(IFGetDeviceInfo, (IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd,
                                 INFO_DATATYPE* piType, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(IFOpenDevice, (IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlag,
                              DEV_HANDLE* phDevice));
GENTL_FUNCTION(IFGetParentTL, (IF_HANDLE hIface, TL_HANDLE* phSystem));

/* Device. The handle of DevGetPort is never closed; it ends with the device. */
GENTL_FUNCTION(DevGetPort, (DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice));
GENTL_FUNCTION(DevGetNumDataStreams, (DEV_HANDLE hDevice, uint32_t* piNumDataStreams));
GENTL_FUNCTION(DevGetDataStreamID, (DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID, size_t* piSize));
GENTL_FUNCTION(DevOpenDataStream, (DEV_HANDLE hDevice, const char* sDataStreamID, DS_HANDLE* phDataStream));
GENTL_FUNCTION(DevGetInfo, (DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                            size_t* piSize));
GENTL_FUNCTION(DevClose, (DEV_HANDLE hDevice));
GENTL_FUNCTION(DevGetParentIF, (DEV_HANDLE hDevice, IF_HANDLE* phIface));

/* Data stream and buffers. */
GENTL_FUNCTION(DSAnnounceBuffer, (DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate,
                                  BUFFER_HANDLE* phBuffer));
GENTL_FUNCTION(DSAllocAndAnnounceBuffer, (DS_HANDLE hDataStream, size_t iSize, void* pPrivate,
                                          BUFFER_HANDLE* phBuffer));
GENTL_FUNCTION(DSFlushQueue, (DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation));
GENTL_FUNCTION(DSStartAcquisition, (DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags, uint64_t iNumToAcquire));
GENTL_FUNCTION(DSStopAcquisition, (DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags));
GENTL_FUNCTION(DSGetInfo, (DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                           size_t* piSize));
GENTL_FUNCTION(DSGetBufferID, (DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer));
GENTL_FUNCTION(DSClose, (DS_HANDLE hDataStream));
GENTL_FUNCTION(DSRevokeBuffer, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer, void** pPrivate));
GENTL_FUNCTION(DSQueueBuffer, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer));
GENTL_FUNCTION(DSGetBufferInfo, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd,
                                 INFO_DATATYPE* piType, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(DSGetBufferChunkData, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                      SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks));
GENTL_FUNCTION(DSGetParentDev, (DS_HANDLE hDataStream, DEV_HANDLE* phDevice));
GENTL_FUNCTION(DSGetNumBufferParts, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumParts));
GENTL_FUNCTION(DSGetBufferPartInfo, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex,
                                     BUFFER_PART_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                     size_t* piSize));
GENTL_FUNCTION(DSAnnounceCompositeBuffer, (DS_HANDLE hDataStream, size_t iNumSegments, void** ppSegments,
                                           size_t* piSizes, void* pPrivate, BUFFER_HANDLE* phBuffer));
GENTL_FUNCTION(DSGetBufferInfoStacked, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                        DS_BUFFER_INFO_STACKED* pInfoStacked, size_t iNumInfos));
GENTL_FUNCTION(DSGetBufferPartInfoStacked, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                            DS_BUFFER_PART_INFO_STACKED* pInfoStacked, size_t iNumInfos));
GENTL_FUNCTION(DSGetNumFlows, (DS_HANDLE hDataStream, uint32_t* piNumFlows));
GENTL_FUNCTION(DSGetFlowInfo, (DS_HANDLE hDataStream, uint32_t iFlowIndex, FLOW_INFO_CMD iInfoCmd,
                               INFO_DATATYPE* piType, void* pBuffer, size_t* piSize));
GENTL_FUNCTION(DSGetNumBufferSegments, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumSegments));
GENTL_FUNCTION(DSGetBufferSegmentInfo, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iSegmentIndex,
                                        SEGMENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                        size_t* piSize));

/* clang-format on */

#ifdef __cplusplus
}  // extern "C"
}  // namespace GenTL
#endif

#endif
