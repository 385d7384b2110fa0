// Prints on descriptor 3, in microseconds: from a written EDID to the loaded one, the same bytes written
// plainly; and in milliseconds: a configuration file of 1 MiB in chunks of 2 KiB, the same bytes by pwrite
// and fdatasync.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "calc/inputmode.h"
#include "calc/inputmodes.h"
#include "mcucdatablock.h"
#include "probe.h"
#include "process/inputSource.h"
#include "process/rvconfigspace.h"
#include "process/tprocess.h"

namespace {

using namespace ORVE_MCUC;

constexpr int kEdids = 100;
constexpr int kFiles = 5;
constexpr std::size_t kFileBytes = std::size_t{1024} * 1024;
constexpr uint32_t kFirstBody = 0x2000;

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
  return bench::medianTime(kEdids, [&](int n) {
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
  return bench::medianTime(kFiles, [&](int) {
    for (auto& item : items) handle(&Tprocess::Sprocess_RVConfigFileSpace, item);
  });
}

// The stored modes to one file and the EDID to another.
double writeEdidsPlainly(const std::vector<uint8_t>& bytes) {
  const int modes = bench::openBeside("/plain-modes");
  const int edid = bench::openBeside("/plain-edid");
  return bench::medianTime(kEdids, [&](int) {
    bench::writeAt(modes, bytes.data(), kInSetParaBytes, 0);
    bench::writeAt(edid, bytes.data(), kEdidBytes, 0);
  });
}

// Each chunk to a file, made durable, and to its copy in flash.
double writeFilesPlainly(const std::vector<uint8_t>& bytes) {
  const int stored = bench::openBeside("/plain-file");
  const int copy = bench::openBeside("/plain-copy");
  return bench::medianTime(kFiles, [&](int) {
    if (ftruncate(stored, 0) != 0) std::abort();
    for (std::size_t at = 0; at < bytes.size(); at += rv::kMostChunk) {
      bench::writeAt(copy, &bytes[at], rv::kMostChunk, at);
      bench::writeAt(stored, &bytes[at], rv::kMostChunk, at);
      if (fdatasync(stored) != 0) std::abort();
    }
  });
}

}  // namespace

int main(int, char** argv) {
  bench::startBoard(argv);
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
  dprintf(bench::kResultFd, "%f %f %f %f\n", edid, plainEdid, file / 1000, plainFile / 1000);
  return 0;
}
