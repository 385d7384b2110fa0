// Written EDIDs and configuration files on their whole road: request, work item, hardware, restart.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "calc/inputmode.h"
#include "maps/inputsource.h"
#include "maps/rvconfigmap.h"
#include "proto/store/data_common.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using Bytes = TestDaemon::Bytes;
using Fault = TestBoard::Fault;

class InputsRoad : public testing::Test {
 protected:
  void detect() { daemon.read(reg::kEdid, 1); }
  Bytes presented() { return daemon.read(reg::kEdid, kEdidBytes).data; }
  InputMode mode() { return modeOfEdid(presented()); }
  // A peer asks for it by the EDID that it reads.
  void ask(const InputMode& mode) {
    const EdidBytes made = madeFor(mode);
    daemon.write(reg::kEdid, Bytes(made.begin(), made.end()));
    daemon.workOff();
  }
  EdidBytes madeFor(const InputMode& mode) {
    EdidBytes edid{};
    std::ranges::copy(presented(), edid.begin());
    return ResT_calEDID_by_model_new(edid, mode).value();
  }
  TestDaemon daemon{"input = 0x10 dvi\ninput = 0x01 hdmi14\n"};
};

TEST_F(InputsRoad, ReadsAreAnsweredAtTheOneAddressAndInTheThreeLengths) {
  EXPECT_EQ(presented(), Bytes(256)) << "no board has been looked for";
  detect();
  EXPECT_EQ(mode(), (InputMode{1920, 1080, 6000}));
  EXPECT_EQ(daemon.read(reg::kEdid, 128).data.size(), 128U);
  EXPECT_TRUE(daemon.read(reg::kEdid, 64).data.empty());
  EXPECT_TRUE(daemon.read(reg::kEdid + 1, 128).data.empty());
}

TEST_F(InputsRoad, AStandardOutputThatNobodyReadsHoldsNothingUp) {
  fflush(stdout);
  const int before = dup(STDOUT_FILENO);
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  fcntl(ends[1], F_SETFL, O_NONBLOCK);
  while (write(ends[1], "full", 4) > 0) {
  }
  fcntl(ends[1], F_SETFL, 0);
  dup2(ends[1], STDOUT_FILENO);
  for (int i = 0; i < 400; ++i) presented();  // each says that there is no input
  fflush(stdout);
  dup2(before, STDOUT_FILENO);
  for (const int descriptor : {before, ends[0], ends[1]}) close(descriptor);
}

TEST_F(InputsRoad, AMissingOrFailingPieceAtAnyCallIsMadeUpForByTheNextWrite) {
  detect();
  const InputMode first{1280, 720, 6000};
  const EdidBytes second = madeFor({1024, 600, 5000});
  for (const Fault kind : {Fault::EdidLoad, Fault::EdidRead, Fault::FlashWrite, Fault::FlashRead}) {
    for (uint32_t n = 1;; ++n) {
      ask(first);
      daemon.restart();
      detect();
      ASSERT_EQ(mode(), first);
      const bool failed = daemon.failAt(kind, n, [&] {
        detect();
        daemon.write(reg::kEdid, Bytes(second.begin(), second.end()));
        daemon.workOff();
        presented();
      });
      const InputMode now = mode();
      EXPECT_TRUE(now == first || now == modeOfEdid(second));
      if (!failed) break;
    }
  }
}

TEST_F(InputsRoad, PowerMayGoAtEveryFlashWriteOfAnEdid) {
  detect();
  ask({1280, 720, 6000});
  const auto scenario = [this] { ask({800, 600, 6000}); };
  for (uint32_t n = 1; daemon.cutPowerAt(n, scenario); ++n) {
    daemon.powerOn();
    detect();
    EXPECT_EQ(mode(), (InputMode{1280, 720, 6000})) << "cut at write " << n;
  }
  EXPECT_EQ(mode().width, 800);
}

TEST_F(InputsRoad, AFileIsStoredReadBackAndPlayedAfterARestart) {
  Bytes header(64);
  header[0] = header[1] = 1;
  putLe32(header, 36, 0x2000);
  Bytes body(32);
  body[0] = 1;
  const Bytes item{0x01, 0x00, 0x00, 0x05, 0x00, 0x00, 0x01, 0x00, 0x77};
  body.insert(body.end(), item.begin(), item.end());
  daemon.write(rv::kHeader, header);
  daemon.write(rv::kHeader + 0x2000, body);
  daemon.write(rv::kControl, {9});
  daemon.connect();
  daemon.workOff();
  EXPECT_EQ(daemon.read(rv::kHeader + 0x2000, 41).data, body);
  const auto pushes = daemon.pushes();
  ASSERT_EQ(pushes.size(), 1U);
  EXPECT_EQ(pushes[0].address, rv::kControl);
  EXPECT_EQ(pushes[0].data, Bytes{1});
  daemon.restart();
  daemon.write(rv::kPlay, {1});
  daemon.workOff();
  EXPECT_EQ(daemon.board.card(1, 0, 3, 0x05000001, 1), Bytes{0x77});
}

}  // namespace
}  // namespace ORVE_MCUC
