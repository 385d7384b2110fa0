#include "edidtext.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "calc/inputmode.h"
#include "mcucdatablock.h"
#include "peer/error.h"
#include "peer/frame.h"
#include "values.h"

namespace parlctl {

namespace {

using namespace ORVE_MCUC;
using peer::Error;
using peer::Failure;

constexpr uint8_t kNameTag = 0xFC;
constexpr uint8_t kRangeTag = 0xFD;
constexpr std::size_t kTextAt = 5;  // of a descriptor that is no timing

// E-EDID 1.3: a digital display without a size, whose first timing is its preferred one.
constexpr std::array<uint8_t, kEdidTimingAt> kHead{
    0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00,              // header
    0x3E, 0x45, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x1E,  // maker, product, week, year
    0x01, 0x03, 0x80, 0x00, 0x00, 0x78, 0x0E,                    // version, digital, gamma 2.2, sRGB
    0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54,  // its primaries
    0x00, 0x00, 0x00,                                            // no established timings
    0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,              // no standard timings
    0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01};
constexpr std::array<uint8_t, 3 * kEdidDescriptor> kRest{
    0, 0, 0, kNameTag,  0, 'L', 'E', 'D', ' ', 'w', 'a', 'l',  'l', '\n', ' ', ' ', ' ', ' ',  //
    0, 0, 0, kRangeTag, 0, 1,   255, 1,   255, 66,  0,   '\n', ' ', ' ',  ' ', ' ', ' ', ' ',  //
    0, 0, 0, 0x10};

std::span<const uint8_t, kEdidDescriptor> descriptor(std::span<const uint8_t> edid, std::size_t n) {
  return edid.subspan(kEdidTimingAt + n * kEdidDescriptor).first<kEdidDescriptor>();
}
bool isTiming(std::span<const uint8_t, kEdidDescriptor> bytes) {
  return bytes[0] != 0 || bytes[1] != 0;
}

std::string nameOf(std::span<const uint8_t, kEdidDescriptor> bytes) {
  const auto text = bytes.subspan<kTextAt>();
  std::string name(text.begin(), std::find(text.begin(), text.end(), '\n'));
  for (char& letter : name)
    if (static_cast<unsigned char>(letter) < ' ' || static_cast<unsigned char>(letter) > '~') letter = '?';
  name.erase(name.find_last_not_of(' ') + 1);
  return name;
}

std::vector<std::string> faultsOf(std::span<const uint8_t> edid) {
  EdidBytes bytes{};
  std::copy_n(edid.begin(), std::min(edid.size(), bytes.size()), bytes.begin());
  std::vector<std::string> faults;
  const bool extended = bytes[kEdidExtensionsAt] != 0;
  const std::span<const uint8_t, kEdidBytes> whole(bytes);
  const auto sumFails = [](std::span<const uint8_t, kEdidBlock> block) {
    return edidChecksum(block) != block[kEdidChecksumAt];
  };
  if (ResT_verify_EDID(whole) == EdidCheck::kHeadError) faults.emplace_back("the header is not an EDID's");
  if (sumFails(whole.first<kEdidBlock>())) faults.emplace_back("the checksum of the base block is wrong");
  if (!extended) return faults;
  if (edid.size() < kEdidBytes) {
    faults.emplace_back("the extension block that it announces is missing");
  } else if (sumFails(whole.last<kEdidBlock>())) {
    faults.emplace_back("the checksum of the extension block is wrong");
  }
  return faults;
}

template <class... Values>
std::string format(const char* pattern, Values... values) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), pattern, values...);
  return text.data();
}

}  // namespace

InputMode parseMode(const std::string& text) {
  const std::size_t at = text.find('@');
  const std::string rate = at == text.npos ? "" : text.substr(at + 1);
  const std::size_t point = rate.find('.');
  std::string decimals = point == rate.npos ? "" : rate.substr(point + 1);
  const bool isRate = !rate.empty() && decimals.size() <= 2 && (point == rate.npos || !decimals.empty()) &&
                      decimals.find_first_not_of("0123456789") == decimals.npos;
  if (!isRate) throw Error(Failure::Usage, text + " is not WIDTHxHEIGHT@HZ, as in 1920x1080@59.94");
  const auto [width, height] = product(text.substr(0, at), 4095);
  decimals.resize(2, '0');
  const uint32_t frame = number(rate.substr(0, point), 655) * 100 +
                         static_cast<uint32_t>(10 * (decimals[0] - '0') + decimals[1] - '0');
  if (frame == 0 || frame > 65535) throw Error(Failure::Usage, text + ": the rate is from 0.01 to 655.35 Hz");
  return {static_cast<uint16_t>(width), static_cast<uint16_t>(height), static_cast<uint16_t>(frame)};
}

