// The daemon's space of configuration files, as a peer reaches it: chunks of at most 2048 bytes, and what was
// written is read back from its copy in flash. All of it throws peer::Error as the peer does.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cabfileset.h"
#include "peer/peer.h"

namespace parlctl {

using Tell = std::function<void(std::size_t)>;  // bytes done so far

std::vector<CabPlace> readCabHeader(peer::Peer& daemon);
std::string readCabIndex(peer::Peer& daemon);
void writeCabBytes(peer::Peer& daemon, uint32_t start, std::span<const uint8_t> bytes, const Tell& tell);
peer::Bytes readCabBytes(peer::Peer& daemon, uint32_t start, std::size_t size, const Tell& tell);
// The file of a place: as many bytes as the index names, else as many as its items need. Nothing where no
// whole file lies.
std::optional<peer::Bytes> readCabFile(peer::Peer& daemon, const CabPlace& place,
                                       const std::optional<CabIndexEntry>& named);

}  // namespace parlctl
