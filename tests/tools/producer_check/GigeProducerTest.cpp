// The GigE Vision producer keeps every rule, with a camera of ours and with one that nobody here wrote.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FakeGigeCamera.h"
#include "PrivateNetwork.h"
#include "ProducerCheck.h"

namespace {

using namespace zyn::producercheck;

void ExpectAllPassed() {
  const std::vector<CheckResult> results = CheckProducer(ZYN_GIGE_PRODUCER, {});
  EXPECT_EQ(results.size(), AllChecks().size());
  for (const CheckResult& result : results)
    EXPECT_EQ(result.outcome, Outcome::kPassed) << result.name << ": " << result.sentence;
}

TEST(GigeProducerCheck, PassesWithAVirtualCamera) {
  ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this with scripts/in-namespace.sh, or through ctest";
  zyntest::ChildProcess camera({ZYN_VIRTUAL_CAMERA, "-a", "127.0.0.1"}, zyntest::ChildProcess::WithOutput());
  camera.NextLine();  // it answers now
  ExpectAllPassed();
}

TEST(GigeProducerCheck, PassesWithACameraThatNobodyHereWrote) {
  ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this with scripts/in-namespace.sh, or through ctest";
  const zyntest::FakeGigeCamera camera(1);
  ExpectAllPassed();
}

}  // namespace
