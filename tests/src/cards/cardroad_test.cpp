// Requests to the cards behind the ports, as the cards and the screen daemon see them.
#include <algorithm>

#include "daemontest.h"
#include "mcuctrace.h"

using peer::Frame;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Bytes = peer::Bytes;

enum Type : uint8_t { kReceiving = 1, kMulti, kDistribution, kLauncher };

Frame readOf(Type type, uint32_t address, uint16_t length, uint8_t port = 1, uint16_t board = 2) {
  return {.deviceType = type, .port = port, .board = board, .address = address, .length = length};
}
Frame writeOf(Type type, uint32_t address, const Bytes& data, uint8_t port = 1, uint16_t board = 2) {
  return {.deviceType = type,
          .port = port,
          .board = board,
          .code = peer::kWrite,
          .address = address,
          .length = static_cast<uint16_t>(data.size()),
          .data = data};
}

// Without the FPGA's load notice nothing but the requests touches the cards.
class CardRoadTest : public DaemonTest {
 protected:
  explicit CardRoadTest(const std::string& conf = "fpga_autoload = no\n") : DaemonTest(conf) {
    ORVE_MCUC::setTraceLevel(3);
  }
  void askAsLsd(const Frame& frame) { daemon.exchange(peer::encode(frame), {}, peer::kLsd); }
  // What was written to cards, without stamps.
  std::vector<std::string> writes() const {
    std::vector<std::string> calls;
    for (const std::string& call : daemon.board.journal())
      if (call.starts_with("card-write")) calls.push_back(call);
    return calls;
  }
};

class CardReadsTest : public CardRoadTest {
 protected:
  CardReadsTest() : CardRoadTest("copper_ports = 0-3\nfiber1_ports = 5\nfiber_module = 0xA0\n") {
    daemon.tick();
  }
};

// What LSD is told of these addresses, the others left out.
std::vector<Frame> pushesOf(TestDaemon& daemon, const std::vector<uint32_t>& addresses) {
  std::vector<Frame> pushes = daemon.pushes();
  std::erase_if(pushes, [&](const Frame& push) {
    return std::find(addresses.begin(), addresses.end(), push.address) == addresses.end();
  });
  return pushes;
}

std::string hexOf(const Bytes& bytes, std::size_t shown) {
  return peer::toHex(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(shown)));
}

TEST_F(CardRoadTest, AWriteReachesTheCardsInChunksBeforeItsReply) {
  const Bytes data = counting(300);
  const Bytes second(data.begin() + 256, data.end());
  EXPECT_THAT(ask(writeOf(kMulti, 0x0100FF80, data, 0xFF, 0xFFFF)), CarriesNothing());
  EXPECT_THAT(writes(), ElementsAre("card-write 2 255 65535 0x0100ff80 256 " + hexOf(data, 64) + "+192",
                                    "card-write 2 255 65535 0x01010080 44 " + hexOf(second, 44)));
  EXPECT_THAT(ask(writeOf(kReceiving, 0x07000000, counting(600))), CarriesNothing());
  EXPECT_THAT(writes().back(), HasSubstr("card-write 1 1 2 0x07000200 88 "));
}

TEST_F(CardRoadTest, AWriteIsAcknowledgedEvenWhenNoCardTakesIt) {
  daemon.board.failNext(Fault::CardWrite, TestBoard::kEveryCall);
  for (const Type type : {kReceiving, kMulti, kDistribution, kLauncher})
    EXPECT_THAT(ask(writeOf(type, 0x01000000, {1})), CarriesNothing());
  EXPECT_EQ(writes().size(), 4U);
}

TEST_F(CardRoadTest, LsdLearnsWhatOthersWriteToTheRegistersItMirrors) {
  daemon.connect();
  const std::vector<uint32_t> mirrored{0x02000001, 0x01000088};
  askAsLsd(writeOf(kReceiving, 0x02000001, {0x11}));
  EXPECT_EQ(flash(0xD15000, 1), Bytes{0x11});
  askAsLsd(writeOf(kReceiving, 0x01000088, {0x12}));
  ask(writeOf(kReceiving, 0x01000088, {0x13, 0x14}));
  EXPECT_THAT(pushesOf(daemon, mirrored), testing::IsEmpty());
  ask(writeOf(kReceiving, 0x02000001 - 512, Bytes(514, 0x15)));
  EXPECT_EQ(flash(0xD15000, 1), Bytes{0x11}) << "only a write of that one byte is stored";
  ask(writeOf(kReceiving, 0x01000088, {0x16}));
  const auto pushes = pushesOf(daemon, mirrored);
  ASSERT_EQ(pushes.size(), 2U);
  EXPECT_EQ(pushes[0].address, 0x02000001U);
  EXPECT_EQ(pushes[0].data, Bytes{0x15});
  EXPECT_EQ(pushes[1].address, 0x01000088U);
  EXPECT_EQ(pushes[1].data, Bytes{0x16});
}

