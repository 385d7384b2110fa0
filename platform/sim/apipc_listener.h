// The socket at which peers connect.
#ifndef PLATFORM_SIM_APIPC_LISTENER_H
#define PLATFORM_SIM_APIPC_LISTENER_H

#include <string>

#include "apipc_fd.h"

namespace simboard {

/** A listening socket at the path, mode 0600, in the place of one that an earlier daemon left behind. Empty:
 * it cannot be; standard error says why. */
FileDescriptor openListener(const std::string& path);

enum class Arrival {
  Admitted,  // a peer has connected
  None,      // nobody waits, or one that may not connect and is closed already
  NoMeans    // somebody waits, but the process or the system has no means for a connection now
};

struct Accepted {
  Arrival arrival;
  FileDescriptor socket;  // of an admitted peer: non-blocking
};

/** Takes the next connection; only root and the process's own user are admitted. */
Accepted acceptPeer(const FileDescriptor& listener);

}  // namespace simboard

#endif
