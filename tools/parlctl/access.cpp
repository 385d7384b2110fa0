#include "access.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <memory>
#include <span>

#include "registernames.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
using peer::Frame;

Frame target(const AccessArguments& arguments) {
  Frame frame;
  frame.deviceType = static_cast<uint8_t>(number(arguments.deviceType, 0xFF));
  frame.port = static_cast<uint8_t>(number(arguments.port, 0xFF));
  frame.board = static_cast<uint16_t>(number(arguments.card, 0xFFFF));
  return frame;
}

Frame readRequest(const std::string& item, Frame frame) {
  const std::size_t colon = item.find(':');
  const uint32_t length = colon == std::string::npos ? 1 : number(item.substr(colon + 1), peer::kMaxData);
  frame.code = peer::kRead;
  frame.address = number(item.substr(0, colon));
  frame.length = static_cast<uint16_t>(length);
  return frame;
}

Frame writeRequest(const std::string& item, Frame frame) {
  const std::size_t equals = item.find('=');
  if (equals == std::string::npos || equals + 1 == item.size())
    throw Error(Failure::Usage, "not ADDRESS=HEX: '" + item + "'");
  frame.code = peer::kWrite;
  frame.address = number(item.substr(0, equals));
  frame.data = peer::fromHex(item.substr(equals + 1));
  if (frame.data.size() > peer::kMaxData)
    throw Error(Failure::Usage, "a write carries at most " + std::to_string(peer::kMaxData) + " bytes");
  frame.length = static_cast<uint16_t>(frame.data.size());
  return frame;
}

// All of the requests are understood before the first is sent.
std::vector<Frame> requests(const AccessArguments& arguments, Frame (*parse)(const std::string&, Frame)) {
  std::vector<Frame> frames;
  for (const std::string& item : arguments.items) frames.push_back(parse(item, target(arguments)));
  return frames;
}

std::string numbered(const std::string& noun, unsigned number, unsigned all) {
  return number == all ? "all " + noun + 's' : noun + ' ' + std::to_string(number);
}

// The name of a register of the sending card; registers of other cards have none, so there it is the card.
std::string nameOf(const Frame& frame) {
  constexpr const char* kCards[] = {"receiving card", "multi-function card", "distribution card",
                                    "3D launcher"};
  if (frame.deviceType == 0) return registerName(frame.address);
  const unsigned kind = frame.deviceType - 1U;
  return numbered(kind < std::size(kCards) ? kCards[kind] : "card", frame.board, 0xFFFF) + " of " +
         numbered("port", frame.port, 0xFF);
}

std::string heading(const Frame& frame, const char* done, std::size_t count) {
  const std::string name = nameOf(frame);
  return hexAddress(frame.address) + (name.empty() ? "" : "  " + name) + ": " + std::to_string(count) +
         " byte" + (count == 1 ? " " : "s ") + done;
}

std::string dumpLine(uint32_t address, std::span<const uint8_t> bytes) {
  constexpr std::size_t kColumns = 16;
  std::string line = "  " + hexAddress(address) + " ";
  std::string text;
  for (std::size_t i = 0; i < kColumns; ++i) {
    if (i % 8 == 0) line += ' ';
    line += i < bytes.size() ? peer::toHex(bytes.subspan(i, 1)) + ' ' : "   ";
    if (i < bytes.size()) text += std::isprint(bytes[i]) != 0 ? static_cast<char>(bytes[i]) : '.';
  }
  return line + " |" + text + "|";
}

std::string dump(uint32_t address, std::span<const uint8_t> bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 16)
    text += '\n' + dumpLine(address + static_cast<uint32_t>(i),
                            bytes.subspan(i, std::min<std::size_t>(16, bytes.size() - i)));
  return text;
}

Json object(const Frame& frame, std::size_t count) {
  Json fields{{"address", hexAddress(frame.address)}, {"name", nameOf(frame)}};
  if (frame.deviceType != 0)
    fields.update({{"device_type", frame.deviceType}, {"port", frame.port}, {"card", frame.board}});
  fields["length"] = count;
  return fields;
}

void readAll(const Options& options, const AccessArguments& arguments) {
  const auto frames = requests(arguments, &readRequest);
  peer::Peer daemon = options.connect(peer::toolServiceCode());
  for (const Frame& frame : frames) {
    const Bytes data = daemon.request(frame).data;
    Json line = object(frame, data.size());
    line["data"] = peer::toHex(data);
    print(options, line, heading(frame, "read", data.size()) + dump(frame.address, data));
    if (data.size() < frame.length)
      throw Error(Failure::ShortReply, "short reply at " + hexAddress(frame.address) + ": " +
                                           std::to_string(data.size()) + " of " +
                                           std::to_string(frame.length) + " bytes");
  }
}

void writeAll(const Options& options, const AccessArguments& arguments) {
  const auto frames = requests(arguments, &writeRequest);
  peer::Peer daemon = options.connect(peer::toolServiceCode());
  for (const Frame& frame : frames) {
    daemon.request(frame);
    print(options, object(frame, frame.data.size()), heading(frame, "written", frame.data.size()));
  }
}

// One verb; the options of a card's place are the same for all.
void addVerb(CLI::App& verb, const Options& options, const AccessNoun& noun, const char* items,
             const char* itemsText, void (*act)(const Options&, const AccessArguments&)) {
  auto arguments = std::make_shared<AccessArguments>();
  arguments->deviceType = noun.deviceType;
  verb.add_option(items, arguments->items, itemsText)->required();
  noun.addDeviceType(verb, *arguments);
  verb.add_option("--port", arguments->port, "Output port of the addressed card, 255: all")
      ->capture_default_str();
  verb.add_option("--card", arguments->card, "Place of the card behind its port, 65535: all")
      ->capture_default_str();
  verb.callback([&options, arguments, act] { act(options, *arguments); });
}

}  // namespace

void addAccess(CLI::App& app, const Options& options, const AccessNoun& noun) {
  CLI::App* added = app.add_subcommand(noun.name, noun.description);
  added->require_subcommand(1);
  CLI::App* read = added->add_subcommand("read", "Read registers, one request for each range");
  addVerb(*read, options, noun, "ranges", "ADDRESS[:LENGTH]; length 1 when it is left out", &readAll);
  read->footer(noun.readFooter);
  CLI::App* write = added->add_subcommand("write", "Write registers, one request for each value");
  addVerb(*write, options, noun, "values", "ADDRESS=HEX, bytes in ascending order", &writeAll);
  write->footer(noun.writeFooter);
}

}  // namespace parlctl
