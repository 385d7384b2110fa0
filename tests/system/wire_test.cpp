// Frames byte for byte, and messages that are not answered.
#include "system_test.h"

using peer::Bytes;
using peer::fromHex;
using peer::Head;

namespace {

class WireTest : public SystemTest {
 protected:
  void sendBehind(Head head, const std::string& frameHex) {
    const Bytes frame = fromHex(frameHex);
    head.frameLength += static_cast<uint32_t>(frame.size());
    if (head.taskId == 0) head.taskId = client->taskId();
    Bytes packet = peer::encode(head);
    packet.insert(packet.end(), frame.begin(), frame.end());
    client->sendPacket(packet);
  }
};

const std::string kRead4 = "55 AA 00 00 00 00 00 00 00 00 00 00 10 00 00 F0 04 00 59 56";

struct Exchange {
  const char *what, *request, *reply, *registers;
};
const Exchange kExchanges[] = {
    {"a read", kRead4.c_str(), "AA 55 00 00 00 00 00 00 00 00 00 00 10 00 00 F0 04 00 01 02 03 04 63 56",
     "01020304"},
    {"a write", "55 AA 00 00 00 00 00 00 00 00 01 00 11 00 00 F0 01 00 10 68 56",
     "AA 55 00 00 00 00 00 00 00 00 01 00 11 00 00 F0 00 00 57 56", "01100304"},
    {"a write that wants its data back", "55 AA 00 00 00 00 00 00 00 00 01 FF 11 00 00 F0 02 00 10 20 88 57",
     "AA 55 00 00 00 00 00 00 00 00 01 FF 11 00 00 F0 02 00 10 20 88 57", "01102004"},
    {"a write for another destination", "55 AA 00 00 00 05 00 00 00 00 01 00 11 00 00 F0 01 00 10 6D 56",
     "AA 55 00 00 00 05 00 00 00 00 01 00 11 00 00 F0 00 00 5C 56", "01100304"},
    {"a write with bytes behind its data",
     "55 AA 00 00 00 00 00 00 00 00 01 00 11 00 00 F0 01 00 10 77 77 56 57",
     "AA 55 00 00 00 00 00 00 00 00 01 00 11 00 00 F0 00 00 57 56", "01100304"},
    {"a write with a wrong checksum", "55 AA 00 00 00 00 00 00 00 00 01 00 11 00 00 F0 01 00 10 69 56",
     "AA 55 02 00 00 00 00 00 00 00 01 00 11 00 00 F0 00 00 59 56", "01020304"},
    {"a read with a wrong checksum", "55 AA 00 00 00 00 00 00 00 00 00 00 10 00 00 F0 04 00 00 00",
     "AA 55 02 00 00 00 00 00 00 00 00 00 10 00 00 F0 00 00 57 56", "01020304"},
    {"a wrong checksum for another destination",
     "55 AA 00 00 00 05 00 00 00 00 01 00 11 00 00 F0 01 00 10 68 56",
     "AA 55 02 00 00 05 00 00 00 00 01 00 11 00 00 F0 00 00 5E 56", "01020304"},
};

TEST_F(WireTest, RepliesMatchByteForByte) {
  for (const Exchange& exchange : kExchanges) {
    SCOPED_TRACE(exchange.what);
    daemon.board().setFpga(0x10, {1, 2, 3, 4});
    EXPECT_EQ(wire(exchange.request), fromHex(exchange.reply));
    EXPECT_EQ(daemon.board().fpga(0x10, 4), fromHex(exchange.registers));
  }
}

TEST_F(WireTest, TheReplyRepeatsTheHeaderOfFrameAndMessage) {
  sendBehind({.labelCount = 7, .size = 8, .result = 9, .detail = 10, .small = 1},
             "55 AA 7F 11 22 00 00 33 44 55 00 66 10 00 00 F0 01 00 3A 58");
  const auto message = client->receive(kPatience);
  ASSERT_TRUE(message);
  EXPECT_EQ(peer::encode(message->head), peer::encode(Head{.taskId = client->taskId(),
                                                           .labelCount = 7,
                                                           .size = 8,
                                                           .detail = 10,
                                                           .small = 1,
                                                           .frameLength = 21}));
  EXPECT_EQ(message->frame, fromHex("AA 55 00 11 22 00 00 33 44 55 00 66 10 00 00 F0 01 00 00 BB 57"));
}

TEST_F(WireTest, FramesThatAreCutAreNotAnswered) {
  for (const std::string& frame :
       {std::string(), std::string("55"), std::string("55 AA 55 55"), kRead4.substr(0, 3 * 19 - 1),
        std::string("55 AA 00 00 00 00 00 00 00 00 01 00 11 00 00 F0 02 00 10 69 56")}) {
    sendBehind({}, frame);
    EXPECT_TRUE(nothingCame()) << frame;
  }
  EXPECT_EQ(daemon.board().fpga(0x11, 1), Bytes{0});
}

TEST_F(WireTest, OtherLabelsAndMessagesThatTheServiceDropsAreNotAnswered) {
  const Head others[] = {{.large = 0x1B},    {.large = 0},
                         {.small = 2},       {.small = 3},
                         {.frameLength = 1}, {.frameLength = 0xFFFFFFFF},
                         {.taskId = 1},      {.taskId = client->taskId() ^ 0x01000000}};
  for (const Head& head : others) {
    sendBehind(head, kRead4);
    EXPECT_TRUE(nothingCame()) << head.small << ' ' << head.large << ' ' << head.frameLength;
  }
}

TEST_F(WireTest, TheLargestFrameIsTaken) {
  EXPECT_THAT(write(0x02300000, zeros(peer::kMaxData)), IsRefused());
}

}  // namespace
