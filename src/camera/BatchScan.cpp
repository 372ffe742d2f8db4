#include "BatchScan.h"

#include <algorithm>
#include <limits>
#include <new>

#include "PointRecords.h"
#include "SetAllValues.h"
#include "ZynCamera/ZynImage.h"
#include "ZynCamera/ZynRangeImage.h"

namespace ZYNSDK {

BatchScan::BatchScan(const ScanGeometry& geometry)
    : geometry_(geometry),
      heights_(MakePoints<std::uint16_t>(CountPoints(geometry))),
      intensities_(MakePoints<unsigned char>(CountPoints(geometry))) {}

// Up to what fits into the range image that the scan is delivered in.
std::size_t BatchScan::CountPoints(const ScanGeometry& geometry) {
  constexpr long long kMostPoints = std::numeric_limits<int>::max() / sizeof(std::uint16_t);
  if (geometry.outlineLength < 0 || geometry.lineCount < 0) throw std::bad_alloc();
  const long long points = static_cast<long long>(geometry.outlineLength) * geometry.lineCount;
  if (points > kMostPoints) throw std::bad_alloc();
  return static_cast<std::size_t>(points);
}

template <class T>
BatchScan::Points<T> BatchScan::MakePoints(std::size_t count) {
  auto* memory = static_cast<T*>(std::calloc(count == 0 ? 1 : count, sizeof(T)));
  if (!memory) throw std::bad_alloc();
  return Points<T>(memory);
}

bool BatchScan::Add(const ScanFrame& frame, ZynRangeImage& range, ZynImage& intensity) {
  if (!IsOneBatch(frame.bytes)) return false;
  zyn::MutexLock lock(mutex_);
  const bool isCutShort = frame.id != latestFrame_ && rows_ != 0;
  if (isCutShort) Deliver(range, intensity);
  Append(frame.records);
  latestFrame_ = frame.id;
  if (rows_ < geometry_.lineCount) return isCutShort;
  Deliver(range, intensity);
  return true;
}

// In 64 bits: a camera may claim any length and count.
bool BatchScan::IsOneBatch(unsigned long long bytes) const {
  if (geometry_.batchNumber < 0) return false;
  return bytes == static_cast<unsigned long long>(geometry_.batchNumber) *
                      static_cast<unsigned long long>(geometry_.outlineLength) * kRecordBytes;
}

// Design decision: the profiles that a frame carries beyond the end of the scan are dropped, and count. Pinned by
// TheLastFrameOfAScanIsCopiedAsFarAsTheScanGoes.
void BatchScan::Append(const unsigned char* records) {
  const long long fitting = std::min<long long>(geometry_.batchNumber, geometry_.lineCount - rows_);
  const auto first = static_cast<std::size_t>(rows_) * static_cast<std::size_t>(geometry_.outlineLength);
  const auto count = static_cast<std::size_t>(fitting) * static_cast<std::size_t>(geometry_.outlineLength);
  DecodeBatch(records, count * kRecordBytes, heights_.get() + first, intensities_.get() + first);
  rows_ += geometry_.batchNumber;
}

// Design decision: these five numbers are the library's, not the camera's. Pinned by
// AScanCarriesTheLibrarysResolutions.
void BatchScan::Deliver(ZynRangeImage& range, ZynImage& intensity) {
  constexpr double kZResolution = 0.001;
  constexpr double kZOffset = 32768.0;
  constexpr double kXOffset = 0.0;
  constexpr double kYResolution = 0.02;
  constexpr double kYOffset = 0.0;
  constexpr int kChannels = 1;
  const int width = geometry_.outlineLength;
  const int height = geometry_.lineCount;
  rows_ = 0;
  SetAllValues(range, heights_.get(), width, height, ZYN_IMAGE_U16, geometry_.zDownSize, geometry_.zUpSize);
  range.SetInfo(kZResolution, kZOffset, geometry_.xPitch, kXOffset, kYResolution, kYOffset);
  intensity.CreateImage(intensities_.get(), width, height, width, kChannels, ZYN_IMAGE_U8);
}

}  // namespace ZYNSDK
