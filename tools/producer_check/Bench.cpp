#include "Bench.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>
#include <utility>

namespace zyn::producercheck {

using namespace GenTL;

namespace {

constexpr std::uint64_t kUpdateMs = 1000;
// A GigE Vision camera stays taken that long when the process that controlled it died.
constexpr std::chrono::seconds kReleaseTime{8};
constexpr std::chrono::milliseconds kRetryPause{200};

std::string IdAt(const std::function<GC_ERROR(char*, std::size_t*)>& ask) {
  const Answer answer = Get(
      [&](INFO_DATATYPE*, void* buffer, std::size_t* size) { return ask(static_cast<char*>(buffer), size); });
  return answer.Text();
}

}  // namespace

std::string Answer::Text() const {
  return {bytes.begin(), std::find(bytes.begin(), bytes.end(), '\0')};
}

std::uint64_t Answer::Number() const {
  std::uint64_t number = 0;
  std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
  return number;
}

Answer Get(const Ask& ask) {
  Answer answer;
  std::size_t size = 0;
  answer.error = ask(&answer.type, nullptr, &size);
  if (!answer.IsThere()) return answer;
  if (size > (std::size_t{64} << 20U))
    Fail("a query wants " + std::to_string(size) + " bytes for its answer");
  answer.bytes.assign(size, 0);
  answer.error = ask(&answer.type, answer.bytes.data(), &size);
  answer.bytes.resize(std::min(size, answer.bytes.size()));
  return answer;
}

Bench::Bench(std::string file, std::string device) : file_(std::move(file)), wanted_(std::move(device)) {}

Bench::~Bench() {
  try {
    if (isInitialised_) functions_->GCCloseLib();
  } catch (const MissingFunction&) {  // NOLINT(bugprone-empty-catch): what cannot be closed stays open
  }
}

Functions& Bench::F() {
  if (!functions_) functions_.emplace(file_);
  return *functions_;
}

void Bench::Unload() {
  EndLibrary();
  if (functions_) functions_->Unload();
  functions_.reset();
}

std::string Bench::LastWords() {
  std::array<char, 512> text{};
  std::size_t size = text.size() - 1;
  GC_ERROR code = GC_ERR_SUCCESS;
  const bool isKnown =
      std::none_of(F().Missing().begin(), F().Missing().end(),
                   [](const MissingName& missing) { return missing.name == "GCGetLastError"; });
  if (!isKnown || F().GCGetLastError(&code, text.data(), &size) != GC_ERR_SUCCESS) return {};
  return text.data();
}

void Bench::ExpectError(const std::string& call, GC_ERROR result, std::initializer_list<GC_ERROR> allowed) {
  if (std::find(allowed.begin(), allowed.end(), result) != allowed.end()) return;
  const auto isNewer = [this](GC_ERROR code) { return VersionOf(code) > Version(); };
  const bool couldNotKnow = std::all_of(allowed.begin(), allowed.end(), isNewer);
  if (couldNotKnow && result != GC_ERR_SUCCESS) return;
  std::string wanted;
  for (const GC_ERROR code : allowed) wanted += (wanted.empty() ? "" : " or ") + NameOf(code);
  Fail(call + " returned " + NameOf(result) + " instead of " + wanted);
}

void Bench::ExpectSuccess(const std::string& call, GC_ERROR result) {
  if (result == GC_ERR_SUCCESS) return;
  const std::string words = LastWords();
  Fail(call + " returned " + NameOf(result) + (words.empty() ? "" : " (" + words + ")"));
}

void Bench::Library() {
  if (isInitialised_) return;
  ExpectSuccess("GCInitLib", F().GCInitLib());
  isInitialised_ = true;
}

TL_HANDLE Bench::System() {
  if (system_ != nullptr) return system_;
  Library();
  TL_HANDLE handle = nullptr;
  ExpectSuccess("TLOpen", F().TLOpen(&handle));
  Expect(handle != nullptr, "TLOpen succeeded without a handle");
  system_ = handle;
  return system_;
}

bool Bench::IsWanted(IF_HANDLE interface, const std::string& deviceId) {
  const auto info = [&](DEVICE_INFO_CMD command) {
    return Get([&](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      return F().IFGetDeviceInfo(interface, deviceId.c_str(), command, type, buffer, size);
    });
  };
  if (!wanted_.empty()) return deviceId == wanted_ || info(DEVICE_INFO_SERIAL_NUMBER).Text() == wanted_;
  const Answer status = info(DEVICE_INFO_ACCESS_STATUS);
  if (!status.IsThere()) return true;
  // One that counts as busy may be free again as soon as the camera misses the process before.
  return status.Number() == DEVICE_ACCESS_STATUS_READWRITE ||
         status.Number() == DEVICE_ACCESS_STATUS_UNKNOWN || status.Number() == DEVICE_ACCESS_STATUS_BUSY;
}

std::optional<Bench::Found> Bench::FindOn(const std::string& interfaceId) {
  IF_HANDLE interface = nullptr;
  ExpectSuccess("TLOpenInterface(" + interfaceId + ")",
                F().TLOpenInterface(System(), interfaceId.c_str(), &interface));
  ExpectSuccess("IFUpdateDeviceList(" + interfaceId + ")",
                F().IFUpdateDeviceList(interface, nullptr, kUpdateMs));
  std::uint32_t count = 0;
  ExpectSuccess("IFGetNumDevices(" + interfaceId + ")", F().IFGetNumDevices(interface, &count));
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::string id =
        IdAt([&](char* text, std::size_t* size) { return F().IFGetDeviceID(interface, i, text, size); });
    if (!IsWanted(interface, id)) continue;
    interface_ = interface;
    return Found{interfaceId, id};
  }
  ExpectSuccess("IFClose(" + interfaceId + ")", F().IFClose(interface));
  return std::nullopt;
}

