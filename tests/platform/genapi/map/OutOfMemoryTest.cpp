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

TEST(OutOfMemory, CachedReadsNeedNoMemory) {
  MemoryPort port;
  CNodeMapRef map;
  map._LoadXMLFromString(
      Description(
          Register("IntReg", "R", 0x10, 4) +
          Register("MaskedIntReg", "M", 0x10, 4, "<LSB>0</LSB><MSB>3</MSB>") +
          "<Integer Name=\"I\"><pIsAvailable>R</pIsAvailable><pValue>R</pValue><pMax>R</pMax></Integer>"
          "<SwissKnife Name=\"K\"><pVariable Name=\"A\">R</pVariable><Formula>A*2</Formula></SwissKnife>"
          "<Converter "
          "Name=\"C\"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom><pValue>R</pValue>"
          "</Converter><Float Name=\"F\"><pValue>C</pValue></Float>"
          "<Enumeration Name=\"E\"><EnumEntry Name=\"X\"><Value>3</Value></EnumEntry><pValue>R</pValue>"
          "</Enumeration><Boolean Name=\"B\"><pValue>R</pValue><OnValue>3</OnValue></Boolean>")
          .c_str());
  map._Connect(&port);
  port.Set(0x10, {3});
  CIntegerPtr integer(map._GetNode("I"));
  CIntegerPtr field(map._GetNode("M"));
  CFloatPtr knife(map._GetNode("K"));
  CFloatPtr real(map._GetNode("F"));
  CEnumerationPtr enumeration(map._GetNode("E"));
  CBooleanPtr boolean(map._GetNode("B"));
  double sum = 0;
  const auto readAll = [&] {
    sum = static_cast<double>(integer->GetValue() + field->GetValue() + enumeration->GetIntValue()) +
          knife->GetValue() + real->GetValue() + (boolean->GetValue() ? 1 : 0) +
          (integer->GetAccessMode() == RW ? 100 : 0);
  };
  readAll();
  const int reads = port.reads;
  sum = 0;
  bool failed = false;
  hasNoMemory = true;
  try {
    readAll();
  } catch (const std::bad_alloc&) {
    failed = true;
  }
  hasNoMemory = false;
  EXPECT_FALSE(failed);
  EXPECT_DOUBLE_EQ(sum, 9 + 6 + 0.3 + 1 + 100);
  EXPECT_EQ(port.reads, reads);
}
