// gamma show, load, make: the tables that every pixel goes through.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>

#include "commands.h"
#include "inputfile.h"
#include "maps/gammamap.h"
#include "output.h"
#include "picturedaemon.h"
#include "progress.h"
#include "readback.h"

namespace parlctl {

namespace {

namespace map = ORVE_MCUC;
using peer::Bytes;
using peer::Error;
using peer::Failure;

constexpr std::size_t kSegment = 1024;
constexpr uint8_t kHdrMark = 0x5A;

bool isTenBit(const std::string& bank) {
  return bank == "10";
}

std::string exponentText(const GammaCurve& curve) {
  if (curve == builtInGamma()) return "the built-in curve";
  const double exponent = exponentOf(curve);
  if (exponent <= 0) return curve.back() == 0 ? "dark" : "no power law";
  char text[48];
  std::snprintf(text, sizeof text, "in the middle like exponent %.2f", exponent);
  return text;
}

std::string tableText(const GammaTables& tables) {
  const GammaCurve builtIn = builtInGamma();
  std::string text = "entry     red   green    blue   built-in";
  for (const std::size_t entry : {0, 512, 1024, 2048, 3072, 4095}) {
    char line[64];
    std::snprintf(line, sizeof line, "\n%5zu %7u %7u %7u %10u", entry, tables[0][entry], tables[1][entry],
                  tables[2][entry], builtIn[entry]);
    text += line;
  }
  for (std::size_t channel = 0; channel < tables.size(); ++channel)
    text += std::string("\n") + kChannelNames[channel] + ": " + exponentText(tables[channel]);
  return text;
}

Json jsonOf(const GammaTables& tables) {
  Json channels = Json::object();
  for (std::size_t channel = 0; channel < tables.size(); ++channel)
    channels[kChannelNames[channel]] = tables[channel];
  return channels;
}

struct ShowArguments {
  std::string bank = "12";
  std::string svg;
};

void show(const Options& options, const ShowArguments& arguments) {
  OutputFile svg(arguments.svg);
  peer::Peer daemon = options.connect();
  const GammaTables tables = readGamma(daemon, isTenBit(arguments.bank));
  const LoadedCurve curve = loadedCurve(daemon);
  if (svg.wanted())
    svg.write(gammaSvg("Gamma tables in the FPGA, " + arguments.bank + "-bit registers", tables));
  options.print({{{"bank", number(arguments.bank)},
                  {"hdr_loaded", curve.isHdr()},
                  {"built_in", tables == GammaTables{builtInGamma(), builtInGamma(), builtInGamma()}},
                  {"channels", jsonOf(tables)}},
                 tableText(tables) + (curve.isHdr() ? "\nHDR is on: these are its curves" : "")});
}

struct LoadArguments {
  std::string file;
  std::string bank = "12";
};

std::string textOfFile(const std::string& path) {
  constexpr std::size_t kLargest = 1 << 20;
  const Bytes bytes = fileBytes(path, kLargest);
  return {bytes.begin(), bytes.end()};
}

// The segment that ends a table makes it valid, and the last of a bank loads the FPGA: all go in order.
void send(peer::Peer& daemon, const GammaTables& tables, bool tenBit) {
  Progress progress("writing", tables.size() * map::kGammaTableBytes, map::kGammaTableBytes);
  for (std::size_t channel = 0; channel < tables.size(); ++channel) {
    const map::GammaTable& table = map::kGammaMap[channel + (tenBit ? tables.size() : 0)];
    const Bytes bytes = bytesOfGamma(tables[channel]);
    for (std::size_t at = 0; at < bytes.size(); at += kSegment) {
      const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
      daemon.write(table.first + static_cast<uint32_t>(at), Bytes(begin, begin + kSegment));
      progress.at(channel * map::kGammaTableBytes + at + kSegment);
    }
  }
}

// Whichever bank it is, the FPGA has it where the 12-bit registers read.
Comparison compareTables(peer::Peer& daemon, const GammaTables& wanted) {
  const GammaTables found = readGamma(daemon, false);
  for (std::size_t channel = 0; channel < wanted.size(); ++channel) {
    const auto [want, got] = std::ranges::mismatch(wanted[channel], found[channel]);
    if (want == wanted[channel].end()) continue;
    return {Outcome::Mismatch, std::string("mismatch: ") + kChannelNames[channel] + " entry " +
                                   std::to_string(want - wanted[channel].begin()) + ": written " +
                                   std::to_string(*want) + ", the FPGA has " + std::to_string(*got)};
  }
  return {Outcome::Verified, "verified: three tables of 4096 entries in the FPGA are as written"};
}

void load(const Options& options, const LoadArguments& arguments) {
  const GammaTables tables = gammaOfText(textOfFile(arguments.file), arguments.file);
  checkGamma(tables, arguments.file);
  const bool tenBit = isTenBit(arguments.bank);
  peer::Peer daemon = options.connect();
  const LoadedCurve before = loadedCurve(daemon);
  send(daemon, tables, tenBit);
  Comparison seen{Outcome::Accepted,
                  "accepted: HDR is on, so the tables are stored and not yet in the FPGA; see hdr off"};
  if (before.mark != kHdrMark)
    seen = lookUntil(options.patience(), [&] { return compareTables(daemon, tables); });
  if (before.mark != kHdrMark && (before.mark == map::kBank12Bit) == tenBit)
    seen.text += "\nby its mark the device has the other bit depth: hdr off loads the other bank";
  options.print({{{"bank", number(arguments.bank)}, {"bytes", 3 * map::kGammaTableBytes}},
                 arguments.bank + "-bit tables of " + arguments.file + '\n' + seen.text,
                 seen.outcome});
}

struct MakeArguments {
  std::string exponent;
  std::string peak = "10000";
  std::string to;
  std::string svg;
  bool pq = false;
  bool hlg = false;
};

double exponentOfText(const std::string& text) {
  double exponent = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
  if (error != std::errc{} || stop != text.data() + text.size() || !(exponent >= 0.1 && exponent <= 10))
    throw Error(Failure::Usage, '\'' + text + "' is not an exponent from 0.1 to 10");
  return exponent;
}

void make(const Options& options, const MakeArguments& arguments) {
  if ((arguments.exponent.empty() ? 0 : 1) + (arguments.pq ? 1 : 0) + (arguments.hlg ? 1 : 0) != 1)
    throw Error(Failure::Usage, "one of --exponent, --pq and --hlg says which curve");
  const double peak = fromOne(arguments.peak, 10000);
  const GammaCurve curve = arguments.pq    ? pqGamma(peak)
                           : arguments.hlg ? hlgGamma()
                                           : powerGamma(exponentOfText(arguments.exponent));
  const std::string name = arguments.pq    ? "PQ up to " + arguments.peak + " cd/m2"
                           : arguments.hlg ? std::string("HLG")
                                           : "exponent " + arguments.exponent;
  OutputFile to(arguments.to);
  OutputFile svg(arguments.svg);
  const std::string text = textOfGamma(curve);
  if (svg.wanted()) svg.write(gammaSvg("Gamma curve: " + name, {curve, curve, curve}));
  if (to.wanted()) to.write(text + '\n');
  options.print({{{"curve", name}, {"table", curve}},
                 arguments.to.empty() ? text : name + ": 4096 entries in " + arguments.to});
}

void addMake(Verb& gamma, const Options& options) {
  auto arguments = std::make_shared<MakeArguments>();
  gamma.verb("make", "A table of a known curve, as gamma load takes it")
      .option("--exponent", "X", arguments->exponent, "A power law from 0.1 to 10")
      .flag("--pq", arguments->pq, "Perceptual quantizer (SMPTE ST 2084)")
      .option("--peak", "N", arguments->peak, "Of --pq: cd/m2 at full scale, where the curve is cut")
      .flag("--hlg", arguments->hlg, "Hybrid log-gamma (ITU-R BT.2100), scene light")
      .option("--to", "FILE", arguments->to, "Write it into this file instead of printing it")
      .isFile()
      .option("--svg", "FILE", arguments->svg, "Draw it into this file, too")
      .isFile()
      .example("gamma make --exponent 2.2 --to gamma22.csv")
      .run([&options, arguments] { make(options, *arguments); });
}

}  // namespace

void addGamma(Verb& root, const Options& options) {
  Verb& gamma = root.verb("gamma", "The gamma tables that every pixel goes through");
  auto shown = std::make_shared<ShowArguments>();
  gamma.verb("show", "The tables of the three channels in the FPGA")
      .option("--bank", "BITS", shown->bank, "Registers of this bank")
      .oneOf({"10", "12"})
      .option("--svg", "FILE", shown->svg, "Draw them beside the built-in curve, too")
      .isFile()
      .note("Pixels go through the tables that the 12-bit registers read, whichever bank was loaded.")
      .example("gamma show --svg gamma.svg")
      .run([&options, shown] { show(options, *shown); });
  auto loaded = std::make_shared<LoadArguments>();
  gamma.verb("load", "Check tables, store them in a bank, and compare with the FPGA")
      .operand("FILE", loaded->file, "4096 numbers, or lines of red, green, blue, an entry in front or not")
      .isFile()
      .option("--bank", "BITS", loaded->bank, "Bank to store them in")
      .oneOf({"10", "12"})
      .note("A table has 4096 entries that never fall and run from 0 to 65535; others are not sent.")
      .example("gamma load gamma22.csv")
      .run([&options, loaded] { load(options, *loaded); });
  addMake(gamma, options);
}

}  // namespace parlctl
