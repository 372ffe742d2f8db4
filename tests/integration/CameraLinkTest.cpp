/// A Camera Link camera over the whole chain: the simulated frame grabber, producer, transport, SDK. The card's
/// configuration file comes through Open, and every pixel is compared with the pattern that the camera sends.
#include <GenApi/GenApi.h>
#include <ZynCamera.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Chain.h"

namespace {

using namespace ZYNSDK;
namespace fs = std::filesystem;

/// A camera behind the card, closed; and a file for the card's settings.
class CameraLink : public testing::Test {
 protected:
  CameraLink() : camera_(chain::Find("CL-1")) {}
  ~CameraLink() override {
    camera_.StopGrab();
    if (camera_.IsOpen()) LoadDefaults();
    camera_.Close();
    std::remove(path_.c_str());
  }

  // The card forgets its settings when the camera is closed, the camera does not.
  void LoadDefaults() {
    SetCameraEnum("UserSetSelector", "Default");
    ZynNode load;
    EXPECT_EQ(camera_.GetRemoteNode("UserSetLoad", &load), 0);
    EXPECT_EQ(load.Execute(1000), 0);
  }

  long OpenWith(const std::string& settings) {
    std::ofstream(path_) << settings;
    return camera_.Open(path_.c_str());
  }

  ZynNode CardNode(const char* name) {
    ZynNode node;
    EXPECT_EQ(camera_.GetDevNode(name, &node), 0) << name;
    return node;
  }
  int CardInt(const char* name) {
    int value = -1;
    EXPECT_EQ(CardNode(name).GetInt(&value), 0) << name;
    return value;
  }
  float CardFloat(const char* name) {
    float value = -1;
    EXPECT_EQ(CardNode(name).GetFloat(&value), 0) << name;
    return value;
  }
  bool CardBool(const char* name) {
    bool value = false;
    EXPECT_EQ(CardNode(name).GetBool(&value), 0) << name;
    return value;
  }
  std::string CardEnum(const char* name) {
    ZynString value;
    EXPECT_EQ(CardNode(name).GetEnumString(&value, nullptr), 0) << name;
    return value.getStr();
  }

  void SetCameraEnum(const char* name, const char* entry) {
    ZynNode node;
    ASSERT_EQ(camera_.GetRemoteNode(name, &node), 0) << name;
    ZynString text;
    text = entry;
    ASSERT_EQ(node.SetEnumString(text), 0) << name;
  }

  long Start() { return camera_.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0); }

  ZynCamera camera_;
  ZynImage image_;
  const std::string path_ =
      (fs::temp_directory_path() / ("card-" + std::to_string(getpid()) + ".cfg")).string();
};

TEST_F(CameraLink, CamerasAreFoundAsSuch) {
  const std::unique_ptr<ZynCameraAttribute> attribute(camera_.Attribute());
  EXPECT_EQ(attribute->ProtocolType(), 4U);
  EXPECT_STREQ(attribute->CameraModel(), "ZS-CL1280");
  EXPECT_STREQ(attribute->CameraSerialNumber(), "CL-1");
  EXPECT_EQ(attribute->CameraStatus(), 0);
  EXPECT_STREQ(attribute->CameraVersion(), "");
  EXPECT_STREQ(attribute->CameraIp(), "");
  EXPECT_STREQ(attribute->CameraGUID(), "");
  EXPECT_FALSE(attribute->IsNetSegmentConsistent());
  EXPECT_FALSE(attribute->SetCameraAddress("198.18.1.9", nullptr, nullptr, false));

  ZynCameraArray cameras;
  ASSERT_EQ(DiscoveryCamerasByProtocolType(4, &cameras), 0);
  std::set<std::string> serials;
  for (unsigned int i = 0; i < cameras.length(); ++i) {
    const std::unique_ptr<ZynCameraAttribute> each(cameras[static_cast<int>(i)].Attribute());
    serials.insert(each->CameraSerialNumber());
  }
  EXPECT_EQ(serials, (std::set<std::string>{"CL-1", "CL-BUSY"}));
}

