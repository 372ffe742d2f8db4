#ifndef ZYN_FAKES_FAKE_IMAGE_H
#define ZYN_FAKES_FAKE_IMAGE_H

#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "CallLog.h"
#include "KELGeniCam.h"

namespace fakes {

class FakeChunk : public KELGENICAM::IChunk {
 public:
  explicit FakeChunk(std::vector<unsigned char> bytes) : bytes_(std::move(bytes)) {}
  unsigned char* Data() override { return isNull ? nullptr : bytes_.data(); }
  unsigned long long Length() override { return claimedLength.value_or(bytes_.size()); }
  bool isNull = false;
  std::optional<unsigned long long> claimedLength;

 private:
  std::vector<unsigned char> bytes_;
};

/// A frame. Fails the test when used after its release, released twice, or not released although a wait handed it
/// out (FakeCamera calls HandOut).
class FakeImage : public KELGENICAM::IImage {
 public:
  FakeImage(int width, int height, int channels, int step);  ///< valid, pixels 0, 1, 2, ... modulo 251
  ~FakeImage() override;

  bool IsValid() override;
  long long FrameID() override;
  int Width() override;
  int Height() override;
  void Chunks(std::list<KELGENICAM::IChunk*>& chunks) override;
  int Channels() override;
  int Step() override;
  unsigned char* Data() override;
  void Release() override;

  void HandOut() { isOut_ = true; }
  int Releases() const { return releases_; }
  std::vector<unsigned char>& Bytes() { return bytes_; }

  // Script. `hook` runs in every call with its name, and may throw.
  std::function<void(const std::string& call)> hook;
  long long id = 1;
  bool isValid = true;
  bool throwsOnData = false;
  bool throwsOnChunks = false;
  bool throwsOnRelease = false;
  bool mayStayOut = false;  ///< the test expects that nobody releases the frame
  std::list<KELGENICAM::IChunk*> chunks;
  CallLog calls;

 private:
  void Enter(const char* name);

  int width_, height_, channels_, step_;
  std::vector<unsigned char> bytes_;
  bool isOut_ = false;
  int releases_ = 0;
};

}  // namespace fakes

#endif
