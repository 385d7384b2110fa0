// The message service as its peers see it (real sockets) and as the daemon sees it (the calls of
// platform/apipc.h).
#include "platform/apipc.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "apipc_service.h"
#include "platform/board.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;
using Bytes = std::vector<unsigned char>;

constexpr uint32_t kDaemon = 0x010A4200;
constexpr uint32_t kLsd = 0x010A3900;
constexpr uint32_t kVsp = 0x010A3700;
constexpr uint32_t kNamedInHead = 0x01070400;
constexpr std::size_t kHead = 28;

enum FaultCounter { kMessageSend = 7, kMessageQueue = 15 };

std::string boardDirectory() {
  static const std::string directory = [] {
    std::string name = "/tmp/apipc_test.XXXXXX";
    return std::string(mkdtemp(name.data()));
  }();
  return directory;
}

std::string socketPath() {
  return boardDirectory() + "/run/apipc.sock";
}

void setFault(FaultCounter fault, uint32_t calls) {
  const int control = open((boardDirectory() + "/hw/control.bin").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(pwrite(control, &calls, sizeof calls, 16 + 4 * fault), 4);
  close(control);
}

/** A packet from or to `uiId` whose frame has so many bytes and begins with `mark`. */
Bytes packet(uint32_t uiId, std::size_t frame, uint32_t mark = 0) {
  Bytes bytes(kHead + frame);
  const auto length = static_cast<uint32_t>(frame);
  std::memcpy(bytes.data(), &uiId, 4);
  std::memcpy(&bytes[24], &length, 4);
  if (frame >= 4) std::memcpy(&bytes[kHead], &mark, 4);
  return bytes;
}

class Client {
 public:
  explicit Client(int receiveMs = 5000) : fd_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
    const timeval wait{receiveMs / 1000, receiveMs % 1000 * 1000L};
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() { disconnect(); }

  bool connect() const {
    sockaddr_un address{AF_UNIX, {}};
    socketPath().copy(address.sun_path, sizeof address.sun_path - 1);
    return ::connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  void disconnect() {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
  }

  bool send(const Bytes& bytes) const {
    return ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
  }

  /** The next packet; empty when the service has closed the connection, nothing when none comes. */
  std::optional<Bytes> receive() const {
    Bytes bytes(70000);
    const ssize_t length = recv(fd_, bytes.data(), bytes.size(), 0);
    if (length < 0) return errno == ECONNRESET ? std::optional<Bytes>(Bytes{}) : std::nullopt;
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
  }
  bool isClosed() const { return receive() == Bytes{}; }

  /** Says who it is; the answer, 0 when it is turned away. */
  uint32_t join(uint32_t name) const {
    uint32_t task = 0;
    if (!connect() || ::send(fd_, &name, sizeof name, MSG_NOSIGNAL) != sizeof name) return 0;
    return recv(fd_, &task, sizeof task, 0) == sizeof task ? task : 0;
  }

 private:
  int fd_;
};

int enqueue(__apsess_st*, void*, apipc_msg_t message, int) {
  return apipc_enq(&message);
}

class ApipcTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static std::array<char, 8> name{"parlend"};
    static std::array<char*, 2> arguments{name.data(), nullptr};
    static bool started = false;
    if (std::exchange(started, true)) return;
    setenv("PARLEND_BOARD", boardDirectory().c_str(), 1);
    board_start(1, arguments.data());
  }

  void SetUp() override {
    ASSERT_EQ(apipc_init(kDaemon, 0), 0);
    waiting_ = std::thread([] { apipc_loop_wait(nullptr, enqueue); });
  }
  void TearDown() override {
    simboard::apipc_close_all_peers();
    waiting_.join();
  }

  /** The next message as the receiving thread gets it; empty when none comes. */
  static Bytes next(std::chrono::milliseconds patience = 5s) {
    const auto end = steady_clock::now() + patience;
    apipc_msg_t message = nullptr;
    while (apipc_deq(&message) < 0) {
      if (steady_clock::now() >= end) return {};
      apipc_que_wait(static_cast<int>(patience.count()));
    }
    auto* const contents = static_cast<unsigned char*>(apipc_que_attach(message));
    uint32_t frame = 0;
    std::memcpy(&frame, contents + 24, 4);
    Bytes bytes(contents, contents + kHead + frame);
    apipc_que_detach(message, contents);
    return bytes;
  }

  static bool nothingComes() { return next(30ms).empty(); }
  static int send(const Bytes& bytes) {
    return apipc_send(kNamedInHead, bytes.data(), static_cast<unsigned int>(bytes.size()));
  }
  static bool eventually(const std::function<bool()>& holds) {
    for (int i = 0; i < 2000; ++i, std::this_thread::sleep_for(1ms)) {
      if (holds()) return true;
    }
    return false;
  }

  std::thread waiting_;
};

uint32_t mark(const Bytes& bytes) {
  uint32_t value = 0;
  std::memcpy(&value, &bytes.at(kHead), 4);
  return value;
}

