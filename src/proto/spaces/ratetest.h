// A measurement of the FPGA's transfer rate.
#pragma once

#include <cstdint>

namespace ORVE_MCUC {

inline constexpr std::size_t kMostRateTestBytes = 16384;  // of one transfer

// Ten passes of 65535 transfers of length bytes (1..kMostRateTestBytes) each, to or from the beginning of the
// position tables, and a line on standard output for each pass. Nothing else is served meanwhile. False when
// a transfer failed; each of them is logged. A write test leaves zeros.
bool runWriteRateTest(std::size_t length);
bool runReadRateTest(std::size_t length);

}  // namespace ORVE_MCUC