void Bench::FindDevice() {
  if (isSearched_) return;
  System();
  ExpectSuccess("TLUpdateInterfaceList", F().TLUpdateInterfaceList(system_, nullptr, kUpdateMs));
  std::uint32_t count = 0;
  ExpectSuccess("TLGetNumInterfaces", F().TLGetNumInterfaces(system_, &count));
  for (std::uint32_t i = 0; i < count && !found_; ++i) {
    found_ = FindOn(
        IdAt([&](char* text, std::size_t* size) { return F().TLGetInterfaceID(system_, i, text, size); }));
  }
  isSearched_ = true;
}

const std::string& Bench::InterfaceId() {
  FindDevice();
  if (found_) return found_->interfaceId;
  if (wanted_.empty()) Skip("the producer shows no camera that can be opened");
  throw NotApplicable{"the producer shows no camera " + wanted_, true};
}

const std::string& Bench::DeviceId() {
  InterfaceId();
  return found_->deviceId;
}

IF_HANDLE Bench::Interface() {
  const std::string& id = InterfaceId();
  if (interface_ != nullptr) return interface_;
  IF_HANDLE handle = nullptr;
  ExpectSuccess("TLUpdateInterfaceList", F().TLUpdateInterfaceList(System(), nullptr, kUpdateMs));
  ExpectSuccess("TLOpenInterface(" + id + ")", F().TLOpenInterface(System(), id.c_str(), &handle));
  ExpectSuccess("IFUpdateDeviceList(" + id + ")", F().IFUpdateDeviceList(handle, nullptr, kUpdateMs));
  interface_ = handle;
  return interface_;
}

