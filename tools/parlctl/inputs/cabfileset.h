// The set of configuration files that the daemon stores: where each lies in the space, and the client's index
// of their names. Values only.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calc/rvconfig.h"
#include "peer/frame.h"

namespace parlctl {

struct CabFile {
  std::string name;
  peer::Bytes bytes;
};

// One range of the space.
struct CabPlace {
  unsigned number = 0;
  uint32_t start = 0;  // register
  uint32_t end = 0;
};

// Where files go one behind the other. Throws peer::Error (Usage) for more than 16, or more than the space
// holds.
std::vector<CabPlace> placeCabFiles(std::span<const CabFile> files);
peer::Bytes cabHeader(std::span<const CabPlace> places);
// Nothing for a header that announces none or is damaged. In the order of their numbers.
std::vector<CabPlace> parseCabHeader(std::span<const uint8_t> header);

// A line a file: number, size, name. Names that do not fit are left out, the last ones first.
std::string cabIndex(std::span<const CabFile> files);
struct CabIndexEntry {
  std::size_t size = 0;
  std::string name;
};
// Of a number; nothing where the index is somebody else's.
std::optional<CabIndexEntry> findInIndex(const std::string& index, unsigned number);

// "2.5 s", "1 min 5 s".
std::string durationText(uint64_t milliseconds);

}  // namespace parlctl
