// A peer with one request under way, of the daemon or of a yardstick server that speaks to peers as it does.
#pragma once

#include <cstdint>
#include <filesystem>

#include "packet.h"

namespace bench {

class Peer {
 public:
  // Connects and says who it is; tries again for up to 10 s while nobody listens. Throws std::runtime_error.
  Peer(const std::filesystem::path& socket, uint32_t service, uint32_t address = kRegister);
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  // One request and its reply. Throws when the reply is not what was asked for.
  void roundTrip();
  // The median of so many, in microseconds.
  double medianTrip(int count);

 private:
  int socket_ = -1;
  Request request_{};
};

}  // namespace bench
