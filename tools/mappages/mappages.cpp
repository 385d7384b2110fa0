#include "mappages/mappages.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string_view>

#include "maps/flashmap.h"
#include "maps/registers.h"
#include "maps/spaces.h"
#include "maps/workkeys.h"

namespace mappages {
namespace {

using namespace ORVE_MCUC;

constexpr std::string_view kDoNotEdit =
    "<!-- Printed by parlend_mappages from src/maps; a test compares. Change the tables, not this page. "
    "-->\n\n";

std::string hex(uint32_t value, int digits = 8) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%0*X", digits, value);
  return text.data();
}

std::string line(std::initializer_list<std::string> cells) {
  std::string text = "|";
  for (const auto& cell : cells) text += ' ' + cell + (cell.empty() ? "|" : " |");
  return text + '\n';
}

std::string heading(std::initializer_list<std::string> titles) {
  std::string text = line(titles) + '|';
  for (std::size_t i = 0; i < titles.size(); ++i) text += "---|";
  return text + '\n';
}

std::string access(int32_t mask) {
  if (mask == kReadWrite) return "read, write";
  if (mask == kMayRead) return "read";
  return mask == kMayWrite ? "write" : "none";
}

// What one request to a space may carry; all commands may carry the same.
std::string lengths(const SpaceRow& space) {
  const OffsetRow& row = space.base == reg::kCommand ? kCommands[0] : space.offset;
  if (row.name == nullptr) return "";
  return std::to_string(row.limits.cmdLenMin) + ".." + std::to_string(row.limits.cmdLenMax);
}

std::string spaces() {
  std::string text =
      "## Spaces\n\n"
      "A request belongs to the space whose range holds its address. Length: what one request may carry.\n"
      "Access: reads that answer with data, writes that do something; the rest is accepted and ignored.\n\n" +
      heading({"Base", "Range", "Space", "Length", "Access", "What any read does", "Served by"});
  for (const auto& row : kSpaces) {
    text += line({hex(row.base), row.width == kWide ? "16 MiB" : "64 KiB", std::string(row.title),
                  lengths(row), access(row.serves), std::string(row.reading), std::string(row.owner)});
  }
  return text;
}

std::string registers() {
  std::string text = "\n## Registers\n\nA write is stored, and then does what is said.\n\n" +
                     heading({"Address", "Bytes", "Register", "What a write does"});
  for (const auto& row : kRegisters) {
    text +=
        line({hex(row.address), std::to_string(row.length), std::string(row.name), std::string(row.writing)});
  }
  return text;
}

std::string pushes() {
  std::string text = "\n## Registers that only pushes name\n\n" + heading({"Address", "Bytes", "Register"});
  for (const auto& row : kPushedRegisters) {
    text += line({hex(row.address), std::to_string(row.length), std::string(row.name)});
  }
  return text;
}

std::string effects() {
  std::string text =
      "\n## Reads that do something\n\n" + heading({"Address", "Bytes", "What reading them does"});
  for (const auto& row : kReadEffects) {
    text +=
        line({hex(row.address), row.length == 0 ? "any" : std::to_string(row.length), std::string(row.text)});
  }
  return text;
}

std::string readDifferences() {
  std::string text =
      "\n## Reads that do not give what was written\n\n"
      "In the human-computer interaction space reads of 0x117, 0x129 and 0x12E look at the low 12 bits of "
      "the\n"
      "address only, writes at all 16.\n\n" +
      heading({"Address", "Bytes", "What a read gives"});
  for (const auto& row : kReadDifferences) {
    text +=
        line({hex(row.address), row.length == 0 ? "any" : std::to_string(row.length), std::string(row.text)});
  }
  return text;
}

std::string workKeys() {
  std::string text = "\n## Deferred work\n\nWhat a space queues under a key, the handler does later.\n\n" +
                     heading({"Key", "Name", "Handler"});
  for (const auto& row : kWorkKeys) {
    text += line({std::to_string(row.key), std::string(row.name), std::string(row.handler)});
  }
  return text;
}

std::string windows() {
  std::string text = "\n## Windows of the register spaces\n\nRegister first + n is flash address + n.\n\n" +
                     heading({"First register", "Space", "Flash", "Bytes"});
  for (const auto& row : flash::kWindows) {
    const SpaceRow* space = findSpace(reg::routerKey(row.base));
    text += line({hex(row.base), std::string(space->title), hex(row.flash, 6), std::to_string(row.length)});
  }
  return text;
}

}  // namespace

std::string registersPage() {
  return std::string(kDoNotEdit) + "# Registers of the sending card\n\n" + spaces() + registers() + pushes() +
         effects() + readDifferences() + workKeys();
}

std::string flashPage() {
  std::string text = std::string(kDoNotEdit) + "# The parameter flash\n\n" +
                     "Byte addresses; indented names are fields of the area above them.\n\n" +
                     heading({"Address", "Bytes", "Area", "What lies there"});
  for (const auto& area : flash::kAreas) {
    text += line({hex(area.address, 6), std::to_string(area.length),
                  (area.isField ? "&nbsp;&nbsp;" : "") + std::string(area.name), std::string(area.holds)});
  }
  return text + windows();
}

}  // namespace mappages
