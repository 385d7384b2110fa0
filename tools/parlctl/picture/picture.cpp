// picture show, set: saturation, contrast and hue.
#include <memory>

#include "commands.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "peer/peer.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace reg = ORVE_MCUC::reg;
using peer::Bytes;

constexpr uint32_t kLargestHue = 0xFFFF;

struct Quality {
  uint16_t contrast = 0;
  uint16_t saturation = 0;
  uint16_t hue = 0;
  bool operator==(const Quality&) const = default;
};

Quality readQuality(peer::Peer& daemon) {
  const Bytes bytes = daemon.read(reg::kPictureQuality, 6);
  return {ORVE_MCUC::le16(bytes, 0), ORVE_MCUC::le16(bytes, 2), ORVE_MCUC::le16(bytes, 4)};
}

Json fieldsOf(const Quality& quality) {
  return {{"saturation", quality.saturation}, {"contrast", quality.contrast}, {"hue", quality.hue}};
}

std::string textOf(const Quality& quality) {
  return "saturation " + std::to_string(quality.saturation) + ", contrast " +
         std::to_string(quality.contrast) + ", hue " + std::to_string(quality.hue) + " degrees";
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const Quality quality = readQuality(daemon);
  options.print({fieldsOf(quality), textOf(quality)});
}

struct SetArguments {
  std::string saturation, contrast, hue;
};

// One that the command line names, or the one that is there; a write has a byte for it.
void choose(uint16_t& value, const std::string& text, const char* name) {
  if (!text.empty()) value = static_cast<uint16_t>(number(text, 0xFF));
  if (value > 0xFF)
    throw peer::Error(peer::Failure::Usage, std::string("the ") + name + " that is set, " +
                                                std::to_string(value) +
                                                ", does not fit into a write: " + "give --" + name);
}

void checkNumbers(const SetArguments& arguments) {
  if (arguments.saturation.empty() && arguments.contrast.empty() && arguments.hue.empty())
    throw peer::Error(peer::Failure::Usage, "--saturation, --contrast or --hue says what is set");
  for (const std::string* text : {&arguments.saturation, &arguments.contrast})
    if (!text->empty()) number(*text, 0xFF);
  if (!arguments.hue.empty()) number(arguments.hue, kLargestHue);
}

void set(const Options& options, const SetArguments& arguments) {
  checkNumbers(arguments);
  peer::Peer daemon = options.connect();
  Quality wanted = readQuality(daemon);
  choose(wanted.saturation, arguments.saturation, "saturation");
  choose(wanted.contrast, arguments.contrast, "contrast");
  if (!arguments.hue.empty()) wanted.hue = static_cast<uint16_t>(number(arguments.hue, kLargestHue));
  daemon.write(reg::kPictureQuality,
               {static_cast<uint8_t>(wanted.saturation), static_cast<uint8_t>(wanted.contrast),
                static_cast<uint8_t>(wanted.hue), static_cast<uint8_t>(wanted.hue >> 8)});
  const Comparison seen = lookUntil(options.patience(), [&]() -> Comparison {
    const Quality found = readQuality(daemon);
    if (found == wanted) return {Outcome::Verified, "verified: the three values read back as written"};
    return {Outcome::Mismatch, "mismatch: " + textOf(found) + " read back"};
  });
  options.print({fieldsOf(wanted), textOf(wanted) + '\n' + seen.text, seen.outcome});
}

}  // namespace

void addPicture(Verb& root, const Options& options) {
  Verb& picture = root.verb("picture", "Saturation, contrast and hue");
  picture.verb("show", "The values that the colours are calculated from").run([&options] { show(options); });
  auto arguments = std::make_shared<SetArguments>();
  picture.verb("set", "Set some of them and calculate the colours anew")
      .option("--saturation", "N", arguments->saturation, "From 0, grey, to 255; 50 is neutral")
      .option("--contrast", "N", arguments->contrast, "From 0, black, to 255; 50 is neutral")
      .option("--hue", "DEGREES", arguments->hue, "Turns the colours; 0 is neutral")
      .note("What is not given stays.")
      .example("picture set --saturation 60 --hue 350")
      .run([&options, arguments] { set(options, *arguments); });
}

}  // namespace parlctl
