// Feature reads and writes in the daemon, beside a model of them.
#include <gmock/gmock.h>

#include <ctime>
#include <random>

#include "calc/bcdclock.h"
#include "featuremodel.h"
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/store/data_common.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using Bytes = peer::Bytes;
using Fault = TestBoard::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t kFeature = 0x02000000;

class FeatureTest : public testing::Test {
 protected:
  FeatureTest() : daemon("fiber1_ports = 0, 5, 9\nfiber2_ports = 2 9 14\ncard_width = 64\n") {
    daemon.connect();
    daemon.tick(12);
    daemon.pushes();
    model.image = store().SendParameterReg.bytes();
    const auto bus = daemon.board.fpga(0, 512);
    std::copy(bus.begin(), bus.end(), model.fpga.begin());
    for (std::size_t i = 0; i < 6; ++i) model.screen[i] = store().ScreenParaReg[i];
    model.below = {0x21, 0x02, 0x04, 0x42};
    forget();
  }

  static Data_Global& store() { return *Data_Global::getInstance(); }
  void forget() { static_cast<void>(daemon.board.journal(seen)); }

  /** The journal since the last call, without the times, and each save of the brightness file as one line. */
  std::vector<std::string> journal() {
    std::vector<std::string> lines;
    for (std::string text : daemon.board.journal(seen)) {
      if (text.starts_with("clock-set")) text = "clock-set";
      if (text.starts_with("flash-write 0x00b8b") || text.starts_with("flash-write 0x00b8c"))
        text = "brightness";
      if (text != "brightness" || lines.empty() || lines.back() != text) lines.push_back(text);
    }
    return lines;
  }
  std::vector<std::string> pushes() {
    std::vector<std::string> texts;
    for (const peer::Frame& push : daemon.pushes()) {
      std::array<char, 16> address{};
      std::snprintf(address.data(), address.size(), "%x ", push.address - kFeature);
      texts.push_back(address.data() + peer::toHex(push.data));
    }
    return texts;
  }
  Bytes clock() const {
    const time_t now = daemon.board.clock();
    tm local{};
    localtime_r(&now, &local);
    Bytes bytes;
    for (const int field :
         {local.tm_year % 100, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec})
      bytes.push_back(toBcd(field));
    return bytes;
  }

  void write(uint32_t n, const Bytes& data) {
    model.askLsd(n, data);
    EXPECT_EQ(daemon.write(kFeature + n, data).ack, 0);
    EXPECT_EQ(daemon.workOff(), 1U);
    model.write(n, data);
  }
  void read(uint32_t n, uint16_t length) {
    const Bytes expected = model.read(n, length, clock());
    EXPECT_EQ(daemon.read(kFeature + n, length).data, expected);
  }
  /** Everything that the last accesses did, and in which order. */
  void expectTheSame() {
    expectTheSameSteps();
    expectTheSameFlash();
  }
  void expectTheSameSteps() {
    EXPECT_EQ(journal(), std::exchange(model.journal, {}));
    EXPECT_EQ(pushes(), std::exchange(model.pushes, {}));
    ASSERT_EQ(store().SendParameterReg.bytes(), model.image);
    for (std::size_t i = 0; i < 6; ++i) ASSERT_EQ(store().ScreenParaReg[i], model.screen[i]) << i;
  }
  void expectTheSameFlash() {
    for (const auto& [address, byte] : model.flash)
      ASSERT_EQ(daemon.board.flash(address, 1)[0], byte) << std::hex << address;
  }

  TestDaemon daemon;
  FeatureModel model;
  std::streamoff seen = 0;  // of the journal
};

