#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "FakeImage.h"
#include "Img.h"

using fakes::FakeImage;
using ZYNSDK::Img;

using Calls = std::vector<std::string>;

TEST(ImgFromFrame, AsksInAFixedOrderAndCopiesTheBytes) {
  FakeImage frame(4, 3, 1, 10);
  const Img image(&frame);
  EXPECT_EQ(frame.calls.Names(), (Calls{"IsValid", "Height", "Width", "Channels", "Step", "Data"}));
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(image.Height(), 3);
  EXPECT_EQ(image.Channels(), 1);
  EXPECT_EQ(image.Step(), 10);
  EXPECT_EQ(image.Type(), ZYNSDK::ZYN_IMAGE_U8);
  EXPECT_EQ(std::vector<unsigned char>(image.Data(), image.Data() + 30), frame.Bytes());
  EXPECT_NE(image.Data(), frame.Bytes().data());
}

TEST(ImgFromFrame, AnInvalidFrameGivesAnEmptyImage) {
  FakeImage frame(4, 3, 1, 10);
  frame.isValid = false;
  const Img image(&frame);
  EXPECT_EQ(frame.calls.Names(), (Calls{"IsValid"}));
  EXPECT_EQ(image.Width(), 0);
  EXPECT_EQ(image.Data(), nullptr);
}

TEST(ImgFromFrame, AFrameWithoutBytesKeepsItsNumbers) {
  FakeImage frame(4, 0, 1, 10);
  const Img image(&frame);
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(image.Height(), 0);
  EXPECT_EQ(image.Data(), nullptr);
  EXPECT_EQ(frame.calls.Count("Data"), 0);
}

TEST(ImgFromFrame, ANegativeProductMakesNoBuffer) {
  FakeImage frame(4, -3, 1, 10);
  const Img image(&frame);
  EXPECT_EQ(image.Height(), -3);
  EXPECT_EQ(image.Data(), nullptr);
}

TEST(ImgFromFrame, AFrameThatCannotGiveItsPixelsLeavesABufferOfNoOtherImage) {
  const std::size_t bytes = 100000;  // large enough to be recycled
  {
    FakeImage bright(1000, 100, 1, 1000);
    bright.Bytes().assign(bytes, 255);
    const Img image(&bright);
  }
  FakeImage frame(1000, 100, 1, 1000);
  frame.throwsOnData = true;
  const Img image(&frame);
  EXPECT_EQ(image.Width(), 1000);
  EXPECT_EQ(std::vector<unsigned char>(image.Data(), image.Data() + bytes),
            std::vector<unsigned char>(bytes, 0));
}

TEST(ImgFromFrame, NoFrameGivesAnEmptyImage) {
  const Img image(nullptr);
  EXPECT_EQ(image.Data(), nullptr);
}

TEST(ImgFromFrame, TheDeepCopyOfAnImageWithoutABufferIsWhollyEmpty) {
  FakeImage frame(4, 0, 1, 10);
  const Img image(&frame);
  ASSERT_EQ(image.Width(), 4);
  const std::unique_ptr<Img> copy(image.Clone());
  EXPECT_EQ(copy->Width() + copy->Height() + copy->Step() + copy->Channels(), 0);
  EXPECT_EQ(copy->Data(), nullptr);
}
