/// What a simulated camera tells about a frame, in the kit's words.
#ifndef ZYN_SIMULATION_FRAME_TRANSLATION_H
#define ZYN_SIMULATION_FRAME_TRANSLATION_H

#include "cameras/Frame.h"
#include "producer/Frame.h"

namespace zyn::simulation {

/// marksChunkPayload: payloads with chunks are PAYLOAD_TYPE_CHUNK_DATA, as before GenTL 1.5; otherwise they are
/// images, or PAYLOAD_TYPE_CHUNK_ONLY without one.
producer::FrameInfo Translate(const cameras::Frame& frame, bool marksChunkPayload);

}  // namespace zyn::simulation

#endif