TEST_F(CameraLink, TheFilesSettingsArriveAtTheCardAndShapeTheFrames) {
  ASSERT_EQ(OpenWith("; the card\n"
                     "Width = 640 ; pixels\n"
                     "Height=480\n"
                     "\n"
                     "Offset X = 100\n"
                     "OffsetY==7\n"
                     "ReverseX = True\n"
                     "DigitalGain = 0.5\n"
                     "ClConfiguration = Medium;Full\n"
                     "TriggerSource=Line1\n"),
            0);
  EXPECT_EQ(CardInt("Width"), 640);
  EXPECT_EQ(CardInt("Height"), 480);
  EXPECT_EQ(CardInt("OffsetX"), 100);
  EXPECT_EQ(CardInt("OffsetY"), 7);
  EXPECT_TRUE(CardBool("ReverseX"));
  EXPECT_EQ(CardFloat("DigitalGain"), 0.5F);
  EXPECT_EQ(CardEnum("ClConfiguration"), "Medium");
  EXPECT_EQ(CardEnum("TriggerSource"), "Line1");
  EXPECT_EQ(chain::GetInt(camera_, "Width"), 1280) << "the camera itself is left alone";

  SetCameraEnum("TestPattern", "GreyHorizontalRamp");
  ASSERT_EQ(Start(), 0);
  for (int frame = 0; frame < 5; ++frame) {
    ASSERT_EQ(camera_.GrabImage(&image_, nullptr), 0);
    ASSERT_EQ(image_.Width(), 640);
    ASSERT_EQ(image_.Height(), 480);
    ASSERT_EQ(image_.Step(), 640);
    ASSERT_EQ(image_.Channels(), 1);
    int wrong = 0;
    for (int y = 0; y < 480; ++y) {
      for (int x = 0; x < 640; ++x) {
        const int sent = (100 + 639 - x) % 256;
        if (image_.ImageData()[y * 640 + x] != (sent + 1) / 2) ++wrong;  // half, rounded
      }
    }
    EXPECT_EQ(wrong, 0) << frame;
  }
}

TEST_F(CameraLink, TheExamplesFileIsAppliedAsAWhole) {
  ASSERT_EQ(camera_.Open(ZYN_EXAMPLE_CARD_FILE), 0);
  EXPECT_EQ(CardInt("Width"), 640);
  EXPECT_EQ(CardInt("Height"), 480);
  EXPECT_EQ(CardInt("OffsetX"), 320);
  EXPECT_EQ(CardInt("OffsetY"), 272);
  EXPECT_EQ(CardEnum("ClConfiguration"), "Base");
  EXPECT_EQ(CardInt("TapCount"), 2);
  EXPECT_EQ(CardEnum("PixelFormat"), "Mono8");
  EXPECT_TRUE(CardBool("ReverseX"));
  EXPECT_EQ(CardFloat("DigitalGain"), 1.5F);
  EXPECT_EQ(CardEnum("TriggerMode"), "Off");
  ASSERT_EQ(Start(), 0);
  ASSERT_EQ(camera_.GrabImage(&image_, nullptr), 0);
  EXPECT_EQ(image_.Width(), 640);
  EXPECT_EQ(image_.Height(), 480);
}

TEST_F(CameraLink, BitDepthAndTapsOfTheCardReachTheImages) {
  ASSERT_EQ(OpenWith("PixelFormat=Mono12\nTapCount=4\nClConfiguration=Medium\nHeight=16\n"), 0);
  SetCameraEnum("PixelFormat", "Mono12");
  SetCameraEnum("DeviceTapGeometry", "Geometry_1X4_1Y");
  SetCameraEnum("TestPattern", "GreyHorizontalRamp");
  ASSERT_EQ(Start(), 0);
  ASSERT_EQ(camera_.GrabImage(&image_, nullptr), 0);
  ASSERT_EQ(image_.Width(), 1280);
  ASSERT_EQ(image_.Height(), 16);
  ASSERT_EQ(image_.Step(), 2560);
  int wrong = 0;
  for (int x = 0; x < 1280; ++x) {
    const unsigned char* const at = image_.ImageData() + 15 * 2560 + 2 * x;
    if (at[0] + at[1] * 256 != x % 256 * 16) ++wrong;
  }
  EXPECT_EQ(wrong, 0);
}

