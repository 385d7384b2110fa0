#include "calc/inputmodes.h"

#include "mcucdatablock.h"

namespace ORVE_MCUC {

static_assert(kInputGroups * (3 * sizeof(uint16_t) + 2) == kInSetParaBytes);

InSetParaBytes encodeInSetPara(const InSetPara_T& para) {
  InSetParaBytes bytes{};
  ByteWriter to(bytes);
  for (const InRes_T& mode : para.InRes) {
    to.le16(mode.InResHor);
    to.le16(mode.InResVer);
    to.le16(mode.InResFrame);
  }
  for (const InPlus_T& plus : para.InPlus) {
    to.u8(plus.Limit2Full);
    to.u8(plus.HdcpOn);
  }
  return bytes;
}

InSetPara_T decodeInSetPara(std::span<const uint8_t, kInSetParaBytes> bytes) {
  ByteReader from(bytes);
  InSetPara_T para;
  for (InRes_T& mode : para.InRes) {
    mode.InResHor = from.le16();
    mode.InResVer = from.le16();
    mode.InResFrame = from.le16();
  }
  for (InPlus_T& plus : para.InPlus) {
    plus.Limit2Full = from.u8();
    plus.HdcpOn = from.u8();
  }
  return para;
}

}  // namespace ORVE_MCUC
