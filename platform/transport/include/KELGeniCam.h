/// The transport interface: how the SDK finds cameras, opens them and receives frames, whatever carries them.
///
/// Everything here may be called from any thread at any time, the free functions as well as every operation
/// of ICamera. No lock is held while a call waits for a device. No text returned here is ever null; a text
/// lives as long as the object that returned it. C++11-clean; no exception leaves this library except where a
/// comment says so.
#ifndef KELGENICAM_KELGENICAM_H
#define KELGENICAM_KELGENICAM_H

#include <list>
#include <string>

#if defined(__GNUC__)
#define KELGENICAM_API __attribute__((visibility("default")))
#else
#define KELGENICAM_API
#endif

namespace GenApi_3_4 {
struct INodeMap;
}

namespace KELGENICAM {

/// Values of ICameraInfo::ProtocolType, and bits of the mask that DiscoveryByTLType takes.
enum PROTOCOL_TYPE {
  PROTOCOL_GIGE_VISION = 1,
  PROTOCOL_USB3_VISION = 2,
  PROTOCOL_CAMERA_LINK = 4,
  PROTOCOL_COAXPRESS = 8,
  PROTOCOL_OTHER = 16
};

/// Values of ICameraInfo::DeviceState: the GenTL device access status, but for one case. A GigE Vision camera
/// that cannot be reached because its address lies outside its adapter's subnet is DEVICE_STATE_READWRITE: it
/// answers and waits for another address. Texts 1, 3, 6 and 7 show that; Open fails until it has one.
enum DEVICE_STATE {
  DEVICE_STATE_UNKNOWN = 0,
  DEVICE_STATE_READWRITE = 1,       ///< free, can be opened
  DEVICE_STATE_READONLY = 2,        ///< free, can be opened for reading
  DEVICE_STATE_NOACCESS = 3,        ///< seen but not reachable
  DEVICE_STATE_BUSY = 4,            ///< controlled by another process or host
  DEVICE_STATE_OPEN_READWRITE = 5,  ///< open in this process
  DEVICE_STATE_OPEN_READONLY = 6    ///< open in this process, for reading
};

/// Indexes of ICameraInfo::Text. Addresses are dotted decimal numbers; a field that the protocol does not
/// have is "".
enum CAMERA_TEXT {
  TEXT_IP_ADDRESS = 1,
  TEXT_MAC_ADDRESS = 2,  ///< six pairs of hexadecimal digits, separated by ":"
  TEXT_SUBNET_MASK = 3,
  TEXT_GATEWAY = 4,
  TEXT_ADAPTER_NAME = 5,
  TEXT_ADAPTER_IP_ADDRESS = 6,
  TEXT_ADAPTER_SUBNET_MASK = 7,
  TEXT_USB_GUID = 8,
  TEXT_USB_SPEED_SUPPORT = 9
};

/// Argument of ICamera::Open. The SDK always asks for control.
enum ACCESS_MODE {
  ACCESS_READ_ONLY = 0,
  ACCESS_CONTROL = 1,   ///< read and write for us; others may read
  ACCESS_EXCLUSIVE = 2  ///< nobody else may even read
};

/// Which frames a grab delivers when the application is slower than the camera.
enum GRAB_STRATEGY : int {
  GRAB_ONE_BY_ONE = 0,     ///< every frame, in order; frames are dropped only when no buffer is free
  GRAB_LATEST_ONLY = 1,    ///< only the newest frame; older ones that nobody fetched are dropped
  GRAB_LATEST = 2,         ///< the newest few frames, oldest first; older ones are dropped
  GRAB_UPCOMING_IMAGE = 3  ///< the next frame that starts after the call; whatever came before is dropped
};

/// Results of ICamera::Grab and, where they apply, of ICamera::Open, StartGrabbing, StopGrabbing and
/// RegisterNotify. 0 is success; each negative number names a cause. The numbers -6 to -9 and -16 to -20 are
/// those that an application can act on, each in its own way; the SDK hands them through unchanged and folds
/// the others into one code.
enum RESULT {
  RESULT_OK = 0,
  RESULT_TIMEOUT = -1,   ///< no frame came in time: is the camera triggered, is the time-out long enough? Of
                         ///< StopGrabbing: the producer has not come to an end in time
  RESULT_ABORTED = -2,   ///< StopGrabbing, Close or Release ended the wait
  RESULT_ERROR = -3,     ///< the producer reported an error without a cause
  RESULT_NOT_OPEN = -4,  ///< the camera is not open
  RESULT_NOT_GRABBING = -5,  ///< StartGrabbing has not been called, or StopGrabbing has
  RESULT_DEVICE_LOST =
      -6,  ///< cable, power, or control taken over: close, wait until it is found, open again
  RESULT_BUFFER_TOO_SMALL = -7,  ///< the payload grew while grabbing: stop, and start again with new buffers
  RESULT_OUT_OF_MEMORY = -8,     ///< no memory for the buffers: use smaller frames, or free memory
  RESULT_PAYLOAD_UNSUPPORTED =
      -9,  ///< a payload type that cannot be delivered: choose another one on the camera
  RESULT_NOT_INITIALIZED = -10,   ///< Init has not been called, or UnInit has
  RESULT_INVALID_ARGUMENT = -11,  ///< null pointer, negative time-out, unknown strategy, count below -1 or 0
  RESULT_INVALID_HANDLE = -12,    ///< the producer no longer knows a handle of ours
  RESULT_INVALID_BUFFER = -13,    ///< the producer refused a buffer
  RESULT_NO_DATA = -14,           ///< the producer delivered a buffer without data in it
  RESULT_NO_STREAM = -15,         ///< the camera has no data stream
  RESULT_ACCESS_DENIED = -16,     ///< another process or host controls the camera: free it there first
  RESULT_NO_FREE_BUFFER = -17,    ///< the application holds every frame: release some
  RESULT_FINISHED = -18,  ///< the number of frames asked for has been delivered: stop, start again for more
  RESULT_ALREADY_OPEN = -19,  ///< open in this process through another object: close it there
  RESULT_UNREACHABLE = -20,  ///< the camera does not answer, or lies outside the adapter's subnet: check both
  RESULT_IO = -21,           ///< a transfer failed although the device is still there
  RESULT_NOT_IMPLEMENTED = -22,  ///< the producer lacks a function that this needs
  RESULT_NOT_AVAILABLE = -23,    ///< the producer has the function, but not now
  RESULT_INVALID_ID = -24,       ///< the producer does not know the device any more: search again
  RESULT_BUSY = -25,             ///< the producer is occupied; also: already grabbing, or not yet stopped
  RESULT_EXHAUSTED = -26         ///< the producer ran out of handles or of another resource
};

/// Where a notification comes from.
enum NOTIFY_SRC : int {
  NOTIFY_SRC_TRANSPORT_LAYER = 0,
  NOTIFY_SRC_INTERFACE = 1,
  NOTIFY_SRC_LOCAL_DEVICE = 2,
  NOTIFY_SRC_REMOTE_DEVICE = 3,
  NOTIFY_SRC_DATA_STREAM = 4
};

/// What a notification tells.
enum NOTIFY_TYPE : int {
  NOTIFY_DEVICE_LOST = 0,          ///< no data
  NOTIFY_FEATURE_INVALIDATED = 1,  ///< data: the feature's name
  NOTIFY_DEVICE_EVENT = 2,         ///< data: the event as the device, or the producer's module, sent it
  NOTIFY_ERROR = 3,                ///< data: a text
  NOTIFY_FRAME_DROPPED = 4  ///< data: frames dropped since the stream started, as an unsigned 64-bit integer
};

/// Receives notifications. Implemented by the application; must outlive the camera that it is registered on.
class INotify {
 public:
  virtual ~INotify() {}
  /// Called on a thread of this library. data is readable for `length` bytes during the call only. Must not
  /// throw, and must not call Close or Release on the camera it came from.
  virtual void OnNotify(NOTIFY_SRC source, NOTIFY_TYPE type, const void* data, unsigned long long length) = 0;
};

/// The description of one camera, as one search found it. Owned by this library and valid until it is
/// unloaded. What a published object reports never changes, unless CopyFrom is called on it, and that is one
/// atomic step.
class ICameraInfo {
 public:
  virtual ~ICameraInfo() {}
  virtual unsigned int ProtocolType() = 0;  ///< a PROTOCOL_TYPE
  virtual int DeviceState() = 0;            ///< a DEVICE_STATE
  virtual const char* CameraID() = 0;       ///< the producer's name for the device, unique on its interface
  virtual const char* SerialNumber() = 0;   ///< the device ID where the producer has no serial number
  virtual const char* ManufacturerName() = 0;
  virtual const char* ModelName() = 0;
  virtual const char* CameraName() = 0;  ///< for people to read
  virtual const char* UserDefinedName() = 0;
  virtual const char* DeviceVersion() = 0;
  virtual const char* InterfaceID() = 0;
  virtual const char* Text(int index) = 0;  ///< a CAMERA_TEXT; "" for an index that does not exist
  /// From now on this object reports what `newer` reports. Does nothing when both are the same object, when
  /// `newer` does not come from this library, or when it describes another device: one on another interface or
  /// of another producer is another device even if its serial number is the same.
  virtual void CopyFrom(const ICameraInfo& newer) = 0;
};

/// One piece of chunk data of a frame. Owned by the frame, and readable as long as the frame is.
class IChunk {
 public:
  virtual ~IChunk() {}
  virtual unsigned char* Data() = 0;
  virtual unsigned long long Length() = 0;  ///< bytes
};

/// One delivered frame. It owns its memory: it stays readable until Release, also after the stream was
/// stopped and the camera closed and released. It is never overwritten while it is held.
class IImage {
 public:
  virtual ~IImage() {}
  virtual bool IsValid() = 0;  ///< false for an incomplete or corrupt frame
  /// The value of the ChunkFrameID chunk where the camera sends one, else the stream's frame identifier.
  virtual long long FrameID() = 0;
  virtual int Width() = 0;   ///< pixels; 0 when the frame carries chunk data only
  virtual int Height() = 0;  ///< rows really delivered
  /// Replaces the content of the list: the frame's chunks in memory order, without the image itself.
  virtual void Chunks(std::list<IChunk*>& chunks) = 0;
  virtual int Channels() = 0;  ///< from the pixel format, 1 for packed formats
  virtual int Step() = 0;      ///< bytes per row, padding included
  virtual unsigned char*
  Data() = 0;                  ///< Step() * Height() bytes; null when the frame carries chunk data only
  virtual void Release() = 0;  ///< gives the buffer back; the last call on this object
};

/// Holds one node map of a camera. Lives as long as the camera object.
class INodeMapHolder {
 public:
  virtual ~INodeMapHolder() {}
  /// The node map, or null while it does not exist (camera closed, or the module has no description). Reading
  /// or writing nodes throws GenICam_3_4::GenericException when the device refuses or is lost.
  virtual GenApi_3_4::INodeMap* NodeMap() = 0;
};

/// One camera. Made by CreateCamera, ended by Release.
///
/// A lost device ends in this: IsOnline is false at once, Grab returns RESULT_DEVICE_LOST without waiting out
/// its time, node access throws, Close and Release never block on the device. After it is back, a new Open
/// works.
class ICamera {
 public:
  virtual ~ICamera() {}
  /// Opens the device. accessMode: an ACCESS_MODE. Returns a RESULT. Blocks while the device is asked and its
  /// descriptions are loaded; after a Close that could not wait for it, RESULT_ABORTED, and nothing is open.
  virtual int Open(int accessMode) = 0;
  /// Stops what runs and closes the device, in 3 s. Returns a RESULT; RESULT_OK also when it was closed.
  virtual int Close() = 0;
  virtual bool IsOpen() = 0;
  virtual bool IsOnline() = 0;  ///< open, and the device was not lost
  /// Starts the stream. frameCount: how many frames to deliver, -1 for no limit. Returns a RESULT. Blocks while the camera
  /// and the producer start; before, while an earlier stop goes on, 5 s at most: then RESULT_BUSY.
  virtual int StartGrabbing(GRAB_STRATEGY strategy, int frameCount) = 0;
  /// Stops the stream and wakes a waiting Grab, which returns RESULT_ABORTED. Returns a RESULT. Blocks while the camera
  /// takes the command, as every access to a node does; then while the producer stops, 5 s at most: then RESULT_TIMEOUT,
  /// and it goes on stopping. May be called with the lock of the camera's node map held.
  virtual int StopGrabbing() = 0;
  /// True from a successful StartGrabbing until StopGrabbing or Close, also after the last frame of a counted
  /// grab and after the device was lost, so that Grab can name the reason.
  virtual bool IsGrabbing() = 0;
  /// Waits up to timeoutMs milliseconds for a frame. On success *image is a frame that the caller must
  /// Release; *image is null otherwise. Returns a RESULT. Several threads may wait; each frame goes to one of
  /// them.
  virtual int Grab(IImage** image, int timeoutMs) = 0;
  virtual INodeMapHolder* TLNodeMap() = 0;
  virtual INodeMapHolder* InterfaceNodeMap() = 0;
  virtual INodeMapHolder* LocalDeviceNodeMap() = 0;
  virtual INodeMapHolder* RemoteDeviceNodeMap() = 0;
  virtual INodeMapHolder* DataStreamNodeMap() = 0;
  /// Writes the feature `name` of the local device module from its text. Returns a RESULT.
  virtual int SetCLCameraParam(const char* name, const char* value) = 0;
  /// Sends notifications of this source and type to `receiver` from now on; null ends it. One receiver per
  /// pair. Returns a RESULT.
  virtual int RegisterNotify(NOTIFY_SRC source, NOTIFY_TYPE type, INotify* receiver) = 0;
  /// Ends what is still running or open, wakes a waiting Grab, and destroys the object: the last call on it.
  virtual void Release() = 0;
};

/// Loads the producers on the first call; later calls are counted. Returns a RESULT; producers that cannot be
/// loaded are skipped (LoadReport tells why) and are no failure.
KELGENICAM_API int Init();

/// Takes back one Init; the last one closes the producers. Cameras still open keep what they need until they
/// are released. A producer that hangs is not waited for longer than five seconds.
KELGENICAM_API int UnInit();

/// Searches every interface. filter: null or "" for all cameras; otherwise only those whose camera ID, serial
/// number, model, user-defined name or address equals it. Fills `found` anew, in a fixed order; the objects
/// belong to this library. A camera whose description did not change is returned as the same object. Returns
/// a RESULT.
KELGENICAM_API int Discovery(const char* filter, std::list<ICameraInfo*>& found);

/// The same for the protocols in `tlTypes`, a mask of PROTOCOL_TYPE. Interfaces of other protocols are not
/// asked.
KELGENICAM_API int DiscoveryByTLType(unsigned long tlTypes, std::list<ICameraInfo*>& found);

/// A camera object for a description that Discovery returned, not open yet. Null when `info` is null or not
/// ours.
KELGENICAM_API ICamera* CreateCamera(ICameraInfo* info);

/// The same by serial number; searches when the number is not known yet. Null when there is no such camera.
KELGENICAM_API ICamera* CreateCameraBySN(const std::string& serialNumber);

/// Fills `protocols` anew with the Camera Link protocol drivers found through GENICAM_CLPROTOCOL. Returns a
/// RESULT.
KELGENICAM_API int GetCLProtocols(std::list<std::string>& protocols);

/// Fills `serials` anew with the ports of the Camera Link serial libraries that can be loaded. Returns a
/// RESULT.
KELGENICAM_API int GetCLSerials(std::list<std::string>& serials);

/// What became of one place or file that was looked at for producers.
struct LoadReportEntry {
  std::string path;     ///< the folder or the .cti file
  bool loaded;          ///< true when the producer is in use
  std::string message;  ///< the producer's name and version, or why it is not in use
};

/// Fills `entries` anew with what the latest loading of producers looked at, in search order. Empty before
/// Init.
KELGENICAM_API void LoadReport(std::list<LoadReportEntry>& entries);

}  // namespace KELGENICAM

#endif
