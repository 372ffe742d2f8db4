#include "FirstChunk.h"

#include <list>

#include "KELGeniCam.h"

namespace ZYNSDK {

FirstChunk::FirstChunk(KELGENICAM::IImage& frame) {
  std::list<KELGENICAM::IChunk*> chunks;
  frame.Chunks(chunks);
  if (chunks.empty() || !chunks.front()) return;
  bytes = chunks.front()->Length();
  data = chunks.front()->Data();
}

}  // namespace ZYNSDK
