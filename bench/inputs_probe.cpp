// Prints on descriptor 3, in microseconds: from a written EDID to the loaded one, the same bytes written
// plainly; and in milliseconds: a configuration file of 1 MiB in chunks of 2 KiB, the same bytes by pwrite
// and fdatasync.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "calc/inputmode.h"
#include "calc/inputmodes.h"
#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "mcucutil.h"
#include "platform/board.h"
#include "process/inputSource.h"
#include "process/rvconfigspace.h"
#include "process/tprocess.h"
#include "rounds.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kResultFd = 3;
constexpr int kEdids = 100;
constexpr int kFiles = 5;
constexpr std::size_t kFileBytes = 1024 * 1024;
constexpr uint32_t kFirstBody = 0x2000;

template <class Work>
double medianTime(int rounds, Work work) {
  std::vector<double> samples;
  for (int i = 0; i < rounds; ++i) {
    const double start = bench::nowUs();
    work(i);
    samples.push_back(bench::nowUs() - start);
  }
  return bench::median(samples);
}

// A work item as the queue hands it to its handler.
std::vector<uint8_t> itemOf(uint32_t registerAddress, std::span<const uint8_t> data) {
  std::vector<uint8_t> item(6 + data.size());
  ByteWriter writer(item);
  writer.le32(registerAddress);
  writer.le16(static_cast<uint16_t>(data.size()));
  writer.bytes(data);
  return item;
}

using Handler = int (*)(int, char*);
void handle(Handler handler, std::vector<uint8_t>& item) {
  handler(static_cast<int>(item.size()), reinterpret_cast<char*>(item.data()));
}

double loadEdids() {
  InputSource& inputs = *InputSource::getInstance();
  inputs.InputBoardInit();
  EdidBytes edid{};
  inputs.ReadEDIDInfo(0, edid);
  return medianTime(kEdids, [&](int n) {
    const auto made = ResT_calEDID_by_model_new(edid, {static_cast<uint16_t>(1024 + n), 600, 6000});
    if (!made) std::abort();
    auto item = itemOf(reg::kEdid, *made);
    handle(&Tprocess::Sprocess_DoDoEDIDSpace, item);
  });
}

double storeFiles(std::vector<std::vector<uint8_t>>& items) {
  std::array<uint8_t, rv::kHeadBytes + rv::kEntryBytes> header{1, 1};
  putLe32(header, rv::kHeadBytes + rv::kEntryOffsetAt, kFirstBody);
  auto announce = itemOf(rv::kHeader, header);
  handle(&Tprocess::Sprocess_RVConfigFileSpace, announce);
  return medianTime(kFiles, [&](int) {
    for (auto& item : items) handle(&Tprocess::Sprocess_RVConfigFileSpace, item);
  });
}

int openBeside(const char* name) {
  char path[PATH_MAX];
  const int file =
      board_path(name, path, sizeof path) == 0 ? open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600) : -1;
  if (file < 0) std::abort();
  return file;
}

void writeAt(int file, const uint8_t* bytes, std::size_t length, std::size_t at) {
  if (pwrite(file, bytes, length, static_cast<off_t>(at)) != static_cast<ssize_t>(length)) std::abort();
}

// The stored modes to one file and the EDID to another.
double writeEdidsPlainly(const std::vector<uint8_t>& bytes) {
  const int modes = openBeside("/plain-modes");
  const int edid = openBeside("/plain-edid");
  return medianTime(kEdids, [&](int) {
    writeAt(modes, bytes.data(), kInSetParaBytes, 0);
    writeAt(edid, bytes.data(), kEdidBytes, 0);
  });
}

// Each chunk to a file, made durable, and to its copy in flash.
double writeFilesPlainly(const std::vector<uint8_t>& bytes) {
  const int stored = openBeside("/plain-file");
  const int copy = openBeside("/plain-copy");
  return medianTime(kFiles, [&](int) {
    if (ftruncate(stored, 0) != 0) std::abort();
    for (std::size_t at = 0; at < bytes.size(); at += rv::kMostChunk) {
      writeAt(copy, &bytes[at], rv::kMostChunk, at);
      writeAt(stored, &bytes[at], rv::kMostChunk, at);
      if (fdatasync(stored) != 0) std::abort();
    }
  });
}

}  // namespace

int main(int, char** argv) {
  char* arguments[] = {argv[0], nullptr};
  board_start(1, arguments);
  setTraceLevel(0);
  setDelayScale(0);
  const std::vector<uint8_t> bytes(kFileBytes, 0x5A);
  std::vector<std::vector<uint8_t>> items;
  for (std::size_t at = 0; at < bytes.size(); at += rv::kMostChunk) {
    items.push_back(itemOf(rv::kHeader + kFirstBody + static_cast<uint32_t>(at),
                           std::span(bytes).subspan(at, rv::kMostChunk)));
  }
  const double edid = loadEdids();
  const double plainEdid = writeEdidsPlainly(bytes);
  const double file = storeFiles(items);
  const double plainFile = writeFilesPlainly(bytes);
  dprintf(kResultFd, "%f %f %f %f\n", edid, plainEdid, file / 1000, plainFile / 1000);
  return 0;
}
