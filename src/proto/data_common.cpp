#include "proto/data_common.h"

#include "singleton.h"

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

// Port records of the feature image: 9 bytes a port in three runs.
constexpr unsigned int kPorts = 16;
constexpr unsigned int kPortsWithOffsetY = 10;
constexpr std::size_t portRecord(unsigned int port) {
  if (port < 4) return 0x51 + 9 * port;
  if (port < 8) return 0xB1 + 9 * (port - 4);
  return 0x131 + 9 * (port - 8);
}
constexpr std::size_t portRole(unsigned int port) {
  if (port < 4) return 0x18 + port;
  if (port < 8) return 0x98 + (port - 4);
  return 0x100 + (port - 8);
}
constexpr std::size_t kHeightAt = 2;
constexpr std::size_t kOffsetXAt = 4;
constexpr std::size_t kOffsetYAt = 6;
template <std::size_t Field>
constexpr std::array<uint16_t, kPorts> fieldOffsets() {
  std::array<uint16_t, kPorts> offsets{};
  for (unsigned int port = 0; port < kPorts; ++port)
    offsets[port] = static_cast<uint16_t>(portRecord(port) + Field);
  return offsets;
}
static_assert(portRecord(12) + kOffsetXAt == 0x159 && portRecord(7) + kOffsetXAt == 0xD0);

}  // namespace

constinit const std::array<uint16_t, 16> PortParaXOffsetIndex = fieldOffsets<kOffsetXAt>();
constinit const std::array<uint16_t, 16> PortParaYOffsetIndex = fieldOffsets<kOffsetYAt>();

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
  if (port < kPorts) SendParameterReg.putLe16(portRecord(port), value);
}
void Data_Global::PortHeightUpdate(unsigned int port, uint16_t value) {
  if (port < kPorts) SendParameterReg.putLe16(portRecord(port) + kHeightAt, value);
}
void Data_Global::PortOffsetXUpdate(unsigned int port, uint16_t value) {
  if (port < kPorts) SendParameterReg.putLe16(PortParaXOffsetIndex[port], value);
}
void Data_Global::PortOffsetYUpdate(unsigned int port, uint16_t value) {
  if (port < kPortsWithOffsetY) SendParameterReg.putLe16(PortParaYOffsetIndex[port], value);
}
void Data_Global::PortMorSUpdate(unsigned int port, uint8_t value) {
  if (port < kPorts) SendParameterReg[portRole(port)] = value;
}

}  // namespace ORVE_MCUC
