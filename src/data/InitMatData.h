#ifndef ZYN_DATA_INIT_MAT_DATA_H
#define ZYN_DATA_INIT_MAT_DATA_H

#include "RecycledVector.h"

namespace ZYNSDK {

/// Fills the whole buffer with the bytes 0x0D, 0xF0, 0xAD, 0xBA repeated, which make points that nobody wrote
/// recognisable. A last part shorter than four bytes gets the first of them.
void InitMatData(RecycledVector<unsigned char>& buffer);

}  // namespace ZYNSDK

#endif
