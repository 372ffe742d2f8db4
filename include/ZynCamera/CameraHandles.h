/// Cameras.
#ifndef ZYNCAMERA_CAMERA_HANDLES_H
#define ZYNCAMERA_CAMERA_HANDLES_H

#include "Export.h"
#include "Types.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace ZYNSDK {

class IImageHandler;
class LogicCamera;
class ZynCamera;
class Zyn3DCamera;
class Zyn3DIntArray;
class ZynCameraAttribute;
class ZynChunkData;
class ZynImage;
class ZynNode;
class ZynNodeArray;
class ZynRangeImage;

/// The GenICam node map behind a camera, for what ZynNode does not serve; null while the camera is closed or
/// has no such map. Owned by the camera, valid until it is closed. Design decision: neither null nor an empty
/// handle may be passed; both are used unchecked. Pinned by NodeMapFunctionsDeathTest.CheckNothing.
ZYNSDK_API GenApi_3_4::INodeMap* Get2DCameraNodeMap(ZynCamera* camera, ZynXmlSource source);
ZYNSDK_API GenApi_3_4::INodeMap* Get3DCameraNodeMap(Zyn3DCamera* camera, ZynXmlSource source);

/// A 2D area camera. Filled by a discovery.
///
/// A reference: copies refer to the same camera, and none of them closes it when it ends. Stays valid until
/// the SDK is unloaded, also while the camera is unplugged. May be used from any thread at any time; Close
/// may run while another thread waits in GrabImage. On an empty handle every operation that returns a status
/// answers 101001, every other false or null.
class ZYNSDK_API ZynCamera {
 public:
  ZynCamera();  ///< refers to nothing
  ZynCamera(const ZynCamera& other) = default;
  ZynCamera& operator=(const ZynCamera& other) = default;
  virtual ~ZynCamera();

  /// A new handle to the camera's description. The caller owns the handle and deletes it.
  ZynCameraAttribute* Attribute();

  /// Opens the camera for reading and writing. `param`: null or "", or the path of a configuration file for a
  /// Camera Link card, which is then applied (docs/camera-link.md). 101007 the transport does not know the
  /// camera; 101008 the camera refused; 101013 it is open already; 101040 an exception. Two codes come from the
  /// file and leave the camera open: 101044 no such file; 101040 a text that is no number, where reading ended.
  /// Blocks while the camera answers and its description is loaded.
  long Open(const char* param);
  /// Closes the camera; a stream that runs ends. 101010 when it was not open; 101040 an exception, and
  /// the camera is closed nevertheless. Another thread inside a call on the camera finishes that call first;
  /// this one does not wait for it.
  long Close();
  bool IsOpen();      ///< of a GigE camera: also false when the device was lost
  bool IsGrabbing();  ///< the stream runs

  /// Starts the stream, and with a registered handler the delivery of images to it. `count`: how many frames
  /// to deliver, 0 or -1 without limit. 101012 it runs already; 101015 the camera is not open or the stream did
  /// not come up; 101040 an exception; else a transport result. Raises std::system_error when the stream runs
  /// but the system gives no thread to deliver on: stop, and start again.
  long StartGrab(ZynGrabStrategy strategy, int count);
  /// Ends the delivery of images, then the stream. 101011 when the camera is not open; 101040 an exception.
  /// When a handler receives images, blocks until its present call and the present wait for a frame have ended,
  /// which is up to the grab time-out; no image comes afterwards. A producer that has not stopped the stream after
  /// five seconds goes on in the background; until it has, StartGrab waits as long, and answers -25.
  long StopGrab();
  /// The longest wait for one frame. 5000 at first. 101010 when the camera is not open, 101050 below 1.
  long SetGrabTimeout(int milliseconds);
  /// Waits for one frame and makes `image` refer to a copy of it. `chunk` may be null; otherwise it takes a
  /// copy of the frame's first chunk, and stays unchanged when there is none. Blocks up to the time-out.
  /// Returns 0; 101010 not open; 101011 not started; 101023 no frame in time, or stopped meanwhile; 101050
  /// `image` null; 101081 no frame; 101084 frame incomplete or damaged; 101040 an exception; else a transport
  /// result.
  long GrabImage(ZynImage* image, ZynChunkData* chunk);
  /// Remembers who receives the images of this camera (null: nobody) from the next StartGrab on; the
  /// application keeps the handler. A delivery that runs ends first, as in StopGrab, and the stream runs on
  /// without one. Frames go to whoever asks first: do not call GrabImage while a handler receives. Returns 0.
  long RegisterImageHandler(IImageHandler* handler);

  /// Sets one parameter of a Camera Link camera from its text. Returns 0, whatever the camera said to it; 101001
  /// when the camera is not open; 101040 an exception.
  long SetCLCameraParam(const char* name, const char* value);

  // Features by name, and all visible features, of each node map: transport layer, interface, local device,
  // remote device (the camera's own), data stream. "ExposureTime", "TriggerDelay", "Gain" and
  // "AcquisitionFrameRate" are also found under the older names that end in "Abs" or "Raw". Returns 0; 101050
  // null argument; 101010 not open; 101091 no such feature; 101092 no such node map; 101093 a kind that
  // ZynNode does not serve; 101040 an exception. Looking up "TriggerSoftware" lets exceptions of GenICam
  // through.
  long GetTLNode(const char* name, ZynNode* node);
  long GetTLNodes(ZynNodeArray* nodes);
  long GetIFNode(const char* name, ZynNode* node);
  long GetIFNodes(ZynNodeArray* nodes);
  long GetDevNode(const char* name, ZynNode* node);
  long GetDevNodes(ZynNodeArray* nodes);
  long GetRemoteNode(const char* name, ZynNode* node);
  long GetRemoteNodes(ZynNodeArray* nodes);
  long GetDSNode(const char* name, ZynNode* node);
  long GetDSNodes(ZynNodeArray* nodes);

