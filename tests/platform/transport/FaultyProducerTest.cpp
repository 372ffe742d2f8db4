// Producers that answer wrongly or fail half-way: what was opened is closed again, and nothing else suffers.
#include <thread>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;
using mock::TextLie;

// ---- opening half-way -----------------------------------------------------------------------------------

struct Fault {
  const char* function;
  GenTL::GC_ERROR error;
  int result;
};

constexpr GenTL::GC_ERROR kWithoutHandle = MockProducer::kPretend;  // success, and no handle

class FaultyProducer : public TransportTest, public testing::WithParamInterface<Fault> {
 protected:
  void Break(const std::string& function, GenTL::GC_ERROR error) {
    mock_.SetHook(function, [error](const std::string&) { return error; });
  }
  void Mend(const std::string& function) { Break(function, GenTL::GC_ERR_SUCCESS); }

  // The closing of a failed open goes on in the background when the machine is slow.
  void ExpectHandles(int count) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (mock_.OpenHandles() != count && std::chrono::steady_clock::now() < deadline)
      std::this_thread::yield();
    EXPECT_EQ(mock_.OpenHandles(), count);
  }

  void ExpectServes(ICamera& camera) {
    ASSERT_EQ(camera.Open(ACCESS_CONTROL), RESULT_OK);
    ASSERT_EQ(camera.StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
    ASSERT_TRUE(mock_.SendFrame(Frame(9)));
    EXPECT_EQ(GrabOne(camera)->FrameID(), 9);
  }
};

std::string NameOfFault(const testing::TestParamInfo<Fault>& row) {
  return std::string(row.param.function) + (row.param.error == kWithoutHandle ? "WithoutHandle" : "Fails");
}

using FaultyOpen = FaultyProducer;

INSTANTIATE_TEST_SUITE_P(Table, FaultyOpen,
                         testing::Values(Fault{"IFOpenDevice", kWithoutHandle, RESULT_ERROR},
                                         Fault{"DevGetPort", GenTL::GC_ERR_IO, RESULT_UNREACHABLE},
                                         Fault{"DevGetPort", kWithoutHandle, RESULT_ERROR}),
                         NameOfFault);

TEST_P(FaultyOpen, ClosesWhatItOpenedAndCanBeTriedAgain) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  const int handles = mock_.OpenHandles();
  Break(GetParam().function, GetParam().error);
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), GetParam().result);
  EXPECT_FALSE(camera->IsOpen());
  EXPECT_EQ(camera->SetCLCameraParam("CardGain", "1"), RESULT_NOT_OPEN);
  ExpectHandles(handles);
  Mend(GetParam().function);
  ExpectServes(*camera);
}

using FaultyStream = FaultyProducer;

INSTANTIATE_TEST_SUITE_P(
    Table, FaultyStream,
    testing::Values(Fault{"DevGetNumDataStreams", GenTL::GC_ERR_ERROR, RESULT_NO_STREAM},
                    Fault{"DevGetDataStreamID", GenTL::GC_ERR_ERROR, RESULT_NO_STREAM},
                    Fault{"DevOpenDataStream", GenTL::GC_ERR_IO, RESULT_IO},
                    Fault{"DevOpenDataStream", kWithoutHandle, RESULT_ERROR},
                    Fault{"GCRegisterEvent", GenTL::GC_ERR_RESOURCE_EXHAUSTED, RESULT_EXHAUSTED},
                    Fault{"GCRegisterEvent", kWithoutHandle, RESULT_ERROR},
                    Fault{"DSAnnounceBuffer", GenTL::GC_ERR_INVALID_BUFFER, RESULT_INVALID_BUFFER},
                    Fault{"DSAnnounceBuffer", kWithoutHandle, RESULT_ERROR},
                    Fault{"DSQueueBuffer", GenTL::GC_ERR_IO, RESULT_IO},
                    Fault{"DSStartAcquisition", GenTL::GC_ERR_BUSY, RESULT_BUSY}),
    NameOfFault);

TEST_P(FaultyStream, LeavesACameraThatOpensAndClosesAndNamesTheCauseWhenItIsStarted) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  const int handles = mock_.OpenHandles();
  Break(GetParam().function, GetParam().error);
  ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  EXPECT_TRUE(camera->IsOnline());
  EXPECT_NE(camera->RemoteDeviceNodeMap()->NodeMap(), nullptr);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), GetParam().result);
  EXPECT_FALSE(camera->IsGrabbing());
  EXPECT_EQ(mock_.Announced(), 0U);
  EXPECT_EQ(camera->Close(), RESULT_OK);
  ExpectHandles(handles);
  Mend(GetParam().function);
  ExpectServes(*camera);
}

// ---- texts ----------------------------------------------------------------------------------------------

struct LieCase {
  const char* name;
  TextLie lie;
  bool isReadable;
  int started;  // without a name the stream cannot be opened; an empty one is tried
};

class LyingProducer : public FaultyProducer {
 protected:
  static constexpr LieCase kLies[] = {{"huge", TextLie::kHuge, false, RESULT_NO_STREAM},
                                      {"empty", TextLie::kEmpty, false, RESULT_OK},
                                      {"growing", TextLie::kGrowing, false, RESULT_NO_STREAM},
                                      {"unterminated", TextLie::kUnterminated, true, RESULT_OK}};
};

TEST_F(LyingProducer, CamerasWithoutAReadableNameAreLeftOutAndThoseOfOthersFound) {
  for (const LieCase& row : kLies) {
    SetPath(std::string(ZYN_MOCK_CTI) + ":" + ZYN_MOCK_OLD_CTI);
    mock_.SetInterfaces({MockInterface{"bad", "GEV", {MockDevice{"bad", "1"}}}});
    old_.SetInterfaces({MockInterface{"good", "GEV", {MockDevice{"good", "2"}}}});
    mock_.SetTextLie(row.lie);
    ASSERT_EQ(Init(), RESULT_OK) << row.name;
    const InfoList found = Discover();
    ASSERT_EQ(found.size(), row.isReadable ? 2U : 1U) << row.name;
    EXPECT_STREQ(found.front()->SerialNumber(), row.isReadable ? "1" : "good") << row.name;
    EXPECT_STREQ(found.back()->CameraID(), "good") << row.name;
    ASSERT_EQ(UnInit(), RESULT_OK);
  }
}

TEST_F(LyingProducer, ACameraWhoseProducerBeginsToLieStillOpensAndCloses) {
  for (const LieCase& row : kLies) {
    const CameraPtr camera(CreateCamera(OneCamera(mock_)));
    const int handles = mock_.OpenHandles();
    mock_.SetTextLie(row.lie);
    EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK) << row.name;
    // Without an address the description cannot be read.
    EXPECT_EQ(camera->RemoteDeviceNodeMap()->NodeMap() != nullptr, row.isReadable) << row.name;
    EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), row.started) << row.name;
    EXPECT_EQ(camera->Close(), RESULT_OK) << row.name;
    ExpectHandles(handles);
    mock_.SetTextLie(TextLie::kNone);
    ASSERT_EQ(UnInit(), RESULT_OK);
  }
}

}  // namespace
}  // namespace zyn::transport_test
