/// What the kit is to a backend, for tests of the backend alone.
#ifndef ZYN_TESTS_BACKEND_FIXTURES_H
#define ZYN_TESTS_BACKEND_FIXTURES_H

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <future>
#include <list>
#include <optional>
#include <vector>

#include "ThreadAnnotations.h"
#include "producer/Backend.h"

namespace zyn::test {

class TestBuffer final : public producer::StreamBuffer {
 public:
  TestBuffer(std::uint8_t* memory, std::size_t size) : StreamBuffer(memory, size, nullptr) {}
};

// Queues of buffers, as the kit has them.
class TestSink final : public producer::StreamSink {
 public:
  struct Delivery {
    TestBuffer* buffer;
    producer::FrameInfo info;
  };

  TestBuffer& Announce(std::size_t size) {
    memory_.emplace_back(size);
    buffers_.emplace_back(memory_.back().data(), size);
    Queue(buffers_.back());
    return buffers_.back();
  }

  void Queue(TestBuffer& buffer) {
    const MutexLock lock(mutex_);
    queued_.push_back(&buffer);
  }

  // Empty when none comes in time.
  std::optional<Delivery> Wait(std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    MutexLock lock(mutex_);
    while (delivered_.empty() && lock.WaitUntil(changed_, deadline)) {
    }
    if (delivered_.empty()) return std::nullopt;
    Delivery delivery = std::move(delivered_.front());
    delivered_.pop_front();
    return delivery;
  }

  /// Returns when `count` frames have begun.
  void WaitForStarted(std::uint64_t count) {
    MutexLock lock(mutex_);
    while (started_ < count) lock.Wait(changed_);
  }

  std::uint64_t Started() {
    const MutexLock lock(mutex_);
    return started_;
  }
  std::size_t Taken() {
    const MutexLock lock(mutex_);
    return taken_;
  }
  std::uint64_t Underruns() {
    const MutexLock lock(mutex_);
    return underruns_;
  }
  void Revoke(producer::Stream& stream) {
    for (TestBuffer& buffer : buffers_) {
      if (buffer.backendData != nullptr) stream.OnBufferRevoked(buffer);
      EXPECT_EQ(buffer.backendData, nullptr);
    }
  }

  producer::StreamBuffer* TakeQueued() override {
    const MutexLock lock(mutex_);
    if (queued_.empty()) return nullptr;
    TestBuffer* buffer = queued_.front();
    queued_.pop_front();
    ++taken_;
    return buffer;
  }
  producer::StreamBuffer* TakeForFrame() override { return TakeQueued(); }
  void MarkStarted(producer::StreamBuffer&) override {
    const MutexLock lock(mutex_);
    ++started_;
    changed_.notify_all();
  }
  void Deliver(producer::StreamBuffer& buffer, producer::FrameInfo&& info) override {
    const MutexLock lock(mutex_);
    --taken_;
    delivered_.push_back({static_cast<TestBuffer*>(&buffer), std::move(info)});
    changed_.notify_all();
  }
  void GiveBack(producer::StreamBuffer& buffer) override {
    const MutexLock lock(mutex_);
    --taken_;
    queued_.push_back(static_cast<TestBuffer*>(&buffer));
  }
  void CountUnderruns(std::uint64_t frames) override {
    const MutexLock lock(mutex_);
    underruns_ += frames;
  }
  void ReportError(GenTL::GC_ERROR, const std::string&) override {}

 private:
  std::list<std::vector<std::uint8_t>> memory_;
  std::list<TestBuffer> buffers_;
  Mutex mutex_;
  std::condition_variable changed_;
  std::deque<TestBuffer*> queued_ ZYN_GUARDED_BY(mutex_);
  std::deque<Delivery> delivered_ ZYN_GUARDED_BY(mutex_);
  std::size_t taken_ ZYN_GUARDED_BY(mutex_) = 0;
  std::uint64_t started_ ZYN_GUARDED_BY(mutex_) = 0;
  std::uint64_t underruns_ ZYN_GUARDED_BY(mutex_) = 0;
};

class TestListener final : public producer::DeviceListener {
 public:
  void OnLost(const std::string& text) override { lost_.set_value(text); }
  void OnRemoteEvent(std::uint64_t, const void*, std::size_t) override {}
  void OnFeatureInvalidated(const std::string&) override {}
  void OnError(GenTL::GC_ERROR, const std::string&) override {}

  std::future<std::string>& Lost() { return future_; }

 private:
  std::promise<std::string> lost_;
  std::future<std::string> future_ = lost_.get_future();
};

/// What the call is refused with.
template <class Call>
GenTL::GC_ERROR CodeOf(const Call& call) {
  try {
    call();
    return GenTL::GC_ERR_SUCCESS;
  } catch (const producer::Error& error) {
    return error.Code();
  }
}

inline std::uint32_t Word(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) << 24U | static_cast<std::uint32_t>(bytes[1]) << 16U |
         static_cast<std::uint32_t>(bytes[2]) << 8U | bytes[3];
}

inline void WriteWord(producer::Device& device, std::uint64_t address, std::uint32_t value) {
  const std::array<std::uint8_t, 4> bytes{
      static_cast<std::uint8_t>(value >> 24U), static_cast<std::uint8_t>(value >> 16U),
      static_cast<std::uint8_t>(value >> 8U), static_cast<std::uint8_t>(value)};
  device.Write(address, bytes.data(), bytes.size());
}

inline std::uint32_t ReadWord(producer::Device& device, std::uint64_t address) {
  std::array<std::uint8_t, 4> bytes{};
  device.Read(address, bytes.data(), bytes.size());
  return Word(bytes.data());
}

}  // namespace zyn::test

#endif
