#ifndef ZYN_DEVICE_PHYSIC_CAMERA_H
#define ZYN_DEVICE_PHYSIC_CAMERA_H

#include <atomic>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "KELGeniCam.h"
#include "RefCamera.h"
#include "ThreadAnnotations.h"
#include "ZynCamera/Status.h"
#include "ZynCamera/Types.h"

namespace GenApi_3_4 {
struct INode;
struct INodeMap;
}  // namespace GenApi_3_4

namespace ZYNSDK {

class ZynString;
class ZynStringArray;

/// The device of one logical camera, which owns it.
///
/// May be used from any thread at any time. The opened transport camera sits in a counted record; every call
/// borrows the record (Borrow.h) and runs without the lock, so Close never waits for a grab and never
/// destroys what another thread is using. Results are 0, a ZynStatus, or where said a result of the
/// transport. Exceptions of the transport and of GenICam pass to the caller. Design decision: each operation
/// has a code of its own for a closed device, as its comment says; applications rely on each. Pinned by
/// EveryOperationHasItsCodeForAClosedDevice.
class PhysicCamera {
 public:
  PhysicCamera() = default;
  PhysicCamera(const PhysicCamera&) = delete;
  PhysicCamera& operator=(const PhysicCamera&) = delete;
  /// Does not close the device: the owner closes first.
  virtual ~PhysicCamera() = default;

  /// The descriptions of all cameras present now, in the transport's order, replacing what `out` held. They
  /// belong to the transport. Blocks for the search. Returns 0 whatever the transport answers.
  static long SearchCameras(std::list<KELGENICAM::ICameraInfo*>& out);
  /// The same for the protocols in the transport's mask.
  static long SearchCamerasByProtocolType(unsigned long protocolType,
                                          std::list<KELGENICAM::ICameraInfo*>& out);

  // Opening and closing. These hold the lock while the transport works.

  long Open(KELGENICAM::ICameraInfo* info);  ///< as NewRefCam
  /// Never opens a device, because the record takes the serial number from a description, and there is none:
  /// 101013, 101007 and 101008 as NewRefCam, and 101007 also for a transport camera that opened; it is released.
  long Open(const std::string& serialNumber);
  /// Makes, opens and installs the transport camera. 101013 when a device is open; 101007 when none could be
  /// made, also when neither description nor serial number is given; 101008 when it refuses to open.
  long NewRefCam(KELGENICAM::ICameraInfo* info, const std::string& serialNumber) ZYN_EXCLUDES(mutex_);
  /// Makes and opens a transport camera without installing it. The caller owns what it returns; null with the
  /// code in `result`.
  static KELGENICAM::ICamera* OpenCamera(KELGENICAM::ICameraInfo* info, const std::string& serialNumber,
                                         long& result);
  long Close();  ///< 101010 when closed
  /// Detaches the record; closes and releases the device when nobody borrows it, else the last borrower
  /// releases it. False when closed.
  bool DeleteRefCam() ZYN_EXCLUDES(mutex_);

  /// The current record with one more count on it; null when closed. Use Borrow instead of pairing these by
  /// hand.
  RefCamera* Ref() ZYN_EXCLUDES(mutex_);
  /// Gives one count of that record back; the last one releases the device. Null does nothing.
  void UnRef(RefCamera* record) ZYN_EXCLUDES(mutex_);

  /// False when closed. Counts a lost device as closed, unless a description of another protocol than GigE
  /// Vision is given: those say nothing about being online.
  bool IsOpen(KELGENICAM::ICameraInfo* info);

  // The stream.

