// The record of the modes that peers wrote last: 72 bytes in flash, little-endian. Values in, values out.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace ORVE_MCUC {

inline constexpr std::size_t kInputGroups = 9;

struct InRes_T {
  uint16_t InResHor = 0;
  uint16_t InResVer = 0;
  uint16_t InResFrame = 0;  // 0.01 Hz
};
struct InPlus_T {
  uint8_t Limit2Full = 0;
  uint8_t HdcpOn = 0;
};
struct InSetPara_T {
  std::array<InRes_T, kInputGroups> InRes{};
  std::array<InPlus_T, kInputGroups> InPlus{};
};

inline constexpr std::size_t kInSetParaBytes = 72;
using InSetParaBytes = std::array<uint8_t, kInSetParaBytes>;
InSetParaBytes encodeInSetPara(const InSetPara_T& para);
InSetPara_T decodeInSetPara(std::span<const uint8_t, kInSetParaBytes> bytes);

}  // namespace ORVE_MCUC
