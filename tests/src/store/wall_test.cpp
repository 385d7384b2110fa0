// Walls from a peer's write to image, FPGA and flash, in sizes and places where two things could be taken for
// one another.
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "maps/shortcutrecord.h"
#include "proto/store/porttables.h"
#include "store_fixture.h"

namespace ORVE_MCUC {
namespace {

constexpr uint32_t kConfig = reg::kShortcutConfigScreen;

class WallTest : public testing::Test {
 protected:
  using Bytes = TestBoard::Bytes;
  WallTest() : daemon("copper_ports = 0-15\ncard_width = 97\ncard_height = 81\n") {}

  static Data_Global& store() { return *Data_Global::getInstance(); }
  static Bytes words(std::initializer_list<unsigned> values) {
    Bytes bytes;
    for (const unsigned value : values) {
      bytes.push_back(static_cast<uint8_t>(value));
      bytes.push_back(static_cast<uint8_t>(value >> 8));
    }
    return bytes;
  }
  uint8_t submit(uint8_t rows, uint8_t columns, uint16_t cards, uint8_t mode) {
    Bytes fields(9);
    fields[0] = mode;
    fields[5] = rows;
    fields[6] = columns;
    fields[7] = static_cast<uint8_t>(cards);
    fields[8] = static_cast<uint8_t>(cards >> 8);
    return daemon.write(kConfig + 0x11, fields).ack;
  }
  // The same in image, FPGA and flash.
  void expectFeature(uint32_t at, const Bytes& bytes) const {
    Bytes image(bytes.size());
    EXPECT_TRUE(store().SendParameterReg.copyTo(image, at));
    EXPECT_EQ(image, bytes) << at;
    EXPECT_EQ(daemon.board.fpga(at, bytes.size()), bytes) << at;
    EXPECT_EQ(daemon.board.flash(flash::ofFeature(at), bytes.size()), bytes) << at;
  }
  void expectRoles(const std::string& ports) const {
    for (unsigned port = 0; port < kOutputPorts; ++port)
      expectFeature(fpga::portRole(port), {ports[port] == 'b' ? uint8_t{0x80} : uint8_t{0}});
  }

