// hdr show, off, hdr10, hlg: HDR curves and what they are calculated from.
#include <memory>
#include <optional>

#include "commands.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "picturedaemon.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace reg = ORVE_MCUC::reg;
using peer::Bytes;

constexpr uint8_t kOff = 0x00;
constexpr uint8_t kHdr10 = 0x58;
constexpr uint8_t kHlg = 0x78;

struct Settings {
  uint8_t type = kOff;
  uint16_t peak = 0;
  uint8_t ambient = 0;
  uint8_t lowGrey = 0;
  uint8_t hlgClass = 0;
};

Settings readSettings(peer::Peer& daemon) {
  const Bytes head = daemon.read(reg::kHdrType, 4);
  return {head.at(0), ORVE_MCUC::le16(head, 1), head.at(3), daemon.read(reg::kLowGrey, 1).at(0),
          daemon.read(reg::kHlgClass, 1).at(0)};
}

const char* typeName(uint8_t type) {
  return type == kHdr10 ? "hdr10" : type == kHlg ? "hlg" : "off";
}

std::string curveText(const LoadedCurve& curve) {
  std::string text = curve.isHdr() ? "an HDR curve" : "gamma tables";
  text += ", white is " + std::to_string(curve.white * 100 / 65535) + " %";
  return text;
}

Result described(const Settings& settings, const LoadedCurve& curve) {
  return {{{"type", typeName(settings.type)},
           {"type_byte", settings.type},
           {"peak", settings.peak},
           {"ambient", settings.ambient},
           {"min", settings.lowGrey},
           {"class", settings.hlgClass},
           {"hdr_loaded", curve.isHdr()},
           {"white", curve.white}},
          std::string("set      ") + typeName(settings.type) + "\nhdr10    peak " +
              std::to_string(settings.peak) + " cd/m2, ambient " + std::to_string(settings.ambient) +
              " cd/m2, min " + std::to_string(settings.lowGrey) + "\nhlg      class " +
              std::to_string(settings.hlgClass) + "\nFPGA     " + curveText(curve)};
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const Settings settings = readSettings(daemon);
  const LoadedCurve curve = loadedCurve(daemon);
  Result result = described(settings, curve);
  if ((settings.type == kHdr10 || settings.type == kHlg) != curve.isHdr()) {
    result.outcome = Outcome::Differs;
    result.text += "\ndiffers: the FPGA does not have what is set";
  } else if (curve.isHdr() && curve.white == 0) {
    result.outcome = Outcome::Found;
    result.text += "\nfound: the curve is dark, and so is the wall; HDR10 takes the cards' brightness";
  }
  options.print(result);
}

// What a command line wants; what it does not name stays.
struct Wanted {
  uint8_t type = kOff;
  std::optional<uint16_t> peak{};
  std::optional<uint8_t> ambient{}, lowGrey{}, hlgClass{};
};

template <class Value>
std::optional<Value> optionalNumber(const std::string& text, Value limit) {
  return text.empty() ? std::nullopt : std::optional(static_cast<Value>(number(text, limit)));
}

// The type goes first: the others hold under their own type only.
void send(peer::Peer& daemon, const Wanted& wanted) {
  daemon.write(reg::kHdrType, {wanted.type});
  if (wanted.peak)
    daemon.write(reg::kScreenPeakLight,
                 {static_cast<uint8_t>(*wanted.peak), static_cast<uint8_t>(*wanted.peak >> 8)});
  if (wanted.ambient) daemon.write(reg::kAmbientLight, {*wanted.ambient});
  if (wanted.lowGrey) daemon.write(reg::kLowGrey, {*wanted.lowGrey});
  if (wanted.hlgClass) daemon.write(reg::kHlgClass, {*wanted.hlgClass});
}

bool isSet(const Settings& settings, const Wanted& wanted) {
  return settings.type == wanted.type && settings.peak == wanted.peak.value_or(settings.peak) &&
         settings.ambient == wanted.ambient.value_or(settings.ambient) &&
         settings.lowGrey == wanted.lowGrey.value_or(settings.lowGrey) &&
         settings.hlgClass == wanted.hlgClass.value_or(settings.hlgClass);
}

void set(const Options& options, const Wanted& wanted) {
  peer::Peer daemon = options.connect();
  send(daemon, wanted);
  Settings settings;
  LoadedCurve curve;
  const Comparison seen = lookUntil(options.patience(), [&]() -> Comparison {
    settings = readSettings(daemon);
    curve = loadedCurve(daemon);
    if (!isSet(settings, wanted)) return {Outcome::Mismatch, "mismatch: the settings are not as written"};
    if (curve.isHdr() != (wanted.type != kOff))
      return {Outcome::Mismatch, "mismatch: the FPGA has " + curveText(curve)};
    return {Outcome::Verified, "verified: settings as written, the FPGA has " + curveText(curve)};
  });
  Result result = described(settings, curve);
  result.text = std::string(typeName(wanted.type)) + '\n' + seen.text;
  result.outcome = seen.outcome;
  options.print(result);
}

struct Hdr10Arguments {
  std::string peak, ambient, lowGrey;
};

void addHdr10(Verb& hdr, const Options& options) {
  auto arguments = std::make_shared<Hdr10Arguments>();
  hdr.verb("hdr10", "Load an HDR10 curve")
      .option("--peak", "N", arguments->peak, "Peak light of the screen, cd/m2, up to 65535")
      .option("--ambient", "N", arguments->ambient, "Light around the screen, cd/m2, up to 255")
      .option("--min", "N", arguments->lowGrey, "Effect on low grey levels, up to 255")
      .note("What is not given stays. The curve takes the brightness of the first card with it.")
      .example("hdr hdr10 --peak 800 --ambient 40")
      .run([&options, arguments] {
        set(options, {.type = kHdr10,
                      .peak = optionalNumber<uint16_t>(arguments->peak, 0xFFFF),
                      .ambient = optionalNumber<uint8_t>(arguments->ambient, 0xFF),
                      .lowGrey = optionalNumber<uint8_t>(arguments->lowGrey, 0xFF)});
      });
}

}  // namespace

void addHdr(Verb& root, const Options& options) {
  Verb& hdr = root.verb("hdr", "HDR curves: HDR10, HLG or none");
  hdr.verb("show", "What is set, and whether the FPGA has an HDR curve").run([&options] { show(options); });
  hdr.verb("off", "Load the gamma tables again").run([&options] { set(options, {}); });
  addHdr10(hdr, options);
  auto hlgClass = std::make_shared<std::string>();
  hdr.verb("hlg", "Load an HLG curve")
      .option("--class", "N", *hlgClass, "HLG class, up to 255; without it the one that is set")
      .example("hdr hlg --class 4")
      .run([&options, hlgClass] {
        set(options, {.type = kHlg, .hlgClass = optionalNumber<uint8_t>(*hlgClass, 0xFF)});
      });
}

}  // namespace parlctl
