#include "cameras/laser/LaserPainter.h"

#include <algorithm>
#include <cstring>

#include "cameras/ChunkIds.h"
#include "cameras/ChunkLayout.h"
#include "cameras/laser/ProfileRecord.h"
#include "cameras/laser/Scene.h"
#include "cameras/registers/BigEndian.h"

namespace zyn::cameras {

void LaserPainter::Paint(std::span<std::uint8_t> buffer, const Frame& frame) {
  if (frame.hasImage) PaintSensor(buffer.data(), frame);
  for (std::size_t i = 0; i < frame.chunkCount; ++i) {
    if (frame.chunks[i].id != kProfileChunk) continue;
    PrepareTable();
    PaintRecords(buffer.data() + frame.chunks[i].offset, frame.chunks[i].length);
  }
  if (auto* at = ChunkData(buffer, frame, kFrameIdChunk)) StoreBig(at, plan.identifier, 8);
  if (auto* at = ChunkData(buffer, frame, kEncoderChunk)) {
    StoreBig(at, static_cast<std::uint64_t>(plan.firstProfile), 8);
  }
}

void LaserPainter::PrepareTable() {
  const bool isCurrent =
      tableIsCalibrated_ == plan.isCalibrated && tableWidth_ == plan.width && tableOffset_ == plan.offsetX;
  if (isCurrent) return;
  tableIsCalibrated_ = plan.isCalibrated;
  tableWidth_ = plan.width;
  tableOffset_ = plan.offsetX;
  const auto rows = static_cast<std::size_t>(scene::kPeriod);
  isComputed_.assign(rows, false);
  table_.resize(rows * plan.width * kRecordBytes);
}

void LaserPainter::StoreRecord(std::uint8_t* at, std::int64_t profile, std::int64_t column) const {
  if (tableIsCalibrated_) {
    StoreCalibrated(at, scene::SceneHeight(profile, column), scene::SceneIntensity(profile, column));
  } else {
    StoreUncalibrated(at, scene::SceneSensorRow(profile, column),
                      scene::SceneSensorIntensity(profile, column));
  }
}

const std::uint8_t* LaserPainter::Profile(std::int64_t row) {
  const auto index = static_cast<std::size_t>(row);
  std::uint8_t* const profile = table_.data() + index * tableWidth_ * kRecordBytes;
  if (isComputed_[index]) return profile;
  for (std::uint32_t i = 0; i < tableWidth_; ++i)
    StoreRecord(profile + i * kRecordBytes, row, tableOffset_ + i);
  isComputed_[index] = true;
  return profile;
}

void LaserPainter::PaintRecords(std::uint8_t* at, std::size_t length) {
  const std::size_t profileBytes = tableWidth_ * kRecordBytes;
  for (std::int64_t profile = plan.firstProfile; length > 0; ++profile) {
    const std::size_t bytes = std::min(profileBytes, length);
    std::memcpy(at, Profile(profile % scene::kPeriod), bytes);
    PaintRuler(at, profile, bytes / kRecordBytes);
    at += bytes;
    length -= bytes;
  }
}

// The ruler does not repeat with the scene.
void LaserPainter::PaintRuler(std::uint8_t* at, std::int64_t profile, std::size_t points) const {
  for (std::size_t i = 0; i < points && tableOffset_ + i < scene::kRulerPoints; ++i) {
    StoreRecord(at + i * kRecordBytes, profile, static_cast<std::int64_t>(tableOffset_ + i));
  }
}

void LaserPainter::PaintSensor(std::uint8_t* image, const Frame& frame) const {
  // Pixels away from the line are all alike.
  std::memset(image, scene::kSensorBackground, frame.imageSize);
  const auto height = static_cast<std::int64_t>(frame.height);
  for (std::uint32_t x = 0; x < frame.width; ++x) {
    const auto column = static_cast<std::int64_t>(frame.offsetX) + x;
    const int line = scene::SceneSensorRow(plan.firstProfile, column);
    for (int row = line - scene::kSensorLineReach; row <= line + scene::kSensorLineReach; ++row) {
      const std::int64_t y = static_cast<std::int64_t>(row) - frame.offsetY;
      if (y < 0 || y >= height) continue;
      image[static_cast<std::size_t>(y) * frame.width + x] =
          static_cast<std::uint8_t>(scene::SceneSensorPixel(plan.firstProfile, column, row));
    }
  }
}

}  // namespace zyn::cameras
