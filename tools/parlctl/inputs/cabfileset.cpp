#include "cabfileset.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "mcucdatablock.h"
#include "peer/error.h"

namespace parlctl {

namespace {

namespace rv = ORVE_MCUC::rv;
using peer::Bytes;
using peer::Error;
using peer::Failure;

// Files begin behind header and index, each on a page of its own.
constexpr uint32_t kPage = 0x1000;
constexpr uint32_t kFirst = rv::kHeader + 0x2000;
constexpr std::size_t kIndexBytes = rv::kIndexLast - rv::kIndex;
static_assert(kFirst > rv::kIndexLast);

}  // namespace

std::vector<CabPlace> placeCabFiles(std::span<const CabFile> files) {
  if (files.empty() || files.size() > rv::kMostFiles) {
    throw Error(Failure::Usage, "1 to 16 files make a set, not " + std::to_string(files.size()));
  }
  std::vector<CabPlace> places;
  uint64_t at = kFirst;
  for (const CabFile& file : files) {
    const uint64_t end = at + std::max<uint64_t>((file.bytes.size() + kPage - 1) / kPage, 1) * kPage;
    if (end > rv::kBodiesEnd) throw Error(Failure::Usage, file.name + ": the files need more than 8 MiB");
    places.push_back(
        {static_cast<unsigned>(places.size()), static_cast<uint32_t>(at), static_cast<uint32_t>(end)});
    at = end;
  }
  return places;
}

Bytes cabHeader(std::span<const CabPlace> places) {
  Bytes header(rv::kHeadBytes + rv::kEntryBytes * places.size());
  header[0] = 1;
  header[1] = static_cast<uint8_t>(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    ORVE_MCUC::putLe32(header, rv::kHeadBytes + i * rv::kEntryBytes + rv::kEntryOffsetAt,
                       places[i].start - rv::kHeader);
  }
  return header;
}

std::vector<CabPlace> parseCabHeader(std::span<const uint8_t> header) {
  if (ORVE_MCUC::checkRvHeader(header) != ORVE_MCUC::RvHeaderFault::kNone) return {};
  ORVE_MCUC::_RvFileHeadPara_t head;
  ORVE_MCUC::takeRvHeader(header, head);
  ORVE_MCUC::sortRvRanges(head);
  std::vector<CabPlace> places;
  for (std::size_t k = 0; k < head.WriteFileNum; ++k) {
    places.push_back({head.FileIndex[k], head.FileDateOffest[k], head.FileDateOffest[k + 1]});
  }
  std::ranges::sort(places, {}, &CabPlace::number);
  return places;
}

std::string cabIndex(std::span<const CabFile> files) {
  std::string index;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string line =
        std::to_string(i) + " " + std::to_string(files[i].bytes.size()) + " " + files[i].name + "\n";
    if (index.size() + line.size() > kIndexBytes) break;
    index += line;
  }
  return index;
}

std::optional<CabIndexEntry> findInIndex(const std::string& index, unsigned number) {
  std::istringstream lines(index.substr(0, index.find('\0')));
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    unsigned named = 0;
    CabIndexEntry entry;
    if (!(fields >> named >> entry.size) || !std::getline(fields >> std::ws, entry.name)) return std::nullopt;
    if (named == number) return entry;
  }
  return std::nullopt;
}

std::string durationText(uint64_t milliseconds) {
  std::array<char, 48> text{};
  const uint64_t minutes = milliseconds / 60000;
  if (minutes == 0) {
    std::snprintf(text.data(), text.size(), "%.1f s", static_cast<double>(milliseconds) / 1000);
  } else {
    std::snprintf(text.data(), text.size(), "%u min %u s", static_cast<unsigned>(minutes),
                  static_cast<unsigned>(milliseconds % 60000 / 1000));
  }
  return text.data();
}

}  // namespace parlctl
