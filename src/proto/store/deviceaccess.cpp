#include "proto/store/deviceaccess.h"

#include <string_view>

#include "driverutil.h"
#include "mcucdatablock.h"
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
  const bool silent = words.caller == nullptr && words.text == nullptr;
  if (result == 0 || silent || !tracePasses(kError)) return result;
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

CMutexGuardT<CMutexThreadRecursive> holdReads() {
  return driver().holdReads();
}

int readFpga(uint32_t address, std::span<uint8_t> bytes, FailureWords words) {
  const int result = driver().FPGAC5_ReadDataBlock(0, 0, address, lengthOf(bytes), bytes.data());
  return logged(result, words, {"read from", "FPGA", address, bytes.size()});
}
int writeFpga(uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  const int result = driver().FPGAC5_WriteDataBlock(0, 0, address, lengthOf(bytes), bytes.data());
  return logged(result, words, {"written to", "FPGA", address, bytes.size()});
}
int writeFpgaWord(uint32_t address, uint16_t value, FailureWords words) {
  std::array<uint8_t, 2> bytes{};
  putLe16(bytes, 0, value);
  return writeFpga(address, bytes, words);
}

int readFlash(uint32_t address, std::span<uint8_t> bytes, FailureWords words) {
  const int result = driver().ReadBytesFromFlash(address, lengthOf(bytes), bytes.data());
  return logged(result, words, {"read from", "flash", address, bytes.size()});
}
int writeFlash(uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  const int result = driver().WriteDataToFlash(address, lengthOf(bytes), bytes.data());
  return logged(result, words, {"written to", "flash", address, bytes.size()});
}
int writeFactoryCopy(uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  const int result = driver().WriteDataToFactoryTmpFlash(address, lengthOf(bytes), bytes.data());
  return logged(result, words, {"written to", "factory copy", address, bytes.size()});
}

int readCard(const CardPlace& card, uint32_t address, std::span<uint8_t> bytes, FailureWords words) {
  const bool fits = bytes.size() <= kLongestCardAccess;
  const auto length = static_cast<uint16_t>(bytes.size());
  const int result =
      fits ? driver().ReadCardPara(address, card.port, card.board, length, bytes.data(), card.type) : kFailed;
  return logged(result, words, {"read from", "card register", address, bytes.size()});
}
int writeCard(const CardPlace& card, uint32_t address, std::span<const uint8_t> bytes, FailureWords words) {
  const bool fits = bytes.size() <= kLongestCardAccess;
  const auto length = static_cast<uint16_t>(bytes.size());
  const auto port = static_cast<uint8_t>(card.port);
  const int result =
      fits ? driver().SendCardPara(address, port, card.board, length, bytes.data(), card.type) : kFailed;
  return logged(result, words, {"written to", "card register", address, bytes.size()});
}

}  // namespace ORVE_MCUC
