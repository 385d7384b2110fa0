// board: the simulated board's directory; none of its verbs needs a running daemon.
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <tuple>
#include <utility>

#include "board_conf.h"
#include "commands.h"
#include "helptext.h"

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
  std::string after;
  std::string range;
  std::string torn;
  std::string shift;
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

// Counters that are not zero: as numbers, or in words with what must pass first and where.
Json faultsOf(const peer::Board& board, bool inWords) {
  Json faults = Json::object();
  for (unsigned i = 0; i < peer::kFaultNames.size(); ++i) {
    const peer::FaultPlan plan = board.faultPlan(i);
    if (plan.count == 0) continue;
    std::string text = plan.count == peer::kAlways ? "always" : std::to_string(plan.count);
    if (plan.after != 0) text += " after " + std::to_string(plan.after);
    if (plan.last != 0) text += " in " + hexAddress(plan.first) + '-' + hexAddress(plan.last);
    faults[std::string(peer::kFaultNames[i])] = inWords ? Json(text) : Json(plan.count);
  }
  return faults;
}

std::string faultWords(const peer::Board& board) {
  const Json faults = faultsOf(board, true);
  return faults.empty() ? "none" : words(faults);
}

std::string powerCutText(const peer::PowerCut& cut) {
  if (cut.atWrite == 0) return "none";
  const std::string done = cut.done == 0   ? "nothing of it done"
                           : cut.done == 1 ? "all of it done"
                                           : countText(cut.sectors, "sector") + " of it done";
  return "at flash write " + std::to_string(cut.atWrite) + " from now, " + done;
}

// Null when the board is off.
Json linksOf(const peer::Board& board) {
  if (!board.isOn()) return nullptr;
  return {{"copper", portsWithLink(board, Medium::Copper)},
          {"fiber1", portsWithLink(board, Medium::Fiber1)},
          {"fiber2", portsWithLink(board, Medium::Fiber2)}};
}

Json hardware(const peer::Board& board) {
  return {{"links", linksOf(board)},
          {"faults", faultsOf(board, false)},
          {"fault_plans", faultsOf(board, true)},
          {"power_cut", powerCutText(board.powerCut())},
          {"clock_offset", board.clockOffset()}};
}

