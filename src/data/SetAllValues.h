#ifndef ZYN_DATA_SET_ALL_VALUES_H
#define ZYN_DATA_SET_ALL_VALUES_H

#include "ZynCamera/ZynRangeImage.h"

namespace ZYNSDK {

/// SetSize, then SetValue of all rows, but writes every value once: `data` holds the rows packed, outside the
/// range image. False, and nothing changed, when `data` is null or SetSize would do nothing. Raises what SetSize does.
bool SetAllValues(ZynRangeImage& range, const void* data, int width, int height, ZynImageType type,
                  double minValue, double maxValue);

}  // namespace ZYNSDK

#endif
