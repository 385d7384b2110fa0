#include "inputfile.h"

#include <fstream>

#include "peer/error.h"

namespace parlctl {

peer::Bytes streamBytes(std::istream& from, const std::string& name, std::size_t most) {
  constexpr std::size_t kPiece = 0x10000;
  peer::Bytes bytes;
  // read() takes a directory for an empty file, where an iterator would throw what the library says of it.
  while (from && bytes.size() <= most) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kPiece);
    from.read(reinterpret_cast<char*>(bytes.data() + before), kPiece);
    bytes.resize(before + static_cast<std::size_t>(from.gcount()));
  }
  if (bytes.empty()) throw peer::Error(peer::Failure::Usage, "cannot read any bytes of " + name);
  if (bytes.size() > most)
    throw peer::Error(peer::Failure::Usage, name + " holds more than " + std::to_string(most) + " bytes");
  return bytes;
}

peer::Bytes fileBytes(const std::string& path, std::size_t most) {
  std::ifstream file(path, std::ios::binary);
  return streamBytes(file, path, most);
}

}  // namespace parlctl
