// test fpga: the pattern test of the road to the FPGA.
#include <memory>

#include "cardfeatures.h"
#include "commands.h"
#include "maps/fpgamap.h"
#include "maps/registermap.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
constexpr uint32_t kTestSwitch = fpga::kOutputHeight + 1;

// The switch is the high byte of the output height, which is written again behind it.
void run(const Options& options, const std::string& word) {
  const uint8_t state = word == "start" ? 1 : 0;
  peer::Peer daemon = options.connect();
  const Feature& height = featureAt(fpga::kOutputHeight);
  const peer::Bytes before = readFeature(daemon, height);
  daemon.write(ORVE_MCUC::reg::ofFeature(kTestSwitch), {state});
  const Result kept = setFeature(options, daemon, height, before);
  const bool good = kept.outcome == Outcome::Verified;
  std::string text = state != 0 ? "accepted: the test runs" : "accepted: the test ends";
  text += good ? ", and the output height is as it was" : "\n" + kept.text;
  options.print({{{"test", "fpga"}, {"state", word}, {"output_height", kept.fields["value"]}},
                 text,
                 good ? Outcome::Accepted : kept.outcome});
}

}  // namespace

void addTest(Verb& root, const Options& options) {
  const auto word = std::make_shared<std::string>();
  Verb& noun = root.verb("test", "Tests that the card runs on itself");
  noun.verb("fpga", "Write patterns to the FPGA and read them back, until it is stopped")
      .operand("WHAT", *word, "What to do")
      .oneOf({"start", "stop"})
      .note(
          "The result is in the card's log. The patterns overwrite the port tables, which 'reload' brings "
          "back. "
          "The switch shares a byte with the output height, which is wrong for a moment")
      .example("test fpga start")
      .run([&options, word] { run(options, *word); });
}

}  // namespace parlctl