TEST_F(CameraLink, AFileThatIsMissingIsToldAndTheCameraIsOpen) {
  EXPECT_EQ(camera_.Open((path_ + ".none").c_str()), 101044);
  EXPECT_TRUE(camera_.IsOpen());
  EXPECT_EQ(CardInt("Width"), 1280);
  EXPECT_EQ(Start(), 0);
  EXPECT_EQ(camera_.GrabImage(&image_, nullptr), 0);
  EXPECT_EQ(image_.Width(), 1280);
  EXPECT_EQ(camera_.StopGrab(), 0);
  EXPECT_EQ(camera_.Close(), 0);
  EXPECT_EQ(camera_.Open(fs::temp_directory_path().c_str()), 101044) << "a folder";
}

TEST_F(CameraLink, ANumberThatCannotBeReadEndsTheFileThere) {
  EXPECT_EQ(OpenWith("Width = 320\nHeight = tall\nOffsetX = 8\n"), 101040);
  EXPECT_TRUE(camera_.IsOpen());
  EXPECT_EQ(CardInt("Width"), 320);
  EXPECT_EQ(CardInt("Height"), 1024);
  EXPECT_EQ(CardInt("OffsetX"), 0);
}

TEST_F(CameraLink, WhatTheCardDoesNotHaveOrRefusesIsPassedOver) {
  EXPECT_EQ(OpenWith("Width = 0\n"             // below its range
                     "Width = 100000\n"        // beyond it
                     "TapCount = 11\n"         //
                     "PixelFormat = Mono14\n"  // no such entry
                     "ReverseX = true\n"       // only True is
                     "DigitalGain = 99\n"      //
                     "ExposureTime = 100\n"    // the camera's, not the card's
                     "DeviceID = other\n"      // read-only
                     "TriggerSoftware = 1\n"   // a command
                     "CardName = left\n"       // a text
                     "CardControl = 1\n"       // a category
                     "NoSuchFeature = 1\n"     //
                     "Height\n"                // no value
                     "Height = 1 = 2\n"        // two
                     "Height = 64\n"),
            0);
  EXPECT_EQ(CardInt("Width"), 1280);
  EXPECT_EQ(CardInt("TapCount"), 2);
  EXPECT_EQ(CardEnum("PixelFormat"), "Mono8");
  EXPECT_FALSE(CardBool("ReverseX"));
  EXPECT_EQ(CardFloat("DigitalGain"), 1.0F);
  EXPECT_EQ(CardInt("Height"), 64) << "what follows is applied all the same";
}

TEST_F(CameraLink, ACameraThatDoesNotOpenLeavesTheFileAlone) {
  ZynCamera busy = chain::Find("CL-BUSY");
  EXPECT_EQ(busy.Open((path_ + ".none").c_str()), 101008);
  EXPECT_FALSE(busy.IsOpen());
}

TEST_F(CameraLink, ASecondOpenIsRefusedAndAppliesNothing) {
  ASSERT_EQ(OpenWith("Width = 320\n"), 0);
  EXPECT_EQ(OpenWith("Width = 160\n"), 101013);
  EXPECT_EQ(CardInt("Width"), 320);
}

TEST_F(CameraLink, SettingsLastUntilTheCameraIsClosed) {
  ASSERT_EQ(OpenWith("Width = 320\n"), 0);
  ASSERT_EQ(camera_.Close(), 0);
  ASSERT_EQ(camera_.Open(nullptr), 0);
  EXPECT_EQ(CardInt("Width"), 1280);
  ASSERT_EQ(camera_.Close(), 0);
  ASSERT_EQ(camera_.Open(""), 0);
  EXPECT_EQ(CardInt("Width"), 1280);
}

