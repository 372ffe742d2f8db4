#ifndef ZYN_DATA_APPEND_FOR_OVERWRITE_H
#define ZYN_DATA_APPEND_FOR_OVERWRITE_H

#include "ZynCamera/Zyn3DIntArray.h"

namespace ZYNSDK {

/// Lengthens the array by `count` values and returns the first of them, so that a decoder writes a whole
/// run straight into it. They hold whatever the memory holds, until the caller has written them all. Raises
/// std::length_error for a negative count or more than 2147483647 values, std::bad_alloc without memory;
/// the array is then as before.
int* AppendForOverwrite(Zyn3DIntArray& array, int count);

}  // namespace ZYNSDK

#endif