  bool IsGrabbing();  ///< false when closed
  /// 101015 closed or the stream did not come up; 101012 it runs already; else the transport's result. Notes
  /// the camera's trigger source. `count` 0 means without limit.
  long StartGrab(KELGENICAM::GRAB_STRATEGY strategy, int count);
  long StartGrabAction(KELGENICAM::ICamera* camera, KELGENICAM::GRAB_STRATEGY strategy, int count);
  /// Waits up to timeoutMs for a frame, which the caller releases. 101010 closed; 101011 not grabbing; else
  /// the transport's result.
  long Grab(KELGENICAM::IImage** image, int timeoutMs);
  long StopGrab();  ///< 101011 when closed, else 0
  /// What triggered the camera at the latest start: 0 nothing or unknown, 1 software, 2 to 5 line 1 to 4.
  int TriggerSource() const { return triggerSource_; }

  /// 101010 when closed, else the transport's result.
  long RegisterNotify(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                      KELGENICAM::INotify* receiver);
  /// 101001 when closed, else 0 whatever the transport says.
  long SetCLCameraParam(const char* name, const char* value);
  /// Gives a GigE camera, open or not, an address. 101050 when that fails. Writes what it does to standard
  /// output.
  static long SetGevIpAddress(KELGENICAM::ICameraInfo& info, const char* ip, const char* mask,
                              const char* gateway, bool flag);

  // Features. All return 101010 when closed, 101092 for a node map that does not exist, 101091 for a name
  // that it does not have. Node maps and nodes are valid while the device is open.

  static ZynNodeType GetNodeType(GenApi_3_4::INode* node);
  long GetNode(const std::string& name, ZynXmlSource source, GenApi_3_4::INode*& node);
  static long GetNodeAction(KELGENICAM::ICamera* camera, const std::string& name, ZynXmlSource source,
                            GenApi_3_4::INode*& node);
  /// 101093 with type 0 for a kind of feature that has no ZynNodeType.
  long GetNodeType(const std::string& name, ZynXmlSource source, ZynNodeType& type);
  /// Appends name and type of every visible feature that has one, in the node map's order.
  long GetNodes(ZynXmlSource source, std::vector<std::pair<std::string, ZynNodeType>>& out);
  static long GetNodesAction(KELGENICAM::ICamera* camera, ZynXmlSource source,
                             std::vector<std::pair<std::string, ZynNodeType>>& out);
  GenApi_3_4::INodeMap* GetNodesMap(ZynXmlSource source);  ///< null when closed or not available
  static GenApi_3_4::INodeMap* GetNodesMapAction(KELGENICAM::ICamera* camera, ZynXmlSource source);

  // 101094: another type, or not readable now.
  long GetBool(const std::string& name, ZynXmlSource source, bool& value);
  /// Tries three times; 101040 when all fail.
  long GetInt(const std::string& name, ZynXmlSource source, int& value, int& minimum, int& maximum,
              int& increment);
  /// The increment is 1 unless the feature has a fixed one.
  long GetFloat(const std::string& name, ZynXmlSource source, float& value, float& minimum, float& maximum,
                float& increment);
  /// Names of the current entry and of the available ones; both are emptied first. 0 with both empty for
  /// another type, or when not readable now.
  long GetEnum(const std::string& name, ZynXmlSource source, ZynString& current, ZynStringArray& entries);

  // Another type raises LogicalErrorException.
  long SetBool(const std::string& name, ZynXmlSource source, bool value);
  long SetInt(const std::string& name, ZynXmlSource source, int value);
  long SetFloat(const std::string& name, ZynXmlSource source, float value);
  long SetEnumString(const std::string& name, ZynXmlSource source, const std::string& entry);
  long SetEnumIndex(const std::string& name, ZynXmlSource source, int value);  ///< the entry's integer value
  /// Waits up to timeoutMs for an earlier execution to end, then executes in any case. -1 when the wait timed
  /// out.
  long Execute(const std::string& name, ZynXmlSource source, int timeoutMs);

 private:
  template <class Use>
  long WithNode(const std::string& name, ZynXmlSource source, Use use);
  int ReadTriggerSource();

  zyn::Mutex mutex_;  // not held in calls to the transport, but for opening, closing and releasing
  RefCamera* current_ ZYN_GUARDED_BY(mutex_) = nullptr;
  std::atomic<int> triggerSource_{0};
};

}  // namespace ZYNSDK

#endif
