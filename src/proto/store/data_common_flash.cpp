#include <algorithm>
#include <cstdio>

#include "driverutil.h"
#include "logwords.h"
#include "maps/flashmap.h"
#include "maps/fpgamap.h"
#include "mcuctrace.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/mappingsteps.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kPageSize = 256;

// Reads a size record: width u32, height u32. The name stands in the log lines.
int readSize(uint32_t address, const char* name, FailureWords failed, uint32_t* out) {
  std::array<uint8_t, 8> record{};
  if (readFlash(address, record, failed) != 0) return -1;
  out[0] = le32(record, 0);
  out[1] = le32(record, 4);
  if (out[0] == 0) PARLEND_TRACE(kInfo) << "=======Read FromFlash " << name << "W = 0";
  if (out[1] == 0) PARLEND_TRACE(kInfo) << "=======Read FromFlash " << name << "H = 0";
  return out[0] != 0 && out[1] != 0 ? 0 : -1;
}

}  // namespace

int Data_Global::RestoreDataFromFlash(int type, std::span<uint8_t> dest) {
  const LogSection section(
      {"========================== Begin restore data from flash ========================",
       "========================== Finish restore data from flash ======================="});
  int result = -1;
  if (type == 0 || type == 1)
    result = readFlash(type == 0 ? flash::kBasicHardwarePage : flash::kFeature, dest);
  return result;
}

int Data_Global::Read_ScreenSize_FromFlash(uint32_t* out) {
  return readSize(flash::kScreenSize, "ScreenSize",
                  {"Read_ScreenSize_FromFlash", "Can not read flash screensize , faild !!! "}, out);
}

int Data_Global::Read_CardSize_FromFlash(uint32_t* out) {
  return readSize(flash::kCardSize, "CardSize_",
                  {"Read_CardSize_FromFlash", "Can not read flash CardSize , faild !!! "}, out);
}

void Data_Global::ChangeOutScreenPara(uint32_t width, uint32_t height) {
  PARLEND_TRACE(kInfo)
      << "===============================Storage Dvi Wide ADVcalc===================================";
  storeOutputSize(width, height, "ChangeOutScreenPara");
}

int Data_Global::CopyConstDataToFlash(uint32_t address, std::span<const uint8_t> data) {
  const LogSection section(
      {"======================== Begin copy const data to flash =========================",
       "======================== Finish copy const data to flash ========================"});
  const auto levelOf = [](int result) { return result == 0 ? kInfo : kError; };
  const auto pages = static_cast<unsigned int>(data.size() / kPageSize);
  uint32_t at = address;
  unsigned int i = 0;
  for (; data.size() >= kPageSize; data = data.subspan(kPageSize), at += uint32_t{kPageSize}, ++i) {
    const int result = writeFlash(at, data.first(kPageSize));
    PARLEND_TRACE(levelOf(result)) << "Copy const data to flash : the real addr = " << CTrace::hex << at
                                   << " result = " << result << " temp = " << pages << " i = " << i;
  }
  const int result = writeFlash(at, data);
  PARLEND_TRACE(levelOf(result)) << "Copy const data to flash : the real addr = " << CTrace::hex << at
                                 << " spi address = " << CTrace::hex << address << " result = " << result
                                 << " mod = " << static_cast<unsigned int>(data.size()) << " i = " << i;
  return result;
}

void Data_Global::DebugForScreenZero(int point, unsigned int addr, const char* description) {
  const int width = SendParameterReg.le16(fpga::kOutputWidth);
  const int height = SendParameterReg.le16(fpga::kOutputHeight);
  if (width != 0 && height != 0) return;
  char command[512];
  std::snprintf(
      command, sizeof command,
      "echo \"Point:%d ,use adddr:0x%x, wide:%d high:%d, description:%.200s\" >> /root/screen_zero.txt",
      point, addr, width, height, description);
  DriverUtil::getInstance()->runCommand(command);
  PARLEND_TRACE(kInfo)
      << "=============================Screen Para is Zero!!!  =============================";
}

void Data_Global::ReadHardwareInfo() {
  Data_Preset& preset = *Data_Preset::getInstance();
  auto& page = preset.BasicHardWareReg;
  preset.loadFailed = RestoreDataFromFlash(0, std::span(page).first(kPageSize)) != 0;
  if (preset.loadFailed) {
    // What could not be read must not be written back as zeros.
    PARLEND_TRACE(kError)
        << "=== ReadHardwareInfo ===the basic hardware page cannot be read, it is not saved.";
    return;
  }
  constexpr std::array<uint8_t, 7> kIdentity{20, 17, 2, 0, 168, 0, 4};
  std::copy(kIdentity.begin(), kIdentity.end(), page.begin() + 2);
  page[30] = 0;
  page[31] = 0x55;
  preset.SaveBasicParaToFlash();
}

void Data_Preset::SaveBasicParaToFlash() {
  constexpr uint8_t kSaved = 0x55;
  writeFlash(flash::kBasicHardwareSaved, {&kSaved, 1}, "SaveBasicParaToFlash");
  writeFlash(flash::kBasicHardwarePage, std::span(BasicHardWareReg).first<16>(), "SaveBasicParaToFlash");
}

}  // namespace ORVE_MCUC
