// Others beside a peer that writes without ever waiting: their reads, their writes, and the daemon's memory.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "maps/flashmap.h"
#include "maps/registermap.h"
#include "measures.h"
#include "packet.h"
#include "peer/board.h"
#include "peer/peer.h"

namespace bench {
namespace {

using namespace std::chrono_literals;

constexpr uint32_t kFlooded = ORVE_MCUC::reg::kBackupInfo;  // writes there are queued, and end in flash
constexpr uint16_t kFloodBytes = 512;
constexpr uint32_t kMark = kFlooded + kFloodBytes;  // where nobody but the second writer writes
constexpr peer::milliseconds kPatience{20000};
constexpr double kPatienceUs = 20e6;

peer::Bytes floodFrame() {
  return peer::encode(peer::Frame{
      .code = peer::kWrite, .address = kFlooded, .length = kFloodBytes, .data = peer::Bytes(kFloodBytes, 7)});
}

// Writes for as long as it lives, reading its replies only when the daemon takes nothing more.
class Flooder {
 public:
  explicit Flooder(const std::string& socket) : thread_([this, socket] { flood(socket); }) {}
  ~Flooder() {
    done_ = true;
    thread_.join();
  }
  double sent() const { return sent_; }

 private:
  void flood(const std::string& socket) {
    peer::Peer peer(socket, kFirstService + 1, kPatience);
    const peer::Bytes frame = floodFrame();
    for (uint32_t number = 1; !done_; ++number) {
      peer.send(frame, number);
      ++sent_;
      while (peer.receive(0ms)) {
      }
    }
  }

  std::atomic<bool> done_{false};
  std::atomic<uint32_t> sent_{0};
  std::thread thread_;
};

// Milliseconds of each of so many reads.
std::vector<double> reads(peer::Peer& peer, int count) {
  std::vector<double> all;
  for (int i = 0; i < count; ++i) {
    const double start = nowUs();
    peer.read(kRegister, kReadBytes);
    all.push_back((nowUs() - start) / 1e3);
    usleep(500);
  }
  return all;
}

// Milliseconds from asking for a write to finding it in flash.
double writeTakes(peer::Peer& peer, const peer::Board& board, uint8_t mark) {
  const double start = nowUs();
  peer.write(kMark, peer::Bytes{mark});
  while (board.flash(ORVE_MCUC::flash::ofBackupInfo(kMark), 1) != peer::Bytes{mark}) {
    if (nowUs() - start > kPatienceUs)
      throw std::runtime_error("a write beside the flood was not carried out");
    usleep(200);
  }
  return (nowUs() - start) / 1e3;
}

}  // namespace

void measureFlood(const Programs& programs, const Effort& effort, Table& table) {
  const Daemon daemon(programs, "");
  const peer::Board board(daemon.directory().string());
  peer::Peer other(daemon.socket().string(), kFirstService, kPatience);
  reads(other, 100);
  const double idle = statusKiB(daemon.pid(), "VmRSS");
  const Flooder flooder(daemon.socket().string());
  sleep(1);
  const auto readTimes = reads(other, effort.floodReads);
  std::vector<double> writes;
  double most = idle;
  for (int mark = 1; mark <= effort.floodWrites; ++mark) {
    writes.push_back(writeTakes(other, board, static_cast<uint8_t>(mark)));
    most = std::max(most, statusKiB(daemon.pid(), "VmRSS"));
  }
  table.add(alone("reads beside a flooding writer, 99th percentile", "ms", quantile(readTimes, 0.99),
                  Goal::ValueAtMost, 5));
  table.add(alone("the same, median", "ms", median(readTimes)));
  table.add(
      alone("writes beside it, until in flash: longest", "ms", quantile(writes, 1), Goal::ValueAtMost, 50));
  table.add(alone("the same, median", "ms", median(writes)));
  table.add(alone("resident memory at most above idle", "MiB", (most - idle) / 1024, Goal::ValueAtMost, 32));
  table.add(alone("writes sent by the flooder", "", flooder.sent()));
}

}  // namespace bench
