// The parts that need no producer: URLs, descriptions, chunk layouts, frame layouts, pixel formats, results.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>
#include <KELGeniCam.h>

#include "Result.h"
#include "discovery/CameraDescription.h"
#include "discovery/DeviceAddress.h"
#include "mock/MockDescriptions.h"
#include "module/ModuleDescription.h"
#include "producer/GenTLInfo.h"
#include "producer/SearchPath.h"
#include "stream/Chunks.h"
#include "stream/FrameIdChunk.h"
#include "stream/FrameLayout.h"
#include "stream/FramePool.h"
#include "stream/PixelFormat.h"

namespace zyn::transport {
namespace {

// ---- description URLs -----------------------------------------------------------------------------------

struct LocalUrlCase {
  const char* text;
  std::uint64_t address;
  std::uint64_t length;
};

TEST(DescriptionUrl, TakesEverySpellingOfALocalUrl) {
  const LocalUrlCase rows[] = {
      {"local:camera.xml;10000;1a2b", 0x10000, 0x1A2B},
      {"Local:///camera.zip;8001;FF", 0x8001, 0xFF},
      {"LOCAL://camera.xml; 0x10 ;0x20", 0x10, 0x20},
      {"local:camera.xml;10;20?SchemaVersion=1.1.0", 0x10, 0x20},
      {" local:a b/c\\d.xml;f0f0f0f0f0f0;1\n", 0xF0F0F0F0F0F0, 1},
  };
  for (const LocalUrlCase& row : rows) {
    const DescriptionUrl url = ParseDescriptionUrl(row.text);
    EXPECT_EQ(url.scheme, DescriptionUrl::Scheme::kLocal) << row.text;
    EXPECT_EQ(url.address, row.address) << row.text;
    EXPECT_EQ(url.length, row.length) << row.text;
  }
}

TEST(DescriptionUrl, RemembersTheDecimalReadingOfALength) {
  EXPECT_EQ(ParseDescriptionUrl("local:a.xml;10;1234").decimalLength, 1234U);
  EXPECT_EQ(ParseDescriptionUrl("local:a.xml;10;12ab").decimalLength, std::nullopt);
}

struct FileUrlCase {
  const char* text;
  const char* path;
};

TEST(DescriptionUrl, DecodesFileUrls) {
  const FileUrlCase rows[] = {
      {"file:///opt/xml/camera.xml", "/opt/xml/camera.xml"},
      {"FILE:///opt/my%20camera.xml?SchemaVersion=1.0.0", "/opt/my camera.xml"},
      {"file:camera.zip", "camera.zip"},
      {"file://localhost/opt/a.xml", "/opt/a.xml"},
      {"file:///opt/100%.xml", "/opt/100%.xml"},
      {"file:///opt/end%2", "/opt/end%2"},
      {"file:///opt/end%20", "/opt/end "},
  };
  for (const FileUrlCase& row : rows) {
    const DescriptionUrl url = ParseDescriptionUrl(row.text);
    EXPECT_EQ(url.scheme, DescriptionUrl::Scheme::kFile) << row.text;
    EXPECT_EQ(url.name, row.path) << row.text;
  }
}

TEST(DescriptionUrl, KnowsWhatItCannotUse) {
  EXPECT_EQ(ParseDescriptionUrl("http://maker/camera.xml").scheme, DescriptionUrl::Scheme::kHttp);
  EXPECT_EQ(ParseDescriptionUrl("https://maker/camera.xml").scheme, DescriptionUrl::Scheme::kHttp);
  for (const char* text :
       {"", "local:", "local:a.xml", "local:a.xml;10", "local:a.xml;10;", "local:a.xml;xyz;1",
        "local:a.xml;10;11111111111111111", "ftp://x", "camera.xml"}) {
    EXPECT_EQ(ParseDescriptionUrl(text).scheme, DescriptionUrl::Scheme::kUnknown) << text;
  }
}

std::vector<char> Bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

TEST(Description, IsCutToTheDocument) {
  const std::string document = "<?xml version=\"1.0\"?><RegisterDescription></RegisterDescription>";
  for (const std::string& tail :
       {std::string(), std::string(100, '\0'), std::string("junk"), std::string("\r\n")}) {
    const auto description = RecogniseDescription(Bytes(document + tail));
    ASSERT_TRUE(description);
    EXPECT_FALSE(description->isZip);
    EXPECT_EQ(std::string(description->bytes.begin(), description->bytes.end()), document);
  }
  EXPECT_TRUE(RecogniseDescription(Bytes("\xEF\xBB\xBF" + document)));
}

TEST(Description, IsRecognisedByItsContent) {
  const auto zip = RecogniseDescription(Bytes(std::string("PK\x03\x04rest")));
  ASSERT_TRUE(zip);
  EXPECT_TRUE(zip->isZip);
  EXPECT_FALSE(RecogniseDescription({}));
  EXPECT_FALSE(RecogniseDescription(Bytes("neither")));
  EXPECT_FALSE(RecogniseDescription(std::vector<char>(1000, '\0')));
}

// ---- chunks ---------------------------------------------------------------------------------------------

void AppendTrailer(std::vector<unsigned char>& bytes, std::uint32_t id, std::uint32_t length,
                   ByteOrder order) {
  for (const std::uint32_t number : {id, length}) {
    for (unsigned i = 0; i < 4; ++i) {
      const unsigned shift = order == ByteOrder::kBig ? 24 - 8 * i : 8 * i;
      bytes.push_back(static_cast<unsigned char>(number >> shift));
    }
  }
}

std::vector<unsigned char> TwoChunks(ByteOrder order) {
  std::vector<unsigned char> bytes{1, 2, 3};
  AppendTrailer(bytes, 0xA0, 3, order);
  AppendTrailer(bytes, 0xA1, 0, order);
  bytes.push_back(4);
  AppendTrailer(bytes, 0xA2, 1, order);
  return bytes;
}

TEST(ChunkLayout, IsWalkedBackwardsInBothByteOrders) {
  const std::vector<ChunkRange> expected{{0xA0, 0, 3}, {0xA1, 11, 0}, {0xA2, 19, 1}};
  for (const ByteOrder order : {ByteOrder::kBig, ByteOrder::kLittle}) {
    const auto bytes = TwoChunks(order);
    EXPECT_EQ(ParseChunkLayout(bytes.data(), bytes.size(), order), expected);
    EXPECT_EQ(ParseChunkLayout(bytes.data(), bytes.size(), std::nullopt), expected);
  }
}

TEST(ChunkLayout, ThatDoesNotEndAtTheStartIsNoLayout) {
  const auto bytes = TwoChunks(ByteOrder::kBig);
  for (std::size_t cut = 1; cut < bytes.size(); ++cut) {
    if (bytes.size() - cut == 8) continue;  // exactly the empty chunk
    const std::vector<unsigned char> part(bytes.begin() + static_cast<std::ptrdiff_t>(cut), bytes.end());
    const auto chunks = ParseChunkLayout(part.data(), part.size(), ByteOrder::kBig);
    const bool isWhole = cut == 11 || cut == 19;  // a cut between two chunks
    EXPECT_EQ(chunks.empty(), !isWhole) << cut;
  }
  EXPECT_TRUE(ParseChunkLayout(bytes.data(), 0, ByteOrder::kBig).empty());
  EXPECT_TRUE(ParseChunkLayout(bytes.data(), bytes.size(), ByteOrder::kLittle).empty());
}

TEST(ChunkLayout, TheImageIsTakenOut) {
  std::vector<ChunkRange> chunks{{1, 0, 100}, {2, 108, 4}};
  RemoveImageChunk(chunks, 200);
  EXPECT_EQ(chunks.size(), 2U);
  RemoveImageChunk(chunks, 0);
  EXPECT_EQ(chunks, (std::vector<ChunkRange>{{2, 108, 4}}));
}

void DestroyMap(GenApi_3_4::INodeMap* map) {
  if (auto* destroyable = dynamic_cast<GenApi_3_4::IDestroy*>(map)) destroyable->Destroy();
}

// What is found in a camera's description made of these nodes.
std::optional<FrameIdChunk> FindIn(const std::string& nodes) {
  const std::string xml = mock::Describe(nodes +
                                         "<Integer Name=\"Other\"><Value>1</Value></Integer>"
                                         "<Port Name=\"FrameIdPort\"><ChunkID>F1</ChunkID></Port>");
  GenApi_3_4::CNodeMapFactory factory(GenApi_3_4::ContentType_Xml, xml.data(), xml.size());
  const std::unique_ptr<GenApi_3_4::INodeMap, void (*)(GenApi_3_4::INodeMap*)> map(factory.CreateNodeMap(),
                                                                                   DestroyMap);
  return FrameIdChunk::Find(map.get());
}

// A register on the chunk's port, from "kind,address,length,byte order,sign,further elements". An empty byte
// order means no element.
std::string ChunkRegister(const std::string& shape, const std::string& name) {
  std::vector<std::string> words;
  std::string rest = shape;
  for (std::size_t comma = rest.find(','); comma != std::string::npos; comma = rest.find(',')) {
    words.push_back(rest.substr(0, comma));
    rest = rest.substr(comma + 1);
  }
  const std::string order = words[3].empty() ? "" : "<Endianess>" + words[3] + "</Endianess>";
  return "<" + words[0] + " Name=\"" + name + "\"><Address>" + words[1] + "</Address><Length>" + words[2] +
         "</Length><AccessMode>RO</AccessMode><pPort>FrameIdPort</pPort>" + rest + "<Sign>" + words[4] +
         "</Sign>" + order + "</" + words[0] + ">";
}

TEST(FrameIdChunk, ReadsEitherByteOrderAtItsAddress) {
  const unsigned char data[] = {0, 0, 0x12, 0x34, 0x56, 0x78};
  const std::vector<ChunkRange> chunks{{7, 1, 5}};
  EXPECT_EQ(FrameIdChunk(7, 1, 4, ByteOrder::kBig).Read(data, chunks), 0x12345678);
  EXPECT_EQ(FrameIdChunk(7, 1, 4, ByteOrder::kLittle).Read(data, chunks), 0x78563412);
  EXPECT_EQ(FrameIdChunk(7, 1, 2, ByteOrder::kBig).Read(data, chunks), 0x1234);
  EXPECT_EQ(FrameIdChunk(7, 2, 4, ByteOrder::kBig).Read(data, chunks), std::nullopt);
  EXPECT_EQ(FrameIdChunk(8, 1, 4, ByteOrder::kBig).Read(data, chunks), std::nullopt);
}

TEST(FrameIdChunk, ReadsTheBitsOfItsField) {
  const unsigned char data[] = {0x80, 0x12, 0x34, 0x56};
  const std::vector<ChunkRange> chunks{{7, 0, 4}};
  const auto read = [&](ByteOrder order, BitField field) {
    return FrameIdChunk(7, 0, 4, order, field).Read(data, chunks).value_or(-999);
  };
  EXPECT_EQ(read(ByteOrder::kBig, {0, 8}), 0x56);
  EXPECT_EQ(read(ByteOrder::kBig, {8, 16}), 0x1234);
  EXPECT_EQ(read(ByteOrder::kBig, {31, 1}), 1);
  EXPECT_EQ(read(ByteOrder::kBig, {31, 1, true}), -1);
  EXPECT_EQ(read(ByteOrder::kBig, {0, 32, true}), -0x7FEDCBAA);
  EXPECT_EQ(read(ByteOrder::kLittle, {0, 8}), 0x80);
  EXPECT_EQ(read(ByteOrder::kLittle, {0, 8, true}), -128);
  EXPECT_EQ(read(ByteOrder::kLittle, {0, 64, true}), 0x56341280);
}

struct RegisterCase {
  const char* name;
  const char* nodes;  // of the description; ChunkFrameID among them
  std::optional<std::int64_t> value;
};

// Each row twice: as the feature itself, and behind two integers.
TEST(FrameIdChunk, FindsItsRegisterInEveryShape) {
  const unsigned char bytes[] = {0x80, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  const RegisterCase rows[] = {
      {"one byte", "IntReg,0,1,BigEndian,Unsigned,", 0x80},
      {"one signed byte", "IntReg,0,1,BigEndian,Signed,", -128},
      {"two bytes", "IntReg,1,2,BigEndian,Unsigned,", 0x1234},
      {"two bytes, little endian", "IntReg,1,2,LittleEndian,Unsigned,", 0x3412},
      {"two bytes that name no byte order", "IntReg,1,2,,Unsigned,", 0x3412},
      {"two signed bytes", "IntReg,0,2,BigEndian,Signed,", -0x7FEE},
      {"three bytes", "IntReg,1,3,BigEndian,Unsigned,", 0x123456},
      {"three signed bytes, little endian", "IntReg,5,3,LittleEndian,Signed,", -0x214366},
      {"four bytes", "IntReg,0,4,BigEndian,Unsigned,", 0x80123456},
      {"four signed bytes", "IntReg,0,4,BigEndian,Signed,", -0x7FEDCBAA},
      {"eight bytes", "IntReg,1,8,BigEndian,Signed,", 0x123456789ABCDEF0},
      {"eight bytes, little endian", "IntReg,0,8,LittleEndian,Unsigned,",
       static_cast<std::int64_t>(0xDEBC9A7856341280)},
      {"nine bytes", "IntReg,0,9,BigEndian,Unsigned,", std::nullopt},
      {"masked, big endian", "MaskedIntReg,0,4,BigEndian,Unsigned,<LSB>31</LSB><MSB>24</MSB>", 0x56},
      {"masked, upper half", "MaskedIntReg,0,4,BigEndian,Unsigned,<LSB>15</LSB><MSB>0</MSB>", 0x8012},
      {"masked and signed", "MaskedIntReg,0,4,BigEndian,Signed,<LSB>15</LSB><MSB>0</MSB>", -0x7FEE},
      {"masked, little endian", "MaskedIntReg,0,4,LittleEndian,Unsigned,<LSB>8</LSB><MSB>23</MSB>", 0x3412},
      {"masked, little endian, signed", "MaskedIntReg,0,4,LittleEndian,Signed,<LSB>0</LSB><MSB>7</MSB>",
       -128},
      {"ends exchanged", "MaskedIntReg,0,4,BigEndian,Unsigned,<LSB>24</LSB><MSB>31</MSB>", 0x56},
      {"one bit, big endian", "MaskedIntReg,0,4,BigEndian,Unsigned,<Bit>0</Bit>", 1},
      {"one bit, little endian", "MaskedIntReg,0,4,LittleEndian,Unsigned,<Bit>7</Bit>", 1},
      {"one signed bit", "MaskedIntReg,0,4,BigEndian,Signed,<Bit>0</Bit>", -1},
      {"a bit outside", "MaskedIntReg,0,4,BigEndian,Unsigned,<Bit>32</Bit>", std::nullopt},
      {"all bits of eight bytes", "MaskedIntReg,1,8,BigEndian,Unsigned,<LSB>63</LSB><MSB>0</MSB>",
       0x123456789ABCDEF0},
  };
  const std::vector<ChunkRange> chunks{{0xF1, 0, sizeof(bytes)}};
  for (const RegisterCase& row : rows) {
    const auto found = FindIn(ChunkRegister(row.nodes, "ChunkFrameID"));
    const auto behind = FindIn(
        "<Integer Name=\"ChunkFrameID\"><pIsAvailable>Other</pIsAvailable>"
        "<pValue>Middle</pValue></Integer><Integer Name=\"Middle\"><pValue>Reg</pValue></Integer>" +
        ChunkRegister(row.nodes, "Reg"));
    const auto read = found ? found->Read(bytes, chunks) : std::nullopt;
    EXPECT_EQ(read, row.value) << row.name;
    EXPECT_EQ(behind ? behind->Read(bytes, chunks) : std::nullopt, row.value) << row.name;
  }
}

TEST(FrameIdChunk, FindsTheEntryOfAStructureAndAddressesThatAreNodes) {
  const unsigned char bytes[] = {0x80, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE};
  const std::vector<ChunkRange> chunks{{0xF1, 0, sizeof(bytes)}};
  const auto entry = FindIn(
      "<StructReg Comment=\"all\"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
      "<pPort>FrameIdPort</pPort><Endianess>BigEndian</Endianess><StructEntry Name=\"ChunkFrameID\">"
      "<LSB>31</LSB><MSB>16</MSB></StructEntry></StructReg>");
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->Read(bytes, chunks), 0x3456);
  const auto moved = FindIn(
      "<IntReg Name=\"ChunkFrameID\"><Address>1</Address><pAddress>Two</pAddress><pAddress>Three</pAddress>"
      "<pLength>Two</pLength><AccessMode>RO</AccessMode><pPort>FrameIdPort</pPort><Endianess>BigEndian</"
      "Endianess>"
      "</IntReg><Integer Name=\"Two\"><Value>2</Value></Integer><Integer "
      "Name=\"Three\"><Value>3</Value></Integer>");
  ASSERT_TRUE(moved);
  EXPECT_EQ(moved->Read(bytes, chunks), 0xBCDE);
}

TEST(FrameIdChunk, LeavesWhatIsComputedOrSelectedToTheStreamsIdentifier) {
  const std::string reg = ChunkRegister("IntReg,0,4,BigEndian,Unsigned,", "Reg");
  const std::string rows[] = {
      "<IntSwissKnife Name=\"ChunkFrameID\"><pVariable Name=\"R\">Reg</pVariable><Formula>R+1</Formula>"
      "</IntSwissKnife>" +
          reg,
      "<IntConverter Name=\"ChunkFrameID\"><FormulaTo>FROM-1</FormulaTo><FormulaFrom>TO+1</FormulaFrom>"
      "<pValue>Reg</pValue></IntConverter>" +
          reg,
      "<Integer Name=\"ChunkFrameID\"><pValue>Sum</pValue></Integer><IntSwissKnife Name=\"Sum\">"
      "<pVariable Name=\"R\">Reg</pVariable><Formula>R*2</Formula></IntSwissKnife>" +
          reg,
      "<IntReg Name=\"ChunkFrameID\"><Address>0</Address><pIndex "
      "Offset=\"4\">Other</pIndex><Length>4</Length>"
      "<AccessMode>RO</AccessMode><pPort>FrameIdPort</pPort><Endianess>BigEndian</Endianess></IntReg>",
      "<IntReg Name=\"ChunkFrameID\"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
      "<pPort>Device</pPort><Endianess>BigEndian</Endianess></IntReg>",
      "<Integer Name=\"ChunkFrameID\"><Value>7</Value></Integer>",
  };
  for (const std::string& row : rows) EXPECT_FALSE(FindIn(row)) << row;
}

// ---- pixel formats --------------------------------------------------------------------------------------

struct FormatCase {
  const char* name;
  std::uint64_t format;
  int bits;
  int channels;
};

TEST(PixelFormat, ChannelsAndBits) {
  const FormatCase rows[] = {
      {"Mono8", 0x01080001, 8, 1},
      {"Mono10", 0x01100003, 16, 1},
      {"Mono12Packed", 0x010C0006, 12, 1},
      {"Mono10p", 0x010A0046, 10, 1},
      {"Mono16", 0x01100007, 16, 1},
      {"BayerRG8", 0x01080009, 8, 1},
      {"BayerRG12p", 0x010C0059, 12, 1},
      {"RGB8", 0x02180014, 24, 3},
      {"BGR8", 0x02180015, 24, 3},
      {"BGRa8", 0x02200017, 32, 4},
      {"RGB16", 0x02300033, 48, 3},
      {"RGBa16", 0x02400064, 64, 4},
      {"RGB10p", 0x021E005C, 30, 1},
      {"RGB10p32", 0x0220001D, 32, 1},
      {"RGB565p", 0x02100035, 16, 1},
      {"YUV422_8", 0x02100032, 16, 2},
      {"YUV411", 0x020C001E, 12, 1},
      {"YUV8_UYV", 0x02180020, 24, 3},
      {"Coord3D_C16", 0x011000B8, 16, 1},
      {"Coord3D_C32f", 0x012000BF, 32, 1},
      {"Coord3D_ABC16", 0x023000B9, 48, 3},
      {"Coord3D_ABC32f", 0x026000C0, 96, 3},
      {"Coord3D_AC16", 0x022000BB, 32, 2},
      {"Coord3D_AC32f", 0x024000C2, 64, 2},
      {"Unknown", 0, 0, 1},
      {"Custom", 0x81080001, 8, 1},
  };
  for (const FormatCase& row : rows) {
    EXPECT_EQ(BitsPerPixel(row.format), row.bits) << row.name;
    EXPECT_EQ(ChannelsOf(row.format), row.channels) << row.name;
  }
  EXPECT_EQ(RowBytes(0x010C0006, 3), 5U);
  EXPECT_EQ(RowBytes(0x010A0046, 5), 7U);
}

// ---- frame layouts --------------------------------------------------------------------------------------

BufferFacts ImageFacts(std::uint64_t width, std::uint64_t height) {
  BufferFacts facts;
  facts.Set(GenTL::BUFFER_INFO_WIDTH, width);
  facts.Set(GenTL::BUFFER_INFO_HEIGHT, height);
  facts.Set(GenTL::BUFFER_INFO_PIXELFORMAT, 0x01080001);
  facts.Set(GenTL::BUFFER_INFO_FRAMEID, 12);
  return facts;
}

TEST(FrameLayout, CountsPaddingOffsetAndDeliveredRows) {
  BufferFacts facts = ImageFacts(10, 8);
  facts.Set(GenTL::BUFFER_INFO_XPADDING, 6);
  facts.Set(GenTL::BUFFER_INFO_IMAGEOFFSET, 32);
  facts.Set(GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 5);
  const FrameLayout frame = LayOutFrame(facts, {}, 1000);
  EXPECT_EQ(frame.result, KELGENICAM::RESULT_OK);
  EXPECT_TRUE(frame.isValid);
  EXPECT_TRUE(frame.hasImage);
  EXPECT_EQ(frame.frameId, 12);
  EXPECT_EQ(frame.width, 10);
  EXPECT_EQ(frame.height, 5);
  EXPECT_EQ(frame.step, 16);
  EXPECT_EQ(frame.imageOffset, 32U);
}

TEST(FrameLayout, TakesFromTheCameraWhatTheProducerDoesNotTell) {
  const FrameLayout frame = LayOutFrame(BufferFacts(), {10, 4, 0x02180014}, 120);
  EXPECT_TRUE(frame.isValid);
  EXPECT_EQ(frame.width, 10);
  EXPECT_EQ(frame.height, 4);
  EXPECT_EQ(frame.step, 30);
  EXPECT_EQ(frame.channels, 3);
}

TEST(FrameLayout, NeverLeavesTheBuffer) {
  const std::uint64_t numbers[] = {0, 1, 7, 100, 1000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFFFFFFFFFF};
  constexpr std::size_t kCapacity = 100;
  for (const std::uint64_t width : numbers) {
    for (const std::uint64_t height : numbers) {
      for (const std::uint64_t padding : numbers) {
        for (const std::uint64_t offset : numbers) {
          BufferFacts facts = ImageFacts(width, height);
          facts.Set(GenTL::BUFFER_INFO_XPADDING, padding);
          facts.Set(GenTL::BUFFER_INFO_IMAGEOFFSET, offset);
          const FrameLayout frame = LayOutFrame(facts, {}, kCapacity);
          const auto end = frame.imageOffset +
                           static_cast<std::size_t>(frame.step) * static_cast<std::size_t>(frame.height);
          EXPECT_LE(end, kCapacity);
          EXPECT_GE(frame.step, frame.width);  // of one byte per pixel
          EXPECT_GE(frame.height, 0);
        }
      }
    }
  }
}

TEST(FrameLayout, AFrameCutByItsBufferIsNotValid) {
  const FrameLayout frame = LayOutFrame(ImageFacts(10, 10), {}, 95);
  EXPECT_FALSE(frame.isValid);
  EXPECT_EQ(frame.height, 9);
}

TEST(FrameLayout, WithoutTheIncompleteCommandMissingDataTells) {
  BufferFacts facts = ImageFacts(4, 2);
  facts.Set(GenTL::BUFFER_INFO_SIZE_FILLED, 7);
  facts.Set(GenTL::BUFFER_INFO_DATA_SIZE, 8);
  EXPECT_FALSE(LayOutFrame(facts, {}, 8).isValid);
  facts.Set(GenTL::BUFFER_INFO_IS_INCOMPLETE, 0);
  EXPECT_TRUE(LayOutFrame(facts, {}, 8).isValid);
}

TEST(FrameLayout, RawDataIsOneRow) {
  BufferFacts facts;
  facts.Set(GenTL::BUFFER_INFO_PAYLOADTYPE, GenTL::PAYLOAD_TYPE_RAW_DATA);
  facts.Set(GenTL::BUFFER_INFO_SIZE_FILLED, 60);
  const FrameLayout frame = LayOutFrame(facts, {}, 100);
  EXPECT_TRUE(frame.isValid);
  EXPECT_EQ(frame.width, 60);
  EXPECT_EQ(frame.height, 1);
  EXPECT_EQ(frame.step, 60);
}

TEST(FrameLayout, ThePartsSizeSettlesItsStep) {
  FrameLayout frame;
  frame.isValid = true;
  PlacePart(frame, PartFacts{16, 64, true, 4, 4, 4, 0x01100007});  // 8 bytes a row and 4 more, in pixels
  EXPECT_EQ(frame.step, 16);
  EXPECT_EQ(frame.imageOffset, 16U);
  EXPECT_TRUE(frame.isValid);
}

TEST(FrameLayout, NeverLeavesThePart) {
  const std::uint64_t numbers[] = {0, 1, 7, 50, 100, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFFFFFFFFFF};
  const std::uint64_t formats[] = {0x01080001, 0x02180014, 0x010C0006, 0, 0xFFFFFFFFFFFFFFFF};
  constexpr std::uint64_t kOffset = 16;
  for (const std::uint64_t size : {0, 1, 50, 84}) {
    for (const std::uint64_t width : numbers) {
      for (const std::uint64_t height : numbers) {
        for (const std::uint64_t padding : numbers) {
          for (const std::uint64_t format : formats) {
            FrameLayout frame;
            frame.isValid = true;
            PlacePart(frame, PartFacts{kOffset, size, true, width, height, padding, format});
            const auto bytes =
                static_cast<std::uint64_t>(frame.step) * static_cast<std::uint64_t>(frame.height);
            EXPECT_LE(bytes, size);
            EXPECT_EQ(frame.imageOffset, frame.hasImage ? kOffset : 0);
            EXPECT_GE(static_cast<std::uint64_t>(frame.step),
                      RowBytes(format, static_cast<std::uint64_t>(frame.width)));
            EXPECT_TRUE(!frame.isValid || static_cast<std::uint64_t>(frame.height) == height);
          }
        }
      }
    }
  }
}

// ---- memory ---------------------------------------------------------------------------------------------

TEST(FramePool, GivesBackUsedMemoryOfTheSameSizeOnly) {
  const auto pool = std::make_shared<FramePool>();
  const unsigned char* first = nullptr;
  {
    const auto memory = pool->Take(5000, 64);
    first = memory->Data();
  }
  EXPECT_EQ(pool->Take(5000, 64)->Data(), first);
  EXPECT_EQ(pool->Take(6000, 64)->Size(), 6000U);
}

TEST(FramePool, MemoryOutlivesItsPool) {
  auto pool = std::make_shared<FramePool>();
  const auto memory = pool->Take(100, 1);
  pool = nullptr;
  memory->Data()[99] = 7;
  EXPECT_EQ(memory->Data()[99], 7);
}

TEST(FramePool, RefusesWhatNoMachineHas) {
  const auto pool = std::make_shared<FramePool>();
  EXPECT_EQ(pool->Take(~std::size_t{0}, 4096), nullptr);
  EXPECT_EQ(pool->Take(~std::size_t{0} / 2, 4096), nullptr);
}

TEST(FramePool, IsAlignedAsAskedFor) {
  const auto pool = std::make_shared<FramePool>();
  for (const std::size_t alignment : {1UL, 4096UL, 65536UL}) {
    const auto memory = pool->Take(1000, alignment);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory->Data()) % alignment, 0U);
  }
}