std::string modeText(const InputMode& mode) {
  return format("%u x %u at %.2f Hz", mode.width, mode.height, mode.frame / 100.0);
}

EdidBytes composeEdid(const InputMode& mode) {
  const auto chosen = timingOfMode(mode);
  // Half a step more than the frame, which is cut to a whole number when it is read.
  const double word =
      chosen ? std::ceil(mode.frame * static_cast<double>(chosen->timing.pixelsOfFrame()) / 1e6) : 0;
  if (!chosen || !fitsDescriptor(chosen->timing) || word < 1 || word > 65535) {
    throw Error(Failure::Usage, modeText(mode) + " is no mode that an EDID can ask for");
  }
  EdidBytes edid{};
  std::ranges::copy(kHead, edid.begin());
  std::ranges::copy(edid_create_dtd(chosen->timing, static_cast<uint16_t>(word)),
                    edid.begin() + kEdidTimingAt);
  std::ranges::copy(kRest, edid.begin() + kEdidTimingAt + kEdidDescriptor);
  edid[kEdidChecksumAt] = edidChecksum(std::span<const uint8_t, kEdidBytes>(edid).first<kEdidBlock>());
  return edid;
}

std::optional<ExpectedTiming> expectedTiming(std::span<const uint8_t> edid) {
  const InputMode mode = modeOfEdid(edid);
  const auto chosen = timingOfMode(mode);
  if (!chosen || !fitsDescriptor(chosen->timing)) return std::nullopt;
  const auto word = clockWordFor(chosen->timing, mode.frame);
  if (!word) return std::nullopt;
  return ExpectedTiming{mode, edid_create_dtd(chosen->timing, *word), chosen->standard};
}

DecodedEdid decodeEdid(std::span<const uint8_t> edid) {
  if (edid.size() < kEdidBlock) throw Error(Failure::ShortReply, "an EDID has 128 bytes or more");
  DecodedEdid decoded;
  decoded.faults = faultsOf(edid);
  decoded.timing = parseDtd(descriptor(edid, 0));
  decoded.mode = modeOfEdid(edid);
  for (std::size_t n = 0; n < kEdidDescriptors; ++n) {
    const auto bytes = descriptor(edid, n);
    if (isTiming(bytes)) continue;
    if (bytes[3] == kNameTag) decoded.name = nameOf(bytes);
    if (bytes[3] == kRangeTag) {
      decoded.range = DisplayRange{bytes[5], bytes[6], bytes[7], bytes[8], bytes[9] * 10U};
    }
  }
  return decoded;
}

std::string textOf(const DecodedEdid& edid) {
  const DetailedTiming& t = edid.timing;
  std::string text = "name    " + (edid.name.empty() ? "none" : edid.name);
  text += "\ntiming  " + modeText(edid.mode) + format(", clock %.2f MHz", t.pixelClock / 1e6);
  text += format("\n        %u x %u in all; sync %u + %u pixels, %u + %u lines behind the picture",
                 t.hActive + t.hBlank, t.vActive + t.vBlank, t.hSyncOffset, t.hSyncWidth, t.vSyncOffset,
                 t.vSyncWidth);
  text += "\nrange   ";
  text += edid.range
              ? format("%u to %u Hz, %u to %u kHz, at most %u MHz", edid.range->leastHz, edid.range->mostHz,
                       edid.range->leastKilohertz, edid.range->mostKilohertz, edid.range->mostMegahertz)
              : "none";
  for (const std::string& fault : edid.faults) text += "\nfault   " + fault;
  if (edid.faults.empty()) text += "\nsums    right";
  return text;
}

Json jsonOf(const DecodedEdid& edid) {
  const DetailedTiming& t = edid.timing;
  Json range = nullptr;
  if (edid.range) {
    range = {{"hz", {edid.range->leastHz, edid.range->mostHz}},
             {"kilohertz", {edid.range->leastKilohertz, edid.range->mostKilohertz}},
             {"megahertz", edid.range->mostMegahertz}};
  }
  return {{"name", edid.name},
          {"width", edid.mode.width},
          {"height", edid.mode.height},
          {"hertz", edid.mode.frame / 100.0},
          {"timing",
           {{"clock", t.pixelClock},
            {"horizontal", {t.hActive, t.hBlank, t.hSyncOffset, t.hSyncWidth}},
            {"vertical", {t.vActive, t.vBlank, t.vSyncOffset, t.vSyncWidth}}}},
          {"range", range},
          {"faults", edid.faults}};
}

}  // namespace parlctl
