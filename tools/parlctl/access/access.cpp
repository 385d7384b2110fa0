#include "access.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <memory>
#include <span>

#include "accessrequest.h"
#include "output.h"
#include "readback.h"
#include "registernames.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;
using peer::Frame;

std::string heading(const Frame& frame, std::size_t count) {
  const std::string name = targetName(frame);
  return hexAddress(frame.address) + (name.empty() ? "" : "  " + name) + ": " + countText(count, "byte");
}

std::string dumpLine(uint32_t address, std::span<const uint8_t> bytes) {
  constexpr std::size_t kColumns = 16;
  std::string line = "  " + hexAddress(address) + "  ";
  std::string text;
  for (std::size_t i = 0; i < kColumns; ++i) {
    line += i < bytes.size() ? peer::toHex(bytes.subspan(i, 1)) + ' ' : "   ";
    if (i < bytes.size()) text += std::isprint(bytes[i]) != 0 ? static_cast<char>(bytes[i]) : '.';
  }
  return line + "|" + text + "|";
}

std::string dump(uint32_t address, std::span<const uint8_t> bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 16)
    text += '\n' + dumpLine(address + static_cast<uint32_t>(i),
                            bytes.subspan(i, std::min<std::size_t>(16, bytes.size() - i)));
  return text;
}

Json object(const Frame& frame, std::size_t count) {
  Json fields{{"address", hexAddress(frame.address)}, {"name", targetName(frame)}};
  if (frame.deviceType != 0)
    fields.update({{"device_type", frame.deviceType}, {"port", frame.port}, {"card", frame.board}});
  fields["length"] = count;
  return fields;
}

// Runs through the requests; the failure of one says how many are behind it.
template <class Act>
void forEach(const std::vector<Access>& requests, Act act) {
  for (std::size_t i = 0; i < requests.size(); ++i) {
    try {
      act(requests[i]);
    } catch (const Error& error) {
      if (requests.size() == 1) throw;
      throw Error(error.failure(), std::string(error.what()) + " (request " + std::to_string(i + 1) + " of " +
                                       std::to_string(requests.size()) + "; those behind it are not sent)");
    }
  }
}

void readAll(const Options& options, const AccessArguments& arguments) {
  if (arguments.raw && options.json) throw Error(Failure::Usage, "--raw and --json exclude each other");
  const auto requests = readRequests(arguments);
  peer::Peer daemon = options.connect();
  forEach(requests, [&](const Access& access) {
    Bytes data;
    for (const Frame& piece : access.pieces) {
      const Bytes part = daemon.read(piece.address, piece.length, piece);
      data.insert(data.end(), part.begin(), part.end());
    }
    if (arguments.raw) return writeOutput({reinterpret_cast<const char*>(data.data()), data.size()});
    const Frame& first = access.pieces.front();
    Json fields = object(first, data.size());
    fields["data"] = peer::toHex(data);
    options.print({fields, heading(first, data.size()) + " read" + dump(first.address, data)});
  });
}

void writeAll(const Options& options, const AccessArguments& arguments) {
  const auto requests = writeRequests(arguments);
  peer::Peer daemon = options.connect();
  forEach(requests, [&](const Access& access) {
    for (const Frame& piece : access.pieces) daemon.request(piece);
    const Frame& first = access.pieces.front();
    Result result{object(first, access.size()), heading(first, access.size()) + " accepted",
                  Outcome::Accepted};
    for (const Frame& piece : access.pieces) {
      if (!arguments.verify) break;
      const Comparison seen = readBack(daemon, piece, options.patience());
      result.outcome = seen.outcome;
      result.fields["read_back"] = seen.text;
      if (&piece == &access.pieces.back() || seen.outcome != Outcome::Verified)
        result.text += "\n  " + seen.text;
      if (seen.outcome != Outcome::Verified) break;
    }
    options.print(result);
  });
}

// What read and write share: the items, and the card's place.
std::shared_ptr<AccessArguments> addItems(Verb& verb, const AccessNoun& noun, const char* items,
                                          const char* text) {
  auto arguments = std::make_shared<AccessArguments>();
  arguments->deviceType = noun.deviceType;
  verb.operands(items, arguments->items, text);
  noun.addDeviceType(verb, *arguments);
  verb.option("--port", "N", arguments->port, "Output port of the addressed card, 255: all");
  verb.option("--card", "N", arguments->card, "Place of the card behind its port, 65535: all");
  verb.flag("--force", arguments->force, "Send it although the address is on no map");
  return arguments;
}

}  // namespace

void addAccess(Verb& root, const Options& options, const AccessNoun& noun) {
  Verb& added = root.verb(noun.name, noun.description);

  Verb& read = added.verb("read", "Read registers, a request for each range");
  const auto wanted = addItems(read, noun, "RANGE",
                               "ADDRESS[:LENGTH]; length 1 when it is left out. More than a "
                               "register gives at once is asked for in pieces");
  read.flag("--raw", wanted->raw, "Print the bytes as they are, and nothing else");
  read.flag("--side-effect", wanted->sideEffect, "Read it although reading it does something");
  read.example(noun.readExample);
  read.run([&options, wanted] { readAll(options, *wanted); });

  Verb& write = added.verb("write", "Write registers, a request for each value");
  const auto given = addItems(write, noun, "VALUE",
                              "ADDRESS=HEX, bytes in ascending order; ADDRESS=@FILE, the bytes "
                              "of a file; ADDRESS=-, those of standard input");
  write.flag("--verify", given->verify,
             "Read it back, for --timeout but at least 5 s, until it is as written");
  if (noun.writeNote != nullptr) write.note(noun.writeNote);
  write.example(noun.writeExample);
  write.run([&options, given] { writeAll(options, *given); });
}

}  // namespace parlctl