// ---- small things ---------------------------------------------------------------------------------------

TEST(Info, IntegersAreDecodedByTypeAndSize) {
  const unsigned char bytes[8] = {0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0};
  EXPECT_EQ(DecodeInteger(GenTL::INFO_DATATYPE_INT32, bytes, 4), static_cast<std::uint64_t>(-2));
  EXPECT_EQ(DecodeInteger(GenTL::INFO_DATATYPE_UINT32, bytes, 4), 0xFFFFFFFEU);
  EXPECT_EQ(DecodeInteger(GenTL::INFO_DATATYPE_SIZET, bytes, 4), 0xFFFFFFFEU);
  EXPECT_EQ(DecodeInteger(GenTL::INFO_DATATYPE_INT16, bytes, 2), static_cast<std::uint64_t>(-2));
  EXPECT_EQ(DecodeInteger(GenTL::INFO_DATATYPE_BOOL8, bytes, 1), 0xFEU);
}

TEST(Info, LongAnswersAreAskedForInTwoSteps) {
  const std::string longText(5000, 'x');
  int calls = 0;
  const auto ask = [&](GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    ++calls;
    *type = GenTL::INFO_DATATYPE_STRING;
    const std::size_t needed = longText.size() + 1;
    if (buffer && *size < needed) return GenTL::GC_ERR_BUFFER_TOO_SMALL;
    if (buffer) std::memcpy(buffer, longText.c_str(), needed);
    *size = needed;
    return GenTL::GC_ERR_SUCCESS;
  };
  EXPECT_EQ(GetString(ask), longText);
  EXPECT_LE(calls, 4);
}

