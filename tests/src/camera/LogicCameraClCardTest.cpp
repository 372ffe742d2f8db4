#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "CameraNode.h"
#include "FakeTransport.h"
#include "LogicCamera.h"
#include "SetWrapperValue.h"
#include "TestNodeMap.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::MemoryPort;

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

// A card whose features are in the local device's map; the camera's own map has none of them.
class ClCard : public testing::Test {
 protected:
  ClCard() {
    transport.cameras[&info] = {&device};
    device.localMap.map = card.Map();
    std::string pattern = (fs::temp_directory_path() / "clcard-XXXXXX").string();
    folder = mkdtemp(pattern.data());
  }
  ~ClCard() override {
    device.hook = nullptr;
    if (camera.IsOpen()) camera.Close();
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }

  std::string File(const std::string& content) {
    const fs::path path = folder / "card.cfg";
    std::ofstream(path, std::ios::binary) << content;
    return path.string();
  }
  long Apply(const std::string& content) {
    camera.Open(nullptr);
    return camera.SetClCardConfigFile(File(content).c_str());
  }
  int Int(const char* name) {
    ZynNode node;
    int value = -1;
    EXPECT_EQ(camera.GetDevNode(name, &node), ZYN_OK) << name;
    EXPECT_EQ(node.GetInt(&value), ZYN_OK) << name;
    return value;
  }
  float Float(const char* name) {
    ZynNode node;
    float value = -1;
    EXPECT_EQ(camera.GetDevNode(name, &node), ZYN_OK) << name;
    EXPECT_EQ(node.GetFloat(&value), ZYN_OK) << name;
    return value;
  }
  bool Flag() const { return card.port.Get(MemoryPort::kFlag) == 1; }
  std::string Mode() {
    ZynNode node;
    ZynString current;
    EXPECT_EQ(camera.GetDevNode("TriggerMode", &node), ZYN_OK);
    EXPECT_EQ(node.GetEnumString(&current, nullptr), ZYN_OK);
    return current.getStr();
  }

  fakes::FakeTransport transport;
  fakes::TestNodeMap card;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  LogicCamera camera{&info};
  fs::path folder;
};

struct LineCase {
  const char* name;
  std::string line;
  int width;  // what Width is afterwards; 640 at first
};

class ClCardLine : public ClCard, public testing::WithParamInterface<LineCase> {};

struct SplitCase {
  const char* name;
  std::string text;
  std::string separators;
  bool skipEmpty;
  Texts pieces;
};

class SplitString : public testing::TestWithParam<SplitCase> {};

struct TypeCase {
  const char* name;
  int type;
  long result;
};

class ClCardType : public ClCard, public testing::WithParamInterface<TypeCase> {};

}  // namespace

TEST_P(SplitString, GivesThePieces) {
  const SplitCase& test = GetParam();
  EXPECT_EQ(LogicCamera::splitString(test.text, test.separators, test.skipEmpty), test.pieces);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SplitString,
    testing::Values(SplitCase{"Nothing", "", ";", true, {}},
                    SplitCase{"NothingIsOneEmptyPiece", "", ";", false, {""}},
                    SplitCase{"NoSeparator", "ab", ";", true, {"ab"}},
                    SplitCase{"KeepsTheOrder", "b;a;c", ";", true, {"b", "a", "c"}},
                    SplitCase{"SkipsEmptyPieces", ";a;;b;", ";", true, {"a", "b"}},
                    SplitCase{"KeepsEmptyPieces", ";a;;b;", ";", false, {"", "a", "", "b", ""}},
                    SplitCase{"OnlySeparators", ";;", ";", true, {}},
                    SplitCase{"OnlySeparatorsKept", ";;", ";", false, {"", "", ""}},
                    SplitCase{"EverySeparatorCounts", "a=b;c,d", ";=,", true, {"a", "b", "c", "d"}},
                    SplitCase{"MixedSeparatorsLeaveEmptyPieces", "a=;b", ";=", false, {"a", "", "b"}},
                    SplitCase{"SpacesAreNoSeparators", " a ; b ", ";", true, {" a ", " b "}},
                    SplitCase{"ARepeatedSeparatorIsOne", "a;b", ";;", true, {"a", "b"}}),
    [](const auto& test) { return test.param.name; });

