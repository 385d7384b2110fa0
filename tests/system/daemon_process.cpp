#include "daemon_process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include "peer/error.h"

namespace fs = std::filesystem;

namespace {

fs::path temporaryDirectory() {
  std::string name = (fs::temp_directory_path() / "parlend-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory " + name);
  return name;
}

std::vector<std::string> commandLine(const std::string& argument) {
  const char* launch = std::getenv("PARLEND_LAUNCH");
  std::istringstream prefix(launch != nullptr ? launch : PARLEND_LAUNCHER);
  std::vector<std::string> words;
  for (std::string word; prefix >> word;) words.push_back(word);
  words.emplace_back(PARLEND_PROGRAM);
  if (!argument.empty()) words.push_back(argument);
  return words;
}

[[noreturn]] void becomeDaemon(const std::vector<char*>& arguments, const std::string& output) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that crashes takes its daemon along
  const int out = open((output + ".out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int err = open((output + ".err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (out >= 0 && err >= 0 && dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0)
    execvp(arguments.front(), arguments.data());
  _exit(127);
}

// Of a child that is about to end; -1: a signal ended it, or it had to be killed after all.
int exitStatus(pid_t child) {
  int status = 0;
  if (!eventually([&] { return waitpid(child, &status, WNOHANG) == child; })) {
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

bool eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

std::string contents(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

DaemonProcess::DaemonProcess() : directory_(temporaryDirectory()), board_(directory_ / "board") {
  fs::create_directory(board_.directory());
}

DaemonProcess::~DaemonProcess() {
  kill();
  std::error_code ignored;
  fs::remove_all(directory_, ignored);
}

void DaemonProcess::prepare(const std::string& file, const std::string& text) const {
  const fs::path path = board_.directory() / file;
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

pid_t DaemonProcess::spawn(const std::string& argument, const std::string& output) const {
  std::vector<std::string> words = commandLine(argument);
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  setenv("PARLEND_BOARD", board_.directory().c_str(), 1);
  const pid_t child = fork();
  if (child == 0) becomeDaemon(arguments, output);
  if (child < 0) throw std::runtime_error("no process for the daemon");
  return child;
}

bool DaemonProcess::canReboot() {
  return std::string_view(PARLEND_LAUNCHER).empty();
}

void DaemonProcess::start(const std::string& argument) {
  const std::string output = (directory_ / "daemon").string();
  process_ = spawn(argument, output);
  const bool ready = eventually([&] {
    if (!alive()) throw std::runtime_error("the daemon ended: " + contents(output + ".err"));
    try {
      connect();
      return true;
    } catch (const peer::Error&) {
      return false;
    }
  });
  if (!ready) throw std::runtime_error("the daemon does not answer: " + contents(output + ".err"));
}

void DaemonProcess::kill() {
  if (!alive()) return;
  ::kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = -1;
}

bool DaemonProcess::alive() {
  if (process_ > 0 && waitpid(process_, nullptr, WNOHANG) != 0) process_ = -1;
  return process_ > 0;
}

int DaemonProcess::awaitEnd() {
  return exitStatus(std::exchange(process_, -1));
}

int DaemonProcess::runSecond(std::string& errors) const {
  const std::string output = (directory_ / "second").string();
  const int status = exitStatus(spawn("", output));
  errors = contents(output + ".err");
  return status;
}

peer::Peer DaemonProcess::connect(uint32_t serviceCode) const {
  return {board_.socketPath(), serviceCode, kPatience};
}

peer::Peer DaemonProcess::connect() {
  return connect(nextService_++);
}

std::string DaemonProcess::trace() const {
  constexpr std::size_t kHeader = 32;
  std::string text;
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(board_.directory() / "log", missing)) {
    const std::string file = contents(entry.path());
    if (file.size() <= kHeader) continue;
    text += file.substr(kHeader, std::strtoul(file.c_str(), nullptr, 10) - kHeader);
  }
  return text;
}
