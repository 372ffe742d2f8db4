#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <latch>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Handles.h"
#include "Img.h"
#include "SetWrapperValue.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::InternalOf;

namespace {

std::vector<unsigned char> Pixels(std::size_t count) {
  std::vector<unsigned char> pixels(count);
  for (std::size_t i = 0; i < count; ++i) pixels[i] = static_cast<unsigned char>(i * 7);
  return pixels;
}

// 4 pixels of 16 bits a row and 2 bytes of padding, 3 rows.
ZynImage Small() {
  auto pixels = Pixels(30);
  return {pixels.data(), 10, 3, 4, 1, ZYN_IMAGE_U16};
}

std::vector<unsigned char> Content(const ZynImage& image) {
  return {image.ImageData(), image.ImageData() + image.Step() * image.Height()};
}

bool IsEmpty(const ZynImage& image) {
  return !image.ImageData() && image.Width() == 0 && image.Height() == 0 && image.Step() == 0 &&
         image.Channels() == 0 && image.BitDepth() == 0;
}

constexpr auto kNoType = static_cast<ZynImageType>(7);
constexpr auto kNegativeType = static_cast<ZynImageType>(-1);

struct BadImage {
  const char* name;
  bool hasData;
  int step, height, width, channels;
  ZynImageType type;
};

class ZynImageRefuses : public testing::TestWithParam<BadImage> {};

std::string CaseName(const testing::TestParamInfo<BadImage>& info) {
  return info.param.name;
}

}  // namespace

TEST(ZynImage, StartsWithoutAnImage) {
  const ZynImage image;
  EXPECT_TRUE(IsEmpty(image));
  EXPECT_EQ(InternalOf(image), nullptr);
}

TEST(ZynImage, CopiesTheCallersBytes) {
  auto pixels = Pixels(30);
  const ZynImage image(pixels.data(), 10, 3, 4, 1, ZYN_IMAGE_U16);
  pixels.assign(30, 0);
  EXPECT_EQ(Content(image), Pixels(30));
  EXPECT_EQ(image.Step(), 10);
  EXPECT_EQ(image.Height(), 3);
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(image.Channels(), 1);
}

TEST(ZynImage, BitDepthIsTheTypeCode) {
  EXPECT_EQ(Small().BitDepth(), 2);
  auto pixels = Pixels(8);
  EXPECT_EQ(ZynImage(pixels.data(), 8, 1, 1, 1, ZYN_IMAGE_F64).BitDepth(), 6);
  EXPECT_EQ(ZynImage(pixels.data(), 8, 1, 1, 1, ZYN_IMAGE_U8).BitDepth(), 0);
}

TEST(Img, TakesOverPixelsThatAreThere) {
  PixelMemory pixels(6);
  std::memcpy(pixels.Data(), Pixels(6).data(), 6);
  const unsigned char* data = pixels.Data();
  ZynImage image;
  SetWrapperValue(&image, new Img(std::move(pixels), 3, 2, 3, 1, ZYN_IMAGE_S8), false);
  EXPECT_EQ(image.ImageData(), data);
  EXPECT_EQ(Content(image), Pixels(6));
  EXPECT_EQ(image.Step(), 3);
  EXPECT_EQ(image.Height(), 2);
  EXPECT_EQ(image.Width(), 3);
  EXPECT_EQ(image.Channels(), 1);
  EXPECT_EQ(image.BitDepth(), ZYN_IMAGE_S8);
}

TEST_P(ZynImageRefuses, AndConstructingGivesAnEmptyImageThatIsNoNullHandle) {
  auto pixels = Pixels(100);
  const BadImage& bad = GetParam();
  const ZynImage image(bad.hasData ? pixels.data() : nullptr, bad.step, bad.height, bad.width, bad.channels,
                       bad.type);
  EXPECT_TRUE(IsEmpty(image));
  EXPECT_NE(InternalOf(image), nullptr);
}

TEST_P(ZynImageRefuses, AndCreatingKeepsTheOldImage) {
  auto pixels = Pixels(100);
  const BadImage& bad = GetParam();
  ZynImage image = Small();
  EXPECT_FALSE(image.CreateImage(bad.hasData ? pixels.data() : nullptr, bad.step, bad.height, bad.width,
                                 bad.channels, bad.type));
  EXPECT_EQ(Content(image), Pixels(30));
}

