// Peers that send rubbish, too much, or do not listen.
#include <random>

#include "maps/spaces.h"
#include "system_test.h"

using ORVE_MCUC::kSpaces;
using peer::Bytes;
using peer::Frame;
namespace reg = ORVE_MCUC::reg;

namespace {

class HostileTest : public SystemTest {
 protected:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

  Bytes noise() {
    Bytes bytes(below(64) == 0 ? below(65536) : below(80));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random_());
    return bytes;
  }
  // A frame that passes the checksum but is odd in some way.
  Bytes oddFrame() {
    constexpr uint32_t kNoSpace = 0x02250000;
    const unsigned space = below(kSpaces.size() + 1);
    // Commands may restart the board.
    const bool known = space < kSpaces.size() && kSpaces[space].base != reg::kCommand;
    const unsigned width = known ? kSpaces[space].width : 0x10000;
    Frame frame;
    frame.address = (known ? kSpaces[space].base : kNoSpace) + below(below(2) == 0 ? 0x200 : width);
    frame.code = static_cast<uint8_t>(below(8) == 0 ? below(256) : below(2));
    frame.reserved = static_cast<uint8_t>(below(2) == 0 ? 0xFF : 0);
    frame.deviceType = static_cast<uint8_t>(below(16) == 0 ? 5 + below(251) : 0);
    frame.data = Bytes(below(16) == 0 ? below(5000) : below(40), static_cast<uint8_t>(below(256)));
    frame.length = static_cast<uint16_t>(below(4) == 0 ? below(65536) : frame.data.size());
    return peer::encode(frame);
  }
  Bytes mutated() {
    Bytes frame = oddFrame();
    for (unsigned i = below(4); i < 4; ++i) {
      uint8_t& byte = frame[below(static_cast<unsigned>(frame.size()))];
      byte = static_cast<uint8_t>(byte ^ 1U << below(8));
    }
    if (frame[15] == 0x01) frame[15] = 0x02;  // commands may restart the board
    if (below(4) == 0) frame.resize(below(static_cast<unsigned>(frame.size()) + 1));
    return frame;
  }

 private:
  std::mt19937 random_{20170619};
};

TEST_F(HostileTest, RandomAndMutatedFramesNeverHarmTheDaemon) {
  for (unsigned round = 0; round < 300; ++round) {
    for (unsigned i = 0; i < 4; ++i) {
      client->send(noise(), kRawNumber);
      client->send(oddFrame(), kRawNumber);
      client->send(mutated(), kRawNumber);
    }
    ASSERT_EQ(read(0xF0C0FFE0, 4).ack, 0) << "round " << round;
  }
}

TEST_F(HostileTest, EightPeersAtOnceGetEveryReplyAndInOrder) {
  constexpr unsigned kRequests = 30;
  std::vector<peer::Peer> peers;
  for (unsigned i = 0; i < 8; ++i) peers.push_back(daemon.connect());
  for (unsigned round = 0; round < 10; ++round) {
    for (unsigned n = 0; n < kRequests; ++n)
      for (unsigned i = 0; i < peers.size(); ++i)
        peers[i].send(
            peer::encode(Frame{.label = static_cast<uint8_t>(n), .address = 0xF0C00000 + i, .length = 8}),
            n + 1);
    for (unsigned i = 0; i < peers.size(); ++i)
      for (unsigned n = 0; n < kRequests; ++n) {
        const auto message = peers[i].receive(kPatience);
        ASSERT_TRUE(message);
        const Frame reply = peer::decode(message->frame);
        ASSERT_EQ(message->head.labelCount, n + 1);
        ASSERT_EQ(reply.label, n);
        ASSERT_EQ(reply.address, 0xF0C00000 + i);
        ASSERT_THAT(reply, Carries(zeros(8)));
      }
  }
}

TEST_F(HostileTest, APeerThatDoesNotListenLosesItsConnectionAndNobodyElseDoes) {
  peer::Peer deaf = daemon.connect();
  const Bytes request = peer::encode(Frame{.address = 0x05000000, .length = 32768});
  EXPECT_THROW(
      {
        for (unsigned i = 0; i < 1'000'000; ++i) deaf.send(request, 1);
      },
      peer::Error);
  EXPECT_THAT(read(0xF0C0FFE0, 4), Carries(zeros(4)));
}

}  // namespace
