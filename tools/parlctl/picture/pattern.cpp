// pattern off, pixels, blocks, preview: test patterns of the FPGA.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "maps/registermap.h"
#include "mcucdatablock.h"
#include "output.h"
#include "picturedaemon.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;
namespace pattern = ORVE_MCUC::pattern;
using peer::Bytes;
using peer::Error;
using peer::Failure;

constexpr uint32_t kLargestWall = 16384;

struct PatternArguments {
  std::string kind;
  std::string size;
  std::string first = "0,0";
  std::string wall;
  std::string svg;
};

std::string planText(const PatternPlan& plan) {
  if (plan.kind != pattern::kPixels && plan.kind != pattern::kBlocks) return "no pattern";
  return std::string(plan.kind == pattern::kPixels ? "a pixel every " : "blocks of ") +
         std::to_string(plan.width) + " x " + std::to_string(plan.height) + ", first at " +
         std::to_string(plan.x) + ',' + std::to_string(plan.y);
}

Json fieldsOf(const PatternPlan& plan, const PatternBytes& image) {
  const bool blocks = plan.kind == pattern::kBlocks;
  Json fields{{"kind", blocks ? "blocks" : plan.kind == pattern::kPixels ? "pixels" : "off"}};
  if (fields["kind"] == "off") return fields;
  fields.update({{"width", plan.width}, {"height", plan.height}, {"first", {plan.x, plan.y}}});
  fields["phase"] = {map::le16(image, blocks ? pattern::kBlockPhaseXAt : pattern::kPixelPhaseXAt),
                     map::le16(image, blocks ? pattern::kBlockPhaseYAt : pattern::kPixelPhaseYAt)};
  if (blocks)
    fields["count"] = {map::le16(image, pattern::kBlockCountXAt), map::le16(image, pattern::kBlockCountYAt)};
  return fields;
}

// Generator registers in the FPGA beside what the daemon's calculation makes of the request; the screen's
// size is the FPGA's own, and the strobe is over.
Comparison compareImages(const PatternBytes& wanted, const PatternBytes& found) {
  for (std::size_t at = 0; at < pattern::kLoadedEnd; ++at) {
    const bool own = at >= pattern::kScreenWidthAt && at < pattern::kScreenHeightAt + 2;
    if (own || at == pattern::kStrobeAt || wanted[at] == found[at]) continue;
    return {Outcome::Mismatch,
            "mismatch: " + hexAddress(map::reg::kScreenPatternGen + static_cast<uint32_t>(at)) +
                ": expected " + peer::toHex(std::span(&wanted[at], 1)) + ", read back " +
                peer::toHex(std::span(&found[at], 1))};
  }
  return {Outcome::Verified, "verified: the generator has the pattern and its phases"};
}

void load(const Options& options, const PatternPlan& plan) {
  peer::Peer daemon = options.connect();
  PatternBytes image = readPattern(daemon);
  image[pattern::kStrobeAt] = 0;
  putPattern(image, plan);
  daemon.write(map::reg::kScreenPatternGen, Bytes(image.begin(), image.begin() + pattern::kLoadedEnd));
  const Comparison seen =
      lookUntil(options.patience(), [&] { return compareImages(image, readPattern(daemon)); });
  options.print({fieldsOf(plan, image), planText(plan) + '\n' + seen.text, seen.outcome});
}

WallSize sizeOfText(const std::string& text) {
  const auto [width, height] = product(text, kLargestWall);
  return {static_cast<uint16_t>(width), static_cast<uint16_t>(height)};
}

WallSize sizeOfDaemon(const Options& options) {
  peer::Peer daemon = options.connect();
  const WallSize wall = wallSize(daemon);
  if (wall.width == 0 || wall.height == 0 || wall.width > kLargestWall || wall.height > kLargestWall)
    throw Error(Failure::Usage, "the daemon has no screen of up to 16384 x 16384 pixels: give --wall");
  return wall;
}

void preview(const Options& options, const PatternArguments& arguments) {
  const PatternPlan plan = patternPlan(arguments.kind, arguments.size, arguments.first);
  OutputFile svg(arguments.svg);
  const WallSize wall = arguments.wall.empty() ? sizeOfDaemon(options) : sizeOfText(arguments.wall);
  PatternBytes image{};
  putPattern(image, plan);
  if (svg.wanted()) svg.write(patternSvg(image, wall, "Test pattern: " + planText(plan)));
  Json fields = fieldsOf(plan, image);
  fields["wall"] = {wall.width, wall.height};
  options.print({fields, planText(plan) + '\n' + patternText(image, wall)});
}

void addKind(Verb& noun, const Options& options, const char* kind, const char* size, const char* text) {
  auto arguments = std::make_shared<PatternArguments>();
  arguments->kind = kind;
  noun.verb(kind, text)
      .operand(size, arguments->size, "Two numbers with an x between, in pixels")
      .option("--first", "X,Y", arguments->first, "First pixel of the pattern")
      .example(std::string("pattern ") + kind + " 8x8 --first 3,0")
      .run([&options, arguments] {
        load(options, patternPlan(arguments->kind, arguments->size, arguments->first));
      });
}

}  // namespace

void addPattern(Verb& root, const Options& options) {
  Verb& noun = root.verb("pattern", "Test patterns for checking a wall");
  noun.verb("off", "Show the picture again").run([&options] { load(options, {}); });
  addKind(noun, options, "pixels", "DXxDY", "Light single pixels at an interval");
  addKind(noun, options, "blocks", "WxH", "Light every other block, like a chessboard");
  auto arguments = std::make_shared<PatternArguments>();
  noun.verb("preview", "What the wall would show; nothing is sent")
      .operand("KIND", arguments->kind, "What is lit")
      .oneOf({"pixels", "blocks"})
      .operand("SIZE", arguments->size, "Interval or block, as in 64x32")
      .option("--first", "X,Y", arguments->first, "First pixel of the pattern")
      .option("--wall", "WxH", arguments->wall, "Pixels of the wall; without it the daemon's screen")
      .option("--svg", "FILE", arguments->svg, "Draw it into this file, too")
      .isFile()
      .example("pattern preview blocks 64x32 --first 100,-10 --wall 640x360")
      .run([&options, arguments] { preview(options, *arguments); });
}

}  // namespace parlctl
