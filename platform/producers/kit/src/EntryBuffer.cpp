// C functions: what a consumer asks about a buffer.
#include <algorithm>

#include "Answer.h"
#include "Guard.h"
#include "StreamModule.h"
#include "producer/Error.h"

using namespace zyn::producer;

namespace GenTL {
namespace {

// Failures of single entries go into the entry, not to GCGetLastError.
template <class Ask>
GC_ERROR ResultOf(const Ask& ask) {
  try {
    ask();
    return GC_ERR_SUCCESS;
  } catch (const Error& error) {
    return error.Code();
  } catch (const std::bad_alloc&) {
    return GC_ERR_OUT_OF_MEMORY;
  } catch (...) {
    return GC_ERR_ERROR;
  }
}

void RequireEntries(const void* entries, size_t count) {
  RequirePointer(entries, "pInfoStacked");
  if (count == 0) throw Error(GC_ERR_INVALID_PARAMETER, "iNumInfos is 0.");
}

// Entries are packed, so each is worked on as a copy: members of the caller's array may be unaligned.
template <class Entry, class Ask>
void AskEach(Entry* entries, size_t count, const Ask& ask) {
  for (size_t i = 0; i < count; ++i) {
    Entry entry = entries[i];
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    size_t size = entry.iSize;
    entry.iResult = ResultOf([&] { ask(entry, Answer(&type, entry.pBuffer, &size)); });
    entry.iType = type;
    if (entry.iResult == GC_ERR_SUCCESS) entry.iSize = size;
    entries[i] = entry;
  }
}

}  // namespace

extern "C" {

GC_ERROR GC_CALLTYPE DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd,
                                     INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    stream->Queues().Info(*buffer, iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                          SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    RequirePointer(piNumChunks, "piNumChunks");
    const std::vector<Chunk> chunks = stream->Queues().Chunks(*buffer);
    if (pChunkData != nullptr) {
      if (*piNumChunks < chunks.size())
        throw Error(GC_ERR_BUFFER_TOO_SMALL,
                    "The buffer holds " + std::to_string(chunks.size()) + " chunks.");
      const auto packed = [](const Chunk& chunk) {
        return SINGLE_CHUNK_DATA{chunk.id, static_cast<ptrdiff_t>(chunk.offset), chunk.length};
      };
      std::transform(chunks.begin(), chunks.end(), pChunkData, packed);
    }
    *piNumChunks = chunks.size();
  });
}

GC_ERROR GC_CALLTYPE DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumParts) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    RequirePointer(piNumParts, "piNumParts");
    *piNumParts = static_cast<uint32_t>(stream->Queues().Parts(*buffer));
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex,
                                         BUFFER_PART_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                                         size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    stream->Queues().PartInfo(*buffer, iPartIndex, iInfoCmd, Answer(piType, pBuffer, piSize));
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                            DS_BUFFER_INFO_STACKED* pInfoStacked, size_t iNumInfos) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    RequireEntries(pInfoStacked, iNumInfos);
    AskEach(pInfoStacked, iNumInfos, [&](const DS_BUFFER_INFO_STACKED& entry, const Answer& answer) {
      stream->Queues().Info(*buffer, entry.iInfoCmd, answer);
    });
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferPartInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                                DS_BUFFER_PART_INFO_STACKED* pInfoStacked, size_t iNumInfos) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    RequireEntries(pInfoStacked, iNumInfos);
    stream->Queues().Parts(*buffer);  // throws when the payload has none
    AskEach(pInfoStacked, iNumInfos, [&](const DS_BUFFER_PART_INFO_STACKED& entry, const Answer& answer) {
      stream->Queues().PartInfo(*buffer, entry.iPartIndex, entry.iInfoCmd, answer);
    });
  });
}

GC_ERROR GC_CALLTYPE DSGetNumBufferSegments(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                            uint32_t* piNumSegments) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    stream->BufferOf(hBuffer);
    RequirePointer(piNumSegments, "piNumSegments");
    *piNumSegments = 1;
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferSegmentInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                            uint32_t iSegmentIndex, SEGMENT_INFO_CMD iInfoCmd,
                                            INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
  return Guarded(__func__, [&] {
    const Pin<StreamModule> stream(hDataStream);
    const auto buffer = stream->BufferOf(hBuffer);
    const Answer answer(piType, pBuffer, piSize);
    if (iSegmentIndex > 0) throw Error(GC_ERR_INVALID_INDEX, "A buffer has one segment here.");
    stream->Queues().SegmentInfo(*buffer, iInfoCmd, answer);
  });
}

}  // extern "C"
}  // namespace GenTL
