// Loading the FPGA's pixel stages: gamma tables, HDR curves, colour-space conversion. On the work thread. The
// curves and coefficients are the device's colour library's; the settings are those of the parameter table.
// What cannot be written is not examined: the next load writes everything anew.
#pragma once

#include <cstdint>

#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

// The stored tables of a bank (maps/gammamap.h), or the built-in curve for a colour that has no valid one.
// With an HDR type set nothing is written.
void SendGammaToFpga(uint8_t bank);

// 'X' loads an HDR10 curve, 'x' an HLG curve, anything else the stored tables.
void SendCardHDRProcess(RegisterImages& images, uint8_t mode);

// Both sets of conversion coefficients. arg is passed on to the library.
void PictureQualityProcess(int arg);

}  // namespace ORVE_MCUC
