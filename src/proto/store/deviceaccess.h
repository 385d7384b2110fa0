// Access to the device over spans: FPGA bus, parameter flash, cards behind the ports. An address and the
// bytes, no lengths to get wrong. Every function may be called from any thread and answers with DriverUtil's
// result: 0 done, anything else failed, with the bytes of a read undefined. Nothing here takes a lock of the
// store.
#pragma once

#include <cstdint>
#include <span>

#include "mcucmutex.h"

namespace ORVE_MCUC {

// One card, or all of them: port 0xFF, board 0xFFFF.
struct CardPlace {
  uint8_t type;  // card::kReceivingCard, ...
  uint16_t port;
  uint16_t board;
};

// Taken before a lock under which something is read: a read of a card that another thread has begun is waited
// for here, with that lock still free.
[[nodiscard]] CMutexGuardT<CMutexThreadRecursive> holdReads();

// How a failure is logged, on one Error line: "===", the caller and "===", then the text; without a caller
// the text alone. The result follows a text that ends in "= ". Without a text the line names address, length
// and result. Without words there is no line.
struct FailureWords {
  constexpr FailureWords() = default;
  constexpr FailureWords(const char* caller_, const char* text_ = nullptr) : caller(caller_), text(text_) {}
  const char* caller = nullptr;
  const char* text = nullptr;
};

// FPGA bus; more than 1024 bytes go in pieces, no bytes at all are a failure.
int readFpga(uint32_t address, std::span<uint8_t> bytes, FailureWords words = {});
int writeFpga(uint32_t address, std::span<const uint8_t> bytes, FailureWords words = {});
int writeFpgaWord(uint32_t address, uint16_t value, FailureWords words = {});
// Parameter flash.
int readFlash(uint32_t address, std::span<uint8_t> bytes, FailureWords words = {});
int writeFlash(uint32_t address, std::span<const uint8_t> bytes, FailureWords words = {});
// The copy of the factory image that replaces the flash with the next reboot; addresses as in the flash.
int writeFactoryCopy(uint32_t address, std::span<const uint8_t> bytes, FailureWords words = {});
// Registers of a card; more than 65535 bytes are a failure. A read of all boards is zeros.
int readCard(const CardPlace& card, uint32_t address, std::span<uint8_t> bytes, FailureWords words = {});
int writeCard(const CardPlace& card, uint32_t address, std::span<const uint8_t> bytes,
              FailureWords words = {});

}  // namespace ORVE_MCUC