  TestDaemon daemon;
};

TEST_F(WallTest, OddCardsKeepTheirSizeAndOnlyTheScreensWidthIsRounded) {
  daemon.tick(2);
  ASSERT_EQ(submit(2, 3, 3, 0), 0);
  daemon.settle();
  expectFeature(fpga::kOutputWidth, words({291, 162}));
  expectFeature(fpga::kScreenWidth, words({292, 162}));
  expectFeature(fpga::kMappedWidth, words({291}));
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    expectFeature(fpga::portWindow(port), words({291, 81, 0, port % 2 * 81}));
    EXPECT_EQ(daemon.board.fpga(cardCountOnFpga(port), 2), words({3})) << port;
    EXPECT_EQ(daemon.board.fpga(portTableOnFpga(port), 16), words({0, 0, 97, 0, 194, 0, 0, 0})) << port;
  }
  EXPECT_EQ(daemon.board.flash(flash::kScreenPara, 15),
            (Bytes{1, 0x55, 0, 0, 0, 0, 97, 0, 81, 0, 2, 3, 0, 3, 0}));
  EXPECT_EQ(daemon.board.flash(flash::kScreenSize, 8), (Bytes{0x23, 1, 0, 0, 162, 0, 0, 0}));
}

TEST_F(WallTest, WhatASubmissionSetsIsFoundByWhateverComesLater) {
  store().NormalBackupStatus = 0;
  store().SendParameterReg[fpga::kBackupMark] = 0x5A;
  store().SendParameterReg[fpga::kMappingOption] = 1;
  const Bytes offset{1, 2, 3, 4};
  ASSERT_TRUE(store().SendParameterReg.copyFrom(offset, fpga::kScreenOffsetX));
  daemon.board.setFpga(fpga::kScreenOffsetX, offset);
  daemon.board.setFlash(flash::kScreenChangeCounter, {0xFF});
  ASSERT_EQ(submit(1, 2, 2, 0), 0);
  EXPECT_EQ(store().ShortCfgReadRvStatus, 1) << "measured once for what follows";
  EXPECT_EQ(store().CalculateParaHandlerCnt, 0U);
  EXPECT_EQ(daemon.workOff(), 1U);
  EXPECT_EQ(store().CalculateParaHandlerCnt, 1U);
  EXPECT_EQ(store().NormalBackupStatus, 1);
  EXPECT_EQ(daemon.board.flash(flash::ofFeature(fpga::kBackupMark), 1), Bytes{0xFF});
  EXPECT_EQ(daemon.board.fpga(fpga::kScreenOffsetX, 4), Bytes(4));
  EXPECT_EQ(daemon.board.flash(flash::kScreenChangeCounter, 1), Bytes{0}) << "counted, and wrapped";
  expectFeature(fpga::kOutputWidth, words({194, 81}));
  daemon.settle();
  EXPECT_EQ(store().ShortCfgReadRvStatus, 0);
  EXPECT_EQ(store().LEDConfigStatus, shortcut::kSmart);
  EXPECT_EQ(daemon.board.flash(flash::kShortcutConfig, 1), Bytes{shortcut::kSmart});
  expectFeature(fpga::kScreenOffsetX, Bytes(4));
  expectFeature(fpga::kMappingOption, {0});
  expectFeature(fpga::kBackupMark, {0xFF});
}

TEST_F(WallTest, LinkedPortsBeyondTheUsedOnesAreBackupsUnlessAPeerHasMarkedThem) {
  daemon.tick(2);
  ASSERT_EQ(submit(3, 1, 1, 0), 0);
  daemon.settle();
  expectRoles("mmmbbbbbbbmmmmmm");
  store().NormalBackupStatus = 0;
  ByteImage<1024> table;
  for (const std::size_t at : {4U, 6U}) table.putLe16(at, 1);
  table.putLe16(2, 3);
  ByteImage<32> chars;
  store().CalculateParaOfSenderInMosaicMode(table, chars);
  expectRoles("mmmmmmmmmmmmmmmm");
  chars[kTempRoleAt] = 1;
  store().CalculateParaOfSenderInMosaicMode(table, chars);
  expectRoles("bbbbbbbbbbbbbbbb");
  store().SendMasterOrBackup(0);
  expectRoles("mmmmmmmmmmmmmmmm");
  store().SendMasterOrBackup(9);
  expectRoles("bbbbbbbbbbbbbbbb");
}

TEST_F(WallTest, AMarkThatASubmissionClearsDoesNotComeBackWithAPeersRead) {
  daemon.tick(2);
  daemon.write(reg::ofFeature(fpga::kBackupMark), {fpga::kMasterMark});
  daemon.workOff();
  ASSERT_EQ(submit(3, 1, 1, 0), 0);
  daemon.workOff();
  daemon.read(reg::kFeature, 512);
  daemon.settle();
  expectFeature(fpga::kBackupMark, {fpga::kNoMark});
}

TEST_F(WallTest, ASlaveWhoseRoleCannotBeReadIsNotMadeAMaster) {
  const struct {
    const char* name;
    bool untilSubmitted;
  } cases[] = {{"never readable", false}, {"readable once submitted", true}};
  const Bytes backup{fpga::kBackup};
  for (const auto& [name, untilSubmitted] : cases) {
    SCOPED_TRACE(name);
    daemon.board.setFlash(flash::kRole, {1});
    for (unsigned port = 0; port < kOutputPorts; ++port)
      daemon.board.setFlash(flash::ofFeature(fpga::portRole(port)), backup);
    daemon.board.fault(TestBoard::Fault::FlashRead, {TestBoard::kEveryCall, 0, flash::kRole, flash::kRole});
    daemon.restart();
    ASSERT_EQ(submit(3, 1, 1, 0), 0);
    daemon.workOff();
    if (untilSubmitted) daemon.board.clearFaults();
    daemon.settle();
    expectRoles("bbbbbbbbbbbbbbbb");
    ASSERT_EQ(store().AdvCalcParaOfSenderInMosaicMode(AdvancedScreen{}), 0);
    expectRoles("bbbbbbbbbbbbbbbb");
    EXPECT_EQ(store().PbufMorSMode, untilSubmitted ? 1 : 0);
    daemon.board.clearFaults();
  }
}

TEST_F(WallTest, MorePortsThanTablesLeaveTablesAndRolesAlone) {
  daemon.tick(2);
  const Bytes table(kPortTableSize, 0x31);
  ASSERT_TRUE(PortsTopoPara.copyFrom(table, 0));
  ASSERT_EQ(submit(11, 1, 1, 0), 0);
  setTraceLevel(0);
  daemon.settle();
  EXPECT_EQ(daemon.trace("PortsTopoPara"),
            std::vector<std::string>{"Error ERROR:$$PortsTopoPara$$ out of memory!!!0"});
  EXPECT_EQ(store().SendParameterReg.le16(fpga::kMappedWidth), 97);
  EXPECT_EQ(daemon.board.fpga(cardCountOnFpga(9), 2), words({1}));
  EXPECT_EQ(daemon.board.fpga(portTableOnFpga(0), 4), Bytes(4));
  EXPECT_EQ(portTable(0)[0], 0x31);
  EXPECT_EQ(daemon.board.fpga(fpga::kMappedWidth, 2), words({0})) << "calculated, and not carried out";
}

TEST_F(WallTest, SizesBeyond16BitsAreCutWhereTheRegistersEnd) {
  store().ReceiveCardSize = CardSize{0x8001, 3};
  ByteImage<1024> table;
  table.putLe16(2, 1);
  table.putLe16(4, 3);
  table.putLe16(6, 3);
  store().CalculateParaGetSreenSize(table);
  EXPECT_EQ(daemon.board.flash(flash::kScreenSize, 8), (Bytes{3, 0x80, 0, 0, 3, 0, 0, 0}));
  store().CalculateParaOfSenderInMosaicMode(table, {});
  expectFeature(fpga::kScreenWidth, words({0x8004, 3, 0, 0}));
  expectFeature(fpga::portWindow(7), words({0x8003, 3, 0, 0}));
}

TEST_F(WallTest, CountsBeyondAByteAndWhatLiesBehindThemReachFpgaAndFlash) {
  ByteImage<1024> table;
  table.putLe16(2, 20);
  table.putLe16(4, 20);
  table.putLe16(6, 300);
  for (const unsigned port : {0U, 4U, 9U}) daemon.board.setFpga(cardCountOnFpga(port) + 2, {0xB7});
  store().CalculateParaOfSenderInMosaicMode(table, {});
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    const auto count = words({port % 2 == 0 ? 300U : 100U});
    EXPECT_EQ(daemon.board.fpga(cardCountOnFpga(port), 2), count) << port;
    const auto at = static_cast<uint32_t>(flash::kNumberTable + cardCountAt(port));
    EXPECT_EQ(daemon.board.flash(at, 2), count) << port;
    EXPECT_EQ(daemon.board.flash(at + 2, 1),
              Bytes{port == 0 || port == 4 || port == 9 ? uint8_t{0xB7} : uint8_t{0}});
  }
}

