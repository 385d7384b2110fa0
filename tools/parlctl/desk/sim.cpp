// sim run: a simulated board and the daemon on it, in one.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <thread>

#include "commands.h"
#include "stop.h"

extern char** environ;

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace fs = std::filesystem;

struct SimArguments {
  std::string daemon;
  std::string level = "debug";
  std::string seconds;
};

// The daemon beside this program, unless another is named.
fs::path daemonPath(const SimArguments& arguments) {
  std::error_code error;
  const fs::path path = arguments.daemon.empty()
                            ? fs::read_symlink("/proc/self/exe", error).parent_path() / "parlend"
                            : fs::path(arguments.daemon);
  if (access(path.c_str(), X_OK) != 0) peer::failWithErrno(Failure::Usage, "no daemon at " + path.string());
  return path;
}

// A daemon of this process; what it prints goes to a file of the board. Ended with its owner.
class Daemon {
 public:
  Daemon(const fs::path& program, const std::string& level, const fs::path& board)
      : output_(board / "daemon.out") {
    std::error_code error;
    fs::create_directories(board, error);
    if (error) throw Error(Failure::Board, "cannot make " + board.string() + ": " + error.message());
    setenv("PARLEND_BOARD", board.c_str(), 1);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output_.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0666);
    posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
    std::string name = program.string();
    std::string option = '-' + level;
    std::array<char*, 3> arguments{name.data(), level == "errors" ? nullptr : option.data(), nullptr};
    errno = posix_spawn(&process_, name.c_str(), &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (errno != 0) peer::failWithErrno(Failure::Usage, "cannot start " + name);
  }
  ~Daemon() {
    if (ended()) return;
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;

  bool ended() {
    if (process_ > 0 && waitpid(process_, &status_, WNOHANG) == process_) process_ = -1;
    return process_ < 0;
  }
  pid_t process() const { return process_; }
  const fs::path& output() const { return output_; }
  std::string endText() const {
    return WIFEXITED(status_) ? "status " + std::to_string(WEXITSTATUS(status_))
                              : "signal " + std::to_string(WTERMSIG(status_));
  }

 private:
  fs::path output_;
  pid_t process_ = -1;
  int status_ = 0;
};

// Whether it serves requests within the patience.
bool answers(const Options& options, Daemon& daemon) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + options.patience();
  while (!daemon.ended() && Clock::now() < deadline) {
    try {
      options.connect().read(0xF0000000, 1);
      return true;
    } catch (const Error&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }
  return false;
}

void run(const Options& options, const SimArguments& arguments) {
  if (options.board().isTaken())
    throw Error(Failure::Usage, "a daemon has the board " + options.boardDirectory + " already");
  const fs::path program = daemonPath(arguments);
  const Stop stop(arguments.seconds);
  Daemon daemon(program, arguments.level, fs::absolute(options.boardDirectory));
  if (!answers(options, daemon))
    throw Error(Failure::NoDaemon,
                "the daemon " +
                    (daemon.ended() ? "ended with " + daemon.endText() : std::string("does not answer")) +
                    "; see " + daemon.output().string());
  options.print({{{"board", options.boardDirectory},
                  {"process", daemon.process()},
                  {"output", daemon.output().string()}},
                 "The daemon serves the board " + options.boardDirectory + " (process " +
                     std::to_string(daemon.process()) + ");\nwhat it prints is in " +
                     daemon.output().string() + ". Ctrl-C ends it."});
  while (!stop.wanted() && !daemon.ended()) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  if (!stop.wanted()) throw Error(Failure::NoDaemon, "the daemon ended with " + daemon.endText());
}

void wait(const Options& options) {
  const auto deadline = std::chrono::steady_clock::now() + options.patience();
  for (;;) {
    try {
      options.connect().read(0xF0000000, 1);
      return options.print({{{"board", options.boardDirectory}}, "The daemon answers"});
    } catch (const Error&) {
      if (std::chrono::steady_clock::now() >= deadline) throw;
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  }
}

}  // namespace

void addSim(Verb& root, const Options& options) {
  auto arguments = std::make_shared<SimArguments>();
  Verb& sim = root.verb("sim", "A simulated system on this machine");
  Verb& verb = sim.verb(
      "run", "Start the daemon on the board of --board, which is made if there is none, until Ctrl-C");
  verb.option("--daemon", "FILE", arguments->daemon, "The daemon's program; without it, the one beside this")
      .isFile();
  verb.option("--level", "LEVEL", arguments->level, "What it traces");
  verb.oneOf({"errors", "info", "debug", "disable"});
  verb.option("--for", "S", arguments->seconds, "End after so many seconds");
  verb.example("sim run --board /tmp/board &");
  verb.run([&options, arguments] { run(options, *arguments); });
  sim.verb("wait", "Wait until the daemon answers, for --timeout but at least 5 s").run([&options] {
    wait(options);
  });
}

}  // namespace parlctl
