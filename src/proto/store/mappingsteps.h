// Steps that the boot restore and both screen configurations share: from calculated values to image, FPGA and
// flash. Callers hold the configuration lock.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calc/mapping.h"
#include "proto/store/data_common.h"

namespace ORVE_MCUC {

struct ScreenWindow {
  uint32_t width = 0;  // pixels, as all that follows
  uint32_t height = 0;
  uint32_t x = 0;
  uint32_t y = 0;
};
// Window of port 0..9.
void putPortWindow(FeatureDraft& draft, unsigned port, const ScreenWindow& window);
// Role of all sixteen ports: backup unless 0.
void putPortRoles(FeatureDraft& draft, uint8_t backup);
// Screen fields: the width is also kept rounded up to an even number.
void putMappedScreen(FeatureDraft& draft, uint32_t width, uint32_t height);
constexpr uint16_t evenWidth(uint32_t width) {
  return static_cast<uint16_t>((width + 1) & ~1U);
}
void putOutputSize(FeatureDraft& draft, uint32_t width, uint32_t height);
void putScreenSize(FeatureDraft& draft, uint32_t width, uint32_t height);
// No offset, on the FPGA and in the image.
void clearScreenOffset(RegisterImages& images, FailureWords failed);

// Output size to flash, and one more change counted: the count, or nothing when it could not be stored. The
// counter starts at 0 after a restore.
std::optional<uint8_t> storeOutputSize(uint32_t width, uint32_t height, const char* caller);
void resetScreenChangeCounter(const char* caller);
void logScreenChangeCounter(uint8_t counter);

// Bytes 0..14 of the screen parameters: to the image and to flash. layout: rows, columns, mode and cards per
// port, as 5 bytes. False, and logged, when they could not be stored.
bool storeScreenPara(RegisterImages& images, CardSize card, std::span<const uint8_t, 5> layout,
                     const char* caller);

// How many lines and cards a port takes, to the log.
void logPortLoad(const SmartScreen& screen, const PortSplit& split);

// Whether the device is known to be a master or a slave; logged when it is not: without its role a
// calculation leaves those of the ports as they are.
bool roleIsKnown(const DeviceState& device, const char* caller);

// Card counts of ports 0..9, byte by byte to the image of the number table and to the FPGA.
void writeCardCounts(const RegisterImages& images, const std::array<uint32_t, kMappedPorts>& counts,
                     const char* caller);
// A table of positions to the image and to the FPGA as port 0..9's, in four blocks. 0, or the first failure.
int writePortTable(const RegisterImages& images, unsigned port,
                   std::span<const uint8_t, kPortTableSize> table);
// The same from what the image holds.
int rewritePortTable(const RegisterImages& images, unsigned port);
// A port's table with a chain filled in; what is behind the chain's repetitions stays.
std::array<uint8_t, kPortTableSize> portTableOf(const RegisterImages& images, unsigned port,
                                                const CardChain& chain);

// What a mapping changes of the feature image: to image and FPGA, then everything to flash.
void writeAndSaveFeature(Data_Global& store, const FeatureDraft& draft, const char* caller);

}  // namespace ORVE_MCUC
