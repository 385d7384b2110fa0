// The EDIDs of the inputs: stored modes, and what is loaded for them.
#include <algorithm>
#include <string>

#include "calc/inputmode.h"
#include "hextext.h"
#include "maps/flashmap.h"
#include "mcucdatablock.h"
#include "mcuctrace.h"
#include "platform/lineecho.h"
#include "process/inputSource.h"
#include "proto/store/deviceaccess.h"

namespace ORVE_MCUC {
namespace {

constexpr int kLastGroupAtStart = 6;  // further groups keep what they are given until the next write

enum Family : uint8_t { kFamilyDvi = 0x0, kFamilyHdmi14 = 0x6 };
constexpr uint8_t familyOf(const source_t& source) {
  return source.src_code >> 4;
}
constexpr bool takesEdids(const source_t& source) {
  return familyOf(source) == kFamilyDvi || familyOf(source) == kFamilyHdmi14;
}

// Where the EDID service takes what; anything else is zero.
constexpr std::size_t kServiceVersionAt = 0;  // u32
constexpr std::size_t kServiceKindAt = 4;     // u8
constexpr std::size_t kServiceBlocksAt = 8;   // u32
constexpr std::size_t kServiceNameAt = 12;    // 14 characters, the zero included
constexpr std::size_t kServiceModeAt = 32;    // u32
constexpr uint8_t kServiceDvi = 0x0F;
constexpr uint8_t kServiceHdmi14 = 0x0E;
constexpr char kDviName[] = "ORVE DUAL_DVI";
static_assert(sizeof kDviName == 14);

// All zero, which no check passes, when the service builds none.
EdidBytes baseEdidFor(const source_t& source) {
  const bool dvi = familyOf(source) == kFamilyDvi;
  modify_edid_para para{};
  const std::span<uint8_t> bytes = para.bytes;
  putLe32(bytes, kServiceVersionAt, 1);
  bytes[kServiceKindAt] = dvi ? kServiceDvi : kServiceHdmi14;
  putLe32(bytes, kServiceBlocksAt, 2);
  if (dvi) std::copy(std::begin(kDviName), std::end(kDviName), bytes.begin() + kServiceNameAt);
  putLe32(bytes, kServiceModeAt, 2);
  EdidBytes edid{};
  if (ModifyEDID_API.build(&para, edid.data()) != 0) edid = {};
  return edid;
}

void logBase(EdidCheck check) {
  if (check == EdidCheck::kHeadError) PARLEND_TRACE(kInfo) << "Check Head Error";
  if (check == EdidCheck::kSumError) PARLEND_TRACE(kInfo) << "Check Sum Error";
}

void logEdid(const EdidBytes& edid) {
  if (!tracePasses(kInfo)) return;
  const HexText<3 * kEdidBytes + 1> text(edid);
  PARLEND_TRACE(kInfo) << "EDID Data = " << text.c_str();
}

}  // namespace

int InputSource::ReadEDIDInfo(int group, std::span<uint8_t, kEdidBytes> out) {
  const std::lock_guard lock(m_mutex);
  const auto source = find(group);
  EdidBytes edid{};
  const int result = source ? ll_input_get_edid(source->id, edid.data(), static_cast<int>(edid.size())) : -1;
  if (result == 0) {
    std::copy(edid.begin(), edid.end(), out.begin());
  } else {
    platform::LineEcho().write("GetEDIDInfo error " + std::to_string(result) + " \n");
    PARLEND_TRACE(kError) << "GetEDIDInfo error " << result << " ";
  }
  return result;
}

void InputSource::source_edid_init() {
  for (int group = 0; group <= kLastGroupAtStart; ++group) {
    const auto source = find(group);
    if (!source) continue;
    if (!takesEdids(*source)) {
      PARLEND_TRACE(kInfo) << "Nonsupport EDIDInit Source group " << group;
      return;
    }
    InSetParaBytes bytes{};
    if (readFlash(flash::kInputModes, bytes, {"source_edid_init"}) != 0) return;
    const InRes_T mode = decodeInSetPara(bytes).InRes[static_cast<std::size_t>(group)];
    loadMode(group, {mode.InResHor, mode.InResVer, mode.InResFrame});
  }
}

void InputSource::EDIDCommStorage(int group, std::span<const uint8_t> edid) {
  if (group < 0 || group >= static_cast<int>(kInputGroups)) {
    PARLEND_TRACE(kInfo) << "group error";
    return;
  }
  const InputMode mode = modeOfEdid(edid);
  storeMode(static_cast<std::size_t>(group), mode);
  EDIDSetByMode(group, mode.width, mode.height, mode.frame);
}

void InputSource::EDIDSetByMode(int group, uint16_t width, uint16_t height, uint16_t frame) {
  const std::lock_guard lock(m_mutex);
  loadMode(group, {width, height, frame});
}

bool InputSource::knowsModes() {
  if (m_modesKnown) return true;
  InSetParaBytes bytes{};
  if (readFlash(flash::kInputModes, bytes, {"EDIDCommStorage"}) != 0) return false;
  InSetPara = decodeInSetPara(bytes);
  m_modesKnown = true;
  return true;
}

// The record holds all groups: nothing is written over modes that could not be read.
void InputSource::storeMode(std::size_t group, const InputMode& mode) {
  if (!knowsModes()) return;
  InSetPara.InRes[group] = {mode.width, mode.height, mode.frame};
  writeFlash(flash::kInputModes, encodeInSetPara(InSetPara), {"EDIDCommStorage"});
}

void InputSource::loadMode(int group, const InputMode& mode) {
  if (group < 0 || group >= static_cast<int>(kInputGroups)) {
    PARLEND_TRACE(kInfo) << "group error";
    return;
  }
  const auto source = find(group);
  if (!source) {
    PARLEND_TRACE(kInfo) << "SourceGroup Error,p_src is NULL!";
    return;
  }
  if (!takesEdids(*source)) {
    PARLEND_TRACE(kInfo) << "Nonsupport Source ";
    return;
  }
  const EdidBytes base = baseEdidFor(*source);
  const auto edid = ResT_calEDID_by_model_new(base, mode);
  if (!edid) {
    logBase(ResT_verify_EDID(base));
    PARLEND_TRACE(kInfo) << "CheckEDIDInfo error ";
    return;
  }
  logEdid(*edid);
  if (ll_input_set_edid(source->id, edid->data(), static_cast<int>(edid->size())) != 0) {
    PARLEND_TRACE(kInfo) << "SetEDIDInfo error";
    return;
  }
  PARLEND_TRACE(kInfo) << "EDIDSetByMode done";
}

}  // namespace ORVE_MCUC
