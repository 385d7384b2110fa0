#include "cabspace.h"

#include <algorithm>

#include "calc/rvplayback.h"

namespace parlctl {

namespace {

namespace rv = ORVE_MCUC::rv;
using peer::Bytes;

}  // namespace

std::vector<CabPlace> readCabHeader(peer::Peer& daemon) {
  return parseCabHeader(daemon.read(rv::kHeader, rv::kHeadBytes + rv::kMostFiles * rv::kEntryBytes));
}

std::string readCabIndex(peer::Peer& daemon) {
  const Bytes bytes = daemon.read(rv::kIndex, rv::kMostChunk);
  return {bytes.begin(), bytes.end()};
}

void writeCabBytes(peer::Peer& daemon, uint32_t start, std::span<const uint8_t> bytes, const Tell& tell) {
  for (std::size_t at = 0; at < bytes.size(); at += rv::kMostChunk) {
    const auto chunk = bytes.subspan(at, std::min<std::size_t>(bytes.size() - at, rv::kMostChunk));
    daemon.write(start + static_cast<uint32_t>(at), Bytes(chunk.begin(), chunk.end()));
    tell(at + chunk.size());
  }
}

Bytes readCabBytes(peer::Peer& daemon, uint32_t start, std::size_t size, const Tell& tell) {
  Bytes bytes;
  while (bytes.size() < size) {
    const std::size_t length = std::min<std::size_t>(size - bytes.size(), rv::kMostChunk);
    const Bytes chunk = daemon.read(start + static_cast<uint32_t>(bytes.size()), length);
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    tell(bytes.size());
  }
  return bytes;
}

std::optional<Bytes> readCabFile(peer::Peer& daemon, const CabPlace& place,
                                 const std::optional<CabIndexEntry>& named) {
  Bytes bytes;
  const std::size_t most = place.end - place.start;
  if (named && named->size <= most) {
    bytes = readCabBytes(daemon, place.start, named->size, [](std::size_t) {});
    if (ORVE_MCUC::planOf(bytes).end != ORVE_MCUC::RvEnd::kDone) return std::nullopt;
    return bytes;
  }
  while (bytes.size() < most) {
    const std::size_t length = std::min<std::size_t>(most - bytes.size(), rv::kMostChunk);
    const Bytes chunk = daemon.read(place.start + static_cast<uint32_t>(bytes.size()), length);
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    const auto plan = ORVE_MCUC::planOf(bytes);
    if (plan.end == ORVE_MCUC::RvEnd::kTooLong) return std::nullopt;
    if (plan.end != ORVE_MCUC::RvEnd::kDone) continue;
    bytes.resize(plan.bytes);
    return bytes;
  }
  return std::nullopt;
}

}  // namespace parlctl
