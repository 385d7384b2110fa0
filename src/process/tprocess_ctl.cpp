#include "process/tprocess_ctl.h"

#include "mcuctrace.h"
#include "process/tprocess.h"

namespace ORVE_MCUC {
namespace {

// The handler of a key that nothing queues: the item is logged.
template <enum_Process_Key_Table key>
int logEntry(int, char*) {
  PARLEND_TRACE(kInfo) << workKey<key>.handler << " enter:";
  return 0;
}

struct KeyHandler {
  enum_Process_Key_Table key;
  WorkHandler
      handler;  // null: the key has its place while nobody serves it; its items are logged and dropped
};

// The dispatcher's table, in its order: who does the work of a key of maps/workkeys.h.
constexpr std::array kHandlers{
    KeyHandler{HwBasicinfoKey, &Tprocess::Sprocess_BasicData},
    KeyHandler{SaveSendCardParaKey, &Tprocess::Sprocess_SaveSendCardPara},
    KeyHandler{ReturnFactorySetKey, &Tprocess::Sprocess_ReturnFactorySet},
    KeyHandler{ReloadSenderFPGAKey, &Tprocess::Sprocess_ReloadSendCardProgram},
    KeyHandler{DoFeatureInfoKey, &Tprocess::Sprocess_DoFeatureInfo},
    KeyHandler{CorrectionKey, &logEntry<CorrectionKey>},
    KeyHandler{DoScreenInfoEchoKey, &Tprocess::Sprocess_DoScreenInfoEcho},
    KeyHandler{HDR10Key, &Tprocess::Sprocess_HDR10},
    KeyHandler{HLGKey, &Tprocess::Sprocess_HLG},
    KeyHandler{SenderTestPattenKey, &logEntry<SenderTestPattenKey>},
    KeyHandler{PictureQualityCalKey, &Tprocess::Sprocess_PictureQualityCal},
    KeyHandler{WarmUpKey, &Tprocess::Sprocess_DisplayWarmUp},
    KeyHandler{DoBackupInfoKey, &Tprocess::Sprocess_DoBackupInfo},
    KeyHandler{CalculateParaOfSenderKey, &Tprocess::Sprocess_CalculateParaOfSender},
    KeyHandler{AdvCalcParaOfSenderKey, &Tprocess::Sprocess_AdvCalcParaOfSender},
    KeyHandler{PositionNetPortKey, &Tprocess::Sprocess_PositionNetPort},
    KeyHandler{DoNumberFunCardPortKey, &Tprocess::Sprocess_DoNumberFunCardPort},
    KeyHandler{DoSoftwareTableKey, &Tprocess::Sprocess_DoSoftwareTable},
    KeyHandler{DoEDIDSpaceKey, &Tprocess::Sprocess_DoDoEDIDSpace},
    KeyHandler{ActiveReportingKey, &logEntry<ActiveReportingKey>},
    KeyHandler{SenderRGBGammaKey, &Tprocess::Sprocess_SenderRGBGamma},
    KeyHandler{doAdjustBrightnessKey, &Tprocess::Sprocess_doAdjustBrightness},
    KeyHandler{SendCardMappingKey, &Tprocess::Sprocess_doMappingForSender},
    KeyHandler{RVConfigFileSpaceKey, &Tprocess::Sprocess_RVConfigFileSpace},
    KeyHandler{ScreenPatternGenKey, &Tprocess::Sprocess_ScreenPatternGen},
    KeyHandler{SendtoScanCardKey, &logEntry<SendtoScanCardKey>},
    KeyHandler{SendtoMultiCardKey, &logEntry<SendtoMultiCardKey>},
    KeyHandler{SendtoDistributeKey, &logEntry<SendtoDistributeKey>},
};

constexpr bool handlersAreComplete() {
  for (std::size_t no = 0; no < kHandlers.size(); ++no) {
    if (kHandlers[no].key != kWorkKeys[no].key) return false;
  }
  return kHandlers.size() == kWorkKeys.size();
}
static_assert(handlersAreComplete());

constexpr auto kRows = [] {
  std::array<Fprocess_cmd, kHandlers.size()> rows{};
  for (std::size_t no = 0; no < rows.size(); ++no) {
    rows[no] = {kThirdProtocolLabel, 1, kHandlers[no].key, "", kHandlers[no].handler};
  }
  return rows;
}();

}  // namespace

constinit const std::array<Fprocess_cmd, 200> Tprocess_ctl::process_root = padded<200>(kRows);

Tprocess_ctl* Tprocess_ctl::getInstance() {
  static Tprocess_ctl instance;
  return &instance;
}

Tprocess_ctl::~Tprocess_ctl() {
  Tprocess::deleteInstance();
}

int Tprocess_ctl::initialize() {
  for (uint32_t no = 0; process_root[no].cmd_str != nullptr; ++no) {
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