TEST(Info, ATextWithoutTerminatorIsStillRead) {
  const auto ask = [](GenTL::INFO_DATATYPE*, void* buffer, std::size_t* size) {
    std::memcpy(buffer, "abc", 3);
    *size = 3;
    return GenTL::GC_ERR_SUCCESS;
  };
  EXPECT_EQ(GetString(ask), "abc");
}

TEST(Addresses, AreWrittenAsPeopleWriteThem) {
  EXPECT_EQ(FormatIp(0), "0.0.0.0");
  EXPECT_EQ(FormatIp(0xC0A80102), "192.168.1.2");
  EXPECT_EQ(FormatIp(-1), "255.255.255.255");
  EXPECT_EQ(FormatMac(0), "00:00:00:00:00:00");
  EXPECT_EQ(FormatMac(0x123456789ABC), "12:34:56:78:9a:bc");
}

TEST(Protocols, BothSpellingsAreKnown) {
  EXPECT_EQ(ProtocolOf("GEV"), static_cast<unsigned>(KELGENICAM::PROTOCOL_GIGE_VISION));
  EXPECT_EQ(ProtocolOf("gigevision"), static_cast<unsigned>(KELGENICAM::PROTOCOL_GIGE_VISION));
  EXPECT_EQ(ProtocolOf("CameraLink"), static_cast<unsigned>(KELGENICAM::PROTOCOL_CAMERA_LINK));
  EXPECT_EQ(ProtocolOf("CLHS"), static_cast<unsigned>(KELGENICAM::PROTOCOL_OTHER));
  EXPECT_EQ(ProtocolOf(""), static_cast<unsigned>(KELGENICAM::PROTOCOL_OTHER));
}

