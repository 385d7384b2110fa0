// The parameter store and the handlers that fill flash, without a running daemon.
#include "proto/store/data_common.h"

#include "../../platform/board_fixture.h"
#include "platform/sysconf.h"
#include "process/tprocess.h"

namespace ORVE_MCUC {
namespace {

class StoreTest : public BoardTest {
 protected:
  void SetUp() override { start(); }
  void TearDown() override {
    Data_Global::deleteInstance();
    Data_Preset::deleteInstance();
  }
  static Data_Global& store() { return *Data_Global::getInstance(); }
  static Bytes image(std::size_t at, std::size_t count) {
    Bytes bytes(count);
    EXPECT_TRUE(store().SendParameterReg.copyTo(bytes, at));
    return bytes;
  }
};

TEST_F(StoreTest, PortRecordsLieInThreeRunsAndOtherPortsChangeNothing) {
  store().PortWidthUpdate(0, 0x1234);
  store().PortHeightUpdate(4, 0x1234);
  store().PortOffsetXUpdate(12, 0x1234);
  store().PortOffsetYUpdate(9, 0x1234);
  store().PortMorSUpdate(15, 0x80);
  EXPECT_EQ(image(0x51, 2), (Bytes{0x34, 0x12}));
  EXPECT_EQ(image(0xB3, 2), (Bytes{0x34, 0x12}));
  EXPECT_EQ(image(0x159, 2), (Bytes{0x34, 0x12}));
  EXPECT_EQ(image(0x140, 2), (Bytes{0x34, 0x12}));
  EXPECT_EQ(image(0x107, 1), (Bytes{0x80}));
  const Bytes before = image(0, 512);
  store().PortOffsetYUpdate(12, 0xFFFF);
  for (const unsigned port : {16U, 255U, 0xFFFFFFFFU}) {
    store().PortWidthUpdate(port, 0xFFFF);
    store().PortHeightUpdate(port, 0xFFFF);
    store().PortOffsetXUpdate(port, 0xFFFF);
    store().PortMorSUpdate(port, 0xFF);
  }
  EXPECT_EQ(image(0, 512), before);
}

TEST_F(StoreTest, TheSerialNumberOfTheEnvironmentGoesToFlashWhateverItsShape) {
  const Bytes standard{0x13, 0x03, 0x0D, 0x00, 0xFF, 0xFF, 0xFF, 0xFF};
  const struct {
    const char* text;
    Bytes bytes;
    const char* kept;
  } cases[] = {
      {"1a2B3c4D5e6F7081", {0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F, 0x70, 0x81}, "1a2B3c4D5e6F7081"},
      {"0000000000000000", standard, "13030d00ffffffff"},
      {"12xy", {0x12, 0, 0, 0, 0, 0, 0, 0}, "12xy"},
      {"", standard, "13030d00ffffffff"},
      {"1122334455667788and more",
       {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88},
       "1122334455667788and more"},
  };
  for (const auto& [text, bytes, kept] : cases) {
    ASSERT_EQ(sysconf_setenv("device_sn", text), 0);
    store().SNTransfer();
    EXPECT_EQ(flash(0x1016, 8), bytes) << text;
    EXPECT_STREQ(sysconf_getenv("device_sn"), kept);
  }
}

TEST_F(StoreTest, AReaderOfTheSerialNumberGetsItOnlyWhenTheEnvironmentHoldsOne) {
  Bytes serial(8, 0xEE);
  store().GetEnvSNPara(serial.data());
  EXPECT_EQ(serial, Bytes(8, 0xEE));
  EXPECT_EQ(sysconf_getenv("device_sn"), nullptr);
  ASSERT_EQ(sysconf_setenv("device_sn", "1122334455667788"), 0);
  failNext(Fault::EnvOpen, 1);
  store().GetEnvSNPara(serial.data());
  EXPECT_EQ(serial, Bytes(8, 0xEE));
  store().GetEnvSNPara(serial.data());
  EXPECT_EQ(serial, (Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}));
}

TEST_F(StoreTest, StoredSizesCountOnlyWhenNeitherIsZero) {
  uint32_t size[2] = {};
  EXPECT_EQ(store().Read_ScreenSize_FromFlash(size), -1);
  store().ChangeOutScreenPara(1920, 1080);
  store().ChangeOutScreenPara(3840, 2160);
  EXPECT_EQ(store().Read_ScreenSize_FromFlash(size), 0);
  EXPECT_EQ(size[0], 3840U);
  EXPECT_EQ(size[1], 2160U);
  EXPECT_EQ(flash(0xD17000, 1), Bytes{2}) << "changes are counted";
  poke("hw/flash.bin", 0xC20008, {0x80, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(store().Read_CardSize_FromFlash(size), -1);
  failNext(Fault::FlashRead, 3);
  EXPECT_EQ(store().Read_ScreenSize_FromFlash(size), -1);
}

TEST_F(StoreTest, FactoryNetworkSettingsAreStoredAndApplied) {
  EXPECT_EQ(store().SetIPVersion(), 0);
  const auto lines = journal();
  ASSERT_GE(lines.size(), 4U);
  EXPECT_EQ((std::vector<std::string>(lines.end() - 4, lines.end())),
            (std::vector<std::string>{"env-set gatewayip 192.168.0.1", "env-set ipaddr 192.168.0.10",
                                      "net-mode 0", "net-addr 192.168.0.10 255.255.255.0 192.168.0.1"}));
  failNext(Fault::EnvOpen, 1);
  EXPECT_EQ(store().SetIPVersion(), -1);
}

TEST_F(StoreTest, AZeroScreenSizeIsWrittenDown) {
  store().DebugForScreenZero(7, 0x10, "calc screen!!");
  EXPECT_EQ(text("root/screen_zero.txt"),
            "Point:7 ,use adddr:0x10, wide:0 high:0, description:calc screen!!\n");
}

// A queued write as the work thread finds it.
std::string payload(uint32_t address, uint16_t length, const std::string& data) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(address >> shift);
  bytes += static_cast<char>(length);
  bytes += static_cast<char>(length >> 8);
  return bytes + data;
}

int gamma(std::string item) {
  return Tprocess::Sprocess_SenderRGBGamma(static_cast<int>(item.size()), item.data());
}

TEST_F(StoreTest, AGammaSegmentThatRunsPastItsTableIsCutAndDoesNotMakeItValid) {
  gamma(payload(0x0E101F00, 0x200, std::string(0x200, '\x5C')));
  EXPECT_EQ(flash(0xD0FF00, 0x100), Bytes(0x100, 0x5C));
  EXPECT_EQ(flash(0xD10000, 1), Bytes{0});
  EXPECT_EQ(flash(0xD0A000, 4), Bytes(4, 0));
  gamma(payload(0x0E101F00, 0x100, std::string(0x100, '\x5C')));
  EXPECT_EQ(flash(0xD0A000, 4), (Bytes{0x39, 0xF6, 0xA5, 0x5A}));
}

TEST_F(StoreTest, AnItemThatIsShorterThanItSaysIsNotCarriedOut) {
  gamma(payload(0x0E000000, 8, "1234"));
  gamma("abc");
  EXPECT_EQ(Tprocess::Sprocess_SenderRGBGamma(10, nullptr), 0);
  EXPECT_EQ(flash(0xD0C000, 8), Bytes(8, 0));
}

}  // namespace
}  // namespace ORVE_MCUC
