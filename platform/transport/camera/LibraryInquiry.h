/// Asks many libraries the same question at once, and waits for none of them for long.
#ifndef ZYN_TRANSPORT_LIBRARY_INQUIRY_H
#define ZYN_TRANSPORT_LIBRARY_INQUIRY_H

#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "../producer/Background.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Every library is asked on a thread of its own, because it may hang, and by one thread at a time, because few of them
/// expect more: who asks meanwhile shares the answer. While a library hangs it is not asked again, so it costs one
/// thread and one wait, however often somebody asks; when its call returns after all, the next inquiry asks it anew.
/// Thread-safe.
class LibraryInquiry {
 public:
  using Texts = std::list<std::string>;
  /// What one file answers. An exception counts as no answer.
  using Question = std::function<Texts(const std::string& file)>;

  explicit LibraryInquiry(Question question) : question_(std::move(question)) {}

  /// The answers in the order of the files. A file that does not answer within `patience` is left out; those that
  /// hang already are not waited for.
  Texts Ask(const std::vector<std::string>& files, std::chrono::milliseconds patience) ZYN_EXCLUDES(mutex_);

 private:
  struct Call {
    std::string file;
    std::shared_ptr<const Texts> answer;  // complete when the thread is done
    Background thread;
    bool isOverdue = false;
  };

  Call Begin(const std::string& file) const;
  /// The calls to wait for: those in progress, and new ones.
  std::vector<Call> BeginAll(const std::vector<std::string>& files) ZYN_EXCLUDES(mutex_);
  void Settle(const Call& call, bool isDone) ZYN_EXCLUDES(mutex_);

  const Question question_;
  Mutex mutex_;                                               // a leaf
  std::map<std::string, Call> calls_ ZYN_GUARDED_BY(mutex_);  // those in progress, by file
};

}  // namespace zyn::transport

#endif
