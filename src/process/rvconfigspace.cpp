#include "process/rvconfigspace.h"

#include <array>
#include <string>
#include <utility>

#include "driverutil.h"
#include "maps/flashmap.h"
#include "maps/rvconfigmap.h"
#include "mcuctrace.h"
#include "platform/lineecho.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"
#include "singleton.h"
#include "workending.h"

namespace ORVE_MCUC {
namespace {

constexpr char kHandler[] = "Sprocess_RVConfigFileSpace";

DriverUtil& driver() {
  return *DriverUtil::getInstance();
}

void writeFile(const char* name, int number, uint32_t at, std::span<const uint8_t> data) {
  driver().WriteRvFileToFalsh(name, number, at, data.data(), static_cast<uint16_t>(data.size()));
}

constexpr bool isControl(uint32_t at) {
  return at >= rv::kControl && at < rv::kControlEnd;
}

// Registers whose one byte LSD is told of, whatever it was.
constexpr bool isTold(uint32_t at, std::size_t length) {
  return length == 1 && (at == rv::kControl || at == rv::kControl + 1);
}

void control(uint32_t at, std::span<const uint8_t> data) {
  if (isTold(at, data.size())) {
    constexpr std::array<uint8_t, 1> kOne{1};
    Data_Global::getInstance()->SendDatetoLSD(at, kOne);
  } else {
    PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>>Send RvCfg File Ctrl Space!<<<<<<<<<<<<<";
  }
}

void copyToFlash(uint32_t at, std::span<const uint8_t> data) {
  if ((at & reg::kDeviceNameFileBit) != 0) {
    PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>>Device ReName Space<<<<<<<<<<<<<";
  } else {
    PARLEND_TRACE(kInfo) << "Address " << CTrace::hex << at << " RVConfigFile Stroage";
  }
  writeFlash(flash::ofConfigFile(at), data, {kHandler});
}

bool mayPlayOn() {
  return !isWorkEnding() && Data_Global::getInstance()->RebootRF == 0;
}

void playIfAsked(uint32_t at, std::span<const uint8_t> data) {
  if (at < rv::kPlay || at >= rv::kControlEnd || data.size() != 1) return;
  PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>Send RvCfg File:" << int{data[0]} << "!<<<<<<<<<<<<<";
  if (data[0] == 1) driver().LoadRvCfgToRecvCard(at - rv::kPlay, &mayPlayOn);
}

const char* wordsOf(RvHeaderFault fault) {
  switch (fault) {
    case RvHeaderFault::kTooManyFiles:
      return " announces more than 16 files";
    case RvHeaderFault::kTooShort:
      return " is shorter than its files need";
    case RvHeaderFault::kOffsetBeyond:
      return " has an offset of 0x800000 or more";
    case RvHeaderFault::kNone:
      break;
  }
  return "";
}

void logRanges(const _RvFileHeadPara_t& head) {
  if (!tracePasses(kInfo)) return;
  for (std::size_t i = 0; i < head.WriteFileNum; ++i) {
    PARLEND_TRACE(kInfo) << "+++RVCfgFile" << i << "index:" << int{head.FileIndex[i]}
                         << " Offset:" << CTrace::hex << head.FileDateOffest[i];
  }
}

Singleton<RvConfigSpace>& holder() {
  static Singleton<RvConfigSpace> instance;
  return instance;
}

}  // namespace

RvConfigSpace* RvConfigSpace::getInstance() {
  return holder().get([] { return new RvConfigSpace; });
}
void RvConfigSpace::deleteInstance() {
  holder().destroy();
}

void RvConfigSpace::write(uint32_t registerAddress, std::span<const uint8_t> data) {
  if (isControl(registerAddress)) {
    control(registerAddress, data);
  } else {
    copyToFlash(registerAddress, data);
  }
  playIfAsked(registerAddress, data);
  if (registerAddress < rv::kBodiesEnd) storeFile(registerAddress, data);
}

void RvConfigSpace::storeFile(uint32_t registerAddress, std::span<const uint8_t> data) {
  PARLEND_TRACE(kInfo) << ">>>>>>>>>>>>>>>>Storage RvCfg File:>>>>>>>>>>>>>>>>>>";
  if (registerAddress == rv::kHeader) {
    takeHeader(data);
  } else if (registerAddress >= rv::kIndex && registerAddress <= rv::kIndexLast) {
    writeFile(DriverUtil::kCabCfgIndex, DriverUtil::kByName, registerAddress - rv::kIndex, data);
  } else {
    storeBody(registerAddress, data);
  }
}

// A set of files that differs from the one before in number or in its enable byte takes the place of it.
void RvConfigSpace::takeHeader(std::span<const uint8_t> header) {
  const RvHeaderFault fault = checkRvHeader(header);
  if (fault != RvHeaderFault::kNone) {
    PARLEND_TRACE(kError) << "=== " << kHandler << " ===a header of " << header.size() << " bytes"
                          << wordsOf(fault) << ", it is not taken.";
    return;
  }
  const std::pair before(WriteRvFilePara.WriteFileEn, WriteRvFilePara.WriteFileNum);
  takeRvHeader(header, WriteRvFilePara);
  if (before != std::pair(WriteRvFilePara.WriteFileEn, WriteRvFilePara.WriteFileNum)) {
    driver().RemoveRvFile(DriverUtil::kCabCfgIndex, DriverUtil::kByName);
    driver().RemoveOtherRvFile(WriteRvFilePara.WriteFileNum, rv::kFileNumbers);
  }
  logRanges(WriteRvFilePara);
  sortRvRanges(WriteRvFilePara);
  logRanges(WriteRvFilePara);
}

void RvConfigSpace::storeBody(uint32_t registerAddress, std::span<const uint8_t> data) {
  const auto range = rvRangeOf(WriteRvFilePara, registerAddress);
  if (!range) return;
  const std::size_t k = *range;
  PARLEND_TRACE(kInfo) << "Get File Index:" << k << " addr:0x " << CTrace::hex << registerAddress;
  const unsigned int number = WriteRvFilePara.FileIndex[k];
  const uint32_t start = WriteRvFilePara.FileDateOffest[k];
  auto& storage = WriteRvFilePara.StorageName[k];
  if (registerAddress == start) {  // of an old file no tail shall be left
    storage = rvStorageName(number);
    std::string name = "##################File Name::";
    platform::LineEcho().write(name.append(storage.name.data()) += '\n');
    PARLEND_TRACE(kInfo) << "Remove Rvfile " << k << " File"
                         << "Name:" << storage.name.data();
    driver().RemoveRvFile(nullptr, static_cast<int>(number));
  }
  writeFile(storage.name.data(), static_cast<int>(number), registerAddress - start, data);
}

}  // namespace ORVE_MCUC