TEST(SplitStringUsage, NoSeparatorIsAUsageError) {
  EXPECT_THROW(LogicCamera::splitString("a", "", true), std::out_of_range);
}

TEST(StringTrim, RemovesEverySpaceInPlaceAndNothingElse) {
  std::string text = "  a b\tc  =\r 1 ";
  std::string& returned = LogicCamera::StringTrim(text);
  EXPECT_EQ(&returned, &text);
  EXPECT_EQ(text, "ab\tc=\r1");
  std::string spaces = "   ";
  EXPECT_EQ(LogicCamera::StringTrim(spaces), "");
  std::string empty;
  EXPECT_EQ(LogicCamera::StringTrim(empty), "");
}

TEST_P(ClCardLine, IsAppliedOrIgnored) {
  EXPECT_EQ(Apply(GetParam().line), ZYN_OK);
  EXPECT_EQ(Int("Width"), GetParam().width);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ClCardLine,
    testing::Values(LineCase{"Plain", "Width=320\n", 320}, LineCase{"WithoutALineEnd", "Width=320", 320},
                    LineCase{"Empty", "", 640}, LineCase{"OnlySpaces", "   \n", 640},
                    LineCase{"SpacesAndAComment", "Width = 320 ;comment\n", 320},
                    LineCase{"SpacesInsideNameAndValue", "Wi dth = 3 2 0\n", 320},
                    LineCase{"Comment", ";Width=320\n", 640},
                    LineCase{"CommentWithASpace", "; Width=320\n", 640},
                    LineCase{"CommentBehindSpaces", "  ;Width=320\n", 640},
                    LineCase{"DoubledComment", ";;Width=320\n", 640},
                    LineCase{"OnlyThePieceBeforeTheCommentCounts", "Width=320;Width=160\n", 320},
                    LineCase{"NoAssignment", "Width\n", 640}, LineCase{"NoValue", "Width=\n", 640},
                    LineCase{"NoValueBeforeAComment", "Width=;320\n", 640}, LineCase{"NoName", "=320\n", 640},
                    LineCase{"OnlyAnEqualsSign", "=\n", 640}, LineCase{"ThreePieces", "Width=320=160\n", 640},
                    LineCase{"ADoubledEqualsSignIsOne", "Width==320\n", 320},
                    LineCase{"AnEqualsSignInFrontIsDropped", "=Width=320\n", 320},
                    LineCase{"AnEqualsSignAtTheEndIsDropped", "Width=320=\n", 320},
                    LineCase{"NamesAreCaseSensitive", "width=320\n", 640},
                    LineCase{"ATabBelongsToTheName", "\tWidth=320\n", 640},
                    LineCase{"ATabBeforeANumberIsSkippedByTheConversion", "Width=\t320\n", 320},
                    LineCase{"ACarriageReturnBehindANumberIsIgnored", "Width=320\r\n", 320},
                    LineCase{"ATabBeforeACommentIsNoComment", "\t;Width=320\n", 640},
                    LineCase{"ASection", "[Width=320]\n", 640}, LineCase{"Quotes", "\"Width\"=320\n", 640},
                    LineCase{"TrailingCharactersAreIgnored", "Width=320px\n", 320},
                    LineCase{"ASign", "Width=+320\n", 320}, LineCase{"Base10Only", "Width=0x20\n", 640},
                    LineCase{"LeadingZerosAreDecimal", "Width=0320\n", 320},
                    LineCase{"AFractionIsCutOff", "Width=320.9\n", 320},
                    LineCase{"ARefusedValue", "Width=999999\n", 640},
                    LineCase{"TheLastAssignmentWins", "Width=320\nWidth=160\n", 160},
                    LineCase{"EmptyLinesBetween", "\n\n  \nWidth=320\n\n", 320},
                    LineCase{"ManyCharacters",
                             std::string(1U << 20, ' ') + "Width" + std::string(1U << 20, ' ') + "=320", 320},
                    LineCase{"ANulCharacter", std::string("A\0=1\nWidth=320", 14), 320}),
    [](const auto& test) { return test.param.name; });

