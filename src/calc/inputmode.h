// Which timing an input asks its source for, and the EDID that says so. Values in, values out.
#pragma once

#include <optional>

#include "calc/edid.h"
#include "calc/timingtable.h"

namespace ORVE_MCUC {

// The timing of the table for exactly that resolution and about that frame (0.01 Hz); null when it has none.
const mode_table_t* GetDmtTiming(uint32_t width, uint32_t height, uint32_t frame);

// The detailed timing of a mode: of the table, else computed with reduced blanking. Nothing where no timing
// exists. standard tells which of the two it is.
struct ModeTiming {
  DetailedTiming timing;
  bool standard = false;
};
std::optional<ModeTiming> timingOfMode(const InputMode& mode);

// base with the mode as its first detailed timing and a new checksum. Nothing, and the caller may ask
// ResT_verify_EDID why, for a base that is not sound; nothing for a mode that no descriptor can say.
std::optional<EdidBytes> ResT_calEDID_by_model_new(std::span<const uint8_t, kEdidBytes> base,
                                                   const InputMode& mode);

}  // namespace ORVE_MCUC