class RandomFeatures {
 public:
  explicit RandomFeatures(unsigned seed) : random_(seed) {}
  uint32_t below(uint32_t end) { return std::uniform_int_distribution<uint32_t>(0, end - 1)(random_); }
  // Registers with an effect and their neighbours more often than others.
  uint32_t at() {
    constexpr uint32_t kPlaces[] = {0x11,  0x14,  0x16,  0x21,  0x23,  0x24,  0x26,  0x28,  0x2A,
                                    0x2C,  0x3F,  0x4A,  0x74,  0x9C,  0x9D,  0xD4,  0x124, 0x1D8,
                                    0x1DA, 0x1DF, 0x1E9, 0x1EC, 0x1EE, 0x1EF, 0x1F0, 0x1F4, 0x1F8};
    const uint32_t place = kPlaces[below(std::size(kPlaces))];
    return below(4) == 0 ? below(512) : below(6) == 0 ? place - 1 : place;
  }
  Bytes data(uint32_t at) {
    constexpr uint32_t kLengths[] = {1, 1, 1, 2, 2, 4, 6, 8, 8, 16, 100};
    const uint32_t length = std::min(kLengths[below(std::size(kLengths))], 512 - at);
    Bytes bytes(length);
    for (uint8_t& byte : bytes) byte = byteOf();
    return bytes;
  }

 private:
  uint8_t byteOf() {
    constexpr uint8_t kBytes[] = {0, 0, 0, 1, 5, 0x10, 0xA5, 0xA5, 0xFF, 0x80};
    return below(3) == 0 ? static_cast<uint8_t>(below(256)) : kBytes[below(std::size(kBytes))];
  }
  std::mt19937 random_;
};

TEST_F(FeatureTest, ThousandsOfAccessesAreWhatTheModelSaysInItsOrder) {
  model.flash[0x2400] = 0;
  RandomFeatures random(7);
  for (int i = 0; i < 4000 && !HasFailure(); ++i) {
    if (i == 2000) {
      daemon.board.setFlash(0x2400, {0x28});
      model.flash[0x2400] = 0x28;
    }
    const uint32_t n = random.at();
    SCOPED_TRACE("access " + std::to_string(i) + " at " + std::to_string(n));
    if (random.below(4) == 0) {
      read(n, static_cast<uint16_t>(1 + random.below(512 - n)));
    } else {
      write(n, random.data(n));
    }
    expectTheSameSteps();
    if (i % 100 == 99) expectTheSameFlash();
  }
  EXPECT_EQ(Bytes(model.fpga.begin(), model.fpga.end()), daemon.board.fpga(0, 512));
}

TEST_F(FeatureTest, AccessesBehindTheImageDoNothing) {
  for (const auto& [at, length] :
       {std::pair{0x1FFU, 2}, {0x200U, 1}, {0U, 513}, {0xFFFFU, 1}, {0x1000U, 4}}) {
    const peer::Frame reply = daemon.read(kFeature + at, static_cast<uint16_t>(length));
    EXPECT_EQ(reply.ack, 0);
    EXPECT_THAT(reply.data, IsEmpty());
    EXPECT_EQ(daemon.write(kFeature + at, Bytes(static_cast<std::size_t>(length), 7)).ack, 0);
    EXPECT_EQ(daemon.workOff(), 0U);
  }
  EXPECT_EQ(daemon.read(kFeature + 0x104B, 1).data, Bytes{0}) << "the probe comes first";
  expectTheSame();
}

TEST_F(FeatureTest, LsdItselfIsNotToldOfItsOffset) {
  write(0x1F8, {0xA5});
  write(0x28, {0x10, 0, 0x20, 0});
  EXPECT_THAT(pushes(), ElementsAre("1f0 f0ffffffe0ffffff"));
  model.pushes.clear();
  expectTheSame();
  const peer::Frame asked{
      .code = peer::kWrite, .address = kFeature + 0x28, .length = 4, .data = {8, 0, 9, 0}};
  ASSERT_TRUE(daemon.exchange(peer::encode(asked), {}, peer::kLsd));
  EXPECT_THAT(pushes(), IsEmpty());
  EXPECT_EQ(daemon.workOff(), 1U);
  model.write(0x28, asked.data);
  expectTheSame();
}

