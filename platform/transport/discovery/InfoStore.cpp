#include "InfoStore.h"

#include <utility>

namespace zyn::transport {

InfoStore& InfoStore::Instance() {
  static auto* const store = new InfoStore;  // never destroyed: applications use the objects until they exit
  return *store;
}

std::list<KELGENICAM::ICameraInfo*> InfoStore::Publish(std::vector<CameraDescription> found) {
  std::list<KELGENICAM::ICameraInfo*> published;
  MutexLock lock(mutex_);
  for (CameraDescription& description : found) published.push_back(PublishOne(std::move(description)));
  return published;
}

CameraInfo* InfoStore::PublishOne(CameraDescription&& description) {
  Record& record = records_[description.key];
  if (record.latest && record.latest->Description() == description) return record.latest;
  for (const std::unique_ptr<CameraInfo>& object : record.objects) {
    if (object->Description() == description) return record.latest = object.get();
  }
  record.objects.push_back(std::make_unique<CameraInfo>(Intern(record, std::move(description))));
  record.latest = record.objects.back().get();
  objects_[record.latest] = record.latest;
  return record.latest;
}

const CameraDescription* InfoStore::Intern(Record& record, CameraDescription&& description) {
  for (const auto& known : record.descriptions) {
    if (*known == description) return known.get();
  }
  record.descriptions.push_back(std::make_unique<const CameraDescription>(std::move(description)));
  return record.descriptions.back().get();
}

CameraInfo* InfoStore::Find(const KELGENICAM::ICameraInfo* info) {
  MutexLock lock(mutex_);
  const auto it = objects_.find(info);
  return it == objects_.end() ? nullptr : it->second;
}

CameraInfo* InfoStore::FindSerial(const std::string& serial) {
  MutexLock lock(mutex_);
  for (const auto& [key, record] : records_) {
    if (record.latest->Description().serial == serial) return record.latest;
  }
  return nullptr;
}

}  // namespace zyn::transport