TEST_F(ApipcTest, APeerIsGreetedWithItsTaskIdentifierAndIsConnectedUntilItHangsUp) {
  EXPECT_EQ(apcard_bit_self(), 1);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(kLsd), -1);
  Client lsd;
  EXPECT_EQ(lsd.join(0xFF0A3900), kLsd) << "the top byte of the name is ignored";
  EXPECT_NE(apipc_connect_chk_task_by_taskid(kLsd), -1);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(kVsp), -1);
  lsd.disconnect();
  EXPECT_TRUE(eventually([] { return apipc_connect_chk_task_by_taskid(kLsd) == -1; }));
  EXPECT_EQ(Client().join(0x0A3900), kLsd) << "the name is free again";
}

TEST_F(ApipcTest, ANameInUseTheDaemonsOwnNameAndAWrongFirstPacketAreTurnedAway) {
  Client lsd;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  EXPECT_EQ(Client().join(0x0A3900), 0U);
  EXPECT_EQ(Client().join(0x0A4200), 0U);
  for (const std::size_t size : {0U, 3U, 5U, 70000U}) {
    Client wrong;
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
  Client lsd;
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
  Client lsd;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  Bytes wrongLength = packet(kLsd, 20);
  wrongLength.pop_back();
  testing::internal::CaptureStderr();
  for (const Bytes& bytes : {wrongLength, Bytes(27), packet(kLsd, 65537), packet(kVsp, 20)}) {
    ASSERT_TRUE(lsd.send(bytes));
  }
  EXPECT_TRUE(nothingComes());
  ASSERT_TRUE(lsd.send(packet(kLsd, 20)));
  EXPECT_EQ(next(), packet(kLsd, 20));
  std::this_thread::sleep_for(1050ms);
  const std::string lines = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(
      lines.starts_with("apipc: dropped a packet of 0x010a3900: the label says 20 bytes, 19 came (1 since"));
  EXPECT_TRUE(lines.ends_with(", 4 in all)\n")) << lines;
  EXPECT_LE(std::count(lines.begin(), lines.end(), '\n'), 3) << lines;
}

TEST_F(ApipcTest, WhatAPeerSentBeforeItHungUpIsDeliveredThoughItLeftItsOwnMailUnread) {
  Client lsd;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  for (uint32_t i = 0; i < 50; ++i) {
    ASSERT_EQ(send(packet(kLsd, 20)), 0);
    ASSERT_TRUE(lsd.send(packet(kLsd, 20, i)));
  }
  lsd.disconnect();
  for (uint32_t i = 0; i < 50; ++i) ASSERT_EQ(mark(next()), i);
}

TEST_F(ApipcTest, AFloodIsSlowedDownInsideItsShareAndLosesNothingWhileAnotherPeerGetsThrough) {
  constexpr uint32_t kMessages = 100000;
  constexpr std::size_t kShare = 4 << 20;
  Client lsd;
  Client vsp;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  ASSERT_EQ(vsp.join(0x0A3700), kVsp);
  std::atomic<uint32_t> sent{0};
  std::thread flood([&] {
    for (uint32_t i = 0; i < kMessages && lsd.send(packet(kLsd, 20, i)); ++i) sent = i + 1;
  });
  uint32_t before = 0;
  EXPECT_TRUE(eventually([&] {
    std::this_thread::sleep_for(20ms);
    return std::exchange(before, sent.load()) == sent.load() && before > 0;
  }));
  EXPECT_LT(sent.load() * std::size_t{48}, kShare + (1 << 20)) << "the share and what the sockets hold";
  ASSERT_TRUE(vsp.send(packet(kVsp, 20)));
  uint32_t fromLsd = 0;
  uint32_t vspCameAfter = 0;
  for (uint32_t i = 0; i <= kMessages; ++i) {
    const Bytes message = next();
    ASSERT_FALSE(message.empty()) << "after " << i;
    if (message[1] == 0x37) {
      vspCameAfter = fromLsd;
    } else {
      ASSERT_EQ(mark(message), fromLsd++);
    }
  }
  flood.join();
  EXPECT_EQ(fromLsd, kMessages);
  EXPECT_LT(vspCameAfter, kMessages) << "it did not have to wait for the whole flood";
  EXPECT_TRUE(nothingComes());
}

TEST_F(ApipcTest, AStoppedPeerThatHangsUpStillHasItsMessagesDeliveredAndFreesItsName) {
  Client lsd;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  std::atomic<uint32_t> sent{0};
  std::thread flood([&] {
    for (uint32_t i = 0; i < 100 && lsd.send(packet(kLsd, 65536, i)); ++i) sent = i + 1;
  });
  EXPECT_TRUE(eventually([&] { return sent > 62; }));
  for (uint32_t i = 0; i < 40; ++i) ASSERT_EQ(mark(next()), i);
  flood.join();
  lsd.disconnect();
  EXPECT_EQ(Client().join(0x0A3900), kLsd);
  for (uint32_t i = 40; i < 100; ++i) ASSERT_EQ(mark(next()), i);
}

TEST_F(ApipcTest, APeerThatDoesNotReadIsCutOffAfterFiftyMillisecondsAndOthersGoOn) {
  Client lsd;
  Client vsp;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  ASSERT_EQ(vsp.join(0x0A3700), kVsp);
  const Bytes toLsd = packet(kLsd, 60000);
  const auto begin = steady_clock::now();
  int sent = 0;
  while (sent < 10000 && send(toLsd) == 0) ++sent;
  EXPECT_GE(sent, 2) << "some packets always fit";
  EXPECT_GE(steady_clock::now() - begin, 50ms);
  EXPECT_EQ(apipc_connect_chk_task_by_taskid(kLsd), -1);
  EXPECT_EQ(send(toLsd), -1);
  EXPECT_EQ(send(packet(kVsp, 20)), 0);
  EXPECT_EQ(vsp.receive(), packet(kVsp, 20));
  for (int i = 0; i < sent; ++i) ASSERT_EQ(lsd.receive(), toLsd);
  EXPECT_TRUE(lsd.isClosed());
}

TEST_F(ApipcTest, ASendGoesToTheNamedTaskOrFails) {
  Client lsd;
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
  Client lsd;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  setFault(kMessageSend, 1);
  EXPECT_EQ(send(packet(kLsd, 20)), -1);
  EXPECT_EQ(send(packet(kLsd, 20, 1)), 0);
  EXPECT_EQ(mark(*lsd.receive()), 1U);
  setFault(kMessageQueue, 1);
  for (uint32_t i = 0; i < 2; ++i) ASSERT_TRUE(lsd.send(packet(kLsd, 20, i)));
  EXPECT_EQ(mark(next()), 1U);
  apipc_msg_t none = nullptr;
  EXPECT_LT(apipc_enq(&none), 0);
  EXPECT_LT(apipc_deq(&none), 0);
}

TEST_F(ApipcTest, AConnectionThatStaysSilentIsClosedAfterTwoSecondsAndSoIsThe129th) {
  std::vector<std::unique_ptr<Client>> silent;
  const auto begin = steady_clock::now();
  for (int i = 0; i < 128; ++i) {
    silent.push_back(std::make_unique<Client>());
    ASSERT_TRUE(silent.back()->connect());
  }
  Client oneTooMany(1000);
  ASSERT_TRUE(oneTooMany.connect());
  EXPECT_TRUE(oneTooMany.isClosed());
  EXPECT_TRUE(silent.front()->isClosed());
  EXPECT_GE(steady_clock::now() - begin, 1900ms);
  for (const auto& client : silent) EXPECT_TRUE(client->isClosed());
  EXPECT_EQ(Client().join(0x0A3900), kLsd) << "there is room again";
}

TEST_F(ApipcTest, WithoutFileDescriptorsNewPeersWaitAndTheServiceSleeps) {
  Client lsd;
  rlimit usual{};
  getrlimit(RLIMIT_NOFILE, &usual);
  const int lowestFree = dup(0);
  close(lowestFree);
  const rlimit none{static_cast<rlim_t>(lowestFree), usual.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  EXPECT_TRUE(lsd.connect());
  timespec before{};
  timespec after{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
  std::this_thread::sleep_for(150ms);
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &after);
  setrlimit(RLIMIT_NOFILE, &usual);
  EXPECT_LT((after.tv_sec - before.tv_sec) * 1000 + (after.tv_nsec - before.tv_nsec) / 1000000, 50);
  ASSERT_TRUE(lsd.send({0x00, 0x39, 0x0A, 0x00}));
  EXPECT_EQ(lsd.receive(), (Bytes{0x00, 0x39, 0x0A, 0x01}));
}

TEST_F(ApipcTest, OnlyTheOwnUserAndRootMayConnect) {
  struct stat status {};
  ASSERT_EQ(stat(socketPath().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  if (geteuid() != 0) GTEST_SKIP() << "needs root to become somebody else";
  chmod(boardDirectory().c_str(), 0755);
  chmod(socketPath().c_str(), 0666);
  std::thread somebody([] {  // the bare call changes the user of this thread only
    Client stranger;
    ASSERT_EQ(syscall(SYS_setresuid, -1, 65534, -1), 0);
    ASSERT_TRUE(stranger.connect());
    EXPECT_TRUE(stranger.isClosed());
  });
  somebody.join();
}

TEST_F(ApipcTest, AReplacedServiceClosesAllPeersAndTakesOverTheSocketThatWasLeftBehind) {
  Client lsd;
  Client nameless;
  ASSERT_EQ(lsd.join(0x0A3900), kLsd);
  ASSERT_TRUE(nameless.connect());
  EXPECT_EQ(apipc_init(kDaemon, 0), -1) << "one service at a time";
  TearDown();
  EXPECT_TRUE(lsd.isClosed());
  EXPECT_TRUE(nameless.isClosed());
  EXPECT_EQ(send(packet(kLsd, 20)), -1);
  EXPECT_EQ(apipc_loop_wait(nullptr, enqueue), -1);
  SetUp();
  EXPECT_EQ(Client().join(0x0A3900), kLsd);
}

}  // namespace
