// The message service as its peers see it and as the daemon sees it: names, packets, who may be there.
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <atomic>
#include <memory>

#include "apipc_fixture.h"
#include "platform/driver.h"

namespace {

std::atomic<unsigned> sleeps;  // how often the service found nothing to do and went to sleep

}  // namespace

// In the place of the library's.
int epoll_wait(int epoll, epoll_event* events, int most, int timeoutMs) {
  const int ready = epoll_pwait(epoll, events, most, 0, nullptr);
  if (ready != 0 || timeoutMs == 0) return ready;
  ++sleeps;
  return epoll_pwait(epoll, events, most, timeoutMs, nullptr);
}

namespace apipc {
namespace {

TEST_F(ApipcTest, APeerIsGreetedWithItsTaskIdentifierAndIsConnectedUntilItHangsUp) {
  EXPECT_EQ(apcard_bit_self(), 1);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(kLsd), -1);
  Client lsd = client();
  EXPECT_EQ(lsd.join(0xFF0A3900), kLsd) << "the top byte of the name is ignored";
  EXPECT_NE(apipc_connect_chk_task_by_taskid(kLsd), -1);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(kVsp), -1);
  lsd.disconnect();
  EXPECT_TRUE(eventually([] { return apipc_connect_chk_task_by_taskid(kLsd) == -1; }));
  EXPECT_EQ(client().join(0x0A3900), kLsd) << "the name is free again";
}

TEST_F(ApipcTest, APeerThatLeavesAndReturnsAtOnceHasAnotherConnectionNumber) {
  std::vector<uint64_t> numbers{apipc_connection_number(kLsd)};
  EXPECT_EQ(numbers.front(), 0U);
  for (int i = 0; i < 3; ++i) {
    if (i == 2) {  // a service that follows on another
      shut();
      open();
    }
    const Client lsd = client();
    const Client vsp = client();
    ASSERT_EQ(lsd.join(0x0A3900), kLsd);
    ASSERT_EQ(vsp.join(0x0A3700), kVsp);
    for (const uint32_t task : {kLsd, kVsp}) {
      const uint64_t number = apipc_connection_number(task);
      EXPECT_EQ(std::count(numbers.begin(), numbers.end(), number), 0) << number;
      EXPECT_EQ(apipc_connection_number(task), number) << "as long as it stays";
      numbers.push_back(number);
    }
  }
}

TEST_F(ApipcTest, ANameInUseTheDaemonsOwnNameAndAWrongFirstPacketAreTurnedAway) {
  const Client lsd = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  EXPECT_EQ(client().join(0x0A3900), 0U);
  EXPECT_EQ(client().join(0x0A4200), 0U);
  for (const std::size_t size : {0U, 3U, 5U, 70000U}) {
    const Client wrong = client();
    ASSERT_TRUE(wrong.connect());
    ASSERT_TRUE(wrong.send(Bytes(size)));
    EXPECT_TRUE(wrong.isClosed()) << size;
  }
  ASSERT_TRUE(lsd.send(packet(kLsd, 4)));
  EXPECT_EQ(next(), packet(kLsd, 4));
  ASSERT_TRUE(lsd.send({}));
  EXPECT_TRUE(lsd.isClosed()) << "an empty packet closes at any time";
}

TEST_F(ApipcTest, PacketsOfAllSizesArriveUnchangedAndInOrderInBothDirections) {
  const Client lsd = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  for (const std::size_t frame : {0U, 1U, 20U, 4096U, 65535U, 65536U}) {
    const Bytes bytes = packet(kLsd, frame, 0xA5A5A5A5);
    ASSERT_TRUE(lsd.send(bytes));
    EXPECT_EQ(next(), bytes);
    EXPECT_EQ(send(bytes), 0);
    EXPECT_EQ(lsd.receive(), bytes);
  }
}

TEST_F(ApipcTest, WhatAPeerMayNotSendIsDroppedAndNamedOnceASecondWhileItStaysConnected) {
  const Client lsd = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  Bytes wrongLength = packet(kLsd, 20);
  wrongLength.pop_back();
  testing::internal::CaptureStderr();
  for (const Bytes& bytes : {wrongLength, Bytes(27), packet(kLsd, 65537), packet(kVsp, 20), packet(kLsd, 20)})
    ASSERT_TRUE(lsd.send(bytes));
  EXPECT_EQ(next(), packet(kLsd, 20));
  EXPECT_TRUE(nothingComes());
  advance(1s);
  EXPECT_TRUE(eventually([this] { return client().join(0x0A3700) == kVsp; })) << "a turn of the service";
  shut();
  const std::string dropped = "apipc: dropped a packet of 0x010a3900: ";
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            dropped + "the label says 20 bytes, 19 came (1 since the last line, 1 in all)\n" + dropped +
                "ui_id 0x010a3700 is not the sender's own (3 since the last line, 4 in all)\n");
}

TEST_F(ApipcTest, WhatAPeerSentBeforeItHungUpIsDeliveredAheadOfWhatItSendsWhenItIsBack) {
  constexpr uint32_t kEach = 50;
  for (uint32_t first : {0U, kEach}) {
    const Client lsd = client();
    ASSERT_EQ(lsd.join(0x0A3900), kLsd);
    for (uint32_t i = first; i < first + kEach; ++i) {
      ASSERT_EQ(send(packet(kLsd, 20)), 0) << "it leaves its own mail unread";
      ASSERT_TRUE(lsd.send(packet(kLsd, 20, i)));
    }
  }
  for (uint32_t i = 0; i < 2 * kEach; ++i) ASSERT_EQ(mark(next()), i);
}

