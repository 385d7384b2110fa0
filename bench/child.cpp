#include "child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace bench {
namespace {

// The value behind "NAME:" in a file of such lines; 0 without that line.
double fieldOf(const std::filesystem::path& file, const std::string& name) {
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);)
    if (line.rfind(name + ":", 0) == 0) return std::strtod(line.c_str() + name.size() + 1, nullptr);
  return 0;
}

std::string readAll(int fd) {
  std::string text;
  std::array<char, 4096> part{};
  for (ssize_t n = 0; (n = read(fd, part.data(), part.size())) > 0;)
    text.append(part.data(), static_cast<std::size_t>(n));
  return text;
}

// The words as exec wants them.
std::vector<char*> pointers(std::vector<std::string>& words) {
  std::vector<char*> all;
  all.reserve(words.size() + 1);
  for (std::string& word : words) all.push_back(word.data());
  all.push_back(nullptr);
  return all;
}

pid_t spawn(std::vector<std::string> command, std::vector<std::string> environment, int resultFd,
            const std::string& standardOutput) {
  for (char** word = environ; *word; ++word) environment.emplace_back(*word);
  std::vector<char*> argv = pointers(command);
  std::vector<char*> env = pointers(environment);

  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, standardOutput.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, resultFd, Child::kResultFd);
  pid_t pid = -1;
  const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), env.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), command[0]);
  return pid;
}

}  // namespace

TempDir::TempDir() {
  std::string name = (std::filesystem::temp_directory_path() / "parlend-bench-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), name);
  path_ = name;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

Child::Child(const std::vector<std::string>& command, const std::filesystem::path& board,
             const std::string& standardOutput) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  // A dup2 onto itself would leave the descriptor close-on-exec.
  const int writeEnd = fcntl(ends[1], F_DUPFD_CLOEXEC, kResultFd + 1);
  close(ends[1]);
  resultFd_ = ends[0];
  std::vector<std::string> environment;
  if (!board.empty()) environment.push_back("PARLEND_BOARD=" + board.string());
  try {
    pid_ = spawn(command, environment, writeEnd, standardOutput);
  } catch (...) {
    close(writeEnd);
    close(resultFd_);
    throw;
  }
  close(writeEnd);
}

Child::~Child() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  close(resultFd_);
}

std::vector<double> Child::results() {
  std::istringstream text(readAll(resultFd_));
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  std::vector<double> numbers;
  for (double value = 0; text >> value;) numbers.push_back(value);
  if (status != 0 || numbers.empty()) throw std::runtime_error("a measuring program failed");
  return numbers;
}

double statusKiB(pid_t pid, const std::string& name) {
  return fieldOf("/proc/" + std::to_string(pid) + "/status", name);
}

Activity activity(pid_t pid) {
  Activity sum;
  for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
    double nanoseconds = 0;
    std::ifstream(task.path() / "schedstat") >> nanoseconds;
    sum.processorUs += nanoseconds / 1e3;
    sum.wakeUps += fieldOf(task.path() / "status", "voluntary_ctxt_switches");
    ++sum.threads;
  }
  return sum;
}

}  // namespace bench
