// parlctl: a peer of the daemon on the command line.
#include <cstdlib>
#include <iostream>

#include "commands.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  parlctl board show
  parlctl status
  parlctl reg read 0x02100000:16
  parlctl reg write 0x02300010=01020304
  parlctl card read 0x02000017:4 --port 2 --card 5
  parlctl wall set 4x6 --cards 12 --mode top-left-rows --wait
  parlctl --json watch --as lsd --for 10

Exit status: 0 done, 2 usage, 3 no daemon or time-out, 4 refused by the daemon, 5 short reply or mismatch)";

void fallThrough(CLI::App& app) {
  for (CLI::App* verb : app.get_subcommands({})) {
    verb->fallthrough();
    fallThrough(*verb);
  }
}

void build(CLI::App& app, parlctl::Options& options) {
  const char* board = std::getenv("PARLEND_BOARD");
  options.boardDirectory = board != nullptr && *board != '\0' ? board : "board";
  app.add_option("--board", options.boardDirectory, "The board's directory ($PARLEND_BOARD)")
      ->capture_default_str();
  app.add_option("--socket", options.socketPath,
                 "The message service, when it is not run/apipc.sock of the board");
  app.add_option("--timeout", options.timeoutMs, "How long an answer may take, in milliseconds")
      ->check(CLI::Range(1U, 3'600'000U))
      ->capture_default_str();
  app.add_flag("--json", options.json, "One JSON object a line");
  app.require_subcommand(1);
  app.footer(kFooter);
  parlctl::addReg(app, options);
  parlctl::addCard(app, options);
  parlctl::addStatus(app, options);
  parlctl::addWatch(app, options);
  parlctl::addBoard(app, options);
  parlctl::addWall(app, options);
  fallThrough(app);  // the options above may stand behind a verb, too
}

int run(int argc, char** argv) {
  CLI::App app("Reads, writes and watches the sending card's daemon as one of its peers", "parlctl");
  parlctl::Options options;
  build(app, options);
  try {
    app.parse(argc, argv);
    return parlctl::kDone;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? parlctl::kDone : parlctl::kUsage;
  } catch (const peer::Error& error) {
    std::cerr << "parlctl: " << error.what() << '\n';
    return parlctl::exitStatus(error.failure());
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "parlctl: " << error.what() << '\n';
    return parlctl::kUsage;
  }
}
