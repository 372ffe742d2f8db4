#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "../MemoryPort.h"

namespace {
bool hasNoMemory = false;
}

// Never inlined: where only one of a pair is, g++ takes them for a mismatch. This program's own: fails while there is no memory.
__attribute__((noinline)) void* operator new(std::size_t bytes) {
  void* const memory = hasNoMemory ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (!memory) throw std::bad_alloc();
  return memory;
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t /*bytes*/) noexcept {
  std::free(memory);
}

namespace {

using namespace GenApi;
using namespace zyn::genapi::test;

// Memory runs out in the middle of the first write, and stays so.
class ExhaustingPort : public MemoryPort {
 public:
  // Addresses past the end begin again, so that there are more places than bytes.
  void Read(void* buffer, int64_t address, int64_t length) override {
    MemoryPort::Read(buffer, address & 0xffff, length);
  }
  void Write(const void* /*buffer*/, int64_t /*address*/, int64_t /*length*/) override {
    hasNoMemory = true;
    throw std::bad_alloc();
  }
};

bool Fails(IInteger& node) {
  try {
    node.SetValue(7, false);
    hasNoMemory = false;
    return false;
  } catch (...) {
    hasNoMemory = false;
    return true;
  }
}

}  // namespace

TEST(OutOfMemory, AFailedWriteForgetsWhatItTouchedAndTheProcessLivesOn) {
  ExhaustingPort port;
  CNodeMapRef map;
  map._LoadXMLFromString(
      Description(Register("IntReg", "R", 0x10, 4) + "<Integer Name=\"I\"><pValue>R</pValue></Integer>")
          .c_str());
  map._Connect(&port);
  auto& written = *dynamic_cast<IInteger*>(map._GetNode("R"));
  auto& dependent = *dynamic_cast<IInteger*>(map._GetNode("I"));
  port.Set(0x10, {3});
  EXPECT_EQ(written.GetValue(), 3);
  EXPECT_EQ(dependent.GetValue(), 3);
  EXPECT_TRUE(dependent.IsValueCacheValid());

  EXPECT_TRUE(Fails(written));
  EXPECT_FALSE(written.IsValueCacheValid());
  EXPECT_FALSE(dependent.IsValueCacheValid());
  port.Set(0x10, {5});
  EXPECT_EQ(dependent.GetValue(), 5);
}

TEST(OutOfMemory, AFailedWriteAlsoForgetsARegisterWhoseMemoryWasDropped) {
  constexpr int kMorePlacesThanAreKept = (1 << 16) + 16;
  ExhaustingPort port;
  CNodeMapRef map;
  map._LoadXMLFromString(
      Description(Register("IntReg", "R", 0x0, 1) +
                  Register("IntReg", "Dependent", 0x1, 1, "<pInvalidator>R</pInvalidator>") +
                  "<Integer Name=\"Where\"><Value>0</Value></Integer>" +
                  Register("IntReg", "Moving", 0x10, 1, "<pAddress>Where</pAddress>"))
          .c_str());
  map._Connect(&port);
  const auto integer = [&](const char* name) -> IInteger& {
    return *dynamic_cast<IInteger*>(map._GetNode(name));
  };
  EXPECT_EQ(integer("Dependent").GetValue(), 0);
  for (int place = 0; place < kMorePlacesThanAreKept; ++place) {
    integer("Where").SetValue(place);
    integer("Moving").GetValue();
  }
  EXPECT_TRUE(Fails(integer("R")));
  port.Set(0x1, {5});
  EXPECT_EQ(integer("Dependent").GetValue(), 5);
}