TEST_F(CameraLink, ParametersReachTheCardWhateverItSaysToThem) {
  EXPECT_EQ(camera_.SetCLCameraParam("Width", "320"), 101001) << "not open";
  ASSERT_EQ(camera_.Open(nullptr), 0);
  EXPECT_EQ(camera_.SetCLCameraParam("Width", "320"), 0);
  EXPECT_EQ(camera_.SetCLCameraParam("Height", "-1"), 0);
  EXPECT_EQ(camera_.SetCLCameraParam("NoSuchFeature", "1"), 0);
  EXPECT_EQ(camera_.SetCLCameraParam("ReverseX", "1"), 0);
  EXPECT_EQ(camera_.SetCLCameraParam("PixelFormat", "Mono10"), 0);
  EXPECT_EQ(CardInt("Width"), 320);
  EXPECT_EQ(CardInt("Height"), 1024);
  EXPECT_TRUE(CardBool("ReverseX"));
  EXPECT_EQ(CardEnum("PixelFormat"), "Mono10");
}

TEST_F(CameraLink, TapsThatTheConfigurationDoesNotCarryKeepTheStreamFromStarting) {
  ASSERT_EQ(OpenWith("TapCount = 4\n"), 0);
  EXPECT_NE(Start(), 0);
  EXPECT_FALSE(camera_.IsGrabbing());
  ASSERT_EQ(camera_.SetCLCameraParam("ClConfiguration", "Medium"), 0);
  EXPECT_EQ(Start(), 0);
}

TEST_F(CameraLink, MoreThanTheCameraSendsMakesIncompleteFrames) {
  ASSERT_EQ(OpenWith("Height = 1025\n"), 0);
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(camera_.GrabImage(&image_, nullptr), 101084);
}

TEST_F(CameraLink, ACardOnTriggersDeliversOneImageForEach) {
  ASSERT_EQ(OpenWith("TriggerMode = On\nTriggerSource = Software\nHeight = 16\n"), 0);
  ASSERT_EQ(camera_.SetGrabTimeout(1), 0);
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(camera_.GrabImage(&image_, nullptr), 101023);
  ASSERT_EQ(camera_.SetGrabTimeout(20000), 0);
  ZynNode trigger = CardNode("TriggerSoftware");
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(trigger.Execute(1000), 0);
    EXPECT_EQ(camera_.GrabImage(&image_, nullptr), 0) << i;
  }
  ASSERT_EQ(camera_.SetGrabTimeout(1), 0);
  EXPECT_EQ(camera_.GrabImage(&image_, nullptr), 101023) << "one each, and no more";
}

TEST_F(CameraLink, AFileForACameraWithoutACardDoesNothing) {
  ZynCamera other = chain::Find("GV-1");
  std::ofstream(path_) << "Width = 320\n";
  ASSERT_EQ(other.Open(path_.c_str()), 0);
  EXPECT_EQ(chain::GetInt(other, "Width"), 640);
  EXPECT_EQ(other.Close(), 0);
}

std::vector<std::string> Texts(const ZynStringArray& array) {
  std::vector<std::string> texts;
  for (unsigned int i = 0; i < array.length(); ++i) texts.emplace_back(array[static_cast<int>(i)].getStr());
  return texts;
}

TEST(CameraLinkInstalled, DriversAndPortsAreListed) {
  const fs::path folder = fs::temp_directory_path() / ("camera-link-" + std::to_string(getpid()));
  fs::create_directories(folder);
  const fs::path driver = folder / "libDriver.so";
  fs::copy_file(ZYN_CL_PROTOCOL_DRIVER, driver);
  fs::copy_file(ZYN_CL_SERIAL_LIBRARY, folder / "libclserTest.so");
  setenv("GENICAM_CLPROTOCOL", folder.c_str(), 1);
  setenv("CLSERIALPATH", folder.c_str(), 1);
  EXPECT_EQ(Texts(GetCLCameraProtocols()), std::vector<std::string>{driver.string()});
  const std::vector<std::string> ports = Texts(GetCLCameraSerials());
  for (const char* port : {"Grabbers#Port 0", "Grabbers#Port 1"})
    EXPECT_EQ(std::count(ports.begin(), ports.end(), port), 1) << port;
  unsetenv("GENICAM_CLPROTOCOL");
  unsetenv("CLSERIALPATH");
  fs::remove_all(folder);
  EXPECT_EQ(Texts(GetCLCameraProtocols()), std::vector<std::string>{});
}

}  // namespace
