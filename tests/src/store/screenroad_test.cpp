// Screen configurations: from a peer's write to the tables on the FPGA, into the flash, and back from it.
#include <random>

#include "calc/advmapping.h"
#include "calc/mapping.h"
#include "daemontest.h"

using namespace ORVE_MCUC;
using Bytes = peer::Bytes;
namespace {

constexpr uint32_t kConfig = 0x02810000;
constexpr uint32_t kFlashRecord = 0xB99000;
constexpr uint32_t kFlashFeature = 0xA3B100;

void put16(Bytes& bytes, std::size_t at, uint32_t value) {
  bytes.at(at) = static_cast<uint8_t>(value);
  bytes.at(at + 1) = static_cast<uint8_t>(value >> 8);
}
std::size_t portRecord(unsigned port) {
  return port < 4 ? 0x51 + 9 * port : port < 8 ? 0xB1 + 9 * (port - 4) : 0x131 + 9 * (port - 8);
}
uint32_t countAt(unsigned port) {
  return 0x500000 + 0x1000 * (port / 4) + 0x20 * (port % 4);
}

// What the board should hold. Tables keep beyond their last repetition what they held before.
struct ExpectedWall {
  Bytes feature = Bytes(512);
  std::array<Bytes, kMappedPorts> tables;
  std::array<uint32_t, kMappedPorts> counts{};

  ExpectedWall() { tables.fill(Bytes(kPortTableSize)); }
  void fill(unsigned port, const CardChain& chain) {
    fillPortTable(chain, std::span<uint8_t, kPortTableSize>(tables[port].data(), kPortTableSize));
  }
  void window(unsigned port, uint32_t width, uint32_t height, uint32_t x, uint32_t y) {
    put16(feature, portRecord(port), width);
    put16(feature, portRecord(port) + 2, height);
    put16(feature, portRecord(port) + 4, x);
    put16(feature, portRecord(port) + 6, y);
  }
  void screen(uint32_t width, uint32_t height) {
    put16(feature, 0x24, (width + 1) & ~1U);
    put16(feature, 0x26, height);
    put16(feature, 0x2C, width);
  }
  void roles(unsigned firstBackup) {
    for (unsigned port = 0; port < 16; ++port) {
      const std::size_t at = port < 4 ? 0x18 + port : port < 8 ? 0x98 + port - 4 : 0x100 + port - 8;
      feature[at] = port >= firstBackup && port < 4 ? 0x80 : 0;  // ports 0..3 are linked
    }
  }
  void smart(const SmartScreen& wall) {
    const PortSplit split = splitOf(wall);
    screen(uint32_t{wall.columns} * wall.card.width, uint32_t{wall.rows} * wall.card.height);
    for (unsigned port = 0; port < kMappedPorts; ++port) {
      const WindowOffset at = windowOffset(wall, split, port);
      window(port, split.PortWidth, split.PortHeight, at.x, at.y);
      counts[port] = cardsBehind(split, port);
      if (port < split.UsedPortNum) fill(port, chainAt(wall, split, port));
    }
    for (unsigned port = split.UsedPortNum; port < kMappedPorts; ++port)
      tables[port] = tables[port % split.UsedPortNum];
    roles(split.UsedPortNum);
  }
  void advanced(const AdvancedScreen& wall, CardSize card) {
    const PixelExtent largest = largestBlock(wall, card);
    screen(largest.width, largest.height);
    for (unsigned port = 0; port < kMappedPorts; ++port) {
      const PixelExtent block = blockOf(wall[port], card);
      window(port, block.width, block.height, wall[port].x, wall[port].y);
      counts[port] = wall[port].cards();
      fill(port, wall[port].chain(card));
    }
    roles(16);
  }
};

class ScreenRoad : public DaemonTest {
 protected:
  static constexpr CardSize kCard{96, 80};

