#include "inputfile.h"

#include <fstream>

#include "peer/error.h"

namespace parlctl {

peer::Bytes bytesOfFile(const std::string& path, std::size_t most) {
  std::ifstream in(path, std::ios::binary);
  peer::Bytes bytes;
  for (char byte; bytes.size() <= most && in.get(byte);) bytes.push_back(static_cast<uint8_t>(byte));
  if (!in.is_open() || in.bad()) throw peer::Error(peer::Failure::Usage, path + " cannot be read");
  if (bytes.size() > most)
    throw peer::Error(peer::Failure::Usage, path + " is longer than " + std::to_string(most) + " bytes");
  return bytes;
}

}  // namespace parlctl
