#ifndef ZYN_DEVICE_BORROW_H
#define ZYN_DEVICE_BORROW_H

#include "GiveBack.h"
#include "KELGeniCam.h"
#include "PhysicCamera.h"

namespace ZYNSDK {

/// Keeps the transport camera alive for one scope. Empty when the device is closed.
///
/// Holds a count on the record that was current at construction, never on a later one: Close on another
/// thread detaches that record but does not destroy it under us. Giving back the last count releases the
/// transport camera, which may throw; that is let out, unless another exception is already on its way.
class Borrow {
 public:
  explicit Borrow(PhysicCamera& owner) : owner_(owner), record_(owner.Ref()) {}
  Borrow(const Borrow&) = delete;
  Borrow& operator=(const Borrow&) = delete;
  ~Borrow() noexcept(false) {
    giveBack_([this] { owner_.UnRef(record_); });
  }

  explicit operator bool() const { return record_ != nullptr; }
  KELGENICAM::ICamera* operator->() const { return record_->camera; }
  KELGENICAM::ICamera* Get() const { return record_->camera; }

 private:
  PhysicCamera& owner_;
  RefCamera* record_;
  GiveBack giveBack_;
};

}  // namespace ZYNSDK

#endif
