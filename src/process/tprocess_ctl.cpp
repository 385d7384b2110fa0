#include "process/tprocess_ctl.h"

#include "mcuctrace.h"
#include "process/tprocess.h"

namespace ORVE_MCUC {
namespace {

constexpr Fprocess_cmd row(enum_Process_Key_Table key, int (*handler)(int, char*)) {
  return {kThirdProtocolLabel, 1, key, "", handler};
}

// A key that has its place while no handler serves it: its items are logged and dropped.
constexpr Fprocess_cmd unserved(enum_Process_Key_Table key) {
  return row(key, nullptr);
}

constexpr std::array<Fprocess_cmd, 200> kRows{
    unserved(HwBasicinfoKey),
    row(SaveSendCardParaKey, &Tprocess::Sprocess_SaveSendCardPara),
    unserved(ReturnFactorySetKey),
    row(ReloadSenderFPGAKey, &Tprocess::Sprocess_ReloadSendCardProgram),
    unserved(DoFeatureInfoKey),
    row(CorrectionKey, &Tprocess::Sprocess_Correction),
    row(DoScreenInfoEchoKey, &Tprocess::Sprocess_DoScreenInfoEcho),
    unserved(HDR10Key),
    unserved(HLGKey),
    row(SenderTestPattenKey, &Tprocess::Sprocess_SenderTestPatten),
    unserved(PictureQualityCalKey),
    unserved(WarmUpKey),
    row(DoBackupInfoKey, &Tprocess::Sprocess_DoBackupInfo),
    row(CalculateParaOfSenderKey, &Tprocess::Sprocess_CalculateParaOfSender),
    row(AdvCalcParaOfSenderKey, &Tprocess::Sprocess_AdvCalcParaOfSender),
    unserved(PositionNetPortKey),
    unserved(DoNumberFunCardPortKey),
    row(DoSoftwareTableKey, &Tprocess::Sprocess_DoSoftwareTable),
    row(DoEDIDSpaceKey, &Tprocess::Sprocess_DoDoEDIDSpace),
    row(ActiveReportingKey, &Tprocess::Sprocess_ActiveReporting),
    row(SenderRGBGammaKey, &Tprocess::Sprocess_SenderRGBGamma),
    unserved(doAdjustBrightnessKey),
    unserved(SendCardMappingKey),
    row(RVConfigFileSpaceKey, &Tprocess::Sprocess_RVConfigFileSpace),
    unserved(ScreenPatternGenKey),
    row(SendtoScanCardKey, &Tprocess::Sprocess_SendtoScanCard),
    row(SendtoMultiCardKey, &Tprocess::Sprocess_SendtoMultiCard),
    row(SendtoDistributeKey, &Tprocess::Sprocess_SendtoDistribute),
};

}  // namespace

constinit std::array<Fprocess_cmd, 200> Tprocess_ctl::process_root = kRows;

Tprocess_ctl* Tprocess_ctl::getInstance() {
  static Tprocess_ctl instance;
  return &instance;
}

Tprocess_ctl::~Tprocess_ctl() {
  Tprocess::deleteInstance();
}

int Tprocess_ctl::initialize() {
  for (uint32_t no = 0; no < process_root.size() && process_root[no].cmd_str != nullptr; ++no) {
    m_mapProcess[static_cast<uint32_t>(process_root[no].process_key)] = {no, &process_root[no]};
  }
  return 1;
}

void Tprocess_ctl::onProcessDealwith(MCUProcessDataBlock* block) {
  CMutexGuardT<CMutexThreadRecursive> guard(m_mutex);
  const auto hit = m_mapProcess.find(static_cast<uint32_t>(block->m_key));
  if (hit == m_mapProcess.end()) return;
  const Fprocess_cmd* row = hit->second.cmd;
  if (row == nullptr || row->called_fun == nullptr) {
    PARLEND_TRACE(kError) << "=== onProcessDealwith ===: Invalid key!";
    return;
  }
  row->called_fun(block->getDataLen(), block->getData());
}

}  // namespace ORVE_MCUC
