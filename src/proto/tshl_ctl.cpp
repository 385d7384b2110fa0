#include "proto/tshl_ctl.h"

#include "maps/registermap.h"
#include "mcuctrace.h"
#include "proto/spaces/addr_backupinforegister.h"
#include "proto/spaces/addr_cardprogmaspaceregister.h"
#include "proto/spaces/addr_edidspaceregister.h"
#include "proto/spaces/addr_hwbasicinforegister.h"
#include "proto/spaces/addr_rgbgammaregister.h"
#include "proto/spaces/addr_rvconfigfilespace.h"
#include "proto/spaces/addr_screeninfoechoregister.h"
#include "proto/spaces/addr_screenpatterngenregister.h"
#include "proto/spaces/addr_shortcutconfigscreenregister.h"
#include "proto/spaces/addr_silentregisters.h"
#include "proto/spaces/addr_softwaretableregister.h"
#include "proto/spaces/addr_testprinfregister.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

template <class Space>
constexpr Fshl_cmd rootRow(uint32_t base, const char* name, const char* text) {
  return {base, name, text, 0, {}, {}, nullptr, &Space::Ssh_cmd, &Space::Ssh_print, nullptr};
}

// An address range that is on the map while no space serves it: requests are refused.
constexpr Fshl_cmd unservedRow(uint32_t base, const char* name, const char* text) {
  return {base, name, text, 0, {}, {}, nullptr, nullptr, nullptr, nullptr};
}

constexpr std::array<Fshl_cmd, 71> kRoot{
    rootRow<Addr_HwBasicInfoRegister>(reg::kHwBasicInfo, "factory", "factory hardware register"),
    rootRow<Addr_PluginCardInfoRegister>(reg::kPluginCardInfo, "plug in card info", "plug in card register"),
    unservedRow(reg::kCommand, "command", "command register"),
    unservedRow(reg::kFeature, "feature", "feature register"),
    rootRow<Addr_ScreenInfoEchoRegister>(reg::kScreenInfoEcho, "screen info echo", "screen info echo"),
    unservedRow(reg::kHCInteraction, "human-computer interaction info",
                "human-computer interaction info register"),
    rootRow<Addr_BackupInfoRegister>(reg::kBackupInfo, "backup", "backup info register"),
    unservedRow(reg::kIntelligentBrightness, "Intelligent brightness",
                "Intelligent brightness sent by screen register"),
    rootRow<Addr_CabinetRotationRegister>(reg::kCabinetRotation, "cabinet rotation",
                                          "cabinet rotation register"),
    rootRow<Addr_ShortcutConfigScreenRegister>(reg::kShortcutConfigScreen, "shortcut config screen",
                                               "shortcut config screen register"),
    unservedRow(reg::kScanBoardPosition, "netscanborad", "network scanborad position register"),
    unservedRow(reg::kFunCardPortNumber, "netborad", "network scanborad register"),
    rootRow<Addr_SoftwareTableRegister>(reg::kSoftwareTable, "softwarespace", "software space register"),
    rootRow<Addr_SoftwareTableRegister>(reg::kSoftwareTableUpper, "softwarespace", "software space register"),
    rootRow<Addr_EDIDSpaceRegister>(reg::kEdid, "edid", "edid space register"),
    unservedRow(reg::kBrightness, "brightness", "brightness space register"),
    rootRow<Addr_TestPrinfRegister>(reg::kTestPrint, "testprintf", "testprintf Infomation"),
    rootRow<Addr_TestPrinfRegister>(reg::kTestPrintUpper, "testprintf", "testprintf Infomation"),
    rootRow<Addr_RGBGammaRegister>(reg::kRGBGamma, "RGB Gamma", "RGB Gamma register"),
    rootRow<Addr_ScreenPatternGenregister>(reg::kScreenPatternGen, "ScreenPatternGen info",
                                           "ScreenPatternGen info register"),
    rootRow<Addr_RVConfigFileSpace>(reg::kRVConfigFile, "RVConfig File Space info",
                                    "RVConfig File Space info register"),
    rootRow<Addr_CardProgmaSpaceRegister>(reg::kCardProgram, "cardprogspace",
                                          "sendcard programm space register"),
    rootRow<Addr_CardProgmaSpaceRegister>(reg::kCardProgramUpper, "ccardprogspace",
                                          "csendcard programm space register"),
};

}  // namespace