INSTANTIATE_TEST_SUITE_P(Table, ZynImageRefuses,
                         testing::Values(BadImage{"NoData", false, 10, 3, 4, 1, ZYN_IMAGE_U8},
                                         BadImage{"NoStep", true, 0, 3, 4, 1, ZYN_IMAGE_U8},
                                         BadImage{"NoHeight", true, 10, 0, 4, 1, ZYN_IMAGE_U8},
                                         BadImage{"NoWidth", true, 10, 3, 0, 1, ZYN_IMAGE_U8},
                                         BadImage{"NoChannels", true, 10, 3, 4, 0, ZYN_IMAGE_U8},
                                         BadImage{"TypeTooLarge", true, 640, 480, 640, 1, kNoType},
                                         BadImage{"NegativeType", true, 10, 3, 4, 1, kNegativeType}),
                         CaseName);

TEST(ZynImage, NegativeSizesPassTheTestsAndFailInTheAllocation) {
  auto pixels = Pixels(30);
  ZynImage image = Small();
  EXPECT_THROW(image.CreateImage(pixels.data(), -10, 3, 4, 1, ZYN_IMAGE_U8), std::bad_alloc);
  EXPECT_THROW(ZynImage(pixels.data(), 10, -3, 4, 1, ZYN_IMAGE_U8), std::bad_alloc);
  EXPECT_EQ(Content(image), Pixels(30));
  EXPECT_TRUE(image.CreateImage(pixels.data(), -1, -2, -4, -1, ZYN_IMAGE_U8));
  EXPECT_EQ(image.Width(), -4);
}

TEST(ZynImage, TheProductIsTakenIn32Bits) {
  EXPECT_EQ(ImageProduct(65536, 65536), 0);
  EXPECT_EQ(ImageProduct(65537, 65537), 131073);
  EXPECT_LT(ImageProduct(65536, 32768), 0);
  EXPECT_THROW(ImageBytes(65536, 32768), std::bad_alloc);
}

TEST(ZynImage, CreatingReplacesTheImage) {
  ZynImage image = Small();
  const ZynImage other(image);
  auto pixels = Pixels(6);
  EXPECT_TRUE(image.CreateImage(pixels.data(), 3, 2, 1, 3, ZYN_IMAGE_S8));
  EXPECT_EQ(Content(image), Pixels(6));
  EXPECT_EQ(image.BitDepth(), 1);
  EXPECT_EQ(Content(other), Pixels(30));
}

TEST(ZynImage, CreatingFromItsOwnPixelsIsSafe) {
  ZynImage image = Small();
  EXPECT_TRUE(image.CreateImage(image.ImageData() + 10, 10, 1, 4, 1, ZYN_IMAGE_U16));
  EXPECT_EQ(image.ImageData()[0], 70);
}

TEST(ZynImage, CopiesShareThePixels) {
  ZynImage first = Small();
  ZynImage copied(first);
  ZynImage assigned;
  assigned = first;
  ZynImage shallow = first.ShallowCopy();
  first.ImageData()[0] = 99;
  EXPECT_EQ(copied.ImageData()[0], 99);
  EXPECT_EQ(assigned.ImageData()[0], 99);
  EXPECT_EQ(shallow.ImageData()[0], 99);
  first = ZynImage();
  copied = ZynImage();
  shallow = ZynImage();
  EXPECT_EQ(assigned.ImageData()[0], 99);
}

TEST(ZynImage, DeepCopyHasPixelsOfItsOwn) {
  const ZynImage first = Small();
  const ZynImage copy = first.DeepCopy();
  first.ImageData()[0] = 99;
  EXPECT_EQ(Content(copy), Pixels(30));
  EXPECT_EQ(copy.BitDepth(), 2);
  EXPECT_EQ(copy.Width(), 4);
}

TEST(ZynImage, CopyOfNothingIsNothing) {
  EXPECT_EQ(InternalOf(ZynImage().DeepCopy()), nullptr);
  EXPECT_EQ(InternalOf(ZynImage().ShallowCopy()), nullptr);
  const ZynImage empty(nullptr, 1, 1, 1, 1, ZYN_IMAGE_U8);
  EXPECT_TRUE(IsEmpty(empty.DeepCopy()));
  EXPECT_NE(InternalOf(empty.DeepCopy()), nullptr);
}

TEST(ZynImage, AssigningTheLastReferenceToItselfDropsTheImage) {
  ZynImage image = Small();
  const ZynImage& alias = image;
  image = alias;
  EXPECT_TRUE(IsEmpty(image));
}

TEST(ZynImage, AssigningASharedImageToItselfKeepsIt) {
  ZynImage image = Small();
  const ZynImage other(image);
  const ZynImage& alias = image;
  image = alias;
  EXPECT_EQ(Content(image), Pixels(30));
  EXPECT_EQ(Content(other), Pixels(30));
}

