// Gamma tables as text, as the bytes of the FPGA, and as curves of the standards.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "calc/gammacurve.h"
#include "peer/frame.h"

namespace parlctl {

// Light of full scale 65535 for each of kGammaEntries entries; one that was read may be shorter.
using GammaCurve = std::vector<uint16_t>;
using GammaTables = std::array<GammaCurve, 3>;
inline constexpr std::array kChannelNames{"red", "green", "blue"};

// Tables of a text: numbers of any separation, lines of letters in front of them skipped. One number a line,
// or 4096 in any lines, is one table for all channels; three are red, green and blue; two and four have the
// entry in front. Throws peer::Error (Usage), naming the line.
GammaTables gammaOfText(const std::string& text, const std::string& name);
// Throws peer::Error (Usage) unless each table is whole, never falls, and runs from 0 to 65535.
void checkGamma(const GammaTables& tables, const std::string& name);
std::string textOfGamma(const GammaCurve& curve);

peer::Bytes bytesOfGamma(const GammaCurve& curve);
GammaCurve gammaOfBytes(std::span<const uint8_t> bytes);

// What the daemon loads where no valid table is stored.
GammaCurve builtInGamma();
// signal ^ exponent.
GammaCurve powerGamma(double exponent);
// SMPTE ST 2084: full scale is the peak in cd/m2, 1 to 10000, where the curve is cut.
GammaCurve pqGamma(double peak);
// ITU-R BT.2100 HLG: scene light, without a system gamma.
GammaCurve hlgGamma();

// The exponent that a power law through the middle entry would have; 0 where there is none.
double exponentOf(const GammaCurve& curve);

// Curves over the entries, beside the built-in one.
std::string gammaSvg(const std::string& title, const GammaTables& tables);

}  // namespace parlctl
