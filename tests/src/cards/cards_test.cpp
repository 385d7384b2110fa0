// Cards behind the ports, without a running daemon: access, the tasks' chunks, link of a port.
#include <gmock/gmock.h>

#include "../../platform/board_fixture.h"
#include "driverutil.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "proto/cards/cardtasks.h"
#include "proto/store/data_common.h"
#include "proto/tshl_ctl.h"
#include "testdaemon.h"

namespace ORVE_MCUC {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = TestBoard::Bytes;

class CardsTest : public BoardTest {
 protected:
  void SetUp() override {
    start("copper_ports = 0-2\nfiber2_ports = 3\ncards_per_port = 3\njournal = all\n");
    store().GigaPhyLinkSta = 0x0007;
    EXPECT_TRUE(store().Fiber2BelowLinkStatus_buff.copyFrom(Bytes{0x08, 0x00}));
    setDelayScale(0);
  }
  void TearDown() override {
    setDelayScale(100);
    Data_Global::deleteInstance();
  }
  static Data_Global& store() { return *Data_Global::getInstance(); }
  static DriverUtil& driver() { return *DriverUtil::getInstance(); }

  /** What the board was asked of cards: "card-read 1 ..." without the data. */
  std::vector<std::string> cardCalls() const {
    std::vector<std::string> calls;
    for (const std::string& line : journal()) {
      if (!line.starts_with("card-")) continue;
      std::size_t end = 0;
      for (int words = 0; words < 6 && end != std::string::npos; ++words) end = line.find(' ', end + 1);
      calls.push_back(line.substr(0, end));
    }
    return calls;
  }
};

TEST_F(CardsTest, ACardIsReadOverAnyLinkOfItsPortAndBoard0WhenNoneIsNamed) {
  Bytes size(4);
  EXPECT_EQ(driver().ReadCardPara(0x02000017, 1, 2, 4, size.data(), 1), 0);
  EXPECT_THAT(size, ElementsAre(128, 0, 128, 0));
  EXPECT_EQ(driver().ReadCardPara(0x02000017, 3, 4, size.data(), 1), 0);
  EXPECT_THAT(cardCalls(), ElementsAre("card-read 1 1 2 0x02000017 4", "card-read 1 3 0 0x02000017 4"));
}

TEST_F(CardsTest, APortWithoutALinkIsNotAskedWhateverTheNumber) {
  Bytes byte(1);
  for (const uint16_t port : std::initializer_list<uint16_t>{4, 15, 16, 20, 32, 255, 256, 257, 65535})
    EXPECT_EQ(driver().ReadCardPara(0x02000017, port, 0, 1, byte.data(), 1), DriverUtil::kNoLink) << port;
  EXPECT_THAT(cardCalls(), IsEmpty());
}

TEST_F(CardsTest, AllCardsAtOnceReadAsZerosAndAreNotAsked) {
  Bytes bytes(4, 0xEE);
  EXPECT_EQ(driver().ReadCardPara(0x02000017, 20, 0xFFFF, 3, bytes.data(), 1), 0);
  EXPECT_THAT(bytes, ElementsAre(0, 0, 0, 0xEE));
  EXPECT_THAT(cardCalls(), IsEmpty());
}

TEST_F(CardsTest, AWriteNeedsNoKnownLinkAndEveryCallIsMadeOnce) {
  store().GigaPhyLinkSta = 0;
  Bytes bytes{0x10, 0xFF, 0xFF};
  failNext(Fault::CardWrite, 1);
  EXPECT_NE(driver().SendCardPara(0x0200FFFF, 0xFF, 0xFFFF, 3, bytes.data(), 2), 0);
  EXPECT_EQ(driver().SendCardPara(0x0200FFFF, 0xFF, 0xFFFF, 3, bytes.data(), 2), 0);
  EXPECT_EQ(cardCalls().size(), 2U);
  failNext(Fault::CardRead, 1);
  Bytes read(3);
  EXPECT_NE(driver().ReadCardPara(0x0200FFFF, 3, 2, 3, read.data(), 2), 0);
  EXPECT_EQ(driver().ReadCardPara(0x0200FFFF, 3, 2, 3, read.data(), 2), 0);
  EXPECT_EQ(read, bytes);
}

using Task = int (Tshl_ctl::*)(IMD_proto3rd*);
constexpr Task kTasks[] = {nullptr, &Tshl_ctl::Ssh_StartScanCard, &Tshl_ctl::Ssh_StartMultiCard,
                           &Tshl_ctl::Ssh_StartDistribute, &Tshl_ctl::Ssh_Start3DLauncher};

class CardTaskTest : public CardsTest {
 protected:
  static int perform(unsigned type, IMD_proto3rd& request) {
    return (Tshl_ctl::getInstance()->*kTasks[type])(&request);
  }
  static IMD_proto3rd request(uint8_t code, uint32_t address, uint16_t length, uint8_t port = 1) {
    IMD_proto3rd made;
    made.proto.m_ucCode = code;
    made.proto.m_ucPortAddress = port;
    made.proto.m_usBoardAddress = 2;
    made.proto.m_uiRegisterUnitAddress = address;
    made.proto.m_usValidDataLength = length;
    return made;
  }
  static std::string call(const char* name, unsigned type, uint32_t address, unsigned length) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s %u 1 2 0x%08x %u", name, type, address, length);
    return text.data();
  }
};

