/// What libaravis knows about a received frame, in the words of the producer kit.
#ifndef ZYN_ARAVIS_FRAME_TRANSLATION_H
#define ZYN_ARAVIS_FRAME_TRANSLATION_H

#include <arv.h>

#include <cstddef>

#include "producer/Frame.h"

namespace zyn::aravis {

/// Everything but the frame's number. `capacity`: bytes of the buffer's memory. `payloadSize`: bytes the camera
/// said it would send, 0 when unknown. `sawOverflow`: libaravis has cut data off since the frame before; it calls
/// such frames complete.
producer::FrameInfo TranslateFrame(ArvBuffer* buffer, std::size_t capacity, std::size_t payloadSize,
                                   bool sawOverflow);

/// A frame whose leader got lost: nothing is known but that it should have been there.
producer::FrameInfo DescribeUnknownFrame(std::size_t payloadSize);

}  // namespace zyn::aravis

#endif