TEST_F(ClCard, OnlyTheWordTrueSwitchesOn) {
  struct {
    const char* text;
    bool isOn;
  } const cases[] = {{"True", true},  {"true", false},  {"TRUE", false},   {"1", false},    {"Yes", false},
                     {"Tr ue", true}, {"True1", false}, {"True\r", false}, {"False", false}};
  for (const auto& test : cases) {
    if (camera.IsOpen()) camera.Close();
    fakes::FakeCamera fresh;
    transport.cameras[&info] = {&fresh};
    fresh.localMap.map = card.Map();
    card.Map()->InvalidateNodes();
    card.port.Put(MemoryPort::kFlag, test.isOn ? 0 : 1);
    EXPECT_EQ(Apply(std::string("Flag=") + test.text + "\n"), ZYN_OK);
    EXPECT_EQ(Flag(), test.isOn) << test.text;
    camera.Close();
  }
}

TEST_F(ClCard, AnEnumerationIsSetByItsEntry) {
  EXPECT_EQ(Apply("TriggerMode=On;Off\n"), ZYN_OK);
  EXPECT_EQ(Mode(), "On");
  EXPECT_EQ(camera.SetDevNodeValue("TriggerMode", "Off"), ZYN_OK);
  EXPECT_EQ(Mode(), "Off");
}

TEST_F(ClCard, AFloatReadsAsFloatsDo) {
  struct {
    const char* text;
    float value;
  } const cases[] = {{"12.5", 12.5F}, {"1.5e2", 150.0F}, {"+20", 20.0F}, {"30us", 30.0F}, {"0x1p5", 32.0F}};
  camera.Open(nullptr);
  for (const auto& test : cases) {
    EXPECT_EQ(camera.SetDevNodeValue("ExposureTimeAbs", test.text), ZYN_OK) << test.text;
    EXPECT_EQ(Float("ExposureTimeAbs"), test.value) << test.text;
  }
}

TEST_F(ClCard, AFeatureIsFoundUnderItsOlderNameToo) {
  EXPECT_EQ(Apply("ExposureTime=250\n"), ZYN_OK);
  EXPECT_EQ(Float("ExposureTimeAbs"), 250.0F);
}

TEST_F(ClCard, RecordsAreWrittenInTheOrderOfTheFileToTheLocalDeviceOnly) {
  fakes::TestNodeMap remote;
  device.remoteMap.map = remote.Map();
  EXPECT_EQ(Apply("Width=320\nFlag=True\nTriggerMode=On\n"), ZYN_OK);
  EXPECT_EQ(Int("Width"), 320);
  EXPECT_TRUE(Flag());
  EXPECT_EQ(Mode(), "On");
  EXPECT_EQ(remote.port.writes, 0);
}

TEST_F(ClCard, ARecordThatFailsIsPassedOver) {
  EXPECT_EQ(Apply("NoSuchFeature=1\nReset=1\nTriggerMode=Perhaps\nWidth=999999\nText=abc\nFlag=True\n"),
            ZYN_OK);
  EXPECT_TRUE(Flag());
}

TEST_F(ClCard, AFileWithOnlyBadRecordsIsASuccess) {
  EXPECT_EQ(Apply("NoSuchFeature=1\nOther=2\n"), ZYN_OK);
}

TEST_F(ClCard, ADeviceThatRefusesEveryWriteIsASuccessToo) {
  card.port.failsToWrite = true;
  EXPECT_EQ(Apply("Width=320\nFlag=True\nTriggerMode=On\n"), ZYN_OK);
  EXPECT_EQ(card.port.writes, 3);
}

