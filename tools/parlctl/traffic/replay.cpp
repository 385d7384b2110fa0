// replay: captured requests, sent again.
#include <memory>

#include "capturefile.h"
#include "commands.h"
#include "tracetext.h"

namespace parlctl {

namespace {

struct ReplayArguments {
  std::string file;
  bool compare = false;
};

// What is different from what was captured; empty: nothing.
std::string difference(const TracedRequest& before, const TracedRequest& now) {
  if (before.ack != now.ack)
    return "acknowledge code " + (now.ack ? std::to_string(*now.ack) : std::string("none")) + ", captured " +
           (before.ack ? std::to_string(*before.ack) : std::string("none"));
  if (before.replyBytes != now.replyBytes)
    return countText(now.replyBytes, "byte") + " of data, captured " + std::to_string(before.replyBytes);
  return {};
}

TracedRequest ask(peer::Peer& daemon, const TracedRequest& before, const peer::Frame& request) {
  using Clock = std::chrono::steady_clock;
  TracedRequest now = before;
  const auto begin = Clock::now();
  const peer::Frame reply = daemon.exchange(request);
  now.microseconds = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin).count();
  now.task = daemon.taskId();
  now.ack = reply.ack;
  now.replyBytes = reply.data.size();
  return now;
}

void replay(const Options& options, const ReplayArguments& arguments) {
  const auto requests = readCapture(arguments.file);
  peer::Peer daemon = options.connect();
  unsigned sent = 0;
  unsigned left = 0;
  unsigned different = 0;
  for (const TracedRequest& before : requests) {
    // A frame that was damaged when it was captured would be repaired on its way: it is left out, like a cut
    // one.
    const auto frame = requestFrame(before);
    const bool sound = before.whole() && frame && peer::encode(*frame) == before.frame;
    if (!sound) {
      ++left;
      continue;
    }
    const TracedRequest now = ask(daemon, before, *frame);
    ++sent;
    const std::string unlike = arguments.compare ? difference(before, now) : "";
    Result result = decoded(now);
    result.fields.erase("time");
    result.text = result.text.substr(result.text.find(' ') + 1);
    if (!unlike.empty()) {
      ++different;
      result.outcome = Outcome::Differs;
      result.fields["difference"] = unlike;
      result.text += "\n  differs: " + unlike;
    }
    options.print(result);
  }
  options.print({{{"sent", sent}, {"left_out", left}, {"different", different}},
                 countText(sent, "request") + " sent" +
                     (left == 0 ? "" : ", " + std::to_string(left) + " left out (cut or damaged)") +
                     (arguments.compare ? ", " + std::to_string(different) + " answered differently" : ""),
                 different == 0 ? Outcome::Done : Outcome::Differs});
}

}  // namespace

void addReplay(Verb& root, const Options& options) {
  auto arguments = std::make_shared<ReplayArguments>();
  Verb& verb = root.verb("replay", "Send captured requests again, writes as well as reads");
  verb.operand("FILE", arguments->file, "What 'parlctl capture' wrote").isFile();
  verb.flag("--compare", arguments->compare,
            "Compare acknowledge codes and lengths of the replies with those captured; a difference ends "
            "with status 5");
  verb.example("replay requests.jsonl --compare");
  verb.run([&options, arguments] { replay(options, *arguments); });
}

}  // namespace parlctl
