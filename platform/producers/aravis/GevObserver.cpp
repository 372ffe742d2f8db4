#include "GevObserver.h"

#include "GevRegisters.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::Error;

constexpr gige::RegisterClient::Options kCommands{std::chrono::milliseconds{200}, 3};

[[noreturn]] void Throw(gige::Result result, const std::string& name) {
  switch (result) {
    case gige::Result::noAnswer:
      throw Error(GC_ERR_TIMEOUT, name + " does not answer.");
    case gige::Result::accessDenied:
      throw Error(GC_ERR_ACCESS_DENIED, name + " belongs to another application.");
    case gige::Result::invalidAddress:
      throw Error(GC_ERR_INVALID_ADDRESS, name + " has no such register.");
    case gige::Result::invalidParameter:
      throw Error(GC_ERR_INVALID_VALUE, name + " refuses this access.");
    default:
      throw Error(GC_ERR_IO, name + " cannot be read.");
  }
}

}  // namespace

GevObserver::GevObserver(const producer::DeviceInfo& info, const GevRoute& route)
    : name_(info.vendor + " " + info.model + " (" + info.id + ")"),
      client_(gige::RegisterClient::Connect(route.local, route.device, kCommands)) {
  if (!client_) throw Error(GC_ERR_IO, name_ + " cannot be reached.");
  traits_ = ReadGevTraits(*this, info.id, 0);
}

void GevObserver::Read(std::uint64_t address, void* data, std::size_t size) {
  ReadBytes(address, static_cast<std::uint8_t*>(data), size,
            [this](std::uint64_t at, std::uint8_t* words, std::size_t bytes) {
              const gige::Result result = client_->ReadMemory(static_cast<std::uint32_t>(at), {words, bytes});
              if (result != gige::Result::ok) Throw(result, name_);
            });
}

void GevObserver::Write(std::uint64_t, const void*, std::size_t) {
  throw Error(GC_ERR_ACCESS_DENIED, name_ + " was opened for reading only.");
}

std::unique_ptr<producer::Stream> GevObserver::OpenStream(std::size_t, producer::StreamSink&) {
  throw Error(GC_ERR_ACCESS_DENIED, name_ + " was opened for reading only: it has no stream for us.");
}

producer::LinkSettings GevObserver::Link() const {
  const std::chrono::duration<double, std::micro> timeout = kCommands.timeout;
  return {timeout.count(), kCommands.attempts};
}

}  // namespace zyn::aravis