constinit std::array<Fshl_cmd, 71> Tshl_ctl::cmd_root = kRoot;

Tshl_ctl* Tshl_ctl::getInstance() {
  static Tshl_ctl instance;
  return &instance;
}

Tshl_ctl::Tshl_ctl() {
  Addr_HwBasicInfoRegister::getInstance();
  Addr_PluginCardInfoRegister::getInstance();
  Addr_ScreenInfoEchoRegister::getInstance();
  Addr_BackupInfoRegister::getInstance();
  Addr_CabinetRotationRegister::getInstance();
  Addr_ShortcutConfigScreenRegister::getInstance();
  Addr_SoftwareTableRegister::getInstance();
  Addr_TestPrinfRegister::getInstance();
  Addr_RGBGammaRegister::getInstance();
  Addr_ScreenPatternGenregister::getInstance();
  Addr_RVConfigFileSpace::getInstance();
  Addr_CardProgmaSpaceRegister::getInstance();
  Addr_EDIDSpaceRegister::getInstance();
}

Tshl_ctl::~Tshl_ctl() {
  Addr_HwBasicInfoRegister::deleteInstance();
  Addr_TestPrinfRegister::deleteInstance();
}

int Tshl_ctl::initialize() {
  mapRows(cmd_root.data(), m_mapProtoShl);
  return 1;
}

int Tshl_ctl::Ssh_StartSendCard(IMD_proto3rd* msgIMD) {
  if (msgIMD == nullptr) {
    PARLEND_TRACE(kError) << "=== Ssh_StartSendCard ===Ssh_StartSendCard: The proto is NULL! return.";
    return kRefused;
  }
  PARLEND_TRACE(kInfo) << "============================= Begin SendCard Task ===============================";
  const uint32_t address = msgIMD->proto.m_uiRegisterUnitAddress;
  PARLEND_TRACE(kInfo) << "Recv Register Address : " << CTrace::hex << address
                       << " length : " << msgIMD->proto.m_usValidDataLength;
  const auto hit = m_mapProtoShl.find(reg::routerKey(address));
  if (hit == m_mapProtoShl.end()) {
    PARLEND_TRACE(kError) << "=== Ssh_StartSendCard ===Ssh_StartSendCard: Invalid register address!";
    return kRefused;
  }
  Fshl_cmd* row = hit->second.cmd;
  int result = kRefused;
  if (row->called_fun != nullptr) {
    result = row->called_fun(msgIMD, row, 0);
  } else {
    PARLEND_TRACE(kError) << "=== Ssh_StartSendCard ===no space serves " << row->cmd_exp;
    msgIMD->proto.m_ucAck = kAckRefused;
  }
  PARLEND_TRACE(kInfo) << "============================= Finish SendCard Task ==============================";
  return result;
}

void Tshl_ctl::Ssh_cmdOffset(IMD_proto3rd* msgIMD) {
  PARLEND_TRACE(kInfo) << "-----------Ssh_cmdOffset begin------------";
  const auto hit = m_mapProtoShl.find(msgIMD->proto.m_uiRegisterUnitAddress & reg::kWideMask);
  if (hit == m_mapProtoShl.end()) {
    PARLEND_TRACE(kError) << "=== Ssh_cmdOffset ===Ssh_cmdOffset: Invalid register access";
  } else if (hit->second.cmd->print_fun != nullptr) {
    hit->second.cmd->print_fun(msgIMD);
  }
  PARLEND_TRACE(kInfo) << "-----------Ssh_cmdOffset end--------------";
}

int Tshl_ctl::Ssh_cmdAll() {
  PARLEND_TRACE(kInfo) << "-----------Ssh_cmdAll begin------------";
  for (const auto& [key, entry] : m_mapProtoShl) {
    PARLEND_TRACE(kInfo) << "Ssh_cmdAll: register base = " << CTrace::hex << key
                         << " cmd exp = " << entry.cmd->cmd_exp;
  }
  PARLEND_TRACE(kInfo) << "-----------Ssh_cmdAll end--------------";
  return 0;
}

}  // namespace ORVE_MCUC