TEST_F(ApipcTest, ASendGoesToTheNamedTaskOrFails) {
  const Client lsd = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  const Bytes bytes = packet(kLsd, 20);
  EXPECT_EQ(send(packet(kVsp, 20)), -1) << "nobody of that name";
  EXPECT_EQ(apipc_send(kLsd, packet(kVsp, 20).data(), 48), 0)
      << "addressed directly, the head does not matter";
  EXPECT_EQ(lsd.receive(), packet(kVsp, 20));
  EXPECT_EQ(apipc_send(kNamedInHead, bytes.data(), 27), -1);
  EXPECT_EQ(apipc_send(kNamedInHead, nullptr, 48), -1);
  EXPECT_EQ(send(packet(kLsd, 65537)), -1);
  std::vector<std::thread> senders;
  for (uint32_t i = 0; i < 4; ++i) {
    senders.emplace_back([i] {
      for (uint32_t k = 0; k < 20; ++k) EXPECT_EQ(send(packet(kLsd, 20, i)), 0);
    });
  }
  for (auto& sender : senders) sender.join();
  for (int i = 0; i < 80; ++i) EXPECT_EQ(lsd.receive()->size(), 48U);
}

TEST_F(ApipcTest, AFaultFailsTheNextSendOrLosesTheNextMessage) {
  const Client lsd = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  failNext(Fault::MessageSend, 1);
  EXPECT_EQ(send(packet(kLsd, 20)), -1);
  EXPECT_EQ(send(packet(kLsd, 20, 1)), 0);
  EXPECT_EQ(mark(*lsd.receive()), 1U);
  failNext(Fault::MessageQueue, 1);
  for (uint32_t i = 0; i < 2; ++i) ASSERT_TRUE(lsd.send(packet(kLsd, 20, i)));
  EXPECT_EQ(mark(next()), 1U);
  apipc_msg_t none = nullptr;
  EXPECT_LT(apipc_enq(&none), 0);
  EXPECT_LT(apipc_deq(&none), 0);
}

TEST_F(ApipcTest, AConnectionThatStaysSilentIsClosedAfterTwoSecondsAndSoIsThe129th) {
  std::vector<std::unique_ptr<Client>> silent;
  for (int i = 0; i < 128; ++i) {
    silent.push_back(std::make_unique<Client>(socketPath()));
    ASSERT_TRUE(silent.back()->connect());
  }
  const Client oneTooMany = client();
  ASSERT_TRUE(oneTooMany.connect());
  EXPECT_TRUE(oneTooMany.isClosed());
  advance(1999ms);
  ASSERT_TRUE(silent.back()->send({0x00, 0x39, 0x0A, 0x00}));
  EXPECT_EQ(silent.back()->receive(), (Bytes{0x00, 0x39, 0x0A, 0x01})) << "in time";
  advance(1ms);
  for (int i = 0; i < 127; ++i) EXPECT_TRUE(silent[static_cast<std::size_t>(i)]->isClosed());
  EXPECT_NE(apipc_connect_chk_task_by_taskid(kLsd), -1);
  EXPECT_EQ(client().join(0x0A3700), kVsp) << "there is room again";
}

TEST_F(ApipcTest, WithoutFileDescriptorsNewPeersWaitAndTheServiceSleeps) {
  const auto goesBackToSleep = [this] {
    const unsigned before = sleeps;
    advance(0s);  // wakes it
    return eventually([before] { return sleeps != before; });
  };
  const Client lsd = client();
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  const int lowestFree = dup(0);
  close(lowestFree);
  const rlimit none{static_cast<rlim_t>(lowestFree), usual.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  EXPECT_TRUE(goesBackToSleep());
  EXPECT_TRUE(lsd.connect());
  EXPECT_TRUE(goesBackToSleep()) << "the peer that waits does not keep it awake";
  setrlimit(RLIMIT_NOFILE, &usual);
  advance(100ms);
  ASSERT_TRUE(lsd.send({0x00, 0x39, 0x0A, 0x00}));
  EXPECT_EQ(lsd.receive(), (Bytes{0x00, 0x39, 0x0A, 0x01}));
}

TEST_F(ApipcTest, AnOutageClosesAllPeers) {
  const Client lsd = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  cutPower({.atWrite = 1});
  const unsigned char byte = 0;
  EXPECT_EQ(WriteDataToFlashx(0, 1, &byte), -1);
  EXPECT_TRUE(lsd.isClosed());
}

TEST_F(ApipcTest, OnlyTheOwnUserAndRootMayConnect) {
  struct stat status {};
  ASSERT_EQ(stat(socketPath().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  if (geteuid() != 0) GTEST_SKIP() << "needs root to become somebody else";
  chmod(file("").c_str(), 0755);
  chmod(socketPath().c_str(), 0666);
  std::thread somebody([this] {  // the bare call changes the user of this thread only
    const Client stranger = client();
    ASSERT_EQ(syscall(SYS_setresuid, -1, 65534, -1), 0);
    ASSERT_TRUE(stranger.connect());
    EXPECT_TRUE(stranger.isClosed());
  });
  somebody.join();
}

TEST_F(ApipcTest, AReplacedServiceClosesAllPeersAndTakesOverTheSocketThatWasLeftBehind) {
  const Client lsd = client();
  const Client nameless = client();
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  ASSERT_TRUE(nameless.connect());
  EXPECT_EQ(apipc_init(kDaemon, 0), -1) << "one service at a time";
  shut();
  EXPECT_TRUE(lsd.isClosed());
  EXPECT_TRUE(nameless.isClosed());
  EXPECT_EQ(send(packet(kLsd, 20)), -1);
  EXPECT_EQ(apipc_loop_wait(nullptr, nullptr), -1);
  open();
  EXPECT_EQ(client().join(0x0A3900), kLsd);
}

}  // namespace
}  // namespace apipc
