// Coordinated video timings after VESA CVT 1.1, with finer steps than the standard's: cells of one pixel, a
// clock in kHz, and a longer vertical front porch where the blanking is reduced. Values in, values out.
#pragma once

#include <optional>

namespace ORVE_MCUC {

// One computed timing, as positions within a line (pixels) and a frame (lines): active, start of sync, end of
// sync, total.
struct __mode {
  int hr = 0, hss = 0, hse = 0, hfl = 0;
  int vr = 0, vss = 0, vse = 0, vfl = 0;
  double pclk = 0;         // MHz
  double h_freq = 0;       // kHz
  double v_freq = 0;       // Hz, as asked for
  double real_v_rate = 0;  // Hz, as the clock's steps leave it
  bool rb = false;         // reduced blanking
  bool in = false;         // interlaced
};

// What a timing is asked to be. freq in Hz: frames, of an interlaced timing fields.
struct CvtRequest {
  int h_pixels = 0;
  int v_lines = 0;
  double freq = 0;
  bool interlaced = false;
  bool reduced_blank = false;
  bool margins = false;
  bool film_optimized = false;  // clock times 1000/1001, of reduced blanking only
};

// Nothing for a size outside 1..65535, and for a rate that leaves no time for the blanking.
std::optional<__mode> vert_refresh(const CvtRequest& request);

}  // namespace ORVE_MCUC
