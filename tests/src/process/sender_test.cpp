// The sending card's commands, port tables, identity and factory reset, through the daemon.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "daemontest.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

using Bytes = peer::Bytes;
constexpr uint32_t kAlways = 0xFFFFFFFF;  // calls that fail

Bytes counting(std::size_t count, uint8_t first = 1) {
  Bytes bytes(count);
  for (uint8_t& byte : bytes) byte = first++;
  return bytes;
}

class SenderTest : public DaemonTest {
 protected:
  SenderTest() : DaemonTest("journal = all\n") {}
  explicit SenderTest(const std::string& conf) : DaemonTest(conf) {}
  static Data_Global& store() { return *Data_Global::getInstance(); }
  std::vector<std::string> linesWith(const std::string& word) const {
    std::vector<std::string> lines;
    for (const std::string& line : daemon.board.journal())
      if (line.starts_with(word)) lines.push_back(line);
    return lines;
  }
};

TEST_F(SenderTest, CommandsAreDoneOrQueuedOrRefused) {
  write(0x01000000, {5});
  EXPECT_EQ(store().LocalAddr, 5);
  write(0x01000003, {0, 0, 1, 0xD8, 0x0A});
  EXPECT_EQ(fpga(0x1D8, 1), Bytes{0x0A});
  for (const Bytes& shortOnes : {Bytes{0}, Bytes{0, 0, 1, 0xD8}}) {
    const std::size_t before = linesWith("fpga-write").size();
    EXPECT_THAT(write(0x01000003, shortOnes), IsRefused());
    EXPECT_EQ(linesWith("fpga-write").size(), before);
  }
  EXPECT_EQ(daemon.write(0x01000006, {1}).ack, 4);
  EXPECT_THAT(read(0x01000001, 1), CarriesNothing());
  for (const uint32_t idle : {0x01000005U, 0x01000020U}) {
    EXPECT_EQ(daemon.write(idle, {1}).ack, 0);
    EXPECT_EQ(daemon.workOff(), 0U);
  }
  for (const uint32_t queued : {0x01000001U, 0x01000004U, 0x01000018U, 0x010000FFU}) {
    EXPECT_EQ(daemon.write(queued, {1}).ack, 0);
    EXPECT_EQ(daemon.workOff(), 1U) << queued;
  }
}

TEST_F(SenderTest, PositionsAreThoseOfTheFpga) {
  write(0x03000100, counting(16));
  EXPECT_EQ(fpga(0x600100, 16), counting(16));
  EXPECT_THAT(read(0x03000100, 16), Carries(counting(16)));
  EXPECT_THAT(read(0x03009FF0, 32), CarriesNothing());
  write(0x03009FF0, counting(32));
  EXPECT_EQ(fpga(0x600000 + 0x9FF0, 32), Bytes(32, 0)) << "it ends behind the tables";
  daemon.board.failNext(Fault::FpgaRead, kAlways);
  EXPECT_THAT(read(0x03000100, 16), CarriesNothing());
}

// Positions of the number table and the registers of their blocks.
struct NumberBlock {
  uint32_t at;
  uint32_t fpga;
  uint16_t length;
};
constexpr NumberBlock kBlocks[] = {{0x000, 0x500000, 128},
                                   {0x080, 0x501000, 128},
                                   {0x100, 0x500100, 256},
                                   {0x200, 0x502000, 128},
                                   {0x280, 0x503000, 128}};

TEST_F(SenderTest, CardCountsLieInFiveBlocksAndAShortAccessTouchesItsOwn) {
  for (const NumberBlock& block : kBlocks)
    daemon.board.setFpga(block.fpga, counting(block.length, static_cast<uint8_t>(block.at >> 4)));
  for (const NumberBlock& block : kBlocks) {
    const auto before = linesWith("fpga-read").size();
    const auto first = static_cast<uint8_t>(block.at >> 4);
    EXPECT_THAT(read(0x03100010 + block.at, 2),
                Carries(Bytes{static_cast<uint8_t>(first + 16), static_cast<uint8_t>(first + 17)}));
    EXPECT_EQ(linesWith("fpga-read").size(), before + 1);
    write(0x03100020 + block.at, {0xAB, 0xCD});
    EXPECT_EQ(fpga(block.fpga + 0x20, 2), (Bytes{0xAB, 0xCD}));
  }
  const auto before = linesWith("fpga-read").size();
  EXPECT_EQ(read(0x03100000, 768).data.size(), 768U);
  EXPECT_EQ(linesWith("fpga-read").size(), before + std::size(kBlocks));
  EXPECT_THAT(read(0x031002F8, 16), CarriesNothing());
  daemon.write(0x031002FE, {1, 2, 3, 4});
  EXPECT_EQ(daemon.workOff(), 0U);
  daemon.board.fault(Fault::FpgaRead, {kAlways, 2});
  EXPECT_THAT(read(0x03100000, 16), CarriesNothing());
}

