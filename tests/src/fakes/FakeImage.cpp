#include "FakeImage.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace fakes {

FakeImage::FakeImage(int width, int height, int channels, int step)
    : width_(width), height_(height), channels_(channels), step_(step) {
  const long long bytes = static_cast<long long>(step) * height;
  for (long long i = 0; i < bytes; ++i) bytes_.push_back(static_cast<unsigned char>(i % 251));
}

FakeImage::~FakeImage() {
  if (isOut_ && releases_ == 0 && !mayStayOut) ADD_FAILURE() << "frame not released";
}

void FakeImage::Enter(const char* name) {
  if (releases_ > 0) ADD_FAILURE() << name << " on a released frame";
  calls.Add(name);
  if (hook) hook(name);
}

bool FakeImage::IsValid() {
  Enter("IsValid");
  return isValid;
}

long long FakeImage::FrameID() {
  Enter("FrameID");
  return id;
}

int FakeImage::Width() {
  Enter("Width");
  return width_;
}

int FakeImage::Height() {
  Enter("Height");
  return height_;
}

void FakeImage::Chunks(std::list<KELGENICAM::IChunk*>& out) {
  Enter("Chunks");
  if (throwsOnChunks) throw std::runtime_error("no chunks");
  out = chunks;
}

int FakeImage::Channels() {
  Enter("Channels");
  return channels_;
}

int FakeImage::Step() {
  Enter("Step");
  return step_;
}

unsigned char* FakeImage::Data() {
  Enter("Data");
  if (throwsOnData) throw std::runtime_error("no pixels");
  return bytes_.empty() ? nullptr : bytes_.data();
}

void FakeImage::Release() {
  if (++releases_ > 1)
    ADD_FAILURE() << "frame released twice";  // counted first: the log may run out of memory
  calls.Add("Release");
  if (hook) hook("Release");
  if (throwsOnRelease) throw std::runtime_error("release failed");
}

}  // namespace fakes
