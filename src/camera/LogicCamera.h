#ifndef ZYN_CAMERA_LOGIC_CAMERA_H
#define ZYN_CAMERA_LOGIC_CAMERA_H

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ThreadAnnotations.h"
#include "ZynCamera/Status.h"
#include "ZynCamera/Types.h"

namespace KELGENICAM {
class ICameraInfo;
class IImage;
}  // namespace KELGENICAM

namespace GenApi_3_4 {
struct INodeMap;
}

namespace ZYNSDK {

class BatchScan;
class CameraAttribute;
class CImageThread;
class FrameGuard;
class IImageHandler;
class NodeManager;
class PhysicCamera;
class Zyn3DIntArray;
class ZynCameraAttribute;
class ZynChunkData;
class ZynImage;
class ZynNode;
class ZynNodeArray;
class ZynRangeImage;
class ZynString;
class ZynStringArray;

/// One camera, as every handle on it sees it. Made by the first search that finds the camera, owned by the
/// CameraManager, alive until the library is unloaded.
///
/// May be used from any thread at any time. Holds no state of the device but asks for it: open and grabbing
/// are what the device says now. Operations that reach the transport or GenICam catch every exception and
/// answer 101040 (bool: false, pointer: null); an operation whose name ends in Action is the same work
/// without that guard. All other results of the device pass unchanged.
class LogicCamera {
 public:
  /// The description belongs to the transport, which keeps it for as long as it is loaded.
  explicit LogicCamera(KELGENICAM::ICameraInfo* info);
  LogicCamera(const LogicCamera&) = delete;
  LogicCamera& operator=(const LogicCamera&) = delete;
  /// Ends the delivery of images, and waits for that. Does not close the device: the application does before the
  /// library is unloaded.
  virtual ~LogicCamera();

  /// Opens the device, then applies the configuration file, unless that is null or empty. Answers what the file
  /// answers, with the device open in any case.
  long Open(const char* configFile);
  long Close();
  long Open3D();
  long Open3DAction();
  long Close3D();  ///< as Close
  bool IsOpen();
  bool IsGrabbing();
  bool HasStopped();  ///< the device says that its stream does not run; false also when it cannot say

  // The description.

  ZynCameraAttribute* Attribute();  ///< a new handle, owned by the caller, on a record owned by the camera
  bool Is3DCamera();
  /// Takes the description of a later search. The previous one takes over its content where the transport
  /// allows it, which is for the same device on the same adapter; whoever still reads that sees the present
  /// state too. Earlier records stay readable for the handles on them; a description
  /// seen before gets its record back, so searching for a year does not grow memory. Not for two threads at
  /// once.
  void replaceAttribute(KELGENICAM::ICameraInfo* info);
  /// Gives the GigE camera of that description an address. False on any failure.
  bool SetGevIpAddress(KELGENICAM::ICameraInfo& info, const char* ip, const char* mask, const char* gateway,
                       bool flag);

  // The registry's marks. Written by the CameraManager only, under its lock; the first is read without it.

  bool IsOnline() const { return isOnline_; }  ///< present in the latest search
  void SetOnline(bool isOnline) { isOnline_ = isOnline; }
  bool IsUnseen() const { return isUnseen_; }  ///< not met yet by the search that is running
  void SetUnseen(bool isUnseen) { isUnseen_ = isUnseen; }

  // Features. What the public header says of GetRemoteNode and its family.

  long GetNodeByXmlType(const char* name, ZynNode* node, ZynXmlSource source);
  long GetNodesByXmlType(ZynNodeArray* nodes, ZynXmlSource source);
  GenApi_3_4::INodeMap* GetNodesMap(ZynXmlSource source) ZYN_EXCLUDES(mutex_);
  GenApi_3_4::INodeMap* GetNodesMapAction(ZynXmlSource source);
  static bool IsSpecialNode(const std::string& name);  ///< known under older names too
  /// "TriggerSoftware" alone lets exceptions through.
  long GetNodeType(const std::string& name, ZynXmlSource source, ZynNodeType& type);

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

  long GetBoolValue(const std::string& name, ZynXmlSource source, bool& value);
  long GetIntValue(const std::string& name, ZynXmlSource source, int& value, int& minimum, int& maximum,
                   int& increment);
  long GetFloatValue(const std::string& name, ZynXmlSource source, float& value, float& minimum,
                     float& maximum, float& increment);
  long GetEnumValue(const std::string& name, ZynXmlSource source, ZynString& current,
                    ZynStringArray& entries);
  long SetBoolValue(const std::string& name, ZynXmlSource source, bool value);
  long SetIntValue(const std::string& name, ZynXmlSource source, int value);
  long SetFloatValue(const std::string& name, ZynXmlSource source, float value);
  long SetEnumStringValue(const std::string& name, ZynXmlSource source, const std::string& entry);
  long SetEnumIndexValue(const std::string& name, ZynXmlSource source, int value);
  long ExecuteNode(const std::string& name, ZynXmlSource source, int timeoutMs);

  // Acquisition. What the public header says of StartGrab, StopGrab, SetGrabTimeout and GrabImage.

  long StartGrab(ZynGrabStrategy strategy, int count);
  long StopGrab();
  long SetGrabTimeout(int milliseconds);
  long Grab(ZynImage* image, ZynChunkData* chunk);
  /// StartGrab begins the delivery of images when a handler is registered and the stream was started; what is
  /// raised when there is no thread to be had passes to the caller, and the stream runs. StopGrab ends the
  /// delivery first, whatever stopping the stream then answers.
  long RegisterImageHandler(IImageHandler* handler);

