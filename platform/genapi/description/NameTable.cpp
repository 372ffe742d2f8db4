#include "description/NameTable.h"

#include <cstring>
#include <random>

namespace zyn::genapi {
namespace {

constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ULL;
constexpr std::size_t kFirstSlots = 256;

std::uint64_t NextSeed() {
  thread_local std::mt19937_64 generator{std::random_device{}()};
  return generator();
}

std::uint64_t Mix(std::uint64_t state, std::uint64_t block) {
  state = (state ^ block) * kMultiplier;
  return state ^ state >> 29;
}

}  // namespace

NameTable::NameTable() : seed_(NextSeed()), slots_(kFirstSlots, 0) {}

std::uint32_t NameTable::Hash(std::string_view name) const {
  std::uint64_t state = Mix(seed_, name.size());
  while (name.size() >= 8) {
    std::uint64_t block = 0;
    std::memcpy(&block, name.data(), 8);
    state = Mix(state, block);
    name.remove_prefix(8);
  }
  std::uint64_t block = 0;
  std::memcpy(&block, name.data(), name.size());
  state = Mix(state, block ^ seed_ << 7);
  return static_cast<std::uint32_t>(state ^ state >> 32);
}

std::size_t NameTable::Slot(std::string_view name, std::uint32_t hash, std::string_view text) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
    if (slots_[slot] == 0) return slot;
    const Entry& entry = entries_[slots_[slot] - 1];
    if (entry.hash == hash && text.substr(entry.text.offset, entry.text.size) == name) return slot;
  }
}

NameId NameTable::Intern(std::string_view name, std::string& text) {
  const std::uint32_t hash = Hash(name);
  const std::size_t slot = Slot(name, hash, text);
  if (slots_[slot] != 0) return slots_[slot] - 1;
  const auto id = static_cast<NameId>(entries_.size());
  const TextRef ref{static_cast<std::uint32_t>(text.size()), static_cast<std::uint32_t>(name.size())};
  text.append(name);
  entries_.push_back({ref, hash, kNoNode});
  slots_[slot] = id + 1;
  if (entries_.size() * 4 > slots_.size() * 3) Grow();
  return id;
}

void NameTable::Grow() {
  slots_.assign(slots_.size() * 2, 0);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    std::size_t slot = entries_[i].hash & mask;
    while (slots_[slot] != 0) slot = (slot + 1) & mask;
    slots_[slot] = static_cast<std::uint32_t>(i + 1);
  }
}

NodeId NameTable::FindNode(std::string_view name, std::string_view text) const {
  const std::uint32_t found = slots_[Slot(name, Hash(name), text)];
  return found == 0 ? kNoNode : entries_[found - 1].node;
}

}  // namespace zyn::genapi
