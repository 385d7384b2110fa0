// reg read, reg write: registers of the sending card and of the cards behind its ports.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <memory>
#include <span>

#include "commands.h"
#include "registernames.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
using peer::Frame;

struct RegArguments {
  std::vector<std::string> items;
  std::string deviceType = "0";
  std::string port = "0";
  std::string card = "0";

  Frame target() const {
    Frame frame;
    frame.deviceType = static_cast<uint8_t>(number(deviceType, 0xFF));
    frame.port = static_cast<uint8_t>(number(port, 0xFF));
    frame.board = static_cast<uint16_t>(number(card, 0xFFFF));
    return frame;
  }
};

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
std::vector<Frame> requests(const RegArguments& arguments, Frame (*parse)(const std::string&, Frame)) {
  std::vector<Frame> frames;
  for (const std::string& item : arguments.items) frames.push_back(parse(item, arguments.target()));
  return frames;
}

// The name of a register of the sending card; other devices have no map.
std::string nameOf(const Frame& frame) {
  return frame.deviceType == 0 ? registerName(frame.address) : "";
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
  return {{"address", hexAddress(frame.address)}, {"name", nameOf(frame)}, {"length", count}};
}

void readAll(const Options& options, const RegArguments& arguments) {
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

void writeAll(const Options& options, const RegArguments& arguments) {
  const auto frames = requests(arguments, &writeRequest);
  peer::Peer daemon = options.connect(peer::toolServiceCode());
  for (const Frame& frame : frames) {
    daemon.request(frame);
    print(options, object(frame, frame.data.size()), heading(frame, "written", frame.data.size()));
  }
}

void addTarget(CLI::App& verb, const std::shared_ptr<RegArguments>& arguments) {
  verb.add_option("--device-type", arguments->deviceType,
                  "0 sending card, 1 receiving card, 2 multi-function card, 3 distribution, 4 3D launcher")
      ->capture_default_str();
  verb.add_option("--port", arguments->port, "Output port of the addressed card, 255: all")
      ->capture_default_str();
  verb.add_option("--card", arguments->card, "Place of the card behind its port, 65535: all")
      ->capture_default_str();
}

}  // namespace

void addReg(CLI::App& app, const Options& options) {
  CLI::App* reg = app.add_subcommand("reg", "Read and write registers");
  reg->require_subcommand(1);

  auto arguments = std::make_shared<RegArguments>();
  CLI::App* read = reg->add_subcommand("read", "Read registers, one request for each range");
  read->add_option("ranges", arguments->items, "ADDRESS[:LENGTH]; length 1 when it is left out")->required();
  read->footer("Example: parlctl reg read 0x02100000:16 0x02300010:4");
  addTarget(*read, arguments);
  read->callback([&options, arguments] { readAll(options, *arguments); });

  arguments = std::make_shared<RegArguments>();
  CLI::App* write = reg->add_subcommand("write", "Write registers, one request for each value");
  write->add_option("values", arguments->items, "ADDRESS=HEX, bytes in ascending order")->required();
  write->footer("Example: parlctl reg write 0x02300010=01020304");
  addTarget(*write, arguments);
  write->callback([&options, arguments] { writeAll(options, *arguments); });
}

}  // namespace parlctl