TEST_F(ClCard, AFileThatCannotBeOpenedIsACode) {
  camera.Open(nullptr);
  EXPECT_EQ(camera.SetClCardConfigFile((folder / "missing").c_str()), ZYN_ERROR_CONFIG_FILE);
  EXPECT_EQ(camera.SetClCardConfigFile(folder.c_str()), ZYN_ERROR_CONFIG_FILE);
  EXPECT_EQ(camera.SetClCardConfigFile(""), ZYN_ERROR_CONFIG_FILE);
  EXPECT_EQ(camera.SetClCardConfigFile(nullptr), ZYN_ERROR_CONFIG_FILE);
}

TEST_F(ClCard, ATextThatIsNoNumberLeavesAsAnExceptionAndEndsTheReading) {
  EXPECT_THROW(Apply("Width=wide\nFlag=True\n"), std::invalid_argument);
  EXPECT_FALSE(Flag());
  struct {
    const char* name;
    const char* value;
    bool isRange;
  } const cases[] = {{"Width", "x1", false},
                     {"Width", "-", false},
                     {"Width", "3000000000", true},
                     {"ExposureTimeAbs", "long", false},
                     {"ExposureTimeAbs", "1e99", true}};
  for (const auto& test : cases) {
    if (test.isRange) {
      EXPECT_THROW(camera.SetDevNodeValue(test.name, test.value), std::out_of_range) << test.value;
    } else {
      EXPECT_THROW(camera.SetDevNodeValue(test.name, test.value), std::invalid_argument) << test.value;
    }
  }
}

TEST_F(ClCard, AnExceptionDoesNotLeaveTheFileOpen) {
  const auto openFiles = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  const auto before = openFiles();
  EXPECT_THROW(Apply("Width=wide\n"), std::invalid_argument);
  EXPECT_EQ(Apply("Width=320\n"), ZYN_OK);
  EXPECT_EQ(openFiles(), before);
}