struct Kind {
  unsigned type;
  unsigned chunk;
  int noAnswer;
};
constexpr Kind kKinds[] = {{1, 512, 1}, {2, 256, 4}, {3, 256, 4}, {4, 512, 4}};

TEST_F(CardTaskTest, WritesAndReadsGoOutInChunksAndOneThatFailsFailsTheRead) {
  Bytes data(2 * 512 + 176);
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i * 7 + i / 256);
  for (const auto& [type, chunk, noAnswer] : kKinds) {
    SCOPED_TRACE(type);
    const std::size_t before = cardCalls().size();
    IMD_proto3rd write = request(kCodeWrite, 0x0100F000, static_cast<uint16_t>(data.size()));
    write.proto.m_data = data;
    EXPECT_EQ(perform(type, write), 0);
    IMD_proto3rd read = request(kCodeRead, 0x0100F000, static_cast<uint16_t>(data.size()));
    EXPECT_EQ(perform(type, read), 0);
    EXPECT_EQ(read.proto.m_data, data);
    std::vector<std::string> expected;
    for (const char* name : {"card-write", "card-read"})
      for (unsigned at = 0; at < data.size(); at += chunk)
        expected.push_back(
            call(name, type, 0x0100F000 + at, std::min(chunk, static_cast<unsigned>(data.size()) - at)));
    auto calls = cardCalls();
    calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(before));
    EXPECT_EQ(calls, expected);

    failNext(Fault::CardRead, 1);
    read = request(kCodeRead, 0x0100F000, static_cast<uint16_t>(data.size()));
    EXPECT_EQ(perform(type, read), noAnswer);
    EXPECT_EQ(read.proto.m_ucAck, noAnswer);
    EXPECT_THAT(read.proto.m_data, IsEmpty());
    read = request(kCodeRead, 0x0100F000, 1, 9);
    EXPECT_EQ(perform(type, read), 4);
    EXPECT_EQ(read.proto.m_ucAck, 4);
    EXPECT_THAT(read.proto.m_data, IsEmpty());
  }
}

TEST_F(CardTaskTest, DataThatAreMissingInARequestAreZeroOnTheCardAndInTheFlash) {
  poke("hw/flash.bin", 0x2407, Bytes(1000, 0xEE));
  poke("hw/flash.bin", 0xF557, Bytes(1000, 0xEE));
  for (const auto& [type, chunk, noAnswer] : kKinds) {
    for (const std::size_t given : {0U, 2U}) {
      IMD_proto3rd write = request(kCodeWrite, 0x02000001, 600);
      write.proto.m_data.assign(given, 0x5A);
      EXPECT_EQ(perform(type, write), 0);
      Bytes card(600, 0xEE);
      EXPECT_EQ(driver().ReadCardPara(0x02000001, 1, 2, 600, card.data(), static_cast<uint8_t>(type)), 0);
      Bytes expected(given, 0x5A);
      expected.resize(600);
      EXPECT_EQ(card, expected);
      if (type != 4) continue;
      expected.push_back(0xEE);
      EXPECT_EQ(flash(0x2407, 601), expected);
      EXPECT_EQ(flash(0xF557, 601), expected);
    }
  }
}

TEST_F(CardTaskTest, RequestsWithoutBytesOrWithAnotherCodeTouchNothing) {
  for (const Kind& kind : kKinds) {
    for (const uint8_t code : {kCodeWrite, kCodeRead, uint8_t{2}, uint8_t{255}}) {
      IMD_proto3rd nothing = request(code, 0x02000001, code > kCodeWrite ? 1 : 0);
      EXPECT_EQ(perform(kind.type, nothing), 0);
      EXPECT_EQ(nothing.proto.m_ucAck, 0);
      EXPECT_THAT(nothing.proto.m_data, IsEmpty());
    }
  }
  EXPECT_THAT(cardCalls(), IsEmpty());
  EXPECT_THAT(journal(), testing::Not(testing::Contains(testing::StartsWith("flash-write"))));
}

TEST_F(CardTaskTest, AReadThatNoReplyHasRoomForAsksNoCard) {
  for (const Kind& kind : kKinds) {
    for (const uint16_t length : {uint16_t{65517}, uint16_t{65535}}) {
      IMD_proto3rd read = request(kCodeRead, 0x01000000, length);
      EXPECT_EQ(perform(kind.type, read), 4);
      EXPECT_EQ(read.proto.m_ucAck, 4);
      EXPECT_THAT(read.proto.m_data, IsEmpty());
    }
  }
  EXPECT_THAT(cardCalls(), IsEmpty());
  IMD_proto3rd longest = request(kCodeRead, 0x01000000, 65516);
  EXPECT_EQ(perform(2, longest), 0);
  EXPECT_EQ(longest.proto.m_data.size(), 65516U);
}

