/// What a producer tells about one delivered buffer.
#ifndef ZYN_TRANSPORT_BUFFER_FACTS_H
#define ZYN_TRANSPORT_BUFFER_FACTS_H

#include <array>
#include <cstdint>
#include <optional>

#include "../producer/ProducerLibrary.h"

namespace zyn::transport {

/// The answers to the buffer commands that matter here; a command that the producer does not answer is absent.
class BufferFacts {
 public:
  static constexpr int kCommands = GenTL::BUFFER_INFO_IS_COMPOSITE + 1;

  std::optional<std::uint64_t> Get(GenTL::BUFFER_INFO_CMD command) const {
    const auto index = static_cast<std::size_t>(command);
    if (!known_[index]) return std::nullopt;
    return values_[index];
  }
  std::uint64_t GetOr(GenTL::BUFFER_INFO_CMD command, std::uint64_t absent) const {
    return Get(command).value_or(absent);
  }
  bool IsTrue(GenTL::BUFFER_INFO_CMD command) const { return GetOr(command, 0) != 0; }
  void Set(GenTL::BUFFER_INFO_CMD command, std::uint64_t value) {
    values_[static_cast<std::size_t>(command)] = value;
    known_[static_cast<std::size_t>(command)] = true;
  }

 private:
  std::array<std::uint64_t, kCommands> values_{};
  std::array<bool, kCommands> known_{};
};

/// Reads the facts, in one call where the producer offers that. Remembers what the producer does not
/// implement and asks for it no more. Not thread-safe: one per stream engine.
class BufferReader {
 public:
  BufferReader(const ProducerLibrary& producer, GenTL::DS_HANDLE stream)
      : producer_(producer), stream_(stream) {}

  BufferFacts Read(GenTL::BUFFER_HANDLE buffer);

  /// One command by itself, asked again every time.
  std::optional<std::uint64_t> Ask(GenTL::BUFFER_HANDLE buffer, GenTL::BUFFER_INFO_CMD command) const;

 private:
  bool ReadStacked(GenTL::BUFFER_HANDLE buffer, BufferFacts& facts) const;
  void ReadSingly(GenTL::BUFFER_HANDLE buffer, BufferFacts& facts);

  const ProducerLibrary& producer_;
  const GenTL::DS_HANDLE stream_;
  std::array<bool, BufferFacts::kCommands> unknown_{};
};

}  // namespace zyn::transport

#endif
