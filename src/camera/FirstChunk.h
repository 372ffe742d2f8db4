#ifndef ZYN_CAMERA_FIRST_CHUNK_H
#define ZYN_CAMERA_FIRST_CHUNK_H

namespace KELGENICAM {
class IImage;
}

namespace ZYNSDK {

/// The first piece of chunk data of a frame, which owns it. Null data when there is none, or none with data.
struct FirstChunk {
  explicit FirstChunk(KELGENICAM::IImage& frame);
  const unsigned char* data = nullptr;
  unsigned long long bytes = 0;
};

}  // namespace ZYNSDK

#endif