TEST(CRef, ReleasingIfLastGivesBackOnlyTheLastReference) {
  struct Counted : CRef {
    explicit Counted(bool& flag) : isGone(flag) {}
    ~Counted() override { isGone = true; }
    bool& isGone;
  };
  bool isGone = false;
  auto* object = new Counted(isGone);
  object->AddRef();
  EXPECT_FALSE(object->ReleaseIfLast());
  EXPECT_FALSE(object->Release());  // the refusal kept both references
  EXPECT_FALSE(isGone);
  EXPECT_TRUE(object->ReleaseIfLast());
  EXPECT_TRUE(isGone);
}

TEST(ZynImage, MayBeAssignedToItselfWhileTheOtherReferenceEnds) {
  constexpr int kRounds = 2000;
  for (int i = 0; i < kRounds; ++i) {
    ZynImage image = Small();
    const ZynImage& alias = image;
    std::latch both(2);
    std::thread other([&both, copy = std::make_unique<ZynImage>(image)]() mutable {
      both.arrive_and_wait();
      copy.reset();
    });
    both.arrive_and_wait();
    image = alias;
    other.join();
    // Kept, or dropped as the last reference: never an image that is gone.
    const bool isWhole = !InternalOf(image) || Content(image) == Pixels(30);
    EXPECT_TRUE(isWhole);
  }
}

TEST(ZynImage, ReferencesMayEndOnDifferentThreads) {
  const ZynImage image = Small();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([image] {
      for (int j = 0; j < 1000; ++j) ZynImage(image).Width();
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(Content(image), Pixels(30));
}

TEST(ZynImage, SavingWritesNothingAndAnswersZero) {
  const std::string path = testing::TempDir() + "zyn-image-that-is-not-written";
  ZynImage image = Small();
  EXPECT_EQ(image.SaveImage(path.c_str(), 1), 0);
  EXPECT_EQ(image.SaveImage(L"zyn-image-that-is-not-written", 1), 0);
  EXPECT_EQ(ZynImage().SaveImage(path.c_str(), 0), 0);
  Img img;
  EXPECT_EQ(img.SaveImage(path.c_str(), 0), 0);
  EXPECT_EQ(img.SaveImage(L"x", 0), 0);
  EXPECT_EQ(img.ReadImage(path.c_str()), 0);
  EXPECT_EQ(img.ReadImage(L"x"), 0);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_FALSE(std::filesystem::exists("zyn-image-that-is-not-written"));
}

TEST(Img, TextConversionsGoBothWays) {
  wchar_t wide[8] = L"-------";
  EXPECT_EQ(Img::char_to_wchar(wide, "path"), 4U);
  EXPECT_STREQ(wide, L"path");
  char narrow[24] = "-----------------------";
  EXPECT_EQ(Img::wchar_to_char(narrow, L"path"), 4U);
  EXPECT_STREQ(narrow, "path");
}

TEST(Img, ConvertingAnEmptyTextAnswersZeroAndWritesNothing) {
  wchar_t wide[2] = L"-";
  char narrow[2] = "-";
  EXPECT_EQ(Img::char_to_wchar(wide, ""), 0U);
  EXPECT_EQ(Img::wchar_to_char(narrow, L""), 0U);
  EXPECT_EQ(wide[0], L'-');
  EXPECT_EQ(narrow[0], '-');
}

TEST(Img, TextBeyondAsciiTakesUpToFourBytesACharacter) {
  const char* before = std::setlocale(LC_ALL, nullptr);  // NOLINT(concurrency-mt-unsafe): one thread
  const std::string kept = before ? before : "C";
  ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);  // NOLINT(concurrency-mt-unsafe)
  const wchar_t wide[] = {0x1F600, 0x20AC, 0xE4, 0};
  char narrow[16] = "---------------";
  EXPECT_EQ(Img::wchar_to_char(narrow, wide), 9U);
  EXPECT_STREQ(narrow, "\xF0\x9F\x98\x80\xE2\x82\xAC\xC3\xA4");
  wchar_t back[10] = L"---------";
  EXPECT_EQ(Img::char_to_wchar(back, narrow), 3U);
  EXPECT_STREQ(back, wide);
  EXPECT_EQ(Img::char_to_wchar(back, "a\xFF"), static_cast<std::size_t>(-1));
  std::setlocale(LC_ALL, kept.c_str());  // NOLINT(concurrency-mt-unsafe)
}
