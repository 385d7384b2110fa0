// The register router: finds the space that owns a request's address and calls it. One request at a time,
// from the receive thread.
#pragma once

#include <array>

#include "proto/spaces/fshl_cmd.h"

namespace ORVE_MCUC {

class Tshl_ctl {
 public:
  static Tshl_ctl* getInstance();
  Tshl_ctl(const Tshl_ctl&) = delete;
  Tshl_ctl& operator=(const Tshl_ctl&) = delete;

  // Fills the lookup map; once, before the first request. Returns 1.
  int initialize();

  // A request to the sending card itself. The space's result, or kRefused; data and m_ucAck are left in it.
  int Ssh_StartSendCard(IMD_proto3rd* msgIMD);

  // Requests to the cards behind the ports: receiving cards, multi-function cards, distribution cards, 3D
  // launchers. 0, or for a read that failed 1 or 4; data and m_ucAck are left in the request.
  int Ssh_StartScanCard(IMD_proto3rd* msgIMD);
  int Ssh_StartMultiCard(IMD_proto3rd* msgIMD);
  int Ssh_StartDistribute(IMD_proto3rd* msgIMD);
  int Ssh_Start3DLauncher(IMD_proto3rd* msgIMD);
  // 1 when the output port has a link over copper or fiber, else 0; 0xFF (all ports) counts as linked.
  static unsigned char PortLinkVerify(unsigned char PortAddr);

  // Diagnostics: the table of one space on standard output, the router's own table in the trace log.
  void Ssh_cmdOffset(IMD_proto3rd* msgIMD);
  int Ssh_cmdAll();

 private:
  Tshl_ctl() = default;

  static const std::array<Fshl_cmd, 71> cmd_root;  // rows of maps/spaces.h, then empty ones
  MAP_INT_Fshl_cmd m_mapProtoShl;
};

}  // namespace ORVE_MCUC
