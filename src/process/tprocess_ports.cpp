// Writes of peers into the tables of the output ports.
#include "maps/registermap.h"
#include "mcuctrace.h"
#include "process/tprocess.h"
#include "proto/store/data_common.h"
#include "proto/store/fpgarestore.h"
#include "proto/store/numbertable.h"
#include "proto/store/porttables.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kLongestSingle = 2;  // bytes of a write that changes one part only

// What flash could not give is asked for before the write, which must not be lost to a later try.
class TableWrite {
 public:
  TableWrite() : guard_(store().m_mutex) { loadWhatIsMissing(store()); }
  static Data_Global& store() { return *Data_Global::getInstance(); }

 private:
  CMutexGuardT<CMutexThreadRecursive> guard_;
};

// More than the table holds: what fits is kept in the image, and the FPGA is left alone.
void keepWhatFits(Data_Global& store, std::size_t at, std::span<const uint8_t> data) {
  if (at < PortsTopoPara.size()) {
    PARLEND_TRACE(kInfo) << "$$$$ MoreThan Little Sprocess_PositionNetPort $$$$ Reg more than max:"
                         << PortsTopoPara.size() << " Now:" << at;
    putBytes(store, PortsTopoPara, at, data.first(PortsTopoPara.size() - at));
  }
  PARLEND_TRACE(kInfo) << "$$$$ All para Pooling Sprocess_PositionNetPort $$$$ Reg more than max:"
                       << PortsTopoPara.size() << " Now:" << at;
}

void writePositions(const PenetrateInfo& info) {
  const TableWrite write;
  const uint32_t at = info.Register & reg::kOffsetMask;
  if (!fits(PortsTopoPara.size(), at, info.data.size())) return keepWhatFits(write.store(), at, info.data);
  writeThrough(write.store(), PortsTopoPara, at, fpga::kPositionTables + at, info.data,
               {"WriteToPosNetPort", "Write FPGA Position Info failed! ret = "});
}

constexpr bool holds(const NumberPart& part, std::size_t at) {
  return at >= part.at && at - part.at < part.length;
}

void writeNumbers(const PenetrateInfo& info) {
  const TableWrite write;
  const std::size_t at = info.Register & reg::kOffsetMask;
  if (!fits(VsPartPara.size(), at, info.data.size())) {
    PARLEND_TRACE(kError) << "=== WriteToNumberFunCardPort ===invalid data.";
    return;
  }
  const bool single = info.data.size() <= kLongestSingle;
  if (single) putBytes(write.store(), VsPartPara, at, info.data);
  for (const NumberPart& part : kNumberParts) {
    if (single && !holds(part, at)) continue;
    writeNumberPart(write.store(), part, at, info.data,
                    {"WriteToNumberFunCardPort", "Write FPGA NumberFunCardPort Info failed! ret = "});
  }
}

}  // namespace

int Tprocess::Sprocess_PositionNetPort(int lenth, char* data) {
  return handlePenetrate<PositionNetPortKey>(lenth, data, &writePositions);
}

int Tprocess::Sprocess_DoNumberFunCardPort(int lenth, char* data) {
  return handlePenetrate<DoNumberFunCardPortKey>(lenth, data, &writeNumbers);
}

}  // namespace ORVE_MCUC