TEST_F(SenderTest, IdentityTakesWhatItsRowsNameAndNothingElse) {
  constexpr uint32_t kPage = 0x1000;
  Bytes page = counting(256);
  daemon.board.setFlash(kPage, page);
  const auto expectAfter = [&](uint32_t at, const Bytes& sent, uint32_t changed, const Bytes& bytes) {
    write(at, sent);
    std::copy(bytes.begin(), bytes.end(), page.begin() + changed);
    EXPECT_TRUE(flashHolds(kPage, page)) << at << " with " << sent.size();
  };
  expectAfter(2, {0xA1, 0xA2}, 2, {0xA1, 0xA2});
  expectAfter(2, {1, 2, 3}, 0, {});
  expectAfter(7, {0xB1, 0xB2}, 7, {0xB1, 0xB2});
  expectAfter(10, {0xC1, 0xC2, 9, 9, 9}, 10, {0xC1, 0xC2});
  Bytes whole(256, 0xEE);
  const Bytes serial{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
  std::copy(serial.begin(), serial.end(), whole.begin() + 0x16);
  expectAfter(0, whole, 0x16, serial);
  EXPECT_THAT(daemon.board.text("etc/sysconf.env"), testing::HasSubstr("device_sn=0123456789abcdef\n"));
  expectAfter(0x3D, {0, 2, 0, 0, 0, 0, 0x5A}, 0x3D, {0, 2, 0, 0, 0, 0, 0x5A});
  EXPECT_EQ(journaled("fw_setenv ethaddr 02:00:00:00:00:5a"), 1U);
  daemon.board.failNext(Fault::FlashRead, kAlways);
  write(2, {1, 0});
  daemon.board.clearFaults();
  EXPECT_TRUE(flashHolds(kPage, page)) << "zeros never replace what could not be read";
}

struct Reset {
  const char* name;
  const char* conf;
  uint8_t type;
  bool keepsDhcp;
  bool keepsFiles;
  Bytes card;  // width and height
};

constexpr uint32_t kHeads[] = {0xD14000, 0xE00000};  // of files, of which four bytes are kept

class ResetTest : public SenderTest, public testing::WithParamInterface<Reset> {
 protected:
  ResetTest() : SenderTest(GetParam().conf) {}
};

TEST_P(ResetTest, GoesThroughTheRebootToTheFirstBoot) {
  const Reset& reset = GetParam();
  const std::filesystem::path stored = daemon.board.file("usr/orve/etc/lsd/cabCfg/RvCfgFile_0.rcfgx");
  std::filesystem::create_directories(stored.parent_path());
  std::ofstream(stored) << "file";
  daemon.board.setFlash(0x00201A, {9});
  daemon.board.setFlash(0x003000, counting(8));
  for (const uint32_t head : kHeads) daemon.board.setFlash(head, counting(8));
  daemon.board.setFlash(0xD17000, {0x41});
  daemon.board.setFlash(0xB8B000, counting(16));
  EXPECT_EQ(write(0x01000002, {reset.type}).ack, 0);
  EXPECT_EQ(store().RebootRF, 3);
  daemon.tick();
  EXPECT_EQ(store().RebootRF, 1);
  EXPECT_EQ(std::filesystem::exists(stored), reset.keepsFiles);
  EXPECT_EQ(fpga(0x1DE, 1), Bytes{0});
  EXPECT_EQ(journaled("factory-write 0x00d17000 1 42"), 1U) << "one change of the screen more";
  EXPECT_EQ(flash(0x003000, 8), counting(8)) << "the flash itself is not touched";
  daemon.tick();
  ASSERT_FALSE(daemon.board.hasPower());
  daemon.powerOn();

  EXPECT_EQ(flash(0xC20008, 8), reset.card);
  EXPECT_EQ(flash(0xC20030, 4), (Bytes{0, 1, 1, 1}));
  EXPECT_EQ(flash(0xB99016, 3), (Bytes{1, 1, 1}));
  EXPECT_EQ(flash(0x00201A, 1), Bytes{static_cast<uint8_t>(reset.keepsDhcp ? 9 : 0)});
  EXPECT_EQ(flash(0x003000, 8), reset.keepsFiles ? counting(8) : Bytes(8, 0));
  for (const uint32_t head : kHeads) {
    Bytes kept = reset.keepsFiles ? counting(4) : Bytes(4);
    kept.resize(8);
    EXPECT_EQ(flash(head, 8), kept) << head;
  }
  EXPECT_EQ(flash(0xB8B000, 16), Bytes(16, 0));
  EXPECT_EQ(store().RebootRF, 0);
}

constexpr uint8_t kUnknownType = 9;
const Bytes kMeasured{0x40, 1, 0, 0, 32, 0, 0, 0};
const Bytes kAssumed{128, 0, 0, 0, 128, 0, 0, 0};
constexpr const char* kCopper = "card_width = 320\ncard_height = 32\n";
constexpr const char* kFiber = "copper_ports =\nfiber2_ports = 2\ncard_width = 320\ncard_height = 32\n";
constexpr const char* kNoLink = "copper_ports =\ncard_width = 320\ncard_height = 32\n";
INSTANTIATE_TEST_SUITE_P(Types, ResetTest,
                         testing::Values(Reset{"Copper0", kCopper, 0, true, false, kMeasured},
                                         Reset{"Copper1", kCopper, 1, false, false, kMeasured},
                                         Reset{"Copper2", kCopper, 2, true, true, kMeasured},
                                         Reset{"Fiber0", kFiber, 0, true, false, kMeasured},
                                         Reset{"NoLink2", kNoLink, 2, true, true, kAssumed},
                                         Reset{"Unknown", kCopper, kUnknownType, true, false, kMeasured}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SenderTest, AResetGoesOnBehindWhateverFailsAndIsNotLostToAReload) {
  for (const Fault kind : {Fault::FlashRead, Fault::FactoryWrite, Fault::CardWrite, Fault::FpgaWrite}) {
    daemon.board.failNext(kind, kAlways);
    write(0x01000002, {2});
    write(0x01000002, {2});
    write(0x01000004, {1});
    daemon.tick();
    EXPECT_EQ(store().RebootRF, 1);
    daemon.tick();
    EXPECT_FALSE(daemon.board.hasPower());
    daemon.board.clearFaults();
    daemon.powerOn();
    EXPECT_EQ(store().RebootRF, 0);
  }
}

}  // namespace
}  // namespace ORVE_MCUC
