// Steps that the boot restore and both screen configurations share: from calculated values to image, FPGA and
// flash. Callers hold the store's m_mutex.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "calc/mapping.h"
#include "proto/store/data_common.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {

struct ScreenWindow {
  uint32_t width = 0;  // pixels, as all that follows
  uint32_t height = 0;
  uint32_t x = 0;
  uint32_t y = 0;
};
void setPortWindow(Data_Global& store, unsigned int port, const ScreenWindow& window);

// Screen fields of the image: the width is also kept rounded up to an even number.
void setMappedScreen(Data_Global& store, uint32_t width, uint32_t height);
// Output size in the image, checked by the diagnostic for zero sizes.
void setOutputSize(Data_Global& store, uint32_t width, uint32_t height, int point, const char* description);
// Takes the output size over as the screen size.
void copyOutputToScreen(Data_Global& store);
// No offset, on the FPGA and in the image.
void clearScreenOffset(Data_Global& store, FailureWords failed);

// Output size to flash, and one more change counted: the count, or nothing when it could not be stored. The
// counter starts at 0 after a restore.
std::optional<uint8_t> storeOutputSize(uint32_t width, uint32_t height, const char* caller);
void resetScreenChangeCounter(const char* caller);
void logScreenChangeCounter(uint8_t counter);

// Bytes 0..14 of the screen parameters: to the image and to flash. layout: rows, columns, mode and cards per
// port, as 5 bytes. False, and logged, when they could not be stored.
bool storeScreenPara(Data_Global& store, CardSize card, std::span<const uint8_t, 5> layout,
                     const char* caller);
// The same 15 bytes from flash; the image keeps what it holds when they cannot be read.
int readScreenPara(Data_Global& store);

// How many lines and cards a port takes, to the log.
void logPortLoad(const SmartScreen& screen, const PortSplit& split);

// Card counts of ports 0..9, to the image of the number table and byte by byte to the FPGA.
void writeCardCounts(const std::array<uint32_t, kMappedPorts>& counts, const char* caller);
// A port's table of positions from the image to the FPGA, in four blocks. 0, or the first failure.
int writePortTable(unsigned int port);
// Calculates a port's table in the image.
void updatePortTable(unsigned int port, const CardChain& chain);

// What a mapping changes of the feature image: to the FPGA, then everything to flash.
void writeAndSaveFeature(Data_Global& store, const char* caller);

}  // namespace ORVE_MCUC
