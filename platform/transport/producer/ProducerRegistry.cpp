#include "ProducerRegistry.h"

#include <chrono>
#include <thread>
#include <utility>

#include "Background.h"

namespace zyn::transport {

namespace {

constexpr std::chrono::seconds kStartLimit{10};
constexpr std::chrono::seconds kCloseLimit{5};  // for all producers together

// Lets go of the producers, each on a thread of its own: one that hangs while it closes is given up, and goes on
// closing in the background.
void CloseAll(std::vector<std::shared_ptr<System>> systems) {
  std::vector<Background> closings;
  closings.reserve(systems.size());
  for (std::shared_ptr<System>& system : systems) {
    closings.push_back(Background::Run([last = std::move(system)]() mutable { last = nullptr; }));
  }
  const auto deadline = std::chrono::steady_clock::now() + kCloseLimit;
  for (const Background& closing : closings) closing.WaitUntil(deadline);
}

// What one producer's start leads to; shared with the thread that starts it, which may come back late.
struct StartTask {
  Mutex mutex;
  std::condition_variable finished;
  bool isDone ZYN_GUARDED_BY(mutex) = false;
  std::shared_ptr<System> system ZYN_GUARDED_BY(mutex);
  std::string reason ZYN_GUARDED_BY(mutex);
};

}  // namespace

ProducerRegistry& ProducerRegistry::Instance() {
  static auto* const registry = new ProducerRegistry;  // never destroyed: cameras may outlive main
  return *registry;
}

int ProducerRegistry::Init() {
  MutexLock lock(mutex_);
  while (isLoading_) lock.Wait(loaded_);
  if (++users_ > 1) return KELGENICAM::RESULT_OK;
  isLoading_ = true;
  lock.Unlock();
  Loaded loaded;
  try {
    loaded = LoadAll();
  } catch (...) {
    lock.Lock();
    isLoading_ = false;
    --users_;
    loaded_.notify_all();
    throw;
  }
  lock.Lock();
  current_ = std::move(loaded);
  isLoading_ = false;
  loaded_.notify_all();
  return KELGENICAM::RESULT_OK;
}

int ProducerRegistry::UnInit() {
  std::vector<std::shared_ptr<System>> closing;
  MutexLock lock(mutex_);
  while (isLoading_) lock.Wait(loaded_);
  if (users_ == 0) return KELGENICAM::RESULT_NOT_INITIALIZED;
  if (--users_ == 0) closing.swap(current_.systems);
  lock.Unlock();
  CloseAll(std::move(closing));
  return KELGENICAM::RESULT_OK;
}

bool ProducerRegistry::IsInitialized() {
  MutexLock lock(mutex_);
  while (isLoading_) lock.Wait(loaded_);
  return users_ > 0;
}

std::vector<std::shared_ptr<System>> ProducerRegistry::Systems() {
  MutexLock lock(mutex_);
  return current_.systems;
}

std::shared_ptr<System> ProducerRegistry::Find(const std::string& path) {
  for (const std::shared_ptr<System>& system : Systems()) {
    if (system->Path() == path) return system;
  }
  return nullptr;
}

std::list<KELGENICAM::LoadReportEntry> ProducerRegistry::Report() {
  MutexLock lock(mutex_);
  return current_.report;
}

ProducerRegistry::Slot& ProducerRegistry::SlotOf(const std::string& canonical) {
  MutexLock lock(mutex_);
  Slot*& slot = slots_[canonical];
  if (!slot) slot = new Slot;
  return *slot;
}

std::shared_ptr<System> ProducerRegistry::OpenSlot(Slot& slot, const std::string& canonical,
                                                   std::string& reason) {
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  MutexLock lock(slot.mutex);
  // A camera that is still open may have kept the producer in use since the last UnInit.
  if (std::shared_ptr<System> running = slot.system.lock()) return running;
  while (slot.isInUse) {
    if (!lock.WaitUntil(slot.closed, deadline) && slot.isInUse) {
      reason = "its former use has not ended yet";
      return nullptr;
    }
  }
  slot.isInUse = true;
  lock.Unlock();
  std::shared_ptr<System> system = StartProducer(slot, canonical, reason);
  lock.Lock();
  slot.system = system;
  return system;
}

std::shared_ptr<System> ProducerRegistry::StartProducer(Slot& slot, const std::string& canonical,
                                                        std::string& reason) {
  // Ends the use when the last owner of the system's handle, or a failing start, lets go of it.
  std::shared_ptr<void> use(&slot, [](void* used) {
    auto* ended = static_cast<Slot*>(used);
    MutexLock lock(ended->mutex);
    ended->isInUse = false;
    ended->closed.notify_all();
  });
  MutexLock lock(slot.mutex);
  ProducerPtr library = slot.library;
  lock.Unlock();
  if (!library) library = ProducerLibrary::Load(canonical, reason);
  if (!library) return nullptr;
  lock.Lock();
  slot.library = library;
  lock.Unlock();
  return System::Open(library, std::move(use), reason);
}

ProducerRegistry::Loaded ProducerRegistry::LoadAll() {
  const std::vector<SearchEntry> entries = FindProducerFiles(SearchPlaces());
  std::vector<std::shared_ptr<StartTask>> tasks;
  for (const SearchEntry& entry : entries) {
    auto task = std::make_shared<StartTask>();
    tasks.push_back(task);
    if (entry.canonical.empty()) continue;
    std::thread([task, &slot = SlotOf(entry.canonical), path = entry.canonical] {
      std::string reason;
      std::shared_ptr<System> system;
      try {
        system = OpenSlot(slot, path, reason);
      } catch (...) {
        reason = "out of memory";
      }
      MutexLock lock(task->mutex);
      task->isDone = true;
      task->system = std::move(system);
      task->reason = std::move(reason);
      task->finished.notify_all();
    }).detach();
  }
  const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
  Loaded loaded;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].canonical.empty()) {
      loaded.report.push_back({entries[i].path, false, entries[i].reason});
      continue;
    }
    StartTask& task = *tasks[i];
    MutexLock lock(task.mutex);
    while (!task.isDone && lock.WaitUntil(task.finished, deadline)) {
    }
    if (!task.isDone) {
      loaded.report.push_back({entries[i].path, false, "does not answer while it starts"});
    } else if (!task.system) {
      loaded.report.push_back({entries[i].path, false, task.reason});
    } else {
      loaded.report.push_back({entries[i].path, true, task.system->Describe()});
      loaded.systems.push_back(std::move(task.system));
    }
  }
  return loaded;
}

}  // namespace zyn::transport
