/// A frame in the application's hands.
#ifndef ZYN_TRANSPORT_IMAGE_H
#define ZYN_TRANSPORT_IMAGE_H

#include <functional>
#include <list>
#include <memory>
#include <vector>

#include <KELGeniCam.h>

#include "FrameLayout.h"
#include "FramePool.h"

namespace zyn::transport {

/// Where a frame's buffer goes back to while the stream runs.
class FrameHome {
 public:
  virtual ~FrameHome() = default;
  /// The application released the frame of that slot. Called once per frame.
  virtual void TakeBack(std::size_t slot) = 0;
};

class Image final : public KELGENICAM::IImage {
 public:
  Image(std::shared_ptr<FrameMemory> memory, FrameLayout layout, std::weak_ptr<FrameHome> home,
        std::size_t slot);

  bool IsValid() override { return layout_.isValid; }
  long long FrameID() override { return layout_.frameId; }
  int Width() override { return layout_.width; }
  int Height() override { return layout_.height; }
  void Chunks(std::list<KELGENICAM::IChunk*>& chunks) override;
  int Channels() override { return layout_.channels; }
  int Step() override { return layout_.step; }
  unsigned char* Data() override {
    return layout_.hasImage ? memory_->Data() + layout_.imageOffset : nullptr;
  }
  void Release() override;

 private:
  class Chunk final : public KELGENICAM::IChunk {
   public:
    Chunk(unsigned char* data, std::size_t length) : data_(data), length_(length) {}
    unsigned char* Data() override { return data_; }
    unsigned long long Length() override { return length_; }

   private:
    unsigned char* data_;
    std::size_t length_;
  };

  ~Image() override = default;

  const std::shared_ptr<FrameMemory> memory_;
  const FrameLayout layout_;
  const std::weak_ptr<FrameHome> home_;
  const std::size_t slot_;
  std::vector<Chunk> chunks_;
};

}  // namespace zyn::transport

#endif
