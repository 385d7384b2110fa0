// Commands: a write makes the sending card do something, a read answers nothing.
#include <array>

#include "driverutil.h"
#include "logwords.h"
#include "maps/commands.h"
#include "proto/spaces/spaces.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kTestPointBytes = 5;
constexpr SectionWords kSorting{
    .begin = "============================= Begin Write SortCMD ===============================",
    .finish = "============================= Finish Write SortCMD =============================="};
constexpr SectionWords kTesting{
    .begin = "========================== Begin Write TestPoint CMD ============================",
    .finish = "========================== Finish Write TestPoint CMD ==========================="};

int WriteSortCommand(IMD_proto3rd& request) {
  const LogSection section(kSorting);
  Data_Global::getInstance()->LocalAddr = request.proto.m_data.front();
  return kDone;
}

template <enum_Process_Key_Table key>
int queueFirstByte(IMD_proto3rd& request) {
  const std::array<uint8_t, 1> first{request.proto.m_data.front()};
  return queuePayload<key>(request, first);
}

int WriteFactorySetting(IMD_proto3rd& request) {
  constexpr const char* kCommands[] = {"sysconfig set factory_enable 1", "sysconfig set returnfactory 1",
                                       "sysconfig set firstboot 1", "killall videod"};
  for (const char* command : kCommands) DriverUtil::getInstance()->runCommand(command);
  Data_Global::getInstance()->SendRebootMsgtoLSD(std::span(request.proto.m_data).first(1));
  return queueFirstByte<ReturnFactorySetKey>(request);
}

int WriteTestPointCommand(IMD_proto3rd& request) {
  LogSection section(kTesting);
  const auto& data = request.proto.m_data;
  const uint32_t fpgaRegister = static_cast<uint32_t>(data[0]) << 24 | static_cast<uint32_t>(data[1]) << 16 |
                                static_cast<uint32_t>(data[2]) << 8 | data[3];
  const int ret = writeFpga(fpgaRegister, std::span(data).subspan(4, 1));
  PARLEND_TRACE(kInfo) << "Write FPGA driverRet = " << ret << " address = " << CTrace::hex << fpgaRegister;
  if (ret == 0) return kDone;
  PARLEND_TRACE(kError) << "=== WriteTestPointCommand ===write to page program failed. driverRet = " << ret;
  section.abandon();
  return kFailed;
}

int WriteMappingCommandAnly(IMD_proto3rd& request) {
  return queuePayload<SendCardMappingKey>(request, {});
}

// A command, and how much data it takes to carry it out. Without a function nothing is done.
struct Command {
  uint32_t offset;
  std::size_t atLeast;
  SpaceOperation write;
};
constexpr std::array kWrites{
    Command{command::kSort, 1, &WriteSortCommand},
    Command{command::kSave, 1, &queueFirstByte<SaveSendCardParaKey>},
    Command{command::kFactoryReset, 1, &WriteFactorySetting},
    Command{command::kTestPoint, kTestPointBytes, &WriteTestPointCommand},
    Command{command::kReloadProgram, 1, &queueFirstByte<ReloadSenderFPGAKey>},
    Command{command::kChipErase, 0, nullptr},
    Command{command::kMapping, 0, &WriteMappingCommandAnly},
    Command{command::kDebug, 0, nullptr},
    // Nothing reloads the cards' programs from here; what they are configured from is saved.
    Command{command::kReloadCards, 1, &queueFirstByte<SaveSendCardParaKey>},
};
constexpr bool everyCommandIsServed() {
  for (std::size_t i = 0; i < kCommands.size(); ++i) {
    if (kWrites[i].offset != kCommands[i].key) return false;
  }
  return kWrites.size() == kCommands.size();
}
static_assert(everyCommandIsServed());

int carryOut(IMD_proto3rd& request, const OffsetRow& row) {
  if (request.proto.m_ucCode != kCodeWrite) return kDone;
  const auto& wanted = kWrites[static_cast<std::size_t>(&row - kCommands.data())];
  const std::size_t sent = request.proto.m_data.size();
  if (wanted.write == nullptr) return kDone;
  if (sent >= wanted.atLeast && (wanted.atLeast == 0 || sent >= request.proto.m_usValidDataLength))
    return wanted.write(request);
  PARLEND_TRACE(kError) << "=== Addr_CMDRegister ===" << sent << " data bytes are too few for " << row.text
                        << ", return.";
  request.proto.m_ucAck = kAckRefused;
  return kRefused;
}

}  // namespace

const RegisterSpace& spaceAt(At<reg::kCommand>) {
  static constexpr RegisterSpace kSpace = registerSpace<reg::kCommand>({.handle = &carryOut,
                                                                        .keyIsOffset = true,
                                                                        .unknownKey = kDone,
                                                                        .rows = kCommands,
                                                                        .entered = &logEntry});
  return kSpace;
}

}  // namespace ORVE_MCUC