TEST_F(CardRoadTest, A3DLauncherIsToldAndItsParametersGoToLsdAndTwiceIntoTheFlash) {
  daemon.connect();
  askAsLsd(writeOf(kLauncher, 0x02000001, {0x21}));
  EXPECT_EQ(flash(0x2407, 1), Bytes{0x21});
  EXPECT_EQ(flash(0xF557, 1), Bytes{0x21});
  ask(writeOf(kLauncher, 0x02000002, {1, 2, 3}));
  EXPECT_EQ(flash(0x2408, 3), (Bytes{1, 2, 3}));
  EXPECT_EQ(flash(0xF558, 3), (Bytes{1, 2, 3}));
  const auto pushes = pushesOf(daemon, {0x02002001, 0x02002002});
  ASSERT_EQ(pushes.size(), 1U) << "what LSD wrote itself is not sent back";
  EXPECT_EQ(pushes[0].address, 0x02002002U);
  EXPECT_EQ(pushes[0].data, (Bytes{1, 2, 3}));
  EXPECT_THAT(writes(),
              ElementsAre("card-write 4 1 2 0x02000001 1 21", "card-write 4 1 2 0x02000002 3 010203"));
}

TEST_F(CardReadsTest, APortWithoutALinkIsRefusedAndAllCardsAtOnceReadAsZeros) {
  for (const Type type : {kReceiving, kMulti, kDistribution, kLauncher}) {
    EXPECT_THAT(ask(readOf(type, 0x02000017, 4, 9)), IsRefused());
    EXPECT_THAT(ask(readOf(type, 0x02000017, 4, 16)), IsRefused());
    EXPECT_THAT(ask(readOf(type, 0x02000017, 1200, 2, 0xFFFF)), Carries(zeros(1200)));
  }
  EXPECT_THAT(ask(readOf(kDistribution, 0x02000017, 4, 5)), IsRefused())
      << "over fiber, which does not count";
  EXPECT_THAT(daemon.trace(),
              testing::Contains(HasSubstr("((PortAddr>=4)&&(PortAddr<=7)) no linked , return 0")));
}

TEST_F(CardRoadTest, OtherCodesAreAnsweredAndDoNothing) {
  for (const Type type : {kReceiving, kMulti, kDistribution, kLauncher}) {
    Frame frame = readOf(type, 0x02000001, 4);
    frame.code = 2;
    EXPECT_THAT(ask(frame), CarriesNothing());
  }
  EXPECT_THAT(writes(), testing::IsEmpty());
  EXPECT_THAT(daemon.trace(),
              testing::Contains(
                  HasSubstr("=============================Do nothing !!! ==============================")));
}

TEST_F(CardReadsTest, ReadsShowWhatTheCardsHoldOverCopperAndFiber) {
  EXPECT_THAT(ask(readOf(kReceiving, 0x02000017, 4, 3, 15)), Carries(Bytes{128, 0, 128, 0}));
  EXPECT_THAT(ask(readOf(kReceiving, 0x02000017, 4, 5, 0)), Carries(Bytes{128, 0, 128, 0}));
  const Bytes data = counting(1200);
  for (const Type type : {kReceiving, kMulti, kDistribution, kLauncher}) {
    ask(writeOf(type, 0x03000000, data, 0xFF, 0xFFFF));
    EXPECT_THAT(ask(readOf(type, 0x03000000, 1200, 2, 7)), Carries(data));
  }
  daemon.board.setFpga(0x1D7, {0});
  EXPECT_THAT(ask(readOf(kDistribution, 0x03000000, 1200, 5, 0)), Carries(data));
}

TEST_F(CardReadsTest, ACardThatDoesNotAnswerIsACodeAndNeverData) {
  struct Silent {
    Type type;
    int ack;
  };
  for (const auto& [type, ack] :
       {Silent{kReceiving, 1}, Silent{kMulti, 4}, Silent{kDistribution, 4}, Silent{kLauncher, 4}}) {
    const Frame reply = ask(readOf(type, 0x03000000, 1200, 1, 16));
    EXPECT_EQ(reply.ack, ack);
    EXPECT_EQ(reply.data, Bytes{});
  }
  daemon.board.failNext(Fault::CardRead, 1);
  EXPECT_EQ(ask(readOf(kReceiving, 0x02000017, 600)).ack, 1);
  EXPECT_EQ(ask(readOf(kReceiving, 0x02000017, 600)).data.size(), 600U);
}

}  // namespace