std::string boardText(const Json& shown) {
  std::string text = "board    " + shown["board"].get<std::string>() + "\ndaemon   " +
                     (shown["daemon"].get<bool>() ? "answers" : "does not answer");
  if (shown["powered"].get<bool>())
    text +=
        "\n" +
        wrapped("links    " + (shown["links"].is_null() ? "none, the board is off" : words(shown["links"])) +
                    "\nfaults   " + (shown["fault_plans"].empty() ? "none" : words(shown["fault_plans"])),
                9) +
        "\npower    cut: " + shown["power_cut"].get<std::string>() + "\nclock    " +
        shown["clock_offset"].dump() + " s from this machine's";
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

// What follows needs the board's control page, which its first start makes.
peer::Board poweredBoard(const Options& options) {
  const peer::Board board = options.board();
  if (!board.hasHardware())
    throw Error(Failure::Board, "the board " + board.directory().string() +
                                    " has never been switched on: start the daemon on it once");
  return board;
}

void link(const Options& options, const BoardArguments& arguments) {
  const Medium medium = arguments.fiber1   ? Medium::Fiber1
                        : arguments.fiber2 ? Medium::Fiber2
                                           : Medium::Copper;
  const auto ports = portList(arguments.ports);
  const peer::Board board = poweredBoard(options);
  if (!board.isOn())
    throw Error(Failure::Board, "the board is off: its next start makes the links as board.conf has them");
  for (const unsigned port : ports) board.setLink(port, medium, arguments.state == "on");
  const Json links = linksOf(board);
  options.print({{{"links", links}}, wrapped("links    " + words(links), 9)});
}

void fault(const Options& options, const BoardArguments& arguments) {
  const auto index = peer::faultIndex(arguments.fault);
  peer::FaultPlan plan{.count = arguments.count == "always" ? peer::kAlways : number(arguments.count)};
  if (!arguments.after.empty()) plan.after = number(arguments.after);
  if (!arguments.range.empty()) {
    if (*index >= peer::kFaultRanges)
      throw Error(Failure::Usage, "calls of " + arguments.fault + " have no address");
    std::tie(plan.first, plan.last) = range(arguments.range);
    if (plan.last == 0)
      throw Error(Failure::Usage, "the board takes a range of address 0 alone for all addresses");
  }
  const peer::Board board = poweredBoard(options);
  board.setFaultPlan(*index, plan);
  options.print({{{"faults", faultsOf(board, false)}, {"fault_plans", faultsOf(board, true)}},
                 wrapped("faults   " + faultWords(board), 9)});
}

void power(const Options& options, const BoardArguments& arguments) {
  const bool cut = arguments.state == "cut";
  if (cut == arguments.after.empty())
    throw Error(Failure::Usage, cut ? "'cut' needs --after N" : "--after belongs to 'cut'");
  if (!cut && !arguments.torn.empty()) throw Error(Failure::Usage, "--torn belongs to 'cut'");
  const peer::Board board = poweredBoard(options);
  if (cut) {
    peer::PowerCut plan{.atWrite = number(arguments.after)};
    if (!arguments.torn.empty()) plan = {plan.atWrite, 2, number(arguments.torn)};
    board.setPowerCut(plan);
    const std::string text = powerCutText(board.powerCut());
    return options.print({{{"power_cut", text}}, "power    cut: " + text});
  }
  if (arguments.state != "on") board.switchOff();
  const bool taken = board.isTaken();
  const bool on = board.isOn();
  options.print({{{"daemon", taken}, {"on", on}},
                 taken ? "power    on: a daemon has the board"
                 : on  ? "power    on: the FPGA holds what it held"
                       : "power    off: the FPGA has lost what it held, and the next start of the\n"
                         "         daemon switches the board on"});
}

void sensor(const Options& options, const BoardArguments& arguments) {
  const unsigned index = number(arguments.state, peer::kSensors - 1);
  const uint32_t lux = arguments.count == "silent" ? peer::kAlways : number(arguments.count);
  const peer::Board board = poweredBoard(options);
  board.setSensor(index, lux);
  const auto pluggedInSensors = std::ranges::count_if(
      pluggedIn(board.directory()), [](const std::string& line) { return line.starts_with("sensor"); });
  options.print({{{"sensor", index}, {"lux", lux == peer::kAlways ? Json() : Json(lux)}},
                 "sensor   " + std::to_string(index) +
                     (lux == peer::kAlways ? " does not answer" : ": " + std::to_string(lux) + " lux") +
                     (std::cmp_less(index, pluggedInSensors) ? "" : ", once board.conf has such a sensor")});
}

void clock(const Options& options, const BoardArguments& arguments) {
  const std::string& shift = arguments.shift;
  const bool sign = shift.starts_with('+') || shift.starts_with('-');
  if (shift != "now" && !sign) throw Error(Failure::Usage, "'" + shift + "' is not +S, -S (seconds) or now");
  const int64_t seconds = sign ? int64_t{number(shift.substr(1))} * (shift[0] == '-' ? -1 : 1) : 0;
  const peer::Board board = poweredBoard(options);
  board.setClockOffset(sign ? board.clockOffset() + seconds : 0);
  const int64_t offset = board.clockOffset();
  const std::string time = timeText(std::time(nullptr) + offset);
  options.print({{{"clock_offset", offset}, {"time", time}},
                 "clock    " + time + ", " + std::to_string(offset) + " s from this machine's"});
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
  verb.option("--after", "N", arguments->after, "So many calls pass first");
  verb.option("--range", "A-B", arguments->range,
              "Only calls that touch these addresses count, for FPGA, flash and factory calls");
  verb.example("board fault flash-read 3");
  verb.example("board fault flash-write always --after 2 --range 0xA3B100-0xA3B2FF");
  verb.run([&options, arguments] { fault(options, *arguments); });
}

void addPower(Verb& board, const Options& options) {
  auto arguments = std::make_shared<BoardArguments>();
  Verb& verb =
      board.verb("power", "Switch the board off and on, or let the power go in the middle of a flash write");
  verb.operand("WHAT", arguments->state, "off and cycle need a board that no daemon has");
  verb.oneOf({"off", "on", "cycle", "cut"});
  verb.option("--after", "N", arguments->after, "cut: at the N-th flash write from now; 0: not at all");
  verb.option("--torn", "SECTORS", arguments->torn,
              "cut: so many sectors of 512 bytes of that write are done; else none");
  verb.example("board power cut --after 3 --torn 1");
  verb.run([&options, arguments] { power(options, *arguments); });
}

void addSensor(Verb& board, const Options& options) {
  auto arguments = std::make_shared<BoardArguments>();
  Verb& verb = board.verb("sensor", "Set what an ambient-light sensor measures");
  verb.operand("N", arguments->state, "The sensor, 0 to 31 in the order of board.conf");
  verb.operand("LUX", arguments->count, "What it measures; silent: it does not answer");
  verb.example("board sensor 0 350");
  verb.run([&options, arguments] { sensor(options, *arguments); });
}

void addClock(Verb& board, const Options& options) {
  auto arguments = std::make_shared<BoardArguments>();
  Verb& verb = board.verb("clock", "Move the board's clock; the daemon sees it at once");
  verb.operand("SHIFT", arguments->shift, "+S or -S seconds, or now: this machine's time");
  verb.example("board clock +86400");
  verb.run([&options, arguments] { clock(options, *arguments); });
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
  addPower(board, options);
  addSensor(board, options);
  addClock(board, options);
}

}  // namespace parlctl
