// EDIDs for people: composed for a mode, decoded into words. Values only.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calc/edid.h"
#include "result.h"

namespace parlctl {

// "1920x1080@59.94": pixels, lines and frames a second with at most two decimals. Throws peer::Error (Usage).
ORVE_MCUC::InputMode parseMode(const std::string& text);
// The same of a mode: "1920 x 1080 at 59.94 Hz".
std::string modeText(const ORVE_MCUC::InputMode& mode);

// An EDID whose first timing says the mode, as nearly as its clock can. Throws peer::Error (Usage) for a mode
// that no timing has.
ORVE_MCUC::EdidBytes composeEdid(const ORVE_MCUC::InputMode& mode);

// What the daemon makes of a written EDID.
struct ExpectedTiming {
  ORVE_MCUC::InputMode mode;
  ORVE_MCUC::DescriptorBytes descriptor;  // that the input then presents
  bool standard;                          // of the table of standard timings, else computed
};
// Nothing for a mode that the daemon does not load.
std::optional<ExpectedTiming> expectedTiming(std::span<const uint8_t> edid);

// Limits of the display, as the range descriptor gives them.
struct DisplayRange {
  unsigned leastHz, mostHz, leastKilohertz, mostKilohertz, mostMegahertz;
};
struct DecodedEdid {
  std::string name;  // empty: none is given
  ORVE_MCUC::DetailedTiming timing;
  ORVE_MCUC::InputMode mode;
  std::optional<DisplayRange> range;
  std::vector<std::string> faults;  // of header and checksums
};
// Needs a base block; the extension is looked at where there is one.
DecodedEdid decodeEdid(std::span<const uint8_t> edid);
std::string textOf(const DecodedEdid& edid);
Json jsonOf(const DecodedEdid& edid);

}  // namespace parlctl