TEST_F(ClCard, AFeatureThatIsNotThereAnswersTheLookUpsCode) {
  EXPECT_EQ(camera.SetDevNodeValue("Width", "320"), ZYN_ERROR_NOT_OPEN);
  camera.Open(nullptr);
  EXPECT_EQ(camera.SetDevNodeValue("NoSuchFeature", "1"), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(camera.SetDevNodeValue("Text", "abc"), ZYN_ERROR_UNSUPPORTED_NODE);
  device.localMap.map = nullptr;
  EXPECT_EQ(camera.SetDevNodeValue("Width", "320"), ZYN_ERROR_NO_NODE_MAP);
}

TEST_F(ClCard, TheSettersResultIsAnswered) {
  camera.Open(nullptr);
  EXPECT_EQ(camera.SetDevNodeValue("Width", "320"), ZYN_OK);
  EXPECT_EQ(camera.SetDevNodeValue("Width", "999999"), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.SetDevNodeValue("TriggerMode", "Perhaps"), ZYN_ERROR_EXCEPTION);
}

TEST_P(ClCardType, AnswersForEveryType) {
  camera.Open(nullptr);
  CameraNode behind(&camera, "Width", "Width", static_cast<ZynNodeType>(GetParam().type),
                    ZYN_XML_LOCAL_DEVICE);
  ZynNode node;
  SetWrapperValue(&node, &behind, false);
  EXPECT_EQ(LogicCamera::SetNodeValue(node, "320"), GetParam().result);
  EXPECT_EQ(card.port.writes, 0);
  EXPECT_EQ(Int("Width"), 640);
}

INSTANTIATE_TEST_SUITE_P(Table, ClCardType,
                         testing::Values(TypeCase{"Unknown", 0, 101096}, TypeCase{"Command", 5, 101096},
                                         TypeCase{"Text", 6, 0}, TypeCase{"Register", 7, 0},
                                         TypeCase{"Other", 8, 101096}, TypeCase{"Nine", 9, 0},
                                         TypeCase{"Beyond", 1000, 0}),
                         [](const auto& test) { return test.param.name; });

TEST_F(ClCard, ACommandCannotBeSet) {
  camera.Open(nullptr);
  EXPECT_EQ(camera.SetDevNodeValue("Reset", "1"), ZYN_ERROR_WRONG_NODE_TYPE);
  EXPECT_EQ(card.port.writes, 0);
}

// Opening with a file.

TEST_F(ClCard, OpenAppliesTheFile) {
  EXPECT_EQ(camera.Open(File("Width=320\n").c_str()), ZYN_OK);
  EXPECT_TRUE(camera.IsOpen());
  EXPECT_EQ(Int("Width"), 320);
}

TEST_F(ClCard, OpenWithoutAFileTouchesNoFeature) {
  EXPECT_EQ(camera.Open(nullptr), ZYN_OK);
  camera.Close();
  fakes::FakeCamera second;
  transport.cameras[&info] = {&second};
  EXPECT_EQ(camera.Open(""), ZYN_OK);
  camera.Close();
  EXPECT_EQ(device.calls.Count("LocalDeviceNodeMap") + second.calls.Count("LocalDeviceNodeMap"), 0);
  EXPECT_EQ(card.port.writes, 0);
}

TEST_F(ClCard, AFailingOpenNeverReadsTheFile) {
  // Reading would block: nobody ever writes into this pipe.
  const fs::path pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  device.openResult = -1;
  EXPECT_EQ(camera.Open(pipe.c_str()), ZYN_ERROR_OPEN_FAILED);
}

TEST_F(ClCard, AMissingFileIsReportedAndLeavesTheDeviceOpen) {
  EXPECT_EQ(camera.Open((folder / "missing").c_str()), ZYN_ERROR_CONFIG_FILE);
  EXPECT_TRUE(camera.IsOpen());
}

TEST_F(ClCard, OpenTurnsATextThatIsNoNumberIntoACodeAndLeavesTheDeviceOpen) {
  EXPECT_EQ(camera.Open(File("Flag=True\nWidth=wide\nTriggerMode=On\n").c_str()), ZYN_ERROR_EXCEPTION);
  EXPECT_TRUE(camera.IsOpen());
  EXPECT_TRUE(Flag());
  EXPECT_EQ(Mode(), "Off");
}

TEST_F(ClCard, OpenSaysAlreadyOpenWithoutReadingTheFile) {
  camera.Open(nullptr);
  EXPECT_EQ(camera.Open(File("Width=320\n").c_str()), ZYN_ERROR_ALREADY_OPEN);
  EXPECT_EQ(Int("Width"), 640);
}

TEST_F(ClCard, AnExceptionOfTheSoftwareTriggersLookUpDoesNotLeaveOpen) {
  device.hook = [](const std::string& call) {
    if (call == "LocalDeviceNodeMap") throw std::runtime_error("lost");
  };
  EXPECT_EQ(camera.Open(File("TriggerSoftware=1\n").c_str()), ZYN_ERROR_EXCEPTION);
}

// Parameters of the camera.

TEST_F(ClCard, AParameterGoesStraightToTheDevice) {
  camera.Open(nullptr);
  EXPECT_EQ(camera.SetCLCameraParam("Baud", "9600"), ZYN_OK);
  EXPECT_EQ(device.paramName, "Baud");
  EXPECT_EQ(device.paramValue, "9600");
}

TEST_F(ClCard, WhatTheDeviceSaysToAParameterIsNotReported) {
  camera.Open(nullptr);
  device.paramResult = -5;
  EXPECT_EQ(camera.SetCLCameraParam("Baud", "9600"), ZYN_OK);
}

TEST_F(ClCard, AParameterOfAClosedCameraHasACodeOfItsOwn) {
  EXPECT_EQ(camera.SetCLCameraParam("Baud", "9600"), ZYN_ERROR_NO_OBJECT);
}

TEST_F(ClCard, AnExceptionInAParameterIsACode) {
  camera.Open(nullptr);
  device.hook = [](const std::string& call) {
    if (call == "SetCLCameraParam") throw 42;
  };
  EXPECT_EQ(camera.SetCLCameraParam("Baud", "9600"), ZYN_ERROR_EXCEPTION);
}
