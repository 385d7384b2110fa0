#include "proto/store/data_common.h"

#include "driverutil.h"
#include "maps/fpgamap.h"

namespace ORVE_MCUC {
namespace {

Singleton<Data_Global>& globalHolder() {
  static Singleton<Data_Global> holder;
  return holder;
}
Singleton<Data_Preset>& presetHolder() {
  static Singleton<Data_Preset> holder;
  return holder;
}

constexpr unsigned int kPortsWithOffsetY = 10;

template <uint32_t Field>
constexpr std::array<uint16_t, kOutputPorts> fieldOffsets() {
  std::array<uint16_t, kOutputPorts> offsets{};
  for (unsigned int port = 0; port < kOutputPorts; ++port)
    offsets[port] = static_cast<uint16_t>(fpga::portWindow(port) + Field);
  return offsets;
}

}  // namespace

constinit const std::array<uint16_t, 16> PortParaXOffsetIndex = fieldOffsets<fpga::kWindowXAt>();
constinit const std::array<uint16_t, 16> PortParaYOffsetIndex = fieldOffsets<fpga::kWindowYAt>();

// Card reads ask the links before they go out.
Data_Global::Data_Global() {
  DriverUtil::useLinks(this);
}
Data_Global::~Data_Global() {
  DriverUtil::useLinks(nullptr);
}

Data_Global* Data_Global::getInstance() {
  return globalHolder().get([] { return new Data_Global; });
}
void Data_Global::deleteInstance() {
  globalHolder().destroy();
}

Data_Preset* Data_Preset::getInstance() {
  return presetHolder().get([] { return new Data_Preset; });
}
void Data_Preset::deleteInstance() {
  presetHolder().destroy();
}

void Data_Global::PortWidthUpdate(unsigned int port, uint16_t value) {
  if (port < kOutputPorts) SendParameterReg.putLe16(fpga::portWindow(port), value);
}
void Data_Global::PortHeightUpdate(unsigned int port, uint16_t value) {
  if (port < kOutputPorts) SendParameterReg.putLe16(fpga::portWindow(port) + fpga::kWindowHeightAt, value);
}
void Data_Global::PortOffsetXUpdate(unsigned int port, uint16_t value) {
  if (port < kOutputPorts) SendParameterReg.putLe16(PortParaXOffsetIndex[port], value);
}
void Data_Global::PortOffsetYUpdate(unsigned int port, uint16_t value) {
  if (port < kPortsWithOffsetY) SendParameterReg.putLe16(PortParaYOffsetIndex[port], value);
}
void Data_Global::PortMorSUpdate(unsigned int port, uint8_t value) {
  if (port < kOutputPorts) SendParameterReg[fpga::portRole(port)] = value;
}

}  // namespace ORVE_MCUC
