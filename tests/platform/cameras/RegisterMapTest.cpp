#include <gtest/gtest.h>

#include <vector>

#include "cameras/registers/BigEndian.h"
#include "cameras/registers/RegisterMap.h"

namespace {

using namespace zyn::cameras;

// 0x1000: 4 bytes RW, not above 10. 0x1004: 8 bytes RO. 0x100C: 4 bytes WO. 0x1020: 4 bytes RW.
class RegisterMapTest : public testing::Test {
 protected:
  RegisterMapTest() {
    map.Add({0x1000, 4, ReaderOf(&small), [this](std::span<const std::uint8_t> bytes) {
               const std::uint64_t value = LoadBig(bytes.data(), 4);
               if (value > 10) return RegisterStatus::outOfRange;
               small = value;
               return RegisterStatus::ok;
             }});
    map.Add({0x1004, 8, ReaderOf(&large), nullptr});
    map.Add({0x100C, 4, nullptr, WriterOf(&hidden)});
    map.Add({0x1020, 4, ReaderOf(&alone), WriterOf(&alone)});
  }

  static std::function<void(std::span<std::uint8_t>)> ReaderOf(std::uint64_t* value) {
    return [value](std::span<std::uint8_t> bytes) { StoreBig(bytes.data(), *value, bytes.size()); };
  }
  static std::function<RegisterStatus(std::span<const std::uint8_t>)> WriterOf(std::uint64_t* value) {
    return [value](std::span<const std::uint8_t> bytes) {
      *value = LoadBig(bytes.data(), bytes.size());
      return RegisterStatus::ok;
    };
  }

  RegisterStatus Read(std::uint64_t address, std::size_t length) {
    read.assign(length, 0xEE);
    return map.Read(address, read);
  }
  RegisterStatus Write(std::uint64_t address, std::vector<std::uint8_t> data) {
    return map.Write(address, data);
  }

  RegisterMap map;
  std::uint64_t small = 7;
  std::uint64_t large = 0x0102030405060708;
  std::uint64_t hidden = 0;
  std::uint64_t alone = 0;
  std::vector<std::uint8_t> read;
};

using Bytes = std::vector<std::uint8_t>;

TEST_F(RegisterMapTest, ReadsTheMostSignificantByteFirst) {
  EXPECT_EQ(Read(0x1004, 8), RegisterStatus::ok);
  EXPECT_EQ(read, (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(RegisterMapTest, ReadsPartsOfRegistersAndAcrossThem) {
  EXPECT_EQ(Read(0x1008, 4), RegisterStatus::ok);
  EXPECT_EQ(read, (Bytes{5, 6, 7, 8}));
  EXPECT_EQ(Read(0x1000, 8), RegisterStatus::ok);
  EXPECT_EQ(read, (Bytes{0, 0, 0, 7, 1, 2, 3, 4}));
}

struct Access {
  std::uint64_t address;
  std::size_t length;
  RegisterStatus reading;
  RegisterStatus writing;
};

TEST_F(RegisterMapTest, RefusesWhatNoRegisterServes) {
  const auto ok = RegisterStatus::ok;
  const auto unmapped = RegisterStatus::unmapped;
  const auto denied = RegisterStatus::accessDenied;
  const auto bad = RegisterStatus::badAlignment;
  const Access rows[] = {
      {0x1000, 4, ok, ok},
      {0x0FFC, 4, unmapped, unmapped},
      {0, 4, unmapped, unmapped},
      {0x1010, 4, unmapped, unmapped},
      {0x1024, 4, unmapped, unmapped},
      {0x1020, 8, unmapped, unmapped},
      {0xFFFFFFFFFFFFFFFC, 4, unmapped, unmapped},
      {0xFFFFFFFFFFFFFFFC, 8, unmapped, unmapped},
      {0x1004, 8, ok, denied},
      {0x1004, 4, ok, denied},
      {0x100C, 4, denied, ok},
      {0x1004, 12, denied, denied},
      {0x1001, 4, bad, bad},
      {0x1000, 3, bad, bad},
      {0x1000, 0, bad, bad},
  };
  for (const Access& row : rows) {
    SCOPED_TRACE(testing::Message() << std::hex << row.address << " " << row.length);
    EXPECT_EQ(Read(row.address, row.length), row.reading);
    EXPECT_EQ(Write(row.address, Bytes(row.length, 0)), row.writing);
  }
}

TEST_F(RegisterMapTest, AFailedReadLeavesTheBuffer) {
  EXPECT_EQ(Read(0x1020, 8), RegisterStatus::unmapped);
  EXPECT_EQ(read, Bytes(8, 0xEE));
}

TEST_F(RegisterMapTest, AValueOutOfRangeChangesNothing) {
  EXPECT_EQ(Write(0x1000, {0, 0, 0, 11}), RegisterStatus::outOfRange);
  EXPECT_EQ(small, 7U);
  EXPECT_EQ(Write(0x1000, {0, 0, 0, 10}), RegisterStatus::ok);
  EXPECT_EQ(small, 10U);
}

TEST_F(RegisterMapTest, AWriteOfAPartOfARegisterIsRefused) {
  RegisterMap wide;
  std::uint64_t value = 5;
  wide.Add({0, 8, ReaderOf(&value), WriterOf(&value)});
  EXPECT_EQ(wide.Write(0, Bytes(4, 0)), RegisterStatus::badAlignment);
  EXPECT_EQ(wide.Write(4, Bytes(4, 0)), RegisterStatus::badAlignment);
  EXPECT_EQ(value, 5U);
}

TEST(RegisterStatusText, IsDifferentForEach) {
  EXPECT_STREQ(Text(RegisterStatus::ok), "ok");
  EXPECT_STREQ(Text(RegisterStatus::unmapped), "unmapped address");
  EXPECT_STREQ(Text(RegisterStatus::accessDenied), "access denied");
  EXPECT_STREQ(Text(RegisterStatus::busy), "busy");
  EXPECT_STREQ(Text(RegisterStatus::outOfRange), "value out of range");
  EXPECT_STREQ(Text(RegisterStatus::badAlignment), "bad alignment");
  EXPECT_STREQ(Text(RegisterStatus::noAnswer), "no answer");
}

}  // namespace
