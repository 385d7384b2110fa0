// Prints on descriptor 3, in microseconds: the mapping of the largest wall as a calculation, a walk that
// works out each entry by itself, the road of a submission from the peer's write to the saved tables, and the
// same bytes written plainly.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "calc/mapping.h"
#include "calc/screenrecord.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"
#include "process/tprocess.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"
#include "rounds.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kResultFd = 3;
constexpr int kRounds = 200;
constexpr int kRoadRounds = 60;
// Ten ports with 1024 cards each.
constexpr SmartScreen kLargest{160, 64, 1024, 6, {128, 128}};

using Tables = std::vector<uint8_t>;

void mapAtOnce(Tables& tables) {
  const PortSplit split = splitOf(kLargest);
  for (unsigned port = 0; port < kMappedPorts; ++port) {
    fillPortTable(chainAt(kLargest, split, placeOf(split, port)),
                  std::span<uint8_t, kPortTableSize>(&tables[port * kPortTableSize], kPortTableSize));
  }
}

// Each entry finds its port, line and card by division.
void mapByEntry(Tables& tables) {
  const PortSplit split = splitOf(kLargest);
  constexpr auto kEntries = static_cast<uint32_t>(kMappedPorts * kPortTableEntries);
  for (uint32_t entry = 0; entry < kEntries; ++entry) {
    const auto port = static_cast<uint32_t>(entry / kPortTableEntries);
    const CardChain chain = chainAt(kLargest, split, port % split.UsedPortNum);
    const auto card = static_cast<uint32_t>(entry % kPortTableEntries % chain.cards());
    const CardPosition position = positionOf(chain, card / chain.lineLength, card % chain.lineLength);
    putLe16(tables, 4 * std::size_t{entry}, position.x);
    putLe16(tables, 4 * std::size_t{entry} + 2, position.y);
  }
}

template <class Work>
double medianTime(int rounds, Work work) {
  std::vector<double> samples;
  for (int i = 0; i < rounds; ++i) {
    const double start = bench::nowUs();
    work();
    samples.push_back(bench::nowUs() - start);
  }
  return bench::median(samples);
}

// The peer's write through the space, its work item, and the mapping that the tick would start.
void submit() {
  IMD_proto3rd request;
  request.proto.m_ucCode = kCodeWrite;
  std::array<uint8_t, shortcut::kRecordSize> record{};
  shortcut::putSmartScreen(std::span(record).first<shortcut::kUsedSize>(), kLargest);
  request.proto.m_uiRegisterUnitAddress = reg::kShortcutConfigScreen + shortcut::kModeAt;
  request.proto.m_data.assign(record.begin() + shortcut::kModeAt,
                              record.begin() + shortcut::kCardsPerPortAt + 2);
  request.proto.m_usValidDataLength = static_cast<uint16_t>(request.proto.m_data.size());
  spaceAt(At<reg::kShortcutConfigScreen>{}).Ssh_cmd(request);
  Tprocess::Sprocess_CalculateParaOfSender(record.size(), reinterpret_cast<char*>(record.data()));
  Tprocess::CalculateParaOfSenderHandler();
}

// What a submission brings to FPGA and flash, and nothing else: the tables once to one file in blocks, and
// two saves of all parameters to another.
void writePlainly(int fpga, int flash, const Tables& tables) {
  for (off_t at = 0; at < static_cast<off_t>(tables.size()); at += 1024) {
    if (pwrite(fpga, &tables[static_cast<std::size_t>(at)], 1024, at) != 1024) std::abort();
  }
  for (int save = 0; save < 2; ++save) {
    for (const std::size_t length : {std::size_t{512}, std::size_t{512}, tables.size(), std::size_t{768}}) {
      if (pwrite(flash, tables.data(), length, 0) != static_cast<ssize_t>(length)) std::abort();
    }
  }
}

int openBeside(const char* name) {
  char path[PATH_MAX];
  const int file =
      board_path(name, path, sizeof path) == 0 ? open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600) : -1;
  if (file < 0) std::abort();
  return file;
}

}  // namespace

int main(int, char** argv) {
  char* arguments[] = {argv[0], nullptr};
  board_start(1, arguments);
  setTraceLevel(0);
  setDelayScale(0);
  Tables tables(kPortTablesSize);
  Tables check(kPortTablesSize);
  const double atOnce = medianTime(kRounds, [&] { mapAtOnce(tables); });
  const double byEntry = medianTime(kRounds, [&] { mapByEntry(check); });
  if (tables != check) return 1;
  const double road = medianTime(kRoadRounds, [] { submit(); });
  const int fpga = openBeside("/plain-fpga");
  const int flash = openBeside("/plain-flash");
  const double plain = medianTime(kRoadRounds, [&] { writePlainly(fpga, flash, tables); });
  dprintf(kResultFd, "%f %f %f %f\n", atOnce, byEntry, road, plain);
  return 0;
}
