#include "DeviceLink.h"

#include <optional>
#include <utility>

#include "../producer/GenTLInfo.h"

namespace zyn::transport {

namespace {

bool MayMeanLoss(GenTL::GC_ERROR error) {
  return error == GenTL::GC_ERR_IO || error == GenTL::GC_ERR_TIMEOUT ||
         error == GenTL::GC_ERR_NOT_AVAILABLE || error == GenTL::GC_ERR_ACCESS_DENIED ||
         error == GenTL::GC_ERR_INVALID_HANDLE;
}

}  // namespace

DeviceLink::DeviceLink(ProducerPtr producer, const std::shared_ptr<void>& device)
    : producer_(std::move(producer)), device_(device), isBusyNormal_(IsBusy(AskStatus())) {}

DeviceLink::Status DeviceLink::AskStatus() const {
  Status status;
  const std::shared_ptr<void> device = device_.lock();
  if (!device || !producer_->DevGetInfo) return status;
  status.value = GetInteger([&](auto* type, void* buffer, std::size_t* size) {
    status.error = producer_->DevGetInfo(device.get(), GenTL::DEVICE_INFO_ACCESS_STATUS, type, buffer, size);
    return status.error;
  });
  return status;
}

bool DeviceLink::IsBusy(const Status& status) {
  return status.value && *status.value == GenTL::DEVICE_ACCESS_STATUS_BUSY;
}

void DeviceLink::ReportFailure(GenTL::GC_ERROR error) {
  if (IsLost() || !MayMeanLoss(error)) return;
  const Status status = AskStatus();
  const bool isGone = status.value && *status.value == GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
  // Someone else took over the control. Producers that call every open device busy are told apart by what they
  // said when it was opened.
  const bool isTaken = IsBusy(status) && !isBusyNormal_;
  const bool isUnanswered = status.error == GenTL::GC_ERR_IO || status.error == GenTL::GC_ERR_INVALID_HANDLE;
  if (isGone || isTaken || isUnanswered) MarkLost();
}

void DeviceLink::Poll() {
  ReportFailure(GenTL::GC_ERR_IO);
}

void DeviceLink::MarkLost() {
  if (lost_.exchange(true, std::memory_order_acq_rel)) return;
  MutexLock lock(mutex_);
  if (action_) std::exchange(action_, nullptr)();
}

void DeviceLink::OnLost(std::function<void()> action) {
  MutexLock lock(mutex_);
  action_ = std::move(action);
  if (action_ && IsLost()) std::exchange(action_, nullptr)();
}

}  // namespace zyn::transport