TEST(LauncherTest, FlashKeepsWhatHasRoomAndCardAndLsdGetAll) {
  TestDaemon daemon("copper_ports = 0\n");
  daemon.connect();
  Bytes all(4000);
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<uint8_t>(1 + i % 255);
  const struct {
    uint32_t address;
    uint32_t flash;
    uint32_t copy;
  } kept[] = {{0x02000001, 0x2407, 0xF557}, {0x02000002, 0x2408, 0xF558}};
  for (const auto& [address, flash, copy] : kept) {
    daemon.board.setFlash(0x2000, Bytes(0x2000, 0xEE));
    daemon.board.setFlash(0xF000, Bytes(0x2000, 0xEE));
    daemon.pushes();
    daemon.trace();
    setTraceLevel(0);
    EXPECT_EQ(daemon.ask({.deviceType = 4, .code = 1, .address = address, .length = 4000, .data = all}).ack,
              0);
    setTraceLevel(4);
    EXPECT_THAT(daemon.trace("===").size(), 1U);
    Bytes first(all.begin(), all.begin() + (0x3000 - static_cast<int>(flash)));
    first.push_back(0xEE);
    EXPECT_EQ(daemon.board.flash(flash, first.size()), first);
    EXPECT_EQ(daemon.board.flash(copy, all.size()), all);
    EXPECT_EQ(daemon.board.flash(copy + 4000, 1), Bytes{0xEE});
    EXPECT_EQ(daemon.board.card(4, 0, 0, address, all.size()), all);
    const auto pushes = daemon.pushes();
    ASSERT_EQ(pushes.size(), 1U);
    EXPECT_EQ(pushes[0].address, address + 0x2000);
    EXPECT_EQ(pushes[0].data, all);
  }
}

class PortLinkTest : public CardsTest {
 protected:
  struct Link {
    Bytes net, fiber;
    unsigned char module;
    Bytes linked;  // the ports
  };
  void show(const Link& link) const {
    poke("hw/fpga.bin", 0x00F05100, link.net);
    poke("hw/fpga.bin", 0x00F04000, link.fiber);
    poke("hw/fpga.bin", 0x000001D7, {link.module});
  }
  static Bytes linkedPorts() {
    Bytes ports;
    for (unsigned port = 0; port < 255; ++port)
      if (Tshl_ctl::PortLinkVerify(static_cast<unsigned char>(port)) != 0)
        ports.push_back(static_cast<unsigned char>(port));
    return ports;
  }
};

TEST_F(PortLinkTest, CopperCountsAlwaysAndFiberUnlessItsModuleSaysNo) {
  const Link links[] = {
      {{0, 0, 0, 0}, {0, 0, 0, 0}, 0, {}},
      {{0x08, 0x01, 0x02, 0x04}, {0, 0, 0, 0}, 0xA0, {3, 4, 9, 14}},
      {{0xF0, 0xF0, 0xF0, 0xF0}, {0, 0, 0, 0}, 0, {}},
      {{0, 0, 0, 0}, {0x21, 0x80, 0x08, 0x10}, 0, {0, 3, 5, 12, 15}},
      {{0, 0, 0, 0}, {0x21, 0x80, 0x08, 0x10}, 0xA0, {}},
      {{0x01, 0, 0, 0}, {0x20, 0, 0, 0}, 0xA1, {0, 5}},
      {{0x01, 0, 0, 0}, {0x20, 0, 0, 0}, 0xA0, {0}},
  };
  for (const Link& link : links) {
    show(link);
    EXPECT_EQ(linkedPorts(), link.linked);
  }
}

TEST_F(PortLinkTest, WhatCannotBeReadCountsAsNoLinkAndAllPortsAreNotAsked) {
  show({{0, 0x02, 0, 0}, {0x20, 0, 0, 0}, 0, {}});
  failNext(Fault::FpgaRead, 3);
  EXPECT_EQ(Tshl_ctl::PortLinkVerify(5), 1) << "the fiber's bit is read";
  failNext(Fault::FpgaRead, kEveryCall);
  EXPECT_EQ(Tshl_ctl::PortLinkVerify(5), 0);
  EXPECT_EQ(Tshl_ctl::PortLinkVerify(0xFF), 1);
}

TEST(CardPauses, FollowTheKindOfCardAndTheAddressReached) {
  constexpr uint32_t kCorrection = 0x07000200;
  Data_Global::getInstance()->_gCorroentHighSpeed = 0;
  EXPECT_EQ(kReceivingCards.pause(0x02000201), 10000);
  EXPECT_EQ(kReceivingCards.pause(kCorrection), 5000);
  Data_Global::getInstance()->_gCorroentHighSpeed = 1;
  EXPECT_EQ(kReceivingCards.pause(kCorrection), 200);
  EXPECT_EQ(kReceivingCards.pause(0x08000000), 10000);
  EXPECT_EQ(kMultiCards.pause(kCorrection), 23000);
  EXPECT_EQ(kDistributionCards.pause(kCorrection), 25000);
  EXPECT_EQ(kLaunchers3D.pause(kCorrection), 5000);
  Data_Global::deleteInstance();
}

}  // namespace
}  // namespace ORVE_MCUC
