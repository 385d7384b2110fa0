// The device's shell commands, interpreted: no real shell ever sees them and no child process is started.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "board_fpga.h"
#include "board_journal.h"
#include "platform/board.h"
#include "simboard.h"

namespace fs = std::filesystem;

namespace simboard {
namespace {

using Words = std::vector<std::string>;
constexpr int kFailed = 1;
constexpr int kUnknownCommand = 127;

// Words of a command line; double quotes hold a word together.
Words split(const std::string& line) {
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

int status(const std::error_code& failed) {
  return failed ? kFailed : 0;
}

int makeDirectory(const Words& words) {
  if (words.size() != 3 || words[1] != "-p") return kFailed;
  std::error_code failed;
  fs::create_directories(devicePath(words[2]), failed);
  return status(failed);
}

int copyFile(const Words& words) {
  if (words.size() != 3) return kFailed;
  std::error_code failed;
  fs::copy_file(devicePath(words[1]), devicePath(words[2]), fs::copy_options::overwrite_existing, failed);
  return status(failed);
}

// Never follows a path out of the board directory, and never removes the directory itself.
int removeFiles(const Words& words) {
  int result = 0;
  for (std::size_t i = 1; i < words.size(); ++i) {
    if (words[i].starts_with('-')) continue;
    const std::string target = devicePath(words[i]);
    if (fs::path(target).lexically_normal() == fs::path(devicePath("/")).lexically_normal()) return kFailed;
    std::error_code failed;
    if (fs::remove_all(target, failed) == 0 || failed) result = kFailed;
  }
  return result;
}

int appendText(const Words& words) {
  if (words.size() != 4 || words[2] != ">>") return kFailed;
  std::ofstream file(devicePath(words[3]), std::ios::app);
  file << words[1] << '\n';
  return file.good() ? 0 : kFailed;
}

int setEnvironment(const Words& words) {
  return words.size() == 4 && words[1] == "set" && storeEnvironment(words[2], words[3]) == 0 ? 0 : kFailed;
}

int setBootEnvironment(const Words& words) {
  return words.size() == 3 && storeEnvironment(words[1], words[2]) == 0 ? 0 : kFailed;
}

int registerTool(const Words& words) {
  if (words.size() != 5 || words[1] != "w" || words[2] != "s") return kFailed;
  const auto address = static_cast<uint32_t>(std::strtoul(words[3].c_str(), nullptr, 0));
  const auto value = static_cast<uint8_t>(std::strtoul(words[4].c_str(), nullptr, 0));
  return writeRegister(address, value) == 0 ? 0 : kFailed;
}

int nothing(const Words&) {
  return 0;
}

int restart(const Words& words) {
  if (words.size() == 2 && words[1] == "-f") reboot();
  return kFailed;
}

using Command = int (*)(const Words&);
const std::map<std::string, Command>& commands() {
  static const std::map<std::string, Command> table{
      {"mkdir", makeDirectory},
      {"cp", copyFile},
      {"rm", removeFiles},
      {"echo", appendText},
      {"sysconfig", setEnvironment},
      {"/usr/kestrel/bin/fw_setenv", setBootEnvironment},
      {"fpga", registerTool},
      {"reboot", restart},
      {"sync", nothing},     // a flash write is in its file when the call returns
      {"hwclock", nothing},  // the board's one clock is set already
      {"killall", nothing},
  };
  return table;
}

}  // namespace
}  // namespace simboard

using namespace simboard;

int board_shell(const char* command) {
  if (journalsWrites()) JournalLine("shell").word(command);
  const Words words = split(command);
  const auto found = words.empty() ? commands().end() : commands().find(words[0]);
  if (found != commands().end()) return found->second(words);
  std::fprintf(stderr, "simulated board: unknown command: %s\n", command);
  return kUnknownCommand;
}

int board_shell_line(const char* command, char* line, size_t size) {
  if (journalsWrites()) JournalLine("shell").word(command);
  const Words words = split(command);
  if (words.size() != 2 || (words[0] != "/bin/cat" && words[0] != "cat") || size == 0) {
    std::fprintf(stderr, "simulated board: unknown command: %s\n", command);
    return 0;
  }
  std::ifstream file(devicePath(words[1]));
  std::string text;
  if (!std::getline(file, text)) return 0;
  if (!file.eof()) text += '\n';
  const std::size_t length = std::min(text.size(), size - 1);
  std::memcpy(line, text.data(), length);
  line[length] = '\0';
  return static_cast<int>(length);
}
