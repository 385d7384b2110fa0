// Peers that hurt: flooding, deaf and bursting ones beside one that behaves. What is measured is order and
// room, not time.
#include <atomic>
#include <list>

#include "apipc_fixture.h"

namespace apipc {
namespace {

constexpr std::size_t kMiB = 1 << 20;
constexpr std::size_t kShare = 4 * kMiB;
constexpr std::size_t kSockets = kMiB;  // at most what a connection's two sockets hold of one direction

class ApipcLoadTest : public ApipcTest {
 protected:
  /** Peers with the service codes from 1 on. */
  std::vector<std::unique_ptr<Client>> join(uint32_t count) const {
    std::vector<std::unique_ptr<Client>> peers;
    for (uint32_t i = 1; i <= count; ++i) {
      peers.push_back(std::make_unique<Client>(socketPath()));
      EXPECT_EQ(peers.back()->join(i), task(i));
    }
    return peers;
  }
  static uint32_t task(uint32_t peer) { return 0x01000000 | peer; }

  /** Sends until the socket stays full and so many messages have been queued: how many packets that were. */
  static uint32_t flood(const Client& peer, uint32_t from, std::size_t frame, std::size_t toBeQueued = 0) {
    uint32_t sent = 0;
    const auto end = steady_clock::now() + 10s;
    while (steady_clock::now() < end && (peer.awaitRoom(20ms) || queued() < toBeQueued)) {
      while (peer.trySend(packet(from, frame, sent))) ++sent;
    }
    return sent;
  }
};

TEST_F(ApipcLoadTest, AFloodStopsAtItsShareAndLosesNothing) {
  const auto peers = join(1);
  countQueued();
  for (const std::size_t frame : {std::size_t{65536}, std::size_t{2000}}) {
    const uint32_t before = queued();
    const std::size_t nearlyFull = (kShare - std::size_t{20} * 65564) / (kHead + frame);
    const uint32_t sent = flood(*peers[0], task(1), frame, before + nearlyFull);
    EXPECT_GE(queued() - before, nearlyFull);
    EXPECT_LE((queued() - before) * (kHead + frame), kShare);
    EXPECT_LE(sent * frame, kShare + kSockets);
    for (uint32_t i = 0; i < sent; ++i) ASSERT_EQ(mark(next()), i);
    EXPECT_TRUE(nothingComes());
  }
}

TEST_F(ApipcLoadTest, EachPeerHasItsTurnHoweverMuchOthersSent) {
  const auto peers = join(6);
  countQueued();
  std::vector<uint32_t> sent;
  for (uint32_t i = 0; i < 5; ++i) {
    const uint32_t nearlyAllThatFloodsMayTake = std::min(60 * (i + 1), 200U);
    sent.push_back(flood(*peers[i], task(i + 1), 60000, nearlyAllThatFloodsMayTake));
  }
  constexpr uint32_t kOfQuiet = 4;
  for (uint32_t i = 0; i < kOfQuiet; ++i) ASSERT_TRUE(peers[5]->send(packet(task(6), 20, i)));
  ASSERT_EQ(client().join(7), task(7)) << "two turns of the service: it has read what was there before";
  std::vector<uint32_t> seen(6);
  for (uint32_t all = 0; seen[5] < kOfQuiet; ++all) {
    ASSERT_LE(all, 6 * kOfQuiet) << "one message of each flood between two of the quiet one's";
    const Bytes message = next();
    ASSERT_EQ(mark(message), seen[(sender(message) & 0xFF) - 1]++);
  }
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_GE(seen[i] + 1, kOfQuiet) << "floods have their turns, too";
    for (; seen[i] < sent[i];) {
      const Bytes message = next();
      ASSERT_FALSE(message.empty()) << "of " << i;
      ASSERT_EQ(mark(message), seen[(sender(message) & 0xFF) - 1]++);
    }
  }
}

TEST_F(ApipcLoadTest, AStoppedPeerThatHangsUpStillHasItsMessagesDeliveredAndFreesItsName) {
  auto peers = join(1);
  uint32_t sent = flood(*peers[0], task(1), 65536);
  peers.clear();
  for (int i = 0; i < 3; ++i) {  // again and again
    const Client successor = client();
    ASSERT_EQ(successor.join(1), task(1));
    ASSERT_TRUE(successor.send(packet(task(1), 20, sent++)));
  }
  for (uint32_t i = 0; i < sent; ++i) ASSERT_EQ(mark(next()), i);
}

TEST_F(ApipcLoadTest, APeerThatReadsInBurstsMissesNothingAndNobodyWaitsForIt) {
  const auto peers = join(2);
  for (uint32_t burst = 0; burst < 2; ++burst) {
    constexpr uint32_t kMessages = 60;  // 3.6 MiB
    for (uint32_t i = 0; i < kMessages; ++i) {
      ASSERT_EQ(send(packet(task(1), 60000, i)), 0);
      ASSERT_EQ(send(packet(task(2), 20, i)), 0);
      ASSERT_EQ(mark(*peers[1]->receive()), i) << "the other one does not notice";
    }
    for (uint32_t i = 0; i < kMessages; ++i) ASSERT_EQ(mark(*peers[0]->receive()), i);
  }
}

TEST_F(ApipcLoadTest, APeerThatDoesNotReadIsClosedWithItsQueueFullAndHurtsNobody) {
  const auto peers = join(2);
  testing::internal::CaptureStderr();
  uint32_t sent = 0;
  while (send(packet(task(1), 60000, sent)) == 0) ++sent;
  EXPECT_GE(sent * 60028, kShare - 60028);
  EXPECT_LE(sent * 60028, kShare + kSockets);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(task(1)), -1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "apipc: 0x01000001 does not read what it is sent: connection closed\n");
  ASSERT_EQ(send(packet(task(2), 20)), 0);
  EXPECT_EQ(peers[1]->receive(), packet(task(2), 20));
  uint32_t read = 0;
  for (auto got = peers[0]->receive(); got && !got->empty(); got = peers[0]->receive())
    ASSERT_EQ(mark(*got), read++);
  EXPECT_LT(read, sent) << "what its socket had taken";
  EXPECT_EQ(client().join(1), task(1)) << "it may come back";
}

