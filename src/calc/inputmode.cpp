#include "calc/inputmode.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "calc/cvt.h"

namespace ORVE_MCUC {
namespace {

// Frames that are a whole rate of film or television times 1000/1001.
constexpr std::array<uint32_t, 6> kVideoFrames{2398, 2997, 4795, 5994, 7193, 11988};

DetailedTiming standardTiming(const mode_table_t& row, uint32_t frame) {
  uint64_t clock = uint64_t{(frame + 50) / 100} * row.h_total * row.v_total;
  if (std::find(kVideoFrames.begin(), kVideoFrames.end(), frame) != kVideoFrames.end()) {
    clock = clock * 1000 / 1001;
  }
  DetailedTiming timing;
  timing.pixelClock = static_cast<uint32_t>(clock);
  timing.hActive = row.h_total - uint32_t{row.h_blanking};
  timing.hBlank = row.h_blanking;
  timing.hSyncOffset = row.h_blanking - uint32_t{row.h_start};
  timing.hSyncWidth = row.h_sync;
  timing.vActive = row.v_total - uint32_t{row.v_blanking};
  timing.vBlank = row.v_blanking;
  timing.vSyncOffset = row.v_blanking - uint32_t{row.v_start};
  timing.vSyncWidth = row.v_sync;
  return timing;
}

std::optional<DetailedTiming> computedTiming(const InputMode& mode) {
  const auto m = vert_refresh(
      {.h_pixels = mode.width, .v_lines = mode.height, .freq = mode.frame / 100.0, .reduced_blank = true});
  constexpr double kMostMegahertz = 4294.0;  // what 32 bits of hertz hold
  if (!m || m->pclk > kMostMegahertz) return std::nullopt;
  const auto between = [](int from, int to) { return static_cast<uint32_t>(to - from); };
  DetailedTiming timing;
  timing.pixelClock = static_cast<uint32_t>(m->pclk * 1e6);
  timing.hActive = between(0, m->hr);
  timing.hBlank = between(m->hr, m->hfl);
  timing.hSyncOffset = between(m->hr, m->hss);
  timing.hSyncWidth = between(m->hss, m->hse);
  timing.vActive = between(0, m->vr);
  timing.vBlank = between(m->vr, m->vfl);
  timing.vSyncOffset = between(m->vr, m->vss);
  timing.vSyncWidth = between(m->vss, m->vse);
  return timing;
}

}  // namespace

const mode_table_t* GetDmtTiming(uint32_t width, uint32_t height, uint32_t frame) {
  const auto fits = [=](const mode_table_t& row) {
    const resolution_t& active = g_resolution_input[row.en_res_idx];
    return active.width == width && active.height == height &&
           std::abs(int{row.v_freq} - static_cast<int>(frame / 10)) <= kRateTolerance;
  };
  const auto* found = std::find_if(g_timing_table_input.begin(), g_timing_table_input.end(), fits);
  return found == g_timing_table_input.end() ? nullptr : found;
}

std::optional<ModeTiming> timingOfMode(const InputMode& mode) {
  if (const mode_table_t* row = GetDmtTiming(mode.width, mode.height, mode.frame)) {
    return ModeTiming{standardTiming(*row, mode.frame), true};
  }
  const auto computed = computedTiming(mode);
  if (!computed) return std::nullopt;
  return ModeTiming{*computed, false};
}

std::optional<EdidBytes> ResT_calEDID_by_model_new(std::span<const uint8_t, kEdidBytes> base,
                                                   const InputMode& mode) {
  if (ResT_verify_EDID(base) != EdidCheck::kSound) return std::nullopt;
  const auto chosen = timingOfMode(mode);
  if (!chosen || !fitsDescriptor(chosen->timing)) return std::nullopt;
  const auto word = clockWordFor(chosen->timing, mode.frame);
  if (!word) return std::nullopt;
  EdidBytes edid;
  std::copy(base.begin(), base.end(), edid.begin());
  std::ranges::copy(edid_create_dtd(chosen->timing, *word), edid.begin() + kEdidTimingAt);
  edid[kEdidChecksumAt] = edidChecksum(std::span<const uint8_t, kEdidBytes>(edid).first<kEdidBlock>());
  return edid;
}

}  // namespace ORVE_MCUC
