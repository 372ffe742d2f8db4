/// 3D laser-profile cameras.
#ifndef ZYN_CAMERAS_LASER_LASER_CORE_H
#define ZYN_CAMERAS_LASER_LASER_CORE_H

#include <cstdint>
#include <string>

#include "cameras/CameraCore.h"
#include "cameras/PixelFormats.h"
#include "cameras/UserSets.h"
#include "cameras/acquisition/Triggers.h"
#include "cameras/laser/LaserPainter.h"

namespace zyn::cameras {

/// In what the models differ.
struct LaserModel {
  std::int64_t columns = 2000;      ///< of the sensor, and points of a profile
  bool hasLineCount = true;         ///< the feature AcquisitionLineCount
  bool hasFrameCount = true;        ///< the feature AcquisitionFrameCount, another name of the same number
  bool hasOutlineLengthMax = true;  ///< and then the width can be set
};

/// What a user set stores.
struct LaserSettings {
  std::int64_t width = 2000;
  std::int64_t height = 1024;
  std::int64_t offsetX = 0;
  std::int64_t offsetY = 0;
  std::int64_t pixelFormat = kMono8;
  std::int64_t enableExtraction = 1;
  std::int64_t enableImage = 0;
  std::int64_t enableCalibration = 1;
  std::int64_t batchEnable = 0;
  std::int64_t lineCount = 1000;
  std::int64_t batchNumber = 100;
  std::int64_t acquisitionMode = 0;
  double exposureUs = 40;
  double gainDb = 0;
  std::int64_t lineRateEnable = 1;
  double lineRateHz = 1000;
  TriggerSettings triggers{};
};

/// What a frame holds is decided by four switches:
///
/// | EnableExtraction | BatchEnable | EnableImage | frame                                    |
/// |------------------|-------------|-------------|------------------------------------------|
/// | off              | any         | any         | sensor image                             |
/// | on               | on          | any         | a batch of profiles                      |
/// | on               | off         | on          | sensor image and its profile             |
/// | on               | off         | off         | one profile                              |
///
/// EnableCalibration decides which records profiles are made of. A scan is a whole number of full batches: the last
/// one goes on beyond the end of the scan, and the next scan begins behind it.
class LaserCore final : public CameraCore {
 public:
  LaserCore(Identity identity, const LaserModel& model, Clock& clock);

  std::size_t PayloadSize() const override;
  FramePainter& Painter() override { return painter_; }
  void BeginNewSeries() override;
  void TurnEncoder(std::uint32_t steps) override { triggers_.TurnEncoder(steps); }

 protected:
  void PlanFrame(Frame& frame, std::size_t shortenBy) override;
  Pace MakePace() const override;
  void OnStart() override;
  void OnEdge(unsigned line, bool isRising) override { triggers_.OnEdge(line, isRising); }
  void OnReset() override;

 private:
  void AddImageFeatures();
  void AddAcquisitionFeatures();
  void AddTriggerFeatures();
  void AddExtractionFeatures();
  void AddChunkFeatures();

  void LayOut(Frame& frame, std::size_t shortenBy) const;
  bool SendsBatches() const { return settings_.enableExtraction != 0 && settings_.batchEnable != 0; }
  bool SendsImage() const;
  std::int64_t ProfilesPerFrame() const { return SendsBatches() ? settings_.batchNumber : 1; }
  std::int64_t BatchesPerScan() const;
  std::int64_t UnitPeriodNs() const;
  double ResultingLineRate() const;

  const LaserModel model_;
  LaserSettings settings_;
  UserSets<LaserSettings> userSets_;
  Triggers triggers_;
  LaserPainter painter_;

  std::int64_t nextProfile_ = 0;
  std::uint64_t scan_ = 0;          // the present one; counts from 1
  std::int64_t batchesOfScan_ = 0;  // sent of the present one
};

}  // namespace zyn::cameras

#endif
