// hwinfo show, hwinfo set: serial number, model and network address of the card.
#include <algorithm>
#include <cctype>
#include <memory>
#include <span>

#include "commands.h"
#include "maps/registermap.h"
#include "readback.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
namespace reg = ORVE_MCUC::reg;

constexpr std::size_t kPage = 256;

// A part of the page as people write it. The card takes a serial number from a whole page alone, and a
// network address with its reserved byte before it.
struct Part {
  std::string_view name;
  uint32_t at;
  std::size_t size;
  char separator;  // between bytes; 0: none
  bool wholePage;
  std::size_t before;  // reserved bytes ahead
};
constexpr Part kParts[] = {
    {"model", 2, 2, 0, false, 0},
    {"serial", 0x16, 8, 0, true, 0},
    {"mac", 0x3E, 6, ':', false, 1},
};

std::string partText(const Part& part, std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    if (part.separator != 0 && !text.empty()) text += part.separator;
    text += peer::toHex(std::span(&byte, 1));
  }
  return text;
}

Bytes partBytes(const Part& part, std::string text) {
  const std::string given = text;
  if (part.separator != 0) std::erase(text, part.separator);
  const bool digits =
      std::ranges::all_of(text, [](unsigned char letter) { return std::isxdigit(letter) != 0; });
  if (!digits || text.size() != 2 * part.size)
    throw Error(Failure::Usage, "'" + given + "' is no " + std::string(part.name) + ": " +
                                    std::to_string(2 * part.size) + " hexadecimal digits are wanted");
  const Bytes bytes = peer::fromHex(text);
  if (part.name == "mac" && (bytes[0] & 1) != 0)
    throw Error(Failure::Usage, "'" + given + "' is the address of a group, not of a device");
  return bytes;
}

// A read over the whole of model or serial number gives the environment's; in halves it gives the flash's.
Bytes readStored(peer::Peer& daemon, const Part& part) {
  if (part.name == "model") return {daemon.read(1, 2)[1], daemon.read(3, 2)[0]};
  return daemon.read(reg::kHwBasicInfo + part.at, part.size);
}

void show(const Options& options) {
  peer::Peer daemon = options.connect();
  const Bytes page = daemon.read(reg::kHwBasicInfo, kPage);
  Json fields = Json::object();
  std::string text;
  for (const Part& part : kParts) {
    const std::string value = partText(part, std::span(page).subspan(part.at, part.size));
    fields[std::string(part.name)] = value;
    std::string title(part.name);
    title.resize(9, ' ');
    text += (text.empty() ? "" : "\n") + title + value;
  }
  options.print({fields, text});
}

void send(peer::Peer& daemon, const Part& part, const Bytes& bytes) {
  if (!part.wholePage) {
    Bytes data(part.before, 0);
    data.insert(data.end(), bytes.begin(), bytes.end());
    return daemon.write(reg::kHwBasicInfo + part.at - static_cast<uint32_t>(part.before), data);
  }
  Bytes page = daemon.read(reg::kHwBasicInfo, kPage);
  std::ranges::copy(bytes, page.begin() + part.at);
  daemon.write(reg::kHwBasicInfo, page);
}

struct HwinfoArguments {
  std::string what;
  std::string value;
};

void set(const Options& options, const HwinfoArguments& arguments) {
  const Part& part = *std::ranges::find(kParts, arguments.what, &Part::name);
  const Bytes bytes = partBytes(part, arguments.value);
  peer::Peer daemon = options.connect();
  send(daemon, part, bytes);
  const Comparison seen =
      lookUntil(options.patience(), [&] { return compareBytes(part.at, bytes, readStored(daemon, part)); });
  const std::string value = partText(part, bytes);
  const bool good = seen.outcome == Outcome::Verified;
  options.print({{{"name", part.name}, {"value", value}},
                 good ? "verified: " + arguments.what + " " + value : seen.text,
                 seen.outcome});
}

}  // namespace

void addHwinfo(Verb& root, const Options& options) {
  Verb& noun = root.verb("hwinfo", "Serial number, model and network address of the card");
  noun.verb("show", "What the card says of itself").run([&options] { show(options); });
  const auto given = std::make_shared<HwinfoArguments>();
  noun.verb("set", "Give it another one")
      .operand("WHAT", given->what, "What is set")
      .oneOf({"serial", "model", "mac"})
      .operand("VALUE", given->value, "16 or 4 hexadecimal digits, or six bytes with : between")
      .note(
          "A network address holds from the next start of the device; what 'show' says of the model is "
          "the environment's")
      .example("hwinfo set mac 02:00:00:00:00:01")
      .run([&options, given] { set(options, *given); });
}

}  // namespace parlctl
