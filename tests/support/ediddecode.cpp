#include "support/ediddecode.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <regex>
#include <stdexcept>

namespace edid_decode {
namespace {

std::string outputOf(const std::string& arguments) {
  const std::string command = "edid-decode " + arguments + " 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
  if (!pipe) throw std::runtime_error("no pipe to " + command);
  std::string text;
  std::array<char, 4096> part{};
  while (const std::size_t n = std::fread(part.data(), 1, part.size(), pipe.get())) {
    text.append(part.data(), n);
  }
  return text;
}

// The timings that a text tells, each on one line or on three.
std::vector<Timing> timingsOf(const std::string& text) {
  static const std::regex line(
      R"(((?:DMT|VIC|CVT|DTD)[^:\n]*):\s+(\d+)x(\d+)(i?)\s+([\d.]+) Hz\s+\S+\s+([\d.]+) kHz\s+([\d.]+) MHz[^\n]*)"
      R"((?:\n\s+Hfront\s+(\d+) Hsync\s+(\d+) Hback\s+(\d+) Hpol (\w)(?: Hborder (\d+))?)"
      R"(\s*\n\s+Vfront\s+(\d+) Vsync\s+(\d+) Vback\s+(\d+) Vpol (\w)(?: Vborder (\d+))?)?)");
  std::vector<Timing> timings;
  for (std::sregex_iterator at(text.begin(), text.end(), line), end; at != end; ++at) {
    const auto number = [&m = *at](std::size_t n) { return m.length(n) == 0 ? 0 : std::stoi(m[n]); };
    const auto real = [&m = *at](std::size_t n) { return std::stod(m[n]); };
    Timing t{.name = (*at)[1], .width = number(2), .height = number(3)};
    t.interlaced = (*at)[4] == "i";
    t.hertz = real(5);
    t.kilohertz = real(6);
    t.megahertz = real(7);
    t.hFront = number(8) + number(12);
    t.hSync = number(9);
    t.hBack = number(10) + number(12);
    t.hPositive = (*at)[11] == "P";
    t.vFront = number(13) + number(17);
    t.vSync = number(14);
    t.vBack = number(15) + number(17);
    t.vPositive = (*at)[16] == "P";
    timings.push_back(t);
  }
  return timings;
}

std::optional<Timing> firstOf(const std::string& text) {
  const auto timings = timingsOf(text);
  return timings.empty() ? std::nullopt : std::optional(timings.front());
}

}  // namespace

bool isInstalled() {
  static const bool installed = outputOf("--version").starts_with("edid-decode SHA");
  return installed;
}

std::vector<Timing> listDmts() {
  return timingsOf(outputOf("--list-dmts"));
}
std::vector<Timing> listVics() {
  return timingsOf(outputOf("--list-vics"));
}

std::optional<Timing> timing(const Timing& listed) {
  const bool isDmt = listed.name.starts_with("DMT");
  return firstOf(outputOf((isDmt ? "--dmt " : "--vic ") + listed.name.substr(4)));
}

std::optional<Timing> cvt(int width, int height, double hertz, bool reducedBlanking) {
  return firstOf(outputOf("--cvt w=" + std::to_string(width) + ",h=" + std::to_string(height) +
                          ",fps=" + std::to_string(hertz) + ",rb=" + (reducedBlanking ? "1" : "0")));
}

Verdict judge(std::span<const uint8_t> edid) {
  std::array<char, 32> name{"/tmp/edid-XXXXXX"};
  const int fd = mkstemp(name.data());
  if (fd < 0) throw std::runtime_error("no temporary file");
  close(fd);
  std::ofstream(name.data(), std::ios::binary)
      .write(reinterpret_cast<const char*>(edid.data()), static_cast<std::streamsize>(edid.size()));
  Verdict verdict;
  verdict.text = outputOf("--check --skip-hex-dump " + std::string(name.data()));
  unlink(name.data());
  verdict.conformant = verdict.text.find("EDID conformity: PASS") != std::string::npos;
  verdict.first = firstOf(verdict.text);
  return verdict;
}

}  // namespace edid_decode
