/// 2D area cameras.
#ifndef ZYN_CAMERAS_AREA_AREA_CORE_H
#define ZYN_CAMERAS_AREA_AREA_CORE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "cameras/CameraCore.h"
#include "cameras/PixelFormats.h"
#include "cameras/UserSets.h"
#include "cameras/acquisition/Triggers.h"
#include "cameras/area/AreaPainter.h"

namespace zyn::cameras {

/// In what the models differ.
struct AreaModel {
  std::int64_t columns = 1600;
  std::int64_t rows = 1200;
  /// Exposure and gain are called ExposureTimeAbs and GainRaw, the frame rate AcquisitionFrameRateAbs; only the
  /// formats Mono8 and Mono16.
  bool hasOldNames = false;
  /// Sends pixels on taps (DeviceTapGeometry), and nothing else: no chunks. Only Mono8, Mono10 and Mono12.
  bool isCameraLink = false;
};

/// The chunks that can be switched on, beside the image.
constexpr std::size_t kAreaChunks = 4;

/// What a user set stores.
struct AreaSettings {
  std::int64_t width = 1600;
  std::int64_t height = 1200;
  std::int64_t offsetX = 0;
  std::int64_t offsetY = 0;
  std::int64_t pixelFormat = kMono8;
  std::int64_t testPattern = 0;
  std::int64_t taps = 2;
  std::int64_t acquisitionMode = 0;
  std::int64_t frameCount = 1;
  std::int64_t frameRateEnable = 1;
  double frameRateHz = 30;
  double exposureUs = 10'000;
  double gainDb = 0;
  std::int64_t gainRaw = 0;
  TriggerSettings triggers{};
  std::int64_t chunkModeActive = 0;
  std::array<std::int64_t, kAreaChunks> chunkEnable{};
};

class AreaCore final : public CameraCore {
 public:
  AreaCore(Identity identity, const AreaModel& model, Clock& clock);

  std::size_t PayloadSize() const override;
  FramePainter& Painter() override { return painter_; }

 protected:
  void PlanFrame(Frame& frame, std::size_t shortenBy) override;
  Pace MakePace() const override;
  void OnStart() override { triggers_.Restart(); }
  void OnEdge(unsigned line, bool isRising) override { triggers_.OnEdge(line, isRising); }
  void OnReset() override { userSets_.LoadAtPowerUp(); }

 private:
  void AddImageFeatures();
  void AddAcquisitionFeatures();
  void AddExposureFeatures();
  void AddChunkFeatures();
  void AddLinkFeatures();
  void LayOut(Frame& frame, std::size_t shortenBy) const;
  double GainDb() const;
  double ResultingFrameRate() const;
  std::int64_t FramePeriodNs() const;
  std::int64_t ExposureNs() const;
  std::uint64_t FrameLimit() const;
  void Repace();

  const AreaModel model_;
  AreaSettings settings_;
  UserSets<AreaSettings> userSets_;
  Triggers triggers_;
  AreaPainter painter_;
};

}  // namespace zyn::cameras

#endif
