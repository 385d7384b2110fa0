// Environment store, network settings and shell.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>

#include "platform/board.h"
#include "platform/netinfo.h"
#include "platform/sysconf.h"
#include "simboard.h"

using namespace simboard;
namespace {

std::mutex storeLock;
std::map<std::string, std::string> readStore() {
  std::map<std::string, std::string> store;
  std::ifstream file(path("etc/sysconf.env"));
  for (std::string line; std::getline(file, line);) {
    if (const auto equals = line.find('='); equals != std::string::npos) {
      store[line.substr(0, equals)] = line.substr(equals + 1);
    }
  }
  return store;
}

int storeValue(const std::string& key, const std::string& value) {
  const std::lock_guard guard(storeLock);
  auto store = readStore();
  store[key] = value;
  {
    std::ofstream file(path("etc/sysconf.env.new"));
    for (const auto& [name, text] : store) file << name << '=' << text << '\n';
  }
  return std::rename(path("etc/sysconf.env.new").c_str(), path("etc/sysconf.env").c_str());
}

std::string mappedPath(const std::string& devicePath) {
  char out[4096];
  return board_path(devicePath.c_str(), out, sizeof out) == 0 ? out : "";
}

}  // namespace

extern "C" int sysconf_openenv() {
  return takeFault(Fault::EnvOpen) ? -1 : 0;
}
extern "C" void sysconf_closeenv() {}
extern "C" const char* sysconf_getenv(const char* key) {
  thread_local std::string value;
  const std::lock_guard guard(storeLock);
  const auto store = readStore();
  const auto found = store.find(key);
  if (found == store.end()) return nullptr;
  value = found->second;
  return value.c_str();
}
extern "C" int sysconf_setenv(const char* key, const char* value) {
  const bool failed = takeFault(Fault::EnvSet) || storeValue(key, value) != 0;
  journal(std::string("env-set ") + key + " " + value + (failed ? " failed" : ""));
  return failed ? -1 : 0;
}
extern "C" int netinfo_set_eth_mode(int mode) {
  const bool failed = takeFault(Fault::NetCall);
  journal("net-mode " + std::to_string(mode) + (failed ? " failed" : ""));
  return failed ? -1 : 0;
}
extern "C" int netinfo_set_curr_ip(const char* ip, const char* mask, const char* gateway) {
  const bool failed = takeFault(Fault::NetCall);
  journal(std::string("net-addr ") + ip + " " + mask + " " + gateway + (failed ? " failed" : ""));
  return failed ? -1 : 0;
}

extern "C" int board_shell(const char* command) {
  journal(std::string("shell ") + command);
  std::istringstream words(command);
  std::string verb, first, second, third;
  words >> verb >> first >> second >> third;
  if (verb == "mkdir" && first == "-p") {
    std::error_code failed;
    std::filesystem::create_directories(mappedPath(second), failed);
    return failed ? 1 : 0;
  }
  if (verb == "sysconfig" && first == "set") return storeValue(second, third);
  if (verb == "sync") return sync(), 0;
  if (verb == "hwclock" || verb == "killall") return 0;
  if (verb == "reboot" && first == "-f") reboot();
  if (verb == "echo") {
    const std::string text = command;
    const auto open = text.find('"'), close = text.rfind('"'), to = text.rfind(">> ");
    if (open != close && to != std::string::npos && to > close) {
      std::ofstream(mappedPath(text.substr(to + 3)), std::ios::app)
          << text.substr(open + 1, close - open - 1) << '\n';
      return 0;
    }
  }
  std::fprintf(stderr, "simulated board: unknown command: %s\n", command);
  return 127;
}

extern "C" int board_shell_line(const char* command, char* line, size_t size) {
  journal(std::string("shell ") + command);
  std::istringstream words(command);
  std::string verb, file;
  words >> verb >> file;
  if (verb != "/bin/cat") return 0;
  std::FILE* stream = std::fopen(mappedPath(file).c_str(), "re");
  if (stream == nullptr) return 0;
  const bool read = std::fgets(line, static_cast<int>(size), stream) != nullptr;
  std::fclose(stream);
  return read ? static_cast<int>(std::strlen(line)) : 0;
}
