#ifndef ZYN_CAMERA_BATCH_SCAN_H
#define ZYN_CAMERA_BATCH_SCAN_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "ThreadAnnotations.h"

namespace ZYNSDK {

class ZynImage;
class ZynRangeImage;

/// Shape and scale of a scan, as the camera says them.
struct ScanGeometry {
  int lineCount = 0;      ///< profiles of a whole scan
  int batchNumber = 0;    ///< profiles of one frame
  int outlineLength = 0;  ///< points of one profile
  float zUpSize = 0;      ///< the largest height, in the camera's unit
  float zDownSize = 0;    ///< the smallest
  float xPitch = 0;       ///< from one point to the next
};

/// One frame of a scan. The records stay the transport's.
struct ScanFrame {
  long long id = 0;
  const unsigned char* records = nullptr;
  unsigned long long bytes = 0;
};

/// A scan being assembled from frames that hold some of its profiles each. Goes on with the next scan when one
/// is whole.
///
/// May be used from any thread; one frame is added at a time. The geometry is what a camera said and may be
/// absurd: nothing here trusts it.
class BatchScan {
 public:
  /// Raises std::bad_alloc for a negative length or count, for a scan that no range image can hold, and when
  /// memory is short. A length or count of 0 is a scan without points; with a count of 0 every frame ends one.
  explicit BatchScan(const ScanGeometry& geometry);
  BatchScan(const BatchScan&) = delete;
  BatchScan& operator=(const BatchScan&) = delete;

  /// Appends the profiles of a frame; ignores a frame of another size than the geometry says. A frame whose
  /// identifier differs from the previous one's begins a new scan: what was assembled is delivered as it is,
  /// with the rows of the scan before where none has come, or 0. True when a scan, cut short or whole, was
  /// delivered to `range` and `intensity`, which own copies. Their memory may run out: std::bad_alloc, the
  /// scan is lost and assembly begins anew.
  bool Add(const ScanFrame& frame, ZynRangeImage& range, ZynImage& intensity) ZYN_EXCLUDES(mutex_);

 private:
  struct Free {
    void operator()(void* memory) const { std::free(memory); }
  };
  template <class T>
  using Points = std::unique_ptr<T[], Free>;  // 0 until written; not touched before that, however large

  template <class T>
  static Points<T> MakePoints(std::size_t count);
  static std::size_t CountPoints(const ScanGeometry& geometry);
  bool IsOneBatch(unsigned long long bytes) const;
  void Append(const unsigned char* records) ZYN_REQUIRES(mutex_);
  void Deliver(ZynRangeImage& range, ZynImage& intensity) ZYN_REQUIRES(mutex_);

  const ScanGeometry geometry_;
  zyn::Mutex mutex_;  // held while points are copied and scans delivered, never while a device is asked
  Points<std::uint16_t> heights_ ZYN_GUARDED_BY(mutex_);  // point k of row r at r * outlineLength + k
  Points<unsigned char> intensities_ ZYN_GUARDED_BY(mutex_);
  long long rows_ ZYN_GUARDED_BY(mutex_) = 0;  // assembled so far; less than lineCount between two frames
  long long latestFrame_ ZYN_GUARDED_BY(mutex_) = -1;
};

}  // namespace ZYNSDK

#endif
