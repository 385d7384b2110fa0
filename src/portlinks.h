// Which output ports have a link. Owner: the link monitor, which writes the words on the flag and status
// thread, tick by tick. Any thread reads them; no lock.
#pragma once

#include <cstdint>

#include "mcucdatablock.h"

namespace ORVE_MCUC {

struct PortLinks {
  RelaxedValue<uint16_t> GigaPhyLinkSta;    // bit p: copper link of output port p
  ByteImage<2> Fiber1BelowLinkStatus_buff;  // bit p: port p has a link below fiber 1
  ByteImage<2> Fiber2BelowLinkStatus_buff;
  RelaxedByte OptModuleLinkSta;  // the fiber module as the last measurement found it
  RelaxedByte LinkStateChanged;  // ticks since a link changed, from 1; 0: the cards have been measured since
  RelaxedByte LinkButError;      // kept under the system's name; nothing reads it
  RelaxedValue<bool> netLinksSeen;  // the monitor has read the words since the start
  RelaxedValue<bool> fiberLinksSeen;

  // Bit p: output port p has a link, over copper or one of the fibers.
  uint16_t linkedPorts() const {
    return static_cast<uint16_t>(GigaPhyLinkSta | Fiber1BelowLinkStatus_buff.le16(0) |
                                 Fiber2BelowLinkStatus_buff.le16(0));
  }
};

}  // namespace ORVE_MCUC
