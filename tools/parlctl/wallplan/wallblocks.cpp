#include "wallblocks.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace map = ORVE_MCUC;

constexpr std::size_t kMostText = 0x10000;

void parseLine(const std::string& line, AdvancedScreen& blocks, std::array<bool, map::kMappedPorts>& named) {
  std::istringstream words(line);
  std::string port;
  std::string size;
  std::string at;
  std::string place;
  std::string mode = std::string(kModeNames[0]);
  std::string more;
  words >> port;
  if (port.empty()) return;
  if (!port.ends_with(':') || !(words >> size >> at >> place) || at != "at")
    throw Error(Failure::Usage, "not 'PORT: ROWSxCOLUMNS at X,Y MODE'");
  words >> mode;
  if (words >> more) throw Error(Failure::Usage, "'" + more + "' is one word too many");
  const uint32_t number = parlctl::number(port.substr(0, port.size() - 1), map::kMappedPorts - 1);
  if (std::exchange(named[number], true))
    throw Error(Failure::Usage, "port " + std::to_string(number) + " for the second time");
  const auto [rows, columns] = product(size, 0xFF);
  const std::size_t comma = place.find(',');
  if (comma == std::string::npos) throw Error(Failure::Usage, "'" + place + "' is not X,Y");
  blocks[number] = {modeNumber(mode), static_cast<uint16_t>(rows), static_cast<uint16_t>(columns),
                    static_cast<uint16_t>(parlctl::number(place.substr(0, comma), 0xFFFF)),
                    static_cast<uint16_t>(parlctl::number(place.substr(comma + 1), 0xFFFF))};
}

std::string contentOf(std::istream& from) {
  std::string text(kMostText + 1, '\0');
  from.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(from.gcount()));
  return text;
}

}  // namespace

uint8_t modeNumber(const std::string& text) {
  const auto* name = std::find(kModeNames.begin(), kModeNames.end(), text);
  if (name != kModeNames.end()) return static_cast<uint8_t>(name - kModeNames.begin());
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
    throw Error(Failure::Usage, "'" + text + "' is no connection mode: they are 0 to 7, or names such as " +
                                    std::string(kModeNames[0]));
  return static_cast<uint8_t>(number(text, map::kConnectionModes - 1));
}

AdvancedScreen parseBlocks(const std::string& text) {
  AdvancedScreen blocks;
  blocks.fill({.mode = 0, .rows = 1, .columns = 1, .x = 0, .y = 0});  // what the daemon makes of no block
  std::array<bool, map::kMappedPorts> named{};
  std::istringstream lines(text);
  unsigned count = 0;
  for (std::string line; std::getline(lines, line);) {
    ++count;
    line.erase(std::min(line.find('#'), line.size()));
    try {
      parseLine(line, blocks, named);
    } catch (const Error& error) {
      throw Error(Failure::Usage, "line " + std::to_string(count) + ": " + error.what());
    }
  }
  if (std::ranges::none_of(named, [](bool known) { return known; }))
    throw Error(Failure::Usage, "no line names a port: '0: 2x3 at 0,0 top-left-rows'");
  return blocks;
}

AdvancedScreen readBlocks(const std::string& path) {
  std::string text;
  if (path == "-") {
    text = contentOf(std::cin);
  } else {
    std::ifstream file(path, std::ios::binary);
    if (file) text = contentOf(file);
    if (!file && text.empty())
      throw Error(Failure::Usage, "cannot read any lines of the file '" + path + "'");
  }
  if (text.size() > kMostText) throw Error(Failure::Usage, path + " is longer than 64 KiB");
  try {
    return parseBlocks(text);
  } catch (const Error& error) {
    throw Error(Failure::Usage, path + ": " + error.what());
  }
}

std::string blocksText(const WallPlan& plan) {
  std::string text;
  for (const WallPort& port : plan.used()) {
    const PixelBox box = plan.boxOf(port);
    text += std::to_string(port.port) + ": " + std::to_string(box.size.height / plan.card().height) + 'x' +
            std::to_string(box.size.width / plan.card().width) + " at " + std::to_string(port.offset.x) +
            ',' + std::to_string(port.offset.y) + ' ' + std::string(kModeNames[port.cable.mode]) + '\n';
  }
  return text;
}

}  // namespace parlctl
