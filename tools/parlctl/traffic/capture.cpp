// capture: requests and what was replied, out of the trace at -debug, which is the only place that tells them
// all.
#include <memory>
#include <thread>

#include "capturefile.h"
#include "commands.h"
#include "output.h"
#include "stop.h"

namespace parlctl {

namespace {

struct CaptureArguments {
  std::string file;
  std::string since;
  std::string seconds;
  uint32_t count = 0;
};

void capture(const Options& options, const CaptureArguments& arguments) {
  constexpr std::chrono::milliseconds kPause{100};
  OutputFile file(arguments.file);
  const int64_t offset = options.board().hasHardware() ? options.board().clockOffset() : 0;
  const int64_t since = arguments.since.empty() ? 0 : momentOf(arguments.since, localNow(offset));
  TraceReader reader(options.board().directory() / "log");
  const auto before = reader.more();
  RequestFolder folder;
  std::string text = captureHead();
  uint32_t taken = 0;
  uint32_t cut = 0;
  const auto take = [&](const std::vector<TraceLine>& lines) {
    for (const TraceLine& line : lines) {
      const auto request = folder.take(line);
      if (!request || request->milliseconds < since || (arguments.count != 0 && taken == arguments.count))
        continue;
      text += captureLine(*request);
      ++taken;
      cut += request->whole() ? 0 : 1;
    }
  };
  const Stop stop(arguments.seconds);
  if (!arguments.since.empty()) take(before);
  const bool pastOnly = !arguments.since.empty() && arguments.seconds.empty() && arguments.count == 0;
  while (!pastOnly && !stop.wanted() && (arguments.count == 0 || taken < arguments.count)) {
    take(reader.more());
    std::this_thread::sleep_for(kPause);
  }
  file.write(text);
  options.print(
      {{{"file", arguments.file}, {"requests", taken}, {"cut", cut}},
       countText(taken, "request") + " in " + arguments.file +
           (taken == 0 ? "; the trace tells them at -debug alone" : "") +
           (cut == 0 ? ""
                     : "; the trace cut " + std::to_string(cut) + " of them, which cannot be replayed")});
}

}  // namespace

void addCapture(Verb& root, const Options& options) {
  auto arguments = std::make_shared<CaptureArguments>();
  Verb& verb = root.verb("capture", "Keep the requests that the daemon is asked, from now on until Ctrl-C");
  verb.option("--output", "FILE", arguments->file, "Where to").letter('o').required().isFile();
  verb.option("--since", "T", arguments->since,
              "Those since then, as 'log show' has it; alone: those and no others");
  verb.option("--for", "S", arguments->seconds, "End after so many seconds");
  verb.option("--count", "N", arguments->count, 1, 0xFFFFFFFF, "End after so many requests");
  verb.note(
      "The daemon must run with -debug. The trace has every request whole up to about 300 bytes, and of a "
      "reply its "
      "acknowledge code and its length.");
  verb.example("capture -o requests.jsonl --for 60");
  verb.run([&options, arguments] { capture(options, *arguments); });
}

}  // namespace parlctl
