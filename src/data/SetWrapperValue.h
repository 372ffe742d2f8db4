#ifndef ZYN_DATA_SET_WRAPPER_VALUE_H
#define ZYN_DATA_SET_WRAPPER_VALUE_H

namespace ZYNSDK {

/// Makes a public handle refer to `internal`: the one way the SDK fills handles, so that their classes need
/// no setter that an application could call.
///
/// `handle`: a handle whose only member is the pointer; null does nothing. `hasVirtualTable`: true for
/// ZynCamera, Zyn3DCamera and ZynCameraAttribute, where the pointer lies behind the virtual-table pointer; false
/// for the others, where it is the first word.
void SetWrapperValue(void* handle, void* internal, bool hasVirtualTable) noexcept;

}  // namespace ZYNSDK

#endif
