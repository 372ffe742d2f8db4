/// What libaravis knows about a received frame, in the words of the producer kit.
#ifndef ZYN_ARAVIS_FRAME_TRANSLATION_H
#define ZYN_ARAVIS_FRAME_TRANSLATION_H

#include <arv.h>

#include <cstddef>

#include "producer/Frame.h"

namespace zyn::aravis {

/// What is known about a frame beside what libaravis tells.
struct FrameCircumstances {
  std::size_t capacity = 0;     ///< bytes of the buffer's memory
  std::size_t payloadSize = 0;  ///< bytes the camera said it would send, 0 when unknown
  bool sawOverflow =
      false;  ///< libaravis has cut data off since the frame before; it calls such frames complete
  producer::ChunkTrailers chunkTrailers =
      producer::ChunkTrailers::bigEndian;  ///< how this camera writes them
};

/// Everything but the frame's number.
producer::FrameInfo TranslateFrame(ArvBuffer* buffer, const FrameCircumstances& circumstances);

/// A frame whose leader got lost: nothing is known but that it should have been there.
producer::FrameInfo DescribeUnknownFrame(std::size_t payloadSize);

}  // namespace zyn::aravis

#endif