TEST_F(WallTest, AnUnknownConnectionModeIsStoredAndRefused) {
  for (const uint8_t mode : {uint8_t{8}, uint8_t{255}}) {
    EXPECT_EQ(submit(1, 2, 2, mode), 4);
    EXPECT_EQ(daemon.board.flash(flash::kShortcutConfig + shortcut::kModeAt, 1), Bytes{mode});
    for (const unsigned port : {0U, 9U}) {
      const auto block = static_cast<uint32_t>(shortcut::kPortsAt + port * shortcut::kPortSize);
      for (const uint32_t before : {0U, 1U}) {  // the block from its beginning, and the mode alone
        Bytes fields(13, 1);
        fields[1] = mode;
        fields.erase(fields.begin(), fields.begin() + before);
        EXPECT_EQ(daemon.write(kConfig + block + before, fields).ack, 4);
        EXPECT_EQ(daemon.board.flash(flash::kShortcutConfig + block + 1, 1), Bytes{mode});
      }
      EXPECT_EQ(TempAdvPortCM[port], 0);
    }
    Bytes across(6, 1);  // from before the first port's block into its mode
    across.back() = mode;
    EXPECT_EQ(daemon.write(kConfig + 0x4C, across).ack, 4);
  }
  EXPECT_EQ(daemon.workOff(), 0U);
  EXPECT_EQ(submit(1, 2, 2, 7), 0);
  EXPECT_EQ(daemon.write(kConfig + 0x51, {7}).ack, 0);
  EXPECT_EQ(TempAdvPortCM[0], 7);
}

}  // namespace
}  // namespace ORVE_MCUC