  /// One wait for a frame: sets the result, true for 0.
  using GrabAttempt = std::function<bool(long& result)>;
  /// Runs the attempt once and returns the result it set. An empty attempt raises std::bad_function_call.
  static long LoopGrab(const GrabAttempt& attempt);
  /// What a wait for a frame answers to the application: of the transport's results, those that an
  /// application can act on pass, the others become 101023.
  static long ErrorCodeTrans(long code);

  // The settings of a Camera Link card.

  /// Applies a configuration file to the local device's features. 101044 when there is no such file, else 0: a
  /// record that fails does not change the result. A text that is no number raises std::invalid_argument or
  /// std::out_of_range and ends the reading. The format: docs/camera-link.md.
  long SetClCardConfigFile(const char* path);
  /// Writes one feature of the local device from its text. Returns the look-up's result when that fails, else
  /// that of SetNodeValue.
  long SetDevNodeValue(const std::string& name, const std::string& value);
  /// Writes a feature from its text, as its type reads it. Returns the setter's result; 101096 for commands and
  /// for types that cannot be written; 0 for any type that is not known. May throw as SetClCardConfigFile.
  static long SetNodeValue(ZynNode& node, const std::string& value);
  /// The pieces of a text between separators, in order. Every character of `separators` separates; none is a usage
  /// error and raises std::out_of_range. `skipEmpty`: leaves out empty pieces.
  static std::vector<std::string> splitString(std::string text, const std::string& separators,
                                              bool skipEmpty);
  /// Removes every space (0x20), also between other characters. Returns the text that was given.
  static std::string& StringTrim(std::string& text);
  /// 101001 closed; 101040 an exception; else 0, whatever the device said to the parameter.
  long SetCLCameraParam(const char* name, const char* value);

  // 3D acquisition. What the public header says of Zyn3DCamera's StartGrab, StopGrab, GetGrabType, GrabData,
  // GrabContour, GrabBatchData, SetBatchCount and GetBatchCount.

  long Start3DGrab(Zyn3DGrabType type);
  long Start3DGrabAction(Zyn3DGrabType type);
  /// An exception of the device leaves the grab type and the scan in progress as they are.
  long Stop3DGrab();
  long Stop3DGrabAction() ZYN_EXCLUDES(scanMutex_);
  Zyn3DGrabType GetGrabType();
  long GetGrabTypeAction(Zyn3DGrabType& type);  ///< always 0

  long Grab3DData(ZynImage* image, Zyn3DIntArray* heights, ZynImage* intensity);
  /// Waits for one frame, which the caller releases. 101050 unless `type` is what the camera grabs.
  long Grab3DDataAction(KELGENICAM::IImage** frame, Zyn3DGrabType type);
  long Grab3DContour(Zyn3DIntArray* heights, ZynImage* intensity);
  long Grab3DBatchData(ZynRangeImage* range, ZynImage* intensity);
  /// Waits for one frame, which the caller releases also after a failure, and adds it to the scan. `done`:
  /// a scan has been delivered.
  long Grab3DBatchDataAction(KELGENICAM::IImage** frame, ZynRangeImage* range, ZynImage* intensity,
                             bool& done) ZYN_EXCLUDES(scanMutex_);

  /// Always acts on the camera's own features: `source` is ignored.
  long SetBatchCount(ZynXmlSource source, int count);
  long SetBatchCountAction(int count);
  long GetBatchCount(ZynXmlSource source, int* count);

 private:
  long FindNode(const std::string& name, ZynNode& node, ZynXmlSource source);
  CameraAttribute* RecordFor(KELGENICAM::ICameraInfo* info);
  static long Deliver(KELGENICAM::IImage& frame, ZynImage& image, ZynChunkData* chunk);
  long WaitFor3DFrame(FrameGuard& frame, Zyn3DGrabType type);
  void WriteModeFeatures(Zyn3DGrabType type);
  void PrepareScan() ZYN_EXCLUDES(scanMutex_);
  long ReadIntFeature(const char* name, ZynXmlSource source, int& value);
  float FloatFeatureOrZero(const char* name);
  void ReplaceScan(std::shared_ptr<BatchScan> scan) ZYN_EXCLUDES(scanMutex_);
  std::shared_ptr<BatchScan> CurrentScan() ZYN_EXCLUDES(scanMutex_);

  zyn::Mutex mutex_;  // held by GetNodesMap for its look-up; the lock of the device is taken under it
  const std::unique_ptr<PhysicCamera> device_;
  std::vector<std::unique_ptr<CameraAttribute>> records_;  // every record, written by replaceAttribute only
  std::atomic<CameraAttribute*> attribute_;                // the current one of them, never null
  const std::unique_ptr<NodeManager> nodes_;
  std::atomic<bool> isUnseen_{false};
  std::atomic<bool> isOnline_{true};
  std::atomic<int> grabTimeoutMs_{5000};
  std::atomic<Zyn3DGrabType> grabType_{ZYN_3D_GRAB_NONE};  // stays after a stream start that failed
  std::atomic<int> outlineLength_{2000};  // points per profile; kept by cameras that do not say
  zyn::Mutex scanMutex_;                  // held to copy the pointer only
  // The scan being assembled, from the start of a batch grab to its stop. A grab that is adding a frame shares
  // it, so a stop on another thread neither waits for the grab nor frees what it writes to.
  std::shared_ptr<BatchScan> scan_ ZYN_GUARDED_BY(scanMutex_);
  const std::unique_ptr<CImageThread> imageThread_;  // last: it ends before anything that its grabs use
};

}  // namespace ZYNSDK

#endif
