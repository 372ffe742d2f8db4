#include "PortAdapter.h"

#include <string>
#include <utility>

#include <GenICam.h>

#include "../Result.h"

namespace zyn::transport {

PortAdapter::PortAdapter(ProducerPtr producer, std::shared_ptr<void> module, GenTL::PORT_HANDLE port,
                         std::shared_ptr<DeviceLink> link)
    : producer_(std::move(producer)), port_(port), link_(std::move(link)), module_(std::move(module)) {}

std::shared_ptr<void> PortAdapter::Module() const {
  MutexLock lock(mutex_);
  return module_;
}

void PortAdapter::Close() {
  std::shared_ptr<void> module;  // let go after the lock: the last owner closes the module
  MutexLock lock(mutex_);
  module.swap(module_);
  lock.Unlock();
}

GenApi_3_4::EAccessMode PortAdapter::GetAccessMode() const {
  // A node map caches access modes, so a lost device still counts as accessible here and fails on transfer.
  return GenApi_3_4::RW;
}

std::shared_ptr<void> PortAdapter::ModuleOrThrow() const {
  if (link_ && link_->IsLost()) throw ACCESS_EXCEPTION("The device was lost");
  std::shared_ptr<void> module = Module();
  if (!module) throw ACCESS_EXCEPTION("The camera is closed");
  return module;
}

void PortAdapter::Read(void* buffer, int64_t address, int64_t length) {
  const std::shared_ptr<void> module = ModuleOrThrow();
  std::size_t size = static_cast<std::size_t>(length);
  const GenTL::GC_ERROR error =
      producer_->GCReadPort(port_, static_cast<std::uint64_t>(address), buffer, &size);
  if (error != GenTL::GC_ERR_SUCCESS) Fail("read", address, length, error);
  // Some producers report success for half a transfer; the rest of the buffer would be garbage.
  if (size < static_cast<std::size_t>(length)) Fail("read", address, length, GenTL::GC_ERR_IO);
}

void PortAdapter::Write(const void* buffer, int64_t address, int64_t length) {
  const std::shared_ptr<void> module = ModuleOrThrow();
  std::size_t size = static_cast<std::size_t>(length);
  const GenTL::GC_ERROR error =
      producer_->GCWritePort(port_, static_cast<std::uint64_t>(address), buffer, &size);
  if (error != GenTL::GC_ERR_SUCCESS) Fail("write", address, length, error);
  if (size < static_cast<std::size_t>(length)) Fail("write", address, length, GenTL::GC_ERR_IO);
}

void PortAdapter::Fail(const char* action, int64_t address, int64_t length, GenTL::GC_ERROR error) const {
  const std::string detail = producer_->LastError();  // before any other call on this thread
  if (link_) link_->ReportFailure(error);
  const bool lost = link_ && link_->IsLost();
  std::string text = "Cannot " + std::string(action) + " " + std::to_string(length) + " bytes at address " +
                     std::to_string(address) + ": " + ErrorName(error);
  if (!detail.empty()) text += " (" + detail + ")";
  if (lost) text += "; the device was lost";
  if (lost || error == GenTL::GC_ERR_ACCESS_DENIED) throw ACCESS_EXCEPTION("%s", text.c_str());
  if (error == GenTL::GC_ERR_TIMEOUT) throw TIMEOUT_EXCEPTION("%s", text.c_str());
  if (error == GenTL::GC_ERR_INVALID_VALUE) throw OUT_OF_RANGE_EXCEPTION("%s", text.c_str());
  throw RUNTIME_EXCEPTION("%s", text.c_str());
}

}  // namespace zyn::transport
