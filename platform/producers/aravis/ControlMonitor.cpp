#include "ControlMonitor.h"

namespace zyn::aravis {
namespace {

using std::chrono::milliseconds;

// Silence is noticed after at most one period and kMostSilences unanswered questions: 2.5 seconds.
constexpr milliseconds kPeriod{500};
constexpr milliseconds kTimeout{500};
constexpr int kMostSilences = 4;
constexpr milliseconds kPauseWhenSilent{20};
// A computer that says at once that nobody listens may be a camera in its boot: it gets the time of a lost answer.
constexpr milliseconds kPauseWhenRefused{400};

}  // namespace

gige::RegisterClient::Options ControlMonitor::Options() {
  return {kTimeout, 1};
}

ControlMonitor::ControlMonitor(std::unique_ptr<gige::RegisterClient> client, bool isExclusive,
                               LossHandler onLost)
    : client_(std::move(client)),
      isExclusive_(isExclusive),
      onLost_(std::move(onLost)),
      thread_([this] { Run(); }) {}

ControlMonitor::~ControlMonitor() {
  {
    const MutexLock lock(mutex_);
    isEnding_ = true;
    changed_.notify_all();
  }
  thread_.join();
}

void ControlMonitor::Run() {
  RememberOwner();
  int silences = 0;
  milliseconds pause = kPeriod;
  while (Pause(pause)) {
    const Answer answer = Ask();
    if (answer == Answer::taken) {
      onLost_("the camera is controlled by another application, or gave up our control");
      return;
    }
    silences = answer == Answer::ours ? 0 : silences + 1;
    if (silences == kMostSilences) {
      onLost_("the camera does not answer any more");
      return;
    }
    pause = answer == Answer::ours     ? kPeriod
            : answer == Answer::silent ? kPauseWhenSilent
                                       : kPauseWhenRefused;
  }
}

// False when the monitor ends.
bool ControlMonitor::Pause(milliseconds duration) {
  const auto until = std::chrono::steady_clock::now() + duration;
  MutexLock lock(mutex_);
  while (!isEnding_ && lock.WaitUntil(changed_, until)) {
  }
  return !isEnding_;
}

ControlMonitor::Answer ControlMonitor::Ask() {
  std::uint32_t privilege = 0;
  switch (client_->ReadRegister(gige::bootstrap::kControlPrivilege, privilege)) {
    case gige::Result::ok:
      break;
    case gige::Result::noAnswer:
      return Answer::silent;
    case gige::Result::nobodyListens:
    case gige::Result::systemError:
      return Answer::refused;
    case gige::Result::accessDenied:
      return isExclusive_ ? Answer::ours : Answer::taken;
    default:
      return Answer::ours;  // an error answer is an answer
  }
  if ((privilege & (gige::kControlAccess | gige::kExclusiveAccess)) == 0) return Answer::taken;
  Owner owner;
  if (knowsOwner_ && ReadOwner(owner) && owner != owner_) return Answer::taken;
  return Answer::ours;
}

// Cameras that tell who controls them let us notice when it is somebody else.
void ControlMonitor::RememberOwner() {
  std::uint32_t capability = 0;
  const bool canTell = client_->ReadRegister(gige::bootstrap::kCapability, capability) == gige::Result::ok &&
                       (capability & gige::kHasPrimaryApplication) != 0;
  knowsOwner_ = canTell && ReadOwner(owner_);
}

bool ControlMonitor::ReadOwner(Owner& owner) {
  return client_->ReadRegister(gige::bootstrap::kPrimaryIp, owner.ip) == gige::Result::ok &&
         client_->ReadRegister(gige::bootstrap::kPrimaryPort, owner.port) == gige::Result::ok;
}

}  // namespace zyn::aravis