TEST(SearchPath, ListsAreSplitAtColons) {
  EXPECT_EQ(SplitPathList(nullptr), std::vector<std::string>());
  EXPECT_EQ(SplitPathList("::a:\"b c\"::d:"), (std::vector<std::string>{"a", "b c", "d"}));
}

TEST(Results, TheNumbersAreFixed) {
  EXPECT_EQ(KELGENICAM::RESULT_TIMEOUT, -1);
  EXPECT_EQ(KELGENICAM::RESULT_DEVICE_LOST, -6);
  EXPECT_EQ(KELGENICAM::RESULT_PAYLOAD_UNSUPPORTED, -9);
  EXPECT_EQ(KELGENICAM::RESULT_ACCESS_DENIED, -16);
  EXPECT_EQ(KELGENICAM::RESULT_UNREACHABLE, -20);
  EXPECT_EQ(KELGENICAM::RESULT_EXHAUSTED, -26);
  EXPECT_EQ(ToResult(GenTL::GC_ERR_OUT_OF_MEMORY), KELGENICAM::RESULT_OUT_OF_MEMORY);
  EXPECT_EQ(ToResult(-10001), KELGENICAM::RESULT_ERROR);
  EXPECT_EQ(ToOpenResult(GenTL::GC_ERR_IO), KELGENICAM::RESULT_UNREACHABLE);
}

}  // namespace
}  // namespace zyn::transport
