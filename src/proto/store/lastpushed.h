// What LSD was told last of each status. Owner: the link monitor, on the flag and status thread alone; no
// lock.
#pragma once

#include "mcucdatablock.h"

namespace ORVE_MCUC {

struct LastPushed {
  ByteImage<16> SendRedundStatustoLSD_buff;  // roles of the ports; the first 12 bytes are used
  ByteImage<4> SendRedundtoLSD_buff;
  ByteImage<6> SendOptRedundtoLSD_buff;
  ByteImage<4> SendNetLinktoLSD_buff;
  ByteImage<1> fiberlink_buff;
  ByteImage<1> fiberRedund_buff;
  ByteImage<1> fiberCopyStatus_buff;
  ByteImage<2> FiberToNetStatus_buff;
  ByteImage<2> fiber1BelowPushed;  // beside the link words themselves, by which cards are reached
  ByteImage<2> fiber2BelowPushed;

  // From here on every status counts as changed, except those that are zero, and a fiber link of 0xFF.
  void forget() {
    SendRedundStatustoLSD_buff.fill(0);
    SendRedundtoLSD_buff.fill(0);
    SendOptRedundtoLSD_buff.fill(0);
    SendNetLinktoLSD_buff.fill(0);
    fiberlink_buff.fill(0xFF);
    fiberRedund_buff.fill(0);
    fiberCopyStatus_buff.fill(0);
    FiberToNetStatus_buff.fill(0);
    fiber1BelowPushed.fill(0);
    fiber2BelowPushed.fill(0);
  }
};

}  // namespace ORVE_MCUC