  ScreenRoad() : DaemonTest("card_width = 96\ncard_height = 80\ncopper_ports = 0-3\n") { daemon.tick(); }
  peer::Frame submit(const SmartScreen& wall) {
    Bytes fields(9);
    fields[0] = wall.mode;
    fields[5] = static_cast<uint8_t>(wall.rows);
    fields[6] = static_cast<uint8_t>(wall.columns);
    put16(fields, 7, wall.cardsPerPort);
    return write(kConfig + 0x11, fields);
  }
  peer::Frame submitPort(unsigned port, const AdvancedPort& block) {
    Bytes fields(13);
    fields[1] = block.mode;
    fields[6] = static_cast<uint8_t>(block.rows);
    fields[7] = static_cast<uint8_t>(block.columns);
    put16(fields, 9, block.x);
    put16(fields, 11, block.y);
    return write(kConfig + 0x50 + 0x40 * port, fields);
  }
  // The last thing that a mapping does is to bring everything to the flash and to note how it came about.
  testing::AssertionResult mapped(std::size_t times, uint8_t status) {
    daemon.settle();
    if (journaled("shell sync") == times && read(kConfig, 1).data == Bytes{status})
      return testing::AssertionSuccess();
    return testing::AssertionFailure() << "no mapping: " << journaled("shell sync") << " saves";
  }
  void expectBoard(const ExpectedWall& wall) {
    for (unsigned port = 0; port < kMappedPorts; ++port) {
      SCOPED_TRACE(testing::Message() << "port " << port);
      const uint32_t at = 0x1000 * port;
      ASSERT_EQ(fpga(0x600000 + at, kPortTableSize), wall.tables[port]);
      ASSERT_EQ(flash(0xA3C000 + at, kPortTableSize), wall.tables[port]);
      Bytes count(2);
      put16(count, 0, wall.counts[port]);
      EXPECT_EQ(fpga(countAt(port), 2), count);
      EXPECT_EQ(flash(0xA5C000 + (port < 8 ? 0x80 * (port / 4) : 0x200) + 0x20 * (port % 4), 2), count);
      const std::size_t record = portRecord(port);
      const Bytes window(wall.feature.begin() + static_cast<int>(record),
                         wall.feature.begin() + static_cast<int>(record + 8));
      EXPECT_EQ(fpga(static_cast<uint32_t>(record), 8), window);
      EXPECT_EQ(flash(kFlashFeature + static_cast<uint32_t>(record), 8), window);
    }
    for (const auto& [at, length] :
         {std::pair{0x18U, 4U}, {0x24U, 4U}, {0x2CU, 2U}, {0x98U, 4U}, {0x100U, 8U}}) {
      const Bytes part(wall.feature.begin() + at, wall.feature.begin() + at + length);
      EXPECT_EQ(fpga(at, length), part) << at;
      EXPECT_EQ(flash(kFlashFeature + at, length), part) << at;
    }
  }
};

TEST_F(ScreenRoad, RandomWallsReachFpgaAndFlash) {
  std::mt19937 random(20261124);
  const auto upTo = [&](uint32_t most) { return static_cast<uint16_t>(1 + random() % most); };
  ExpectedWall expected;
  std::size_t saves = 0;
  for (int i = 0; i < 10; ++i) {
    SmartScreen wall;
    do {
      wall = {upTo(30), upTo(30), upTo(300), static_cast<uint8_t>(random() % 8), kCard};
    } while (!isValid(wall) || splitOf(wall).UsedPortNum > kMappedPorts);
    SCOPED_TRACE(testing::Message() << wall.rows << "x" << wall.columns << " cards " << wall.cardsPerPort
                                    << " mode " << int{wall.mode});
    expected.smart(wall);
    ASSERT_THAT(submit(wall), CarriesNothing());
    ASSERT_TRUE(mapped(saves += 2, 0xA8));
    expectBoard(expected);
    const Bytes stored = flash(0xC20040, 15);
    EXPECT_EQ(stored,
              (Bytes{1, 0x55, 0, 0, 0, 0, 96, 0, 80, 0, static_cast<uint8_t>(wall.rows),
                     static_cast<uint8_t>(wall.columns), wall.mode, static_cast<uint8_t>(wall.cardsPerPort),
                     static_cast<uint8_t>(wall.cardsPerPort >> 8)}));
    EXPECT_THAT(read(0x02100000, 15), Carries(stored));
    Bytes output(4);
    put16(output, 0, wall.columns * 96U);
    put16(output, 2, wall.rows * 80U);
    EXPECT_EQ(fpga(0x1EC, 4), output);
  }
  EXPECT_EQ(flash(0xD17000, 1), Bytes{10}) << "one change of the output size each";
}

TEST_F(ScreenRoad, ABurstIsCalculatedOnceWithItsLastRecordAndSurvivesAPowerCut) {
  for (const uint16_t rows : {uint16_t{2}, uint16_t{3}, uint16_t{4}})
    EXPECT_THAT(submit({rows, 6, 6, 4, kCard}), CarriesNothing());
  ASSERT_TRUE(mapped(4, 0xA8));
  ExpectedWall expected;
  expected.smart({4, 6, 6, 4, kCard});
  expectBoard(expected);
  EXPECT_EQ(journaled("fpga-write 0x00600000 1024"), 2U) << "the restore's and one calculation's";

  // The FPGA loses the wall, but not its power.
  for (const uint32_t page : {0x600000U, 0x603000U, 0x500000U, 0x501000U, 0x502000U})
    daemon.board.setFpga(page, zeros(0x1000));
  daemon.board.setFpga(0x20, zeros(0x60));
  daemon.restart();
  expectBoard(expected);
  EXPECT_EQ(fpga(0x23, 1), Bytes{0x20});
  EXPECT_EQ(flash(0xD17000, 1), Bytes{0});
  EXPECT_EQ(read(kConfig, 1).data, Bytes{0xA8});
}

TEST_F(ScreenRoad, AdvancedPortsAreMappedWhenSubmitted) {
  std::mt19937 random(7);
  const auto upTo = [&](uint32_t most) { return static_cast<uint16_t>(1 + random() % most); };
  ExpectedWall expected;
  for (std::size_t i = 1; i <= 3; ++i) {
    AdvancedScreen wall;
    for (unsigned port = 0; port < kMappedPorts; ++port) {
      wall[port] = {static_cast<uint8_t>(random() % 8), upTo(14), upTo(14), upTo(9000), upTo(9000)};
      ASSERT_THAT(submitPort(port, wall[port]), CarriesNothing());
    }
    expected.advanced(wall, kCard);
    EXPECT_THAT(write(kConfig, {0xB9}), CarriesNothing());
    ASSERT_TRUE(mapped(2 * i, 0xB8));
    expectBoard(expected);
    // The output is sized before the cards are measured for the first time.
    const PixelExtent extent = screenExtent(wall, i == 1 ? CardSize{} : kCard);
    Bytes output(4);
    put16(output, 0, extent.width);
    put16(output, 2, extent.height);
    EXPECT_EQ(flash(kFlashFeature + 0x1EC, 4), output);
  }
}

TEST_F(ScreenRoad, TheLaterOfTwoConfigurationsStaysThoughTheEarlierOneWaitsForItsTick) {
  for (unsigned port = 0; port < kMappedPorts; ++port) submitPort(port, {0, 1, 1, 0, 0});
  const SmartScreen smart{2, 2, 2, 0, kCard};
  submit(smart);
  daemon.workOff();
  write(kConfig, {0xB9});
  ASSERT_TRUE(mapped(3, 0xB8));
  EXPECT_EQ(fpga(countAt(0), 2), (Bytes{1, 0}));
  write(kConfig, {0xB9});
  submit(smart);
  ASSERT_TRUE(mapped(7, 0xA8));
  EXPECT_EQ(fpga(countAt(0), 2), (Bytes{2, 0}));
  // What is submitted after the other kind rests as long as what was submitted before it.
  submit(smart);
  daemon.workOff();
  daemon.tick();
  write(kConfig, {0xB9});
  submit(smart);
  daemon.workOff();
  daemon.tick();
  EXPECT_EQ(fpga(countAt(0), 2), (Bytes{1, 0}));
  daemon.tick();
  EXPECT_EQ(fpga(countAt(0), 2), (Bytes{2, 0}));
}

TEST_F(ScreenRoad, PortsThatCannotBeReadLeaveTheEarlierConfigurationWaitingForItsTick) {
  for (unsigned port = 0; port < kMappedPorts; ++port) submitPort(port, {0, 1, 1, 0, 0});
  submit({2, 2, 2, 0, kCard});
  daemon.workOff();
  daemon.board.fault(Fault::FlashRead, {TestBoard::kEveryCall, 0, kFlashRecord, kFlashRecord + 4095});
  write(kConfig, {0xB9});
  daemon.board.clearFaults();
  ASSERT_TRUE(mapped(2, 0xA8));
  EXPECT_EQ(fpga(countAt(0), 2), (Bytes{2, 0}));
}

TEST_F(ScreenRoad, RefusedConfigurationsChangeNoTable) {
  ExpectedWall expected;
  expected.smart({2, 2, 2, 0, kCard});
  ASSERT_THAT(submit({2, 2, 2, 0, kCard}), CarriesNothing());
  ASSERT_TRUE(mapped(2, 0xA8));
  EXPECT_THAT(submit({0, 6, 6, 0, kCard}), IsRefused());
  EXPECT_THAT(submit({6, 0, 6, 0, kCard}), IsRefused());
  EXPECT_THAT(submit({6, 6, 0, 0, kCard}), IsRefused());
  EXPECT_THAT(submit({2, 2, 2, 9, kCard}), IsRefused());
  // More cards a port than there are: calculated and refused there.
  EXPECT_THAT(submit({2, 2, 5, 0, kCard}), CarriesNothing());
  ASSERT_TRUE(mapped(4, 0xA8));
  EXPECT_EQ(fpga(0x600000, kPortTableSize), expected.tables[0]);
  submitPort(4, {0, 23, 23, 0, 0});
  EXPECT_THAT(write(kConfig + 0x100, {0xB9}), CarriesNothing());
  daemon.settle();
  EXPECT_EQ(read(kConfig, 1).data, Bytes{0xB8});
  EXPECT_EQ(fpga(0x604000, kPortTableSize), expected.tables[0]);
  EXPECT_EQ(flash(kFlashRecord + 0x100, 1), Bytes{0}) << "the command is stored nowhere";
}

TEST_F(ScreenRoad, MoreThanTenPortsStopBehindTheCardCounts) {
  ASSERT_THAT(submit({16, 1, 1, 0, kCard}), CarriesNothing());
  daemon.settle();
  EXPECT_EQ(fpga(countAt(9), 1), Bytes{1});
  EXPECT_EQ(journaled("flash-write 0x00b99000 1 a8"), 2U) << "not over";
  EXPECT_EQ(fpga(0x600000, kPortTableSize), zeros(kPortTableSize));
  EXPECT_EQ(flash(0xA3C000, kPortTableSize), zeros(kPortTableSize));
  EXPECT_EQ(read(kConfig, 1).data, Bytes{0xA8});
}

TEST_F(ScreenRoad, BytesThatStartNothingAreOnlyStored) {
  const Bytes record = counting(0x30);
  ASSERT_THAT(write(kConfig + 0x20, record), CarriesNothing());
  EXPECT_THAT(read(kConfig + 0x20, 0x30), Carries(record));
  // Ports beyond the tenth.
  ASSERT_THAT(write(kConfig + 0x50 + 0x40 * 15 + 6, {200}), CarriesNothing());
  EXPECT_EQ(flash(kFlashRecord + 0x416, 1), Bytes{200});
  daemon.board.failNext(Fault::FlashWrite, 3);
  EXPECT_THAT(write(kConfig + 0x30, {1, 2}), IsRefused());
  EXPECT_THAT(read(kConfig + 0x30, 2), Carries(Bytes(record.begin() + 0x10, record.begin() + 0x12)));
  daemon.board.failNext(Fault::FlashRead, TestBoard::kEveryCall);
  EXPECT_THAT(read(kConfig + 0x30, 2), CarriesNothing());
}

TEST_F(ScreenRoad, ARecordIsReadBackAsItWasWrittenAndByVspAsItWasSetForIt) {
  ASSERT_THAT(write(kConfig + 0x16, {4, 6, 12, 0}), CarriesNothing());
  EXPECT_EQ(flash(kFlashRecord + 0x10, 16), (Bytes{0, 0, 0, 0, 0, 0, 4, 6, 12, 0, 0, 0, 0, 0, 0, 0}));
  daemon.board.setFlash(0xC20030, {3, 7, 8, 9});
  const Bytes forVsp = read(kConfig, 38).data;
  ASSERT_EQ(forVsp.size(), 38U);
  EXPECT_EQ(forVsp[0x11], 3);
  EXPECT_EQ(Bytes(forVsp.begin() + 0x16, forVsp.begin() + 0x19), (Bytes{7, 8, 9}));
  EXPECT_EQ(read(kConfig, 39).data[0x16], 4);
}

}  // namespace
