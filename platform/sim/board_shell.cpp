// The device's shell commands, interpreted: no real shell ever sees them and no child process is started.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <vector>

#include "board_error.h"
#include "board_files.h"
#include "board_flash.h"
#include "board_fpga.h"
#include "board_journal.h"
#include "board_power.h"
#include "platform/board.h"
#include "simboard.h"

namespace fs = std::filesystem;

namespace simboard {
namespace {

using Words = std::vector<std::string>;
constexpr int kFailed = 1;
constexpr int kUnknownCommand = 127;

int statusOf(bool done) {
  return done ? 0 : kFailed;
}

// Words of a command line; double quotes hold a word together.
Words split(std::string_view line) {
  Words words;
  bool quoted = false;
  bool open = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ' ' && !quoted) {
      open = false;
      continue;
    }
    if (!open) words.emplace_back();
    open = true;
    if (c != '"') words.back() += c;
  }
  return words;
}

// True when a path really lies in the board directory, links followed.
bool isInside(const fs::path& target) {
  std::error_code failed;
  const fs::path top = fs::canonical(path(""), failed);
  if (failed) return false;
  const fs::path real = fs::weakly_canonical(target, failed);
  return !failed && std::mismatch(top.begin(), top.end(), real.begin(), real.end()).first == top.end();
}

bool isFile(const fs::path& target) {
  std::error_code failed;
  return fs::is_regular_file(target, failed);
}

// Where a command may read or write; nothing when a link leads out of the board directory.
std::optional<fs::path> reach(const std::string& word) {
  fs::path target = devicePath(word);
  if (!isInside(target)) return std::nullopt;
  return target;
}

std::optional<uint32_t> number(std::string_view word, uint32_t most) {
  const bool hexadecimal = word.starts_with("0x");
  if (hexadecimal) word.remove_prefix(2);
  uint32_t value = 0;
  const char* end = word.data() + word.size();
  const auto parsed = std::from_chars(word.data(), end, value, hexadecimal ? 16 : 10);
  if (parsed.ec != std::errc() || parsed.ptr != end || value > most) return std::nullopt;
  return value;
}

int makeDirectory(const Words& words, std::string&) {
  const auto target = words.size() == 3 && words[1] == "-p" ? reach(words[2]) : std::nullopt;
  if (!target) return kFailed;
  std::error_code failed;
  fs::create_directories(*target, failed);
  return statusOf(!failed);
}

int copyFile(const Words& words, std::string&) {
  if (words.size() != 3) return kFailed;
  const auto source = reach(words[1]);
  const auto target = reach(words[2]);
  if (!source || !target || *source == *target || !isFile(*source)) return kFailed;
  const int from = open(source->c_str(), O_RDONLY | O_CLOEXEC);
  const int to = open(target->c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  struct stat status {};
  const bool copied = from >= 0 && to >= 0 && fstat(from, &status) == 0 &&
                      ftruncate(to, status.st_size) == 0 && copyContents(from, to);
  if (from >= 0) close(from);
  if (to >= 0) close(to);
  return statusOf(copied);
}

// A link is removed as such: only the directory that it is in has to be the board's own.
int removeFiles(const Words& words, std::string&) {
  bool removed = true;
  for (std::size_t i = 1; i < words.size(); ++i) {
    if (words[i].starts_with('-')) continue;
    const fs::path target = devicePath(words[i]);
    std::error_code failed;
    removed = target.has_filename() && isInside(target.parent_path()) && fs::remove_all(target, failed) > 0 &&
              !failed && removed;
  }
  return statusOf(removed);
}

int printFile(const Words& words, std::string& output) {
  const auto source = words.size() == 2 ? reach(words[1]) : std::nullopt;
  if (!source || !isFile(*source)) return kFailed;
  std::ifstream file(*source, std::ios::binary);
  output.assign(std::istreambuf_iterator<char>(file), {});
  return statusOf(file.is_open());
}

int appendText(const Words& words, std::string&) {
  const auto target = words.size() == 4 && words[2] == ">>" ? reach(words[3]) : std::nullopt;
  if (!target) return kFailed;
  std::ofstream file(*target, std::ios::app);
  file << words[1] << '\n';
  file.close();
  return statusOf(file.good());
}

int setEnvironment(const Words& words, std::string&) {
  return statusOf(words.size() == 4 && words[1] == "set" && storeEnvironment(words[2], words[3]) == 0);
}

int setBootEnvironment(const Words& words, std::string&) {
  return statusOf(words.size() == 3 && storeEnvironment(words[1], words[2]) == 0);
}

int registerTool(const Words& words, std::string&) {
  if (words.size() != 5 || words[1] != "w" || words[2] != "s") return kFailed;
  const auto address = number(words[3], 0xFFFFFFFF);
  const auto value = number(words[4], 0xFF);
  return statusOf(address && value && writeRegister(*address, static_cast<uint8_t>(*value)) == 0);
}

int makeDurable(const Words&, std::string&) {
  return statusOf(syncFlash());
}

int nothing(const Words&, std::string&) {
  return 0;
}

int restart(const Words& words, std::string&) {
  if (words.size() != 2 || words[1] != "-f") return kFailed;
  if (journalsWrites()) JournalLine("reboot");
  powerGoes(Outage::Reboot);
  return kFailed;
}

// Carries a command out and leaves what it prints in output. Returns its exit status.
using Command = int (*)(const Words& words, std::string& output);

const std::map<std::string, Command, std::less<>>& commands() {
  static const std::map<std::string, Command, std::less<>> table{
      {"/bin/cat", printFile},
      {"/usr/kestrel/bin/fw_setenv", setBootEnvironment},
      {"cat", printFile},
      {"cp", copyFile},
      {"echo", appendText},
      {"fpga", registerTool},
      {"fw_setenv", setBootEnvironment},
      {"hwclock", nothing},  // the board's one clock is set already
      {"killall", nothing},  // the board runs nothing but this daemon
      {"mkdir", makeDirectory},
      {"reboot", restart},
      {"rm", removeFiles},
      {"sync", makeDurable},
      {"sysconfig", setEnvironment},
  };
  return table;
}

int run(const char* command, std::string& output) {
  if (!hasPower()) return kFailed;
  if (journalsWrites()) JournalLine("shell").word(command);
  const Words words = split(command);
  const auto found = words.empty() ? commands().end() : commands().find(words[0]);
  if (found != commands().end()) return found->second(words, output);
  complain(Complaint::UnknownCommand, std::string("simulated board: unknown command: ") + command);
  return kUnknownCommand;
}

}  // namespace
}  // namespace simboard

using namespace simboard;

int board_shell(const char* command) {
  std::string output;
  return run(command, output);
}

int board_shell_line(const char* command, char* line, size_t size) {
  std::string output;
  run(command, output);
  if (size == 0) return 0;
  const std::size_t lineEnd = output.find('\n');
  const std::size_t length = std::min(lineEnd == std::string::npos ? output.size() : lineEnd + 1, size - 1);
  std::memcpy(line, output.data(), length);
  line[length] = '\0';
  return static_cast<int>(length);
}
