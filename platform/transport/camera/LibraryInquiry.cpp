#include "LibraryInquiry.h"

#include <utility>

namespace zyn::transport {

using Clock = std::chrono::steady_clock;

LibraryInquiry::Call LibraryInquiry::Begin(const std::string& file) const {
  auto answer = std::make_shared<Texts>();
  Background thread = Background::Run([question = question_, file, answer] { *answer = question(file); });
  return {file, std::move(answer), std::move(thread)};
}

std::vector<LibraryInquiry::Call> LibraryInquiry::BeginAll(const std::vector<std::string>& files) {
  std::vector<Call> calls;
  const MutexLock lock(mutex_);
  for (const std::string& file : files) {
    const auto known = calls_.find(file);
    if (known == calls_.end()) {
      calls.push_back(calls_.emplace(file, Begin(file)).first->second);
    } else if (!known->second.isOverdue) {
      calls.push_back(known->second);
    } else if (known->second.thread.WaitUntil(Clock::now())) {  // it came back
      known->second = Begin(file);
      calls.push_back(known->second);
    }
  }
  return calls;
}

void LibraryInquiry::Settle(const Call& call, bool isDone) {
  const MutexLock lock(mutex_);
  const auto known = calls_.find(call.file);
  if (known == calls_.end() || known->second.answer != call.answer) return;  // another thread was faster
  if (isDone) {
    calls_.erase(known);
  } else {
    known->second.isOverdue = true;
  }
}

LibraryInquiry::Texts LibraryInquiry::Ask(const std::vector<std::string>& files,
                                          std::chrono::milliseconds patience) {
  const Clock::time_point deadline = Clock::now() + patience;
  Texts answers;
  for (const Call& call : BeginAll(files)) {
    const bool isDone = call.thread.WaitUntil(deadline);
    if (isDone) answers.insert(answers.end(), call.answer->begin(), call.answer->end());
    Settle(call, isDone);
  }
  return answers;
}

}  // namespace zyn::transport
