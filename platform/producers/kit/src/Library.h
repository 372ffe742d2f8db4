/// The producer between GCInitLib and GCCloseLib.
#ifndef ZYN_PRODUCER_LIBRARY_H
#define ZYN_PRODUCER_LIBRARY_H

#include <memory>
#include <string>

#include "Answer.h"
#include "Children.h"
#include "Handles.h"
#include "producer/Backend.h"

namespace zyn::producer {

class System;

/// What the producer is: constant while it is initialised.
struct ProducerFacts {
  ProducerInfo info;
  std::string fileName;
  std::string path;  ///< folder and file name
};

/// Owns the backend and the one system module.
class Library : public HandleTarget {
 public:
  /// GCInitLib and GCCloseLib. Throw Error: GC_ERR_RESOURCE_IN_USE, GC_ERR_NOT_INITIALIZED.
  static void Initialise();
  static void CloseAll();
  /// The initialised library. Throws Error with GC_ERR_NOT_INITIALIZED.
  static std::shared_ptr<Library> Current();

  explicit Library(std::unique_ptr<Backend> backend);
  ~Library() override;

  Backend& TheBackend() { return *backend_; }
  const ProducerFacts& Facts() const { return facts_; }

  /// GCGetInfo and TLGetInfo.
  void Info(GenTL::TL_INFO_CMD command, const Answer& answer) const;

  std::shared_ptr<System> OpenSystem();
  void OnSystemClosed();
  void Close();

 private:
  const std::unique_ptr<Backend> backend_;
  const ProducerFacts facts_;
  Children<System> systems_;
};

}  // namespace zyn::producer

#endif
