// Device access on a board that fails.
#include "driverutil.h"

#include <functional>
#include <utility>
#include <vector>

#include "../platform/board_fixture.h"
#include "mcucutil.h"

namespace ORVE_MCUC {
namespace {

class DriverUtilTest : public BoardTest {
 protected:
  void SetUp() override {
    start();
    setDelayScale(0);
  }
  void TearDown() override { setDelayScale(100); }

  DriverUtil driver;
};

TEST_F(DriverUtilTest, BlocksTravelInPiecesAndStopAtTheFirstFailure) {
  const Bytes block(2500, 0xA5);
  EXPECT_EQ(driver.FPGAC5_WriteDataBlock(0, 0, 0x100000, 2500, block.data()), 0);
  std::vector<std::string> pieces;
  for (const auto& line : journal()) pieces.push_back(line.substr(0, line.find(' ', 23)));
  EXPECT_EQ(pieces, (std::vector<std::string>{"fpga-write 0x00100000 1024", "fpga-write 0x00100400 1024",
                                              "fpga-write 0x00100800 452"}));
  Bytes read(2048);
  EXPECT_EQ(driver.FPGAC5_ReadDataBlock(0, 0, 0x100000, 2048, read.data()), 0);
  EXPECT_EQ(read, Bytes(2048, 0xA5));
  failNext(Fault::FpgaWrite, 3);
  EXPECT_EQ(driver.FPGAC5_WriteDataBlock(0, 0, 0x200000, 2048, block.data()), -1);
  EXPECT_EQ(fpga(0x200400, 1), Bytes{0});
  EXPECT_EQ(driver.FPGAC5_WriteDataBlock(0, 0, 0x200000, 0, block.data()), -1);
  EXPECT_EQ(driver.FPGAC5_ReadDataBlock(0, 0, 0x200000, 0, read.data()), -1);
}

TEST_F(DriverUtilTest, TwoFailuresAreTriedAwayAndThreeAreOne) {
  unsigned char byte = 0x42;
  const std::pair<Fault, std::function<int()>> calls[] = {
      {Fault::FpgaWrite, [&] { return driver.WriteFPGABusOneWord(0x18, 0x42); }},
      {Fault::FpgaRead, [&] { return driver.ReadFPGABusOneWord(0x18, &byte); }},
      {Fault::FlashWrite, [&] { return driver.WriteDataToFlash(0x1000, 1, &byte); }},
      {Fault::FlashRead, [&] { return driver.ReadBytesFromFlash(0x1000, 1, &byte); }},
  };
  for (const auto& [fault, call] : calls) {
    failNext(fault, 2);
    EXPECT_EQ(call(), 0) << static_cast<int>(fault);
    failNext(fault, 3);
    EXPECT_EQ(call(), -1) << static_cast<int>(fault);
  }
  EXPECT_EQ(byte, 0x42);
}

TEST_F(DriverUtilTest, AnFpgaThatSaysItIsDownIsLeftAloneAndAnUnreadableStatusIsNot) {
  unsigned char byte = 0;
  std::ofstream(file("sys/class/fpga/fpga_conf")) << "no number\n";
  failNext(Fault::FpgaRead, 3);
  EXPECT_EQ(driver.ReadFPGABusOneWord(0x18, &byte), -1);
  EXPECT_EQ(driver.ReadFPGABusOneWord(0x18, &byte), 0);
  std::ofstream(file("sys/class/fpga/fpga_conf")) << " \t0\n";
  failNext(Fault::FpgaRead, 3);
  EXPECT_EQ(driver.ReadFPGABusOneWord(0x18, &byte), -1);
  const auto before = journal().size();
  EXPECT_EQ(driver.ReadFPGABusOneWord(0x18, &byte), -1);
  EXPECT_EQ(driver.WriteFPGABusOneWord(0x18, 1), -1);
  EXPECT_EQ(journal().size(), before) << "no transfer and no further query";
}

TEST_F(DriverUtilTest, TheFirstLineOfACommandIsItsResult) {
  char result[64] = "kept";
  std::ofstream(file("tmp/answer")) << "17 apples\r\nmore\n";
  EXPECT_EQ(driver.run_command_return_string("/bin/cat /tmp/answer", result), 0);
  EXPECT_STREQ(result, "17 apples");
  std::ofstream(file("tmp/answer")) << "\n";
  EXPECT_EQ(driver.run_command_return_string("/bin/cat /tmp/answer", result), -1);
  std::ofstream(file("tmp/answer")) << std::string(200, 'x');
  EXPECT_EQ(driver.run_command_return_string("/bin/cat /tmp/answer", result), 0);
  EXPECT_EQ(std::string(result), std::string(63, 'x'));
  EXPECT_EQ(driver.run_command_return_string(nullptr, result), -1);
  EXPECT_EQ(driver.run_command_return_string("/bin/cat /tmp/answer", nullptr), -1);
}

TEST_F(DriverUtilTest, TheClockIsSetFieldByField) {
  driver.WriteDate(24, 2, 29);
  driver.WriteTime(13, 14, 15);
  EXPECT_EQ(driver.ReadTime(0), 24);
  EXPECT_EQ(driver.ReadTime(1), 2);
  EXPECT_EQ(driver.ReadTime(2), 29);
  EXPECT_EQ(driver.ReadTime(3), 13);
  EXPECT_EQ(driver.ReadTime(4), 14);
  EXPECT_EQ(driver.ReadTime(6), 5) << "a Thursday, Sunday being 1";
  driver.WriteWeekday(1);
  EXPECT_EQ(driver.ReadTime(6), 5);
  EXPECT_EQ(driver.ReadTime(7), 0);
  EXPECT_EQ(driver.SetClock(0, 148500000), 0xFF) << "this board has no clock chip";
}

}  // namespace
}  // namespace ORVE_MCUC