TEST_F(ApipcLoadTest, AllQueuesTogetherAreBoundedAndAFreedQueueMakesRoomForOthers) {
  auto peers = join(7);
  std::size_t kept = 0;
  const auto fill = [&](uint32_t peer) {  // to somewhat below its own limit
    uint32_t count = 0;
    while (count < 60 && send(packet(task(peer), 60000, count)) == 0) ++count;
    kept += count * 60028UL;
    return count;
  };
  for (uint32_t peer = 1; peer <= 4; ++peer) EXPECT_EQ(fill(peer), 60U);
  uint32_t peer = 5;
  while (peer <= 7 && fill(peer) == 60) ++peer;
  ASSERT_LE(peer, 6U) << "somebody was closed though it was within its own limit";
  EXPECT_LE(kept, 16 * kMiB + peer * kSockets);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(task(peer)), -1);
  EXPECT_NE(apipc_connect_chk_task_by_taskid(task(1)), -1);
  peers[0]->disconnect();
  EXPECT_TRUE(eventually([&] { return client().join(peer) == task(peer); }));
  EXPECT_TRUE(eventually([] { return apipc_connect_chk_task_by_taskid(task(1)) == -1; }));
  peers[peer - 1] = std::make_unique<Client>(socketPath());
  ASSERT_TRUE(eventually([&] { return peers[peer - 1]->join(peer) == task(peer); }));
  EXPECT_GE(fill(peer), 50U);
}

// The queue must empty by itself: nothing is sent any more that could push it.
TEST_F(ApipcLoadTest, AQueueGoesOutWhileItsPeerIsStoppedForItsOwnFlood) {
  const auto peers = join(1);
  for (uint32_t i = 0; i < 60; ++i) ASSERT_EQ(send(packet(task(1), 60000, i)), 0);
  flood(*peers[0], task(1), 65536);
  for (uint32_t i = 0; i < 60; ++i) ASSERT_EQ(mark(*peers[0]->receive()), i);
}

TEST_F(ApipcLoadTest, SendersAndAPeerThatComesAndGoesMeetAtAnyMoment) {
  std::atomic<bool> end{false};
  std::vector<std::thread> senders;
  for (int i = 0; i < 2; ++i) {
    senders.emplace_back([&] {
      while (!end) send(packet(task(1), 30000));
    });
  }
  for (int i = 0; i < 30; ++i) {
    const Client peer = client();
    if (peer.join(1) == 0) continue;
    for (int k = 0; k < i % 4; ++k) EXPECT_EQ(peer.receive()->size(), kHead + 30000);
  }
  end = true;
  for (auto& sender : senders) sender.join();
  const Client last = client();
  ASSERT_TRUE(eventually([&] { return client().join(2) == task(2); }));
}

}  // namespace
}  // namespace apipc
