// Pushes of parameters to the peers that mirror them.
#include <algorithm>

#include "maps/fpgamap.h"
#include "maps/registermap.h"
#include "mcuctrace.h"
#include "outgoing.h"
#include "proto/store/data_common.h"
#include "taskid.h"

namespace ORVE_MCUC {
namespace {

void logPush(const char* logLine, uint32_t address, std::size_t length) {
  PARLEND_TRACE(kInfo) << logLine << CTrace::hex << address
                       << " the data length = " << static_cast<unsigned int>(length);
}

// One unsolicited register write to a peer.
void push(uint32_t service, uint32_t address, std::span<const uint8_t> data) {
  IMD_proto3rd message;
  message.proto = ThirdProtoMCUCMsg(PROTOCOL_HEADER_TAG_RESPONSE, 0, 0, 0, 0, 0, 0, 0, 0, address);
  message.proto.m_data.assign(data.begin(), data.end());
  message.seqNum = -1;
  message.processID = taskOf(kServiceSend);
  message.ipcHeader.uiid = taskOf(service);
  message.ipcHeader.largeLabel = kThirdProtocolLabel;
  sendMessage(std::move(message));
}

}  // namespace

void Data_Global::SendDatetoLSD(uint32_t address, std::span<const uint8_t> data) {
  logPush("Send Date to LSD, the reg address = ", address, data.size());
  push(kServiceLsd, address, data);
}

void Data_Global::SendRebootMsgtoLSD(std::span<const uint8_t> data) {
  PARLEND_TRACE(kInfo) << "Send Reboot info to LSD, the reg address = " << CTrace::hex << reg::kRebootNotice
                       << " the data length = " << static_cast<unsigned int>(data.size())
                       << " data[0] :" << (data.empty() ? 0 : int{data[0]});
  push(kServiceLsd, reg::kRebootNotice, data);
}

void Data_Global::SendRVCardWHtoLSD() {
  const CardSize card = ReceiveCardSize;
  std::array<uint8_t, 4> data{};
  putLe16(data, 0, card.width);
  putLe16(data, 2, card.height);
  PARLEND_TRACE(kInfo) << "Send 0x06 ~ 0x09 RVCard W/H info to LSD, the reg address = " << CTrace::hex
                       << reg::kReceivingCardSize
                       << " the data length = " << static_cast<unsigned int>(data.size())
                       << " ReceiveCardWidth :" << card.width << " ReceiveCardHeight :" << card.height;
  push(kServiceLsd, reg::kReceivingCardSize, data);
}

void Data_Global::pushMirror(uint32_t fpgaRegister, std::size_t length, const char* logLine,
                             std::span<const uint8_t> checked) {
  std::array<uint8_t, 8> bytes{};
  if (length > bytes.size() || !fits(fpga::kMirrorEnd, fpgaRegister, length)) return;
  const auto data = std::span(bytes).first(length);
  if (readThrough(*this, SendParameterReg, fpgaRegister, fpgaRegister, data) != 0) {
    if (checked.size() == length) refreshBytes(*this, SendParameterReg, fpgaRegister, checked);
    snapshot(*this, SendParameterReg, fpgaRegister, data);
  }
  logPush(logLine, reg::ofFeature(fpgaRegister), data.size());
  push(kServiceLsd, reg::ofFeature(fpgaRegister), data);
}

void Data_Global::SendMStoLSD1_4() {
  pushMirror(fpga::kMasterSlavePorts1To4, 4, "Send 0x18~0x1A Master/Slave info to LSD, the reg address = ");
}
void Data_Global::SendMStoLSD5_8() {
  pushMirror(fpga::kMasterSlavePorts5To8, 4, "Send 0x98~0x9A Master/Slave info to LSD, the reg address = ");
}
void Data_Global::SendMStoLSD9_16() {
  pushMirror(fpga::kMasterSlavePorts9To16, 8,
             "Send 0x100~0x107 Master/Slave info to LSD, the reg address = ");
}

void Data_Global::SendFlag_parlendload() {
  constexpr uint8_t kLoaded[] = {0x02};
  logPush("Send 0x14000000 0x02 Flag_parlendload to LSD, the reg address = ", reg::kDaemonLoaded, 1);
  push(kServiceLsd, reg::kDaemonLoaded, kLoaded);
}

void Data_Global::SendC8toVsp() {
  constexpr uint8_t kFlag[] = {0xC8};
  logPush("Send C8 flag to Vsp, the reg address = ", reg::kShortcutConfigScreen, 1);
  push(kServiceVsp, reg::kShortcutConfigScreen, kFlag);
}

}  // namespace ORVE_MCUC
