// Who this device is: serial number, model and network address, kept in the environment store.
#include <algorithm>
#include <string_view>

#include "envstore.h"
#include "logwords.h"
#include "maps/flashmap.h"
#include "mcuctrace.h"
#include "platform/netinfo.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

using SerialNumber = std::array<uint8_t, 8>;
constexpr int kSerialTextLength = 16;
constexpr int kModelTextLength = 4;
constexpr SerialNumber kDefaultSerial{0x13, 0x03, 0x0D, 0x00, 0xFF, 0xFF, 0xFF, 0xFF};
constexpr char kDefaultSerialText[] = "13030d00ffffffff";
constexpr std::string_view kBlankSerialText = "0000000000000000";

uint8_t nibble(char c) {
  if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
  return 0;
}

// The first 16 characters of a stored text, filled up with '0' when it is shorter.
std::array<char, kSerialTextLength> fixedText(std::string_view stored) {
  std::array<char, kSerialTextLength> text;
  text.fill('0');
  std::copy_n(stored.begin(), std::min<std::size_t>(stored.size(), text.size()), text.begin());
  return text;
}

void storeInFlash(const SerialNumber& serial) {
  writeFlash(flash::kSerialNumber, serial, "SNTransfer");
}

void setDefaultText() {
  if (sysconf_setenv("device_sn", kDefaultSerialText) != 0)
    PARLEND_TRACE(kError) << "=== SNTransfer ===setenv faild";
}

// Brings the environment's serial number and the flash in line. own is filled only when the environment holds
// a serial number of this device's own.
void transferSerial(bool setWhenAbsent, uint8_t* own) {
  LogSection section({"================================ Begin SN transfer ==============================",
                      "================================ Finish SN transfer ============================="});
  const OpenStore store;
  if (!store) {
    PARLEND_TRACE(kError) << "=== SNTransfer ===Error when openning env!";
    section.abandon();
    return;
  }
  const char* stored = sysconf_getenv("device_sn");
  if (stored == nullptr) {
    PARLEND_TRACE(kError)
        << "=== SNTransfer ===The SN_ADDR at env is not exist, set the default SN_ADDR now. ";
    if (setWhenAbsent) setDefaultText();
    storeInFlash(kDefaultSerial);
  } else {
    PARLEND_TRACE(kInfo) << "The SN_ADDR at env is already exist.";
    const auto text = fixedText(stored);
    if (std::string_view(text.data(), text.size()) == kBlankSerialText) {
      PARLEND_TRACE(kInfo) << "The SN_ADDR at env is equal to SN_0, set the default SN_ADDR now.";
      setDefaultText();
      storeInFlash(kDefaultSerial);
    } else {
      PARLEND_TRACE(kInfo) << "The SN_ADDR at env is not equal to SN_0, won't change it.";
      SerialNumber serial{};
      Data_Global::ASCII2Hex(text.data(), kSerialTextLength, serial.data());
      storeInFlash(serial);
      if (own != nullptr) std::copy(serial.begin(), serial.end(), own);
    }
  }
}

}  // namespace

int Data_Global::ASCII2Hex(const char* src, int count, uint8_t* dst) {
  for (int i = 0; i + 1 < count; i += 2) {
    dst[i / 2] = static_cast<uint8_t>(nibble(src[i]) << 4 | nibble(src[i + 1]));
  }
  return 0;
}

void Data_Global::SNTransfer() {
  transferSerial(true, nullptr);
}

void Data_Global::GetEnvSNPara(uint8_t* out) {
  transferSerial(false, out);
}

void Data_Global::GetEnvModelIDPara(uint8_t* out) {
  const OpenStore store;
  if (!store) {
    PARLEND_TRACE(kError) << "=== ModelID ===Error when openning env!";
    return;
  }
  const char* stored = sysconf_getenv("device_modelid");
  if (stored == nullptr) {
    PARLEND_TRACE(kError) << "=== ModelID ===The model ID at env is not exist. ";
  } else {
    uint8_t bytes[2];
    ASCII2Hex(fixedText(stored).data(), kModelTextLength, bytes);
    out[0] = bytes[1];
    out[1] = bytes[0];
  }
  PARLEND_TRACE(kInfo)
      << "================================ Finish ModelID transfer =============================";
}

int Data_Global::SetIPVersion() {
  constexpr char kAddress[] = "192.168.0.10";
  constexpr char kMask[] = "255.255.255.0";
  constexpr char kGateway[] = "192.168.0.1";
  {
    const OpenStore store;
    if (!store) {
      PARLEND_TRACE(kError) << "=== SetIPVersion ===Set IP, but openenv failed! ";
      return -1;
    }
    if (sysconf_setenv("gatewayip", kGateway) != 0) {
      PARLEND_TRACE(kError) << "=== SetIPVersion ===Set IP, but set gatewayip failed! ";
    }
    if (sysconf_setenv("ipaddr", kAddress) != 0) {
      PARLEND_TRACE(kError) << "=== SetIPVersion ===Set IP, but set ipaddr failed! ";
    }
  }
  if (const int status = netinfo_set_eth_mode(0)) PARLEND_TRACE(kInfo) << "set static status:" << status;
  const int result = netinfo_set_curr_ip(kAddress, kMask, kGateway);
  if (result != 0) PARLEND_TRACE(kInfo) << "set curip error:" << result;
  return result;
}

}  // namespace ORVE_MCUC