TEST_F(FeatureTest, FlagsOfOtherPartsFollow) {
  write(0x9D, {0xA5});
  EXPECT_EQ(store().PbufMorSMode, 1);
  EXPECT_EQ(store().NormalBackupStatus, 0);
  write(0x1EF, {1});
  EXPECT_EQ(store().RWFPGATestflag, 1);
  write(0x1E9, {1});
  EXPECT_EQ(store()._gCorroentHighSpeed, 1);
  write(0x1E9, {2});
  EXPECT_EQ(store()._gCorroentHighSpeed, 0);
  EXPECT_FALSE(Tprocess_ctl::OptToNetEnableOnce);
  write(0x1DF, {0});
  EXPECT_TRUE(Tprocess_ctl::OptToNetEnableOnce);
  expectTheSame();
}

TEST_F(FeatureTest, TheClockIsSetWhereTheCalendarHasTheTime) {
  write(0x11, {0x24, 0x02, 0x29, 0x23, 0x59, 0x58});
  EXPECT_EQ(clock(), (Bytes{0x24, 0x02, 0x29, 0x23, 0x59, 0x58}));
  write(0x11, {0x25, 0x02, 0x29, 0x23, 0x59, 0x58});
  EXPECT_EQ(clock(), (Bytes{0x24, 0x02, 0x29, 0x23, 0x59, 0x58}));
  write(0x11, {0x24});
  write(0x14, {0x01});
  EXPECT_EQ(clock(), (Bytes{0x24, 0x02, 0x29, 0x01, 0x59, 0x58})) << "the other five are the image's";
  daemon.board.failNext(Fault::DateText, 1);
  EXPECT_EQ(daemon.read(kFeature + 0x11, 3).data, (Bytes{0x24, 0x02, 0x29}));
}

TEST_F(FeatureTest, WhateverFailsTheNextWriteIsWhole) {
  for (const Fault kind : {Fault::FpgaWrite, Fault::FpgaRead, Fault::FlashWrite, Fault::FlashRead}) {
    uint32_t n = 1;
    const auto scenario = [&] {
      daemon.write(kFeature + 0x9D, {0xA5});
      daemon.write(kFeature + 0x1F8, {0xA5});
      daemon.write(kFeature + 0x28, {16, 0, 0, 0});
      daemon.write(kFeature + 0x24, {0x80, 7, 0x38, 4});
      daemon.workOff();
      daemon.read(kFeature, 512);
    };
    while (daemon.failAt(kind, n, scenario)) {
      scenario();
      const auto image = store().SendParameterReg.bytes();
      EXPECT_EQ(image[0x1F8], 1) << n;
      EXPECT_EQ(daemon.board.fpga(0x18, 4), Bytes(4, 0x80)) << n;
      Bytes saved = daemon.board.flash(0xA3B100, 512);
      EXPECT_EQ(saved[0x9D], 0xA5) << n;
      EXPECT_EQ(Bytes(saved.begin() + 0x24, saved.begin() + 0x2C), daemon.board.fpga(0x24, 8)) << n;
      ++n;
    }
    EXPECT_GT(n, 1U) << static_cast<int>(kind);
  }
}

TEST_F(FeatureTest, AFailedRefreshLeavesTheImageAlone) {
  daemon.board.setFpga(0x30, Bytes(8, 0x77));
  daemon.board.failNext(Fault::FpgaRead, 3);
  const peer::Frame reply = daemon.read(kFeature, 512);
  EXPECT_THAT(reply.data, IsEmpty());
  EXPECT_EQ(reply.ack, 0);
  EXPECT_EQ(store().SendParameterReg.bytes(), model.image);
  EXPECT_EQ(daemon.read(kFeature, 512).data[0x30], 0x77);
}

}  // namespace
}  // namespace ORVE_MCUC