DEV_HANDLE Bench::Device() {
  if (device_ != nullptr) return device_;
  Interface();
  const std::string& id = DeviceId();
  DEV_HANDLE handle = nullptr;
  const auto deadline = std::chrono::steady_clock::now() + kReleaseTime;
  GC_ERROR error = F().IFOpenDevice(interface_, id.c_str(), DEVICE_ACCESS_CONTROL, &handle);
  while (error == GC_ERR_ACCESS_DENIED && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(kRetryPause);
    error = F().IFOpenDevice(interface_, id.c_str(), DEVICE_ACCESS_CONTROL, &handle);
  }
  if (error == GC_ERR_NOT_IMPLEMENTED)
    error = F().IFOpenDevice(interface_, id.c_str(), DEVICE_ACCESS_EXCLUSIVE, &handle);
  ExpectSuccess("IFOpenDevice(" + id + ")", error);
  Expect(handle != nullptr, "IFOpenDevice succeeded without a handle");
  device_ = handle;
  return device_;
}

PORT_HANDLE Bench::Remote() {
  if (remote_ != nullptr) return remote_;
  PORT_HANDLE handle = nullptr;
  ExpectSuccess("DevGetPort", F().DevGetPort(Device(), &handle));
  Expect(handle != nullptr, "DevGetPort succeeded without a handle");
  remote_ = handle;
  return remote_;
}

const std::string& Bench::StreamId() {
  std::uint32_t count = 0;
  const GC_ERROR error = F().DevGetNumDataStreams(Device(), &count);
  if (error == GC_ERR_NOT_IMPLEMENTED || (error == GC_ERR_SUCCESS && count == 0))
    Skip("the camera has no data stream");
  ExpectSuccess("DevGetNumDataStreams", error);
  streamId_ =
      IdAt([&](char* text, std::size_t* size) { return F().DevGetDataStreamID(device_, 0, text, size); });
  return streamId_;
}

DS_HANDLE Bench::Stream() {
  if (stream_ != nullptr) return stream_;
  const std::string& id = StreamId();
  DS_HANDLE handle = nullptr;
  ExpectSuccess("DevOpenDataStream(" + id + ")", F().DevOpenDataStream(device_, id.c_str(), &handle));
  Expect(handle != nullptr, "DevOpenDataStream succeeded without a handle");
  stream_ = handle;
  return stream_;
}

void Bench::ForgetDevice() {
  ForgetStream();
  remote_ = nullptr;
  device_ = nullptr;
}

void Bench::ForgetInterface() {
  ForgetDevice();
  interface_ = nullptr;
}

void Bench::ForgetSystem() {
  ForgetInterface();
  system_ = nullptr;
}

void Bench::ForgetLibrary() {
  ForgetSystem();
  isInitialised_ = false;
}

void Bench::EndStream() {
  if (stream_ != nullptr) ExpectSuccess("DSClose", F().DSClose(stream_));
  ForgetStream();
}

void Bench::EndDevice() {
  EndStream();
  if (device_ != nullptr) ExpectSuccess("DevClose", F().DevClose(device_));
  ForgetDevice();
}

void Bench::EndInterface() {
  EndDevice();
  if (interface_ != nullptr) ExpectSuccess("IFClose", F().IFClose(interface_));
  ForgetInterface();
}

void Bench::EndSystem() {
  EndInterface();
  if (system_ != nullptr) ExpectSuccess("TLClose", F().TLClose(system_));
  ForgetSystem();
}

void Bench::EndLibrary() {
  EndSystem();
  if (isInitialised_) ExpectSuccess("GCCloseLib", F().GCCloseLib());
  isInitialised_ = false;
}

int Bench::Version() {
  if (version_) return *version_;
  constexpr int kUntold = 4;
  if (!isInitialised_) return kUntold;  // asked while the library is closed: nobody can tell now
  const Answer major = Get([&](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return F().GCGetInfo(TL_INFO_GENTL_VER_MAJOR, type, buffer, size);
  });
  const Answer minor = Get([&](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return F().GCGetInfo(TL_INFO_GENTL_VER_MINOR, type, buffer, size);
  });
  const bool isTold = major.IsThere() && minor.IsThere() && major.Number() == 1;
  version_ = isTold ? static_cast<int>(minor.Number()) : kUntold;
  return *version_;
}

}  // namespace zyn::producercheck
