// What edid-decode, an EDID decoder of the video world, says of timings and EDIDs: the independent judge of
// tests. Without it on the machine tests skip.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace edid_decode {

bool isInstalled();

// A timing as the program prints it; borders count as porch.
struct Timing {
  std::string name;  // "DMT 0x52", "VIC  16", "CVT", "DTD 1"
  int width = 0, height = 0;
  double hertz = 0, kilohertz = 0, megahertz = 0;
  bool interlaced = false;
  int hFront = 0, hSync = 0, hBack = 0, vFront = 0, vSync = 0, vBack = 0;
  bool hPositive = false, vPositive = false;

  int hTotal() const { return width + hFront + hSync + hBack; }
  int vTotal() const { return height + vFront + vSync + vBack; }
};

// All that the program knows of VESA DMT and of CEA-861, without sizes of porches and syncs.
std::vector<Timing> listDmts();
std::vector<Timing> listVics();
// One of them with everything, by the number in its name.
std::optional<Timing> timing(const Timing& listed);
// The coordinated video timing that the standard computes.
std::optional<Timing> cvt(int width, int height, double hertz, bool reducedBlanking);

struct Verdict {
  bool conformant = false;
  std::optional<Timing> first;  // detailed timing
  std::string text;             // all that was said
};
Verdict judge(std::span<const uint8_t> edid);

}  // namespace edid_decode
