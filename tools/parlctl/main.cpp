// parlctl: a peer of the daemon on the command line.
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "commands.h"
#include "complete.h"
#include "helptext.h"
#include "output.h"
#include "version.h"

namespace {

using parlctl::Options;
using parlctl::Verb;

void build(Verb& root, Options& options) {
  const char* board = std::getenv("PARLEND_BOARD");
  options.boardDirectory = board != nullptr && *board != '\0' ? board : "board";
  root.option("--board", "DIR", options.boardDirectory, "The board's directory ($PARLEND_BOARD)").isFile();
  root.option("--socket", "FILE", options.socketPath,
              "The message service, when it is not run/apipc.sock of the board")
      .isFile();
  root.option("--timeout", "MS", options.timeoutMs, 1, 3'600'000,
              "How long an answer may take, in milliseconds");
  root.flag("--json", options.json, "One JSON object a result, each on a line; failures, too");
  root.example("board show");
  root.example("status");
  root.example("reg read 0x02100000:16");
  root.example("reg write 0x02300010=01020304");
  root.example("card read 0x02000017:4 --port 2 --card 5");
  root.example("wall set 4x6 --cards 12 --mode top-left-rows --wait");
  root.example("--json watch --as lsd --for 10");
  for (const parlctl::AddNoun add : parlctl::nouns()) add(root, options);
}

// The words on standard error, and with --json the object on standard output.
int fail(bool json, const std::string& path, peer::Failure failure, const std::string& text) {
  std::cerr << parlctl::wrapped("parlctl: " + text) << '\n';
  if (json && failure != peer::Failure::LostOutput)
    parlctl::writeOutput(parlctl::envelope(path, failure, text).dump() + '\n');
  return parlctl::textOf(failure).status;
}

// Also of a command line that cannot be read.
bool wantsJson(int argc, char** argv) {
  return std::find(argv, argv + argc, std::string_view("--json")) != argv + argc;
}

int complete(const Verb& root, const std::vector<std::string>& words) {
  for (const parlctl::Candidate& each : parlctl::candidates(root, words))
    parlctl::writeOutput(each.text.empty() ? each.word + '\n' : each.word + '\t' + each.text + '\n');
  return parlctl::kDone;
}

int run(int argc, char** argv) {
  Options options;
  Verb root("parlctl", "Reads, writes and watches the sending card's daemon as one of its peers");
  build(root, options);
  if (argc > 1 && std::string_view(argv[1]) == parlctl::kCompleteWord)
    return complete(root, {argv + 2, argv + argc});
  try {
    const parlctl::Asked asked = parlctl::parse(root, argc, argv);
    options.verb = asked.path;
    if (asked.version) return parlctl::writeOutput(std::string(parlctl::kVersion) + '\n'), parlctl::kDone;
    if (asked.help) return parlctl::writeOutput(helpText(root, *asked.verb, asked.path)), parlctl::kDone;
    asked.verb->action();
    return options.status();
  } catch (const parlctl::UsageError& error) {
    return fail(wantsJson(argc, argv), error.path, peer::Failure::Usage, error.text);
  } catch (const peer::Error& error) {
    return fail(options.json, options.verb, error.failure(), error.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  parlctl::occupyClosedStreams();
  parlctl::noticeLeavingReaders();
  try {
    return run(argc, argv);
  } catch (const parlctl::ReaderLeft&) {
    parlctl::endAsBrokenPipe();
  } catch (const std::exception& error) {
    std::cerr << "parlctl: " << error.what() << '\n';
    return parlctl::kFound;  // the failure itself could not be told
  }
}
