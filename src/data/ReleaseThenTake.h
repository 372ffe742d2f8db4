#ifndef ZYN_DATA_RELEASE_THEN_TAKE_H
#define ZYN_DATA_RELEASE_THEN_TAKE_H

namespace ZYNSDK {

/// Assigns one handle's counted object to another: `held` gives up its reference and takes one of `other`.
/// Design decision: it releases before it takes, also from itself, so the last reference assigned to itself
/// loses its object. Pinned by AssigningTheLastReferenceToItselfDropsTheImage, ...TheColors and
/// ...TheRangeImage.
template <class T>
void ReleaseThenTake(T*& held, T* const& other) {
  if (&held == &other) {
    if (held && held->ReleaseIfLast()) held = nullptr;
    return;
  }
  if (held) held->Release();
  held = other;
  if (held) held->AddRef();
}

}  // namespace ZYNSDK

#endif
