// offset show, mode, set: the shift of the picture, and the bypass mode that it belongs to.
#include <memory>

#include "cardfeatures.h"
#include "commands.h"
#include "maps/fpgamap.h"
#include "mcucdatablock.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
using ORVE_MCUC::le16;
using peer::Bytes;
using peer::Error;
using peer::Failure;

constexpr uint8_t kNormal = 0;

// Both coordinates behind each other, as one register.
const Feature kMagnitudes{
    .name = "offset", .offset = fpga::kScreenOffsetX, .length = 4, .kind = FeatureKind::Bytes};
const Feature kSignedPair{
    .name = "signed offset", .offset = fpga::kSignedOffsetX, .length = 8, .kind = FeatureKind::Bytes};

struct OffsetArguments {
  std::string mode;
  std::string x;
  std::string y;
  bool left = false;
  bool up = false;
  bool asSigned = false;
};

std::string sizeWords(const Bytes& image) {
  return std::to_string(le16(image, fpga::kOutputWidth)) + " x " +
         std::to_string(le16(image, fpga::kOutputHeight));
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const Bytes image = readImage(daemon);
  const auto shown = [&](uint32_t fpgaRegister) {
    const Feature& feature = featureAt(fpgaRegister);
    return valueJson(feature, std::span(image).subspan(feature.offset, feature.length));
  };
  const Json fields{
      {"mode", shown(fpga::kOffsetMode)},
      {"x", shown(fpga::kScreenOffsetX)},
      {"y", shown(fpga::kScreenOffsetY)},
      {"signed_x", shown(fpga::kSignedOffsetX)},
      {"signed_y", shown(fpga::kSignedOffsetY)},
      {"output", {{"width", le16(image, fpga::kOutputWidth)}, {"height", le16(image, fpga::kOutputHeight)}}}};
  options.print({fields, "mode     " + fields["mode"].get<std::string>() + "\noffset   " +
                             fields["x"].dump() + ", " + fields["y"].dump() + "\nsigned   " +
                             fields["signed_x"].dump() + ", " + fields["signed_y"].dump() + "\noutput   " +
                             sizeWords(image)});
}

void mode(const Options& options, const OffsetArguments& arguments) {
  const Feature& feature = featureAt(fpga::kOffsetMode);
  peer::Peer daemon = options.connect();
  options.print(setFeature(options, daemon, feature, valueBytes(feature, arguments.mode)));
}

Bytes signedBytes(const std::string& number, bool negative) {
  return valueBytes(featureAt(fpga::kSignedOffsetX), negative && number != "0" ? "-" + number : number);
}

void set(const Options& options, const OffsetArguments& arguments) {
  const bool asSigned = arguments.asSigned || arguments.left || arguments.up;
  Bytes bytes = asSigned ? signedBytes(arguments.x, arguments.left)
                         : valueBytes(featureAt(fpga::kScreenOffsetX), arguments.x);
  const Bytes y = asSigned ? signedBytes(arguments.y, arguments.up)
                           : valueBytes(featureAt(fpga::kScreenOffsetY), arguments.y);
  bytes.insert(bytes.end(), y.begin(), y.end());
  peer::Peer daemon = options.connect();
  if (readFeature(daemon, featureAt(fpga::kOffsetMode))[0] == kNormal)
    throw Error(Failure::Usage,
                "the card is not in bypass mode, where an offset has no effect; nothing was sent "
                "(parlctl offset mode bypass)");
  Result result = setFeature(options, daemon, asSigned ? kSignedPair : kMagnitudes, bytes);
  result.text = std::string(textOf(result.outcome).word) + ": offset " + (arguments.left ? "-" : "") +
                arguments.x + ", " + (arguments.up ? "-" : "") + arguments.y + ", output " +
                sizeWords(readImage(daemon));
  options.print(result);
}

}  // namespace

void addOffset(Verb& root, const Options& options) {
  Verb& noun = root.verb("offset", "The bypass mode and its shift of the picture");
  noun.verb("show", "Mode, shift and output size").run([&options] { show(options); });
  const auto arguments = std::make_shared<OffsetArguments>();
  noun.verb("mode", "Open or leave the bypass mode; either takes the shift away")
      .operand("MODE", arguments->mode, "What it shall be")
      .oneOf({"bypass", "normal"})
      .run([&options, arguments] { mode(options, *arguments); });
  noun.verb("set", "Shift the picture in bypass mode")
      .operand("X", arguments->x, "Pixels")
      .operand("Y", arguments->y, "Pixels")
      .flag("--signed", arguments->asSigned, "As LSD does it: with a direction, to the right and down")
      .flag("--left", arguments->left, "The same to the left, which the output grows for")
      .flag("--up", arguments->up, "The same upwards")
      .example("offset set 16 0 --left")
      .run([&options, arguments] { set(options, *arguments); });
}

}  // namespace parlctl
