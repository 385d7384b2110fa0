#include "proto/store/deviceaccess.h"

#include <string_view>

#include "driverutil.h"
#include "mcuctrace.h"
#include "results.h"

namespace ORVE_MCUC {
namespace {

constexpr std::size_t kLongestCardAccess = 0xFFFF;

DriverUtil& driver() {
  return *DriverUtil::getInstance();
}

unsigned int lengthOf(std::span<const uint8_t> bytes) {
  return static_cast<unsigned int>(bytes.size());
}

// What a line without a text of its own says.
struct Access {
  const char* direction;  // "read from", "written to"
  const char* what;
  uint32_t address;
  std::size_t length;
};

int logged(int result, const FailureWords& words, const Access& access) {
  if (result == 0 || !tracePasses(kError)) return result;
  TraceLine line(kError, sourceName(__FILE__), __LINE__);
  if (words.caller != nullptr) line.record() << "=== " << words.caller << " ===";
  if (words.text == nullptr) {
    line.record() << access.length << " bytes were not " << access.direction << " " << access.what << " "
                  << CTrace::hex << access.address << ". ret = " << result;
  } else {
    line.record() << words.text;
    if (std::string_view(words.text).ends_with("= ")) line.record() << result;
  }
  return result;
}

}  // namespace

int readFpga(uint32_t address, std::span<uint8_t> bytes) {
  return driver().FPGAC5_ReadDataBlock(0, 0, address, lengthOf(bytes), bytes.data());
}
int writeFpga(uint32_t address, std::span<const uint8_t> bytes) {
  return driver().FPGAC5_WriteDataBlock(0, 0, address, lengthOf(bytes), bytes.data());
}

int readFlash(uint32_t address, std::span<uint8_t> bytes) {
  return driver().ReadBytesFromFlash(address, lengthOf(bytes), bytes.data());
}
int writeFlash(uint32_t address, std::span<const uint8_t> bytes) {
  return driver().WriteDataToFlash(address, lengthOf(bytes), bytes.data());
}

CMutexGuardT<CMutexThreadRecursive> holdReads() {
  return driver().holdReads();
}

int readCard(const CardPlace& card, uint32_t address, std::span<uint8_t> bytes) {
  if (bytes.size() > kLongestCardAccess) return kFailed;
  return driver().ReadCardPara(address, card.port, card.board, static_cast<uint16_t>(bytes.size()),
                               bytes.data(), card.type);
}
int writeCard(const CardPlace& card, uint32_t address, std::span<const uint8_t> bytes) {
  if (bytes.size() > kLongestCardAccess) return kFailed;
  return driver().SendCardPara(address, static_cast<uint8_t>(card.port), card.board,
                               static_cast<uint16_t>(bytes.size()), bytes.data(), card.type);
}

int readFpga(uint32_t address, std::span<uint8_t> bytes, FailureWords words) {
  return logged(readFpga(address, bytes), words, {"read from", "FPGA", address, bytes.size()});
}
int writeFpga(uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  return logged(writeFpga(address, bytes), words, {"written to", "FPGA", address, bytes.size()});
}
int readFlash(uint32_t address, std::span<uint8_t> bytes, FailureWords words) {
  return logged(readFlash(address, bytes), words, {"read from", "flash", address, bytes.size()});
}
int writeFlash(uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  return logged(writeFlash(address, bytes), words, {"written to", "flash", address, bytes.size()});
}
int writeFactoryCopy(uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  const int result = driver().WriteDataToFactoryTmpFlash(address, lengthOf(bytes), bytes.data());
  return logged(result, words, {"written to", "factory copy", address, bytes.size()});
}
int readCard(const CardPlace& card, uint32_t address, std::span<uint8_t> bytes, FailureWords words) {
  return logged(readCard(card, address, bytes), words, {"read from", "card register", address, bytes.size()});
}
int writeCard(const CardPlace& card, uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  return logged(writeCard(card, address, bytes), words,
                {"written to", "card register", address, bytes.size()});
}

}  // namespace ORVE_MCUC
