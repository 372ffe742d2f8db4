/// Owns every camera description ever published.
#ifndef ZYN_TRANSPORT_INFO_STORE_H
#define ZYN_TRANSPORT_INFO_STORE_H

#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <KELGeniCam.h>

#include "CameraDescription.h"
#include "CameraInfo.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Thread-safe. Applications keep pointers for ever, so nothing is freed; memory grows with the number of
/// different descriptions, not with the number of searches: an object that reports what was found is used
/// again, the one published last before any other.
class InfoStore {
 public:
  static InfoStore& Instance();

  /// Publishes what one search found; returns one object each, in the same order.
  std::list<KELGENICAM::ICameraInfo*> Publish(std::vector<CameraDescription> found) ZYN_EXCLUDES(mutex_);

  /// The object behind a pointer that an application holds; null when it is none of ours. Does not touch what
  /// the pointer points at.
  CameraInfo* Find(const KELGENICAM::ICameraInfo* info) ZYN_EXCLUDES(mutex_);

  /// The camera with that serial number: as found by the latest search that saw it. Null when there is none.
  CameraInfo* FindSerial(const std::string& serial) ZYN_EXCLUDES(mutex_);

 private:
  struct Record {
    CameraInfo* latest = nullptr;
    std::vector<std::unique_ptr<CameraInfo>> objects;
    std::vector<std::unique_ptr<const CameraDescription>> descriptions;
  };

  CameraInfo* PublishOne(CameraDescription&& description) ZYN_REQUIRES(mutex_);
  static const CameraDescription* Intern(Record& record, CameraDescription&& description);

  Mutex mutex_;
  std::map<CameraKey, Record> records_ ZYN_GUARDED_BY(mutex_);
  std::unordered_map<const KELGENICAM::ICameraInfo*, CameraInfo*> objects_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
