#include "persistence/Announcement.h"

#include <utility>

#include "Base/GCException.h"
#include "GenApi/ICommand.h"

namespace zyn::genapi {

using namespace GENAPI_NAMESPACE;

Announcement::Announcement(INodeMap& map, const char* start, const char* end) : map_(map), end_(end) {
  Execute(start);
}

// There may be an exception on its way already, and the values are what matters.
Announcement::~Announcement() {
  try {
    End();
  } catch (...) {  // a port may throw anything
    end_ = nullptr;
  }
}

void Announcement::End() {
  if (const char* const end = std::exchange(end_, nullptr)) Execute(end);
}

void Announcement::Execute(const char* name) {
  auto* const command = dynamic_cast<ICommand*>(map_.GetNode(name));
  if (command && IsWritable(command->GetAccessMode())) command->Execute();
}

}  // namespace zyn::genapi
