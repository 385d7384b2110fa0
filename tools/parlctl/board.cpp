// board: the simulated board's directory; none of its verbs needs a running daemon.
#include <filesystem>
#include <fstream>
#include <memory>

#include "board_conf.h"
#include "commands.h"

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
using peer::Medium;
namespace fs = std::filesystem;

struct BoardArguments {
  std::string directory;
  std::string ports;
  std::string state;
  std::string fault;
  std::string count;
  bool copper = false;
  bool fiber1 = false;
  bool fiber2 = false;
};

fs::path confPath(const fs::path& board) {
  return board / "board.conf";
}

void initialise(const Options& options, const BoardArguments& arguments) {
  const fs::path board = arguments.directory.empty() ? options.boardDirectory : arguments.directory;
  const bool existed = fs::exists(confPath(board));
  if (!existed) {
    std::error_code error;
    fs::create_directories(board, error);
    std::ofstream conf(confPath(board));
    conf << simboard::kDefaultConf << std::flush;
    if (!conf) throw Error(Failure::Board, "cannot write " + confPath(board).string());
  }
  options.print(
      {{{"board", board.string()}, {"created", !existed}},
       board.string() + (existed ? " is a board already; nothing changed"
                                 : ": a board with the defaults; edit " + confPath(board).string())});
}

std::vector<std::string> pluggedIn(const fs::path& board) {
  std::ifstream conf(confPath(board));
  if (!conf) throw Error(Failure::Board, "no board at " + board.string() + " (parlctl board init makes one)");
  std::vector<std::string> lines;
  for (std::string line; std::getline(conf, line);) {
    line.erase(std::min(line.find('#'), line.size()));
    line.erase(line.find_last_not_of(" \t\r") + 1);
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::vector<unsigned> portsWithLink(const peer::Board& board, Medium medium) {
  std::vector<unsigned> ports;
  for (unsigned port = 0; port < peer::kPorts; ++port)
    if (board.link(port, medium)) ports.push_back(port);
  return ports;
}

// The identity the daemon's message service gave; 0: nobody serves the board.
uint32_t daemonIdentity(const Options& options) {
  try {
    return options.connect(peer::toolServiceCode()).taskId();
  } catch (const Error&) {
    return 0;
  }
}

Json hardware(const peer::Board& board) {
  Json faults = Json::object();
  for (unsigned i = 0; i < peer::kFaultNames.size(); ++i)
    if (const uint32_t count = board.fault(i); count != 0) faults[std::string(peer::kFaultNames[i])] = count;
  return {{"links",
           {{"copper", portsWithLink(board, Medium::Copper)},
            {"fiber1", portsWithLink(board, Medium::Fiber1)},
            {"fiber2", portsWithLink(board, Medium::Fiber2)}}},
          {"faults", faults},
          {"clock_offset", board.clockOffset()}};
}

// A fault counter that never runs out has a name.
std::string faultWords(Json faults) {
  for (Json& count : faults) {
    if (count == peer::kAlways) count = "always";
  }
  return faults.empty() ? "none" : words(faults);
}

std::string boardText(const Json& shown) {
  std::string text = "board    " + shown["board"].get<std::string>() + "\ndaemon   " +
                     (shown["daemon"].get<bool>() ? "answers" : "does not answer");
  if (shown["powered"].get<bool>())
    text += "\nlinks    " + words(shown["links"]) + "\nfaults   " + faultWords(shown["faults"]) +
            "\nclock    " + shown["clock_offset"].dump() + " s from this machine's";
  else
    text += "\npower    never switched on";
  text += "\nplugged in";
  for (const Json& line : shown["plugged_in"]) text += "\n  " + line.get<std::string>();
  return text;
}

void showBoard(const Options& options) {
  const peer::Board board = options.board();
  Json shown{{"board", board.directory().string()},
             {"daemon", daemonIdentity(options) != 0},
             {"powered", board.hasHardware()},
             {"plugged_in", pluggedIn(board.directory())}};
  if (board.hasHardware()) shown.update(hardware(board));
  options.print({shown, boardText(shown)});
}

void link(const Options& options, const BoardArguments& arguments) {
  const Medium medium = arguments.fiber1   ? Medium::Fiber1
                        : arguments.fiber2 ? Medium::Fiber2
                                           : Medium::Copper;
  const auto ports = portList(arguments.ports);
  const peer::Board board = options.board();
  for (const unsigned port : ports) board.setLink(port, medium, arguments.state == "on");
  const Json links = hardware(board)["links"];
  options.print({{{"links", links}}, "links    " + words(links)});
}

void fault(const Options& options, const BoardArguments& arguments) {
  const auto index = peer::faultIndex(arguments.fault);
  const uint32_t count = arguments.count == "always" ? peer::kAlways : number(arguments.count);
  const peer::Board board = options.board();
  board.setFault(*index, count);
  const Json faults = hardware(board)["faults"];
  options.print({{{"faults", faults}}, "faults   " + faultWords(faults)});
}

void addLink(Verb& board, const Options& options) {
  auto arguments = std::make_shared<BoardArguments>();
  Verb& verb = board.verb("link", "Plug and unplug the links of output ports");
  verb.operand("PORTS", arguments->ports, "Numbers and ranges from 0 to 15, separated by commas");
  verb.operand("STATE", arguments->state, "What to do").oneOf({"on", "off"});
  verb.flag("--copper", arguments->copper, "An Ethernet link (the default)");
  verb.flag("--fiber1", arguments->fiber1, "Through fiber path 1").excludes({"--copper"});
  verb.flag("--fiber2", arguments->fiber2, "Through fiber path 2").excludes({"--copper", "--fiber1"});
  verb.example("board link 0-3,7 --fiber1 on");
  verb.run([&options, arguments] { link(options, *arguments); });
}

void addFault(Verb& board, const Options& options) {
  auto arguments = std::make_shared<BoardArguments>();
  Verb& verb = board.verb("fault", "Let the next calls of a kind fail");
  verb.operand("KIND", arguments->fault, "What fails")
      .oneOf({peer::kFaultNames.begin(), peer::kFaultNames.end()});
  verb.operand("COUNT", arguments->count, "How many calls; 0: none, always: all of them");
  verb.example("board fault flash-read 3");
  verb.run([&options, arguments] { fault(options, *arguments); });
}

}  // namespace

void addBoard(Verb& root, const Options& options) {
  Verb& board = root.verb("board", "Look at the simulated board and change what is plugged in");

  auto arguments = std::make_shared<BoardArguments>();
  Verb& init = board.verb("init", "Create a board directory with the defaults");
  init.optionalOperand("DIR", arguments->directory, "Where; without it, the board of --board").isFile();
  init.run([&options, arguments] { initialise(options, *arguments); });

  board.verb("show", "What is plugged in, linked and failing, and whether the daemon answers")
      .run([&options] { showBoard(options); });

  addLink(board, options);
  addFault(board, options);
}

}  // namespace parlctl
