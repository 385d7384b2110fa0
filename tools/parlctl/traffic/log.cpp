// log show, log follow: the daemon's trace, line by line or folded into requests.
#include <algorithm>
#include <csignal>
#include <memory>
#include <thread>

#include "commands.h"
#include "stop.h"
#include "tracetext.h"

namespace parlctl {

namespace {

struct LogArguments {
  std::string directory;
  std::string since;
  std::string level = "info";
  bool decode = false;
  std::string seconds;  // empty: no limit
};

int64_t clockOffset(const Options& options) {
  return options.board().hasHardware() ? options.board().clockOffset() : 0;
}

class Printer {
 public:
  Printer(const Options& options, const LogArguments& arguments)
      : options_(options), decode_(arguments.decode) {
    const auto* level = std::ranges::find(kTraceLevels, arguments.level);
    level_ = static_cast<TraceLevel>(level - kTraceLevels.begin());
    if (!arguments.since.empty()) since_ = momentOf(arguments.since, localNow(clockOffset(options)));
  }

  void show(const std::vector<TraceLine>& lines) {
    for (const TraceLine& line : lines) {
      if (decode_) {
        if (const auto request = folder_.take(line); request && request->milliseconds >= since_)
          options_.print(decoded(*request));
      } else if (line.milliseconds >= since_ && line.level <= level_) {
        options_.print({{{"time", isoText(line.milliseconds)},
                         {"level", kTraceLevels[static_cast<std::size_t>(line.level)]},
                         {"source", line.source},
                         {"message", line.message}},
                        line.text});
      }
    }
  }

 private:
  const Options& options_;
  bool decode_;
  TraceLevel level_;
  int64_t since_ = 0;
  RequestFolder folder_;
};

TraceReader readerOf(const Options& options, const LogArguments& arguments) {
  if (!arguments.directory.empty()) return TraceReader(arguments.directory);
  return TraceReader(options.board().directory() / "log");
}

void show(const Options& options, const LogArguments& arguments) {
  Printer printer(options, arguments);
  TraceReader reader = readerOf(options, arguments);
  if (reader.files().empty())
    throw peer::Error(peer::Failure::Board, "no trace files in " + reader.directory().string());
  printer.show(reader.more());
}

void follow(const Options& options, const LogArguments& arguments) {
  constexpr std::chrono::milliseconds kPause{200};  // nothing tells that a file has grown
  Printer printer(options, arguments);
  TraceReader reader = readerOf(options, arguments);
  const std::vector<TraceLine> before = reader.more();
  if (!arguments.since.empty()) printer.show(before);
  const Stop stop(arguments.seconds);
  while (!stop.wanted()) {
    printer.show(reader.more());
    std::this_thread::sleep_for(kPause);
  }
}

std::shared_ptr<LogArguments> addVerb(Verb& verb, const Options& options,
                                      void (*act)(const Options&, const LogArguments&)) {
  auto arguments = std::make_shared<LogArguments>();
  verb.option("--since", "T", arguments->since,
              "From then on: 90s, 10m, 2h ago, 10:20 today, or 2024-01-02T10:20:30");
  verb.option("--level", "LEVEL", arguments->level, "Lines of this level and the more urgent ones");
  verb.oneOf({kTraceLevels.begin(), kTraceLevels.end()});
  verb.flag("--decode", arguments->decode,
            "A request a line: who, what, acknowledge, data, and microseconds, of which the trace tells "
            "thousands; the "
            "daemon must run with -debug")
      .excludes({"--level"});
  verb.option("--dir", "DIR", arguments->directory, "Where the files lie; without it, log of the board")
      .isFile();
  verb.run([&options, arguments, act] { act(options, *arguments); });
  return arguments;
}

}  // namespace

void addLog(Verb& root, const Options& options) {
  Verb& log = root.verb("log", "Read the daemon's trace");
  Verb& all = log.verb("show", "What the trace files hold, in their order");
  addVerb(all, options, &show);
  all.example("log show --since 10m --level warning");
  Verb& coming = log.verb("follow", "What is traced from now on, until Ctrl-C");
  const auto arguments = addVerb(coming, options, &follow);
  coming.option("--for", "S", arguments->seconds, "End after so many seconds");
  coming.example("log follow --decode");
}

}  // namespace parlctl
