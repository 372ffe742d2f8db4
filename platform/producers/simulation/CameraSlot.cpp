#include "CameraSlot.h"

#include "CameraRegisters.h"
#include "cameras/Catalog.h"
#include "cameras/FeatureAccess.h"
#include "producer/Error.h"

namespace zyn::simulation {
namespace {

using producer::Error;

constexpr std::uint64_t kNanosecondTicks = 1'000'000'000;
constexpr std::uint64_t kFirstMac = 0x025A594E0000;  // locally administered
constexpr std::uint32_t kHostsPerBlock = 250;        // addresses end with .1 to .250

producer::GevDeviceInfo NetworkOf(std::size_t index) {
  const auto number = static_cast<std::uint32_t>(index);
  producer::GevDeviceInfo network;
  network.mac = kFirstMac + number + 1;
  network.address =
      (kSubnet.address & kSubnet.mask) + ((number / kHostsPerBlock + 1) << 8U) + number % kHostsPerBlock + 1;
  network.mask = kSubnet.mask;
  network.configuration = producer::IpConfiguration::dhcp;
  return network;
}

std::unique_ptr<cameras::CameraModel> Make(const CameraSetting& setting, cameras::Clock& clock) {
  auto camera = cameras::MakeCamera(setting.model, setting.serial, clock);
  if (!camera) throw ConfigurationError("there is no model \"" + setting.model + "\"");
  return camera;
}

// Told to expect what the camera sends at first.
CardSettings CardFor(const CameraSetting& setting) {
  CardSettings card;
  const cameras::CatalogEntry* const model = cameras::FindModel(setting.model);
  if (model == nullptr) return card;
  card.width = model->columns;
  card.height = model->rows;
  return card;
}

}  // namespace

CameraSlot::CameraSlot(const CameraSetting& setting, std::size_t index)
    : setting_(setting),
      clock_(setting.pacing),
      camera_(Make(setting, clock_)),
      isLaser_(camera_->GetIdentity().isLaser),
      card_(setting.link == LinkKind::cameraLink
                ? std::make_unique<Card>(CardFor(setting), [this] { NotifyStream(); })
                : nullptr),
      isPlugged_(setting.isPlugged),
      isBusy_(setting.isBusy),
      network_(NetworkOf(index)) {
  if (!setting.userName.empty()) WriteText(*camera_, "DeviceUserID", setting.userName);
}

CameraSlot::~CameraSlot() = default;

std::optional<producer::DeviceInfo> CameraSlot::Describe() const {
  const cameras::Identity identity = camera_->GetIdentity();
  const MutexLock lock(mutex_);
  if (!isPlugged_) return std::nullopt;
  producer::DeviceInfo info;
  info.id = "Sim:" + identity.serial;
  info.vendor = identity.vendor;
  info.model = identity.model;
  info.userDefinedName = identity.userName;
  info.serialNumber = identity.serial;
  info.version = identity.version;
  info.familyName = identity.isLaser ? "Simulated laser-profile cameras" : "Simulated area cameras";
  info.manufacturerInfo = "simulated";
  info.timestampFrequency = kNanosecondTicks;
  info.accessStatus = GenTL::DEVICE_ACCESS_STATUS_READWRITE;
  if (isBusy_) info.accessStatus = GenTL::DEVICE_ACCESS_STATUS_BUSY;
  if (!IsReachable()) info.accessStatus = GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
  if (setting_.link == LinkKind::cameraLink) {
    info.tlType = GENTL_TLTYPE_CL;
    info.tlVersionMajor = 2;
    return info;
  }
  info.tlType = GENTL_TLTYPE_GEV;
  info.tlVersionMajor = 2;
  info.gev = network_;
  return info;
}

bool CameraSlot::IsReachable() const {
  if (setting_.link != LinkKind::ethernet) return true;
  return ((network_.address ^ kSubnet.address) & kSubnet.mask) == 0;
}

bool CameraSlot::IsPlugged() const {
  const MutexLock lock(mutex_);
  return isPlugged_;
}

void CameraSlot::SetPlugged(bool isPlugged) {
  const MutexLock lock(mutex_);
  if (isPlugged == isPlugged_) return;
  isPlugged_ = isPlugged;
  if (!isPlugged) return Cut("The camera " + Serial() + " was unplugged.");
  // Without power it forgot everything but what it had saved.
  const bool isReset = cameras::ExecuteCommand(*camera_, "DeviceReset") == cameras::RegisterStatus::ok;
  if (!isReset) Rest();  // a register fault hits this access too
  resets_ = camera_->ResetCount();
}

bool CameraSlot::IsBusy() const {
  const MutexLock lock(mutex_);
  return isBusy_;
}

void CameraSlot::SetBusy(bool isBusy) {
  const MutexLock lock(mutex_);
  isBusy_ = isBusy;
  if (isBusy) Cut("Another program took over the control of the camera " + Serial() + ".");
}

void CameraSlot::SetPacing(Pacing pacing) {
  clock_.SetPacing(pacing);
  NotifyStream();
}

void CameraSlot::NotifyStream() {
  const MutexLock lock(mutex_);
  if (connection_ != nullptr) connection_->Notify();
}

void CameraSlot::PulseLine(unsigned line) {
  camera_->PulseLine(line);
  if (card_) card_->Trigger(line == 0 ? CardTriggerSource::line0 : CardTriggerSource::line1);
}

void CameraSlot::ForceAddress(const producer::ForcedAddress& forced) {
  const std::uint32_t host = forced.address & ~forced.mask;
  if (forced.address == 0 || forced.mask == 0 || host == 0 || host == ~forced.mask)
    throw Error(GenTL::GC_ERR_INVALID_VALUE, "No camera can have this address with this mask.");
  const MutexLock lock(mutex_);
  if (!isPlugged_)
    throw Error(GenTL::GC_ERR_TIMEOUT, "The camera " + Serial() + " did not take the address.");
  network_.address = forced.address;
  network_.mask = forced.mask;
  network_.gateway = forced.gateway;
  network_.configuration = producer::IpConfiguration::none;
}

std::unique_ptr<Connection> CameraSlot::Connect(producer::DeviceListener& listener) {
  const MutexLock lock(mutex_);
  if (!isPlugged_) throw Error(GenTL::GC_ERR_IO, "The camera " + Serial() + " does not answer.");
  if (!IsReachable()) {
    throw Error(GenTL::GC_ERR_ACCESS_DENIED,
                "The address of the camera " + Serial() + " lies outside its adapter's subnet.");
  }
  if (isBusy_)
    throw Error(GenTL::GC_ERR_ACCESS_DENIED, "Another program controls the camera " + Serial() + ".");
  if (connection_ != nullptr)
    throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "The camera " + Serial() + " is open already.");
  auto connection = std::make_unique<Connection>(listener);
  connection_ = connection.get();
  if (card_) card_->PowerUp();
  resets_ = camera_->ResetCount();
  return connection;
}

void CameraSlot::Disconnect(Connection& connection) {
  const MutexLock lock(mutex_);
  if (connection_ != &connection) return;
  connection_ = nullptr;
  Rest();
}

// A register fault keeps it running; the next one to open the camera stops it.
void CameraSlot::Rest() {
  cameras::StopAcquisition(*camera_);
}

void CameraSlot::CutWhenReset() {
  const std::uint64_t resets = camera_->ResetCount();
  const MutexLock lock(mutex_);
  if (resets == resets_) return;
  resets_ = resets;
  Cut("The camera " + Serial() + " was reset.");
}

// The stream's thread sleeps in the camera or on the connection.
void CameraSlot::Cut(const std::string& text) {
  if (connection_ == nullptr) return;
  connection_->Cut(text);
  camera_->CancelWait();
}

}  // namespace zyn::simulation