 private:
  friend GenApi_3_4::INodeMap* Get2DCameraNodeMap(ZynCamera* camera, ZynXmlSource source);
  LogicCamera* camera_;
};

/// A 3D laser-profile camera. Filled by a discovery. What is said of ZynCamera holds here too.
class ZYNSDK_API Zyn3DCamera {
 public:
  Zyn3DCamera();  ///< refers to nothing
  Zyn3DCamera(const Zyn3DCamera& other) = default;
  Zyn3DCamera& operator=(const Zyn3DCamera& other) = default;
  virtual ~Zyn3DCamera();

  ZynCameraAttribute* Attribute();  ///< as ZynCamera::Attribute
  long Open();                      ///< as ZynCamera::Open without a configuration file
  long Close();                     ///< as ZynCamera::Close
  bool IsOpen();                    ///< as ZynCamera::IsOpen

  /// Sets the camera up for one of the three modes, and starts the stream. For scans it also reads how many
  /// lines a scan has, how many of them a frame, how many points a line, and the scale. A camera without
  /// "OutlineLengthMax" keeps the points per line that it had last, 2000 at first. 101009 not a 3D camera;
  /// 101010 not open; 101012 it grabs already; 101050 `type` is none of the modes; 101040 an exception, or the
  /// camera describes a scan that no range image can hold (negative, or beyond 2147483647 bytes of heights);
  /// 101015 the stream did not come up; else a transport result.
  long StartGrab(Zyn3DGrabType type);
  /// Stops the stream; a scan in progress is dropped. May run while another thread waits in a grab: that ends
  /// with 101023, or with 101050 when it had a frame of a scan in hand. 101009 not a 3D camera; 101011 not open;
  /// 101040 an exception, and the grab type stays. Waits for the producer as ZynCamera::StopGrab does.
  long StopGrab();
  Zyn3DGrabType GetGrabType();            ///< ZYN_3D_GRAB_NONE while the stream does not run
  long SetGrabTimeout(int milliseconds);  ///< as ZynCamera::SetGrabTimeout

  // Grabs. One thread at a time is served in order; the results belong to the caller and own copies. Each waits
  // for a frame up to the time-out and returns 0; 101050 null argument, or not started for this grab; 101010
  // not open; 101011 the stream does not run; 101023 no frame in time, or stopped meanwhile; 101081 no frame;
  // 101084 frame incomplete or damaged; 101040 an exception; else a transport result.

  /// ZYN_3D_GRAB_PROFILE: the sensor image and the profile found in it. `heights`: one per point, 0 to 1023,
  /// raw. `intensity`: one row, a byte per point, whose low two bits are the height's high ones. `heights` is
  /// cleared first and stays empty on failure. A frame without a profile delivers its image only, with empty
  /// heights and `intensity` unchanged. Also 101009 not a 3D camera; 101082 no image could be made.
  long GrabData(ZynImage* image, Zyn3DIntArray* heights, ZynImage* intensity);
  /// ZYN_3D_GRAB_CONTOUR: one profile. `heights`: one per point, 0 to 65535, raw. `intensity`: one row, a byte
  /// per point. `heights` is cleared first and stays empty on failure. Also 101085 a frame without a profile.
  long GrabContour(Zyn3DIntArray* heights, ZynImage* intensity);
  /// ZYN_3D_GRAB_BATCH: one scan. Waits for as many frames as it takes, each up to the time-out, without a
  /// bound on their number. `range`: a row per line, unsigned 16-bit heights. `intensity`: the same shape, a
  /// byte per point. Frames of a wrong size are skipped. A frame of another scan (with another identifier) ends
  /// the one in progress: it is delivered, and its missing rows hold those of the scan before, or 0. After an
  /// error the lines that came stay, and the next grab goes on with them. Also 101085 a frame without lines.
  long GrabBatchData(ZynRangeImage* range, ZynImage* intensity);

  /// Sets the lines of a scan: `count`, 1 to 65500, rounded up to a multiple of 100; a frame then holds
  /// `count` of them, at most 100. 101009 not a 3D camera; 101050 another count; 101010 not open; 101012 it
  /// grabs; 101040 an exception; else as ZynNode::SetInt.
  long SetBatchCount(int count);
  /// The lines of a scan. 101009 not a 3D camera; 101050 null; 101010 not open; 101040 an exception; else as
  /// ZynNode::GetInt.
  long GetBatchCount(int* count);

  long GetNode(const char* name, ZynNode* node);  ///< as ZynCamera::GetRemoteNode
  long GetNodes(ZynNodeArray* nodes);             ///< as ZynCamera::GetRemoteNodes

 private:
  friend GenApi_3_4::INodeMap* Get3DCameraNodeMap(Zyn3DCamera* camera, ZynXmlSource source);
  LogicCamera* camera_;
};

}  // namespace ZYNSDK

#endif
