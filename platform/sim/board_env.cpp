// The environment store: etc/sysconf.env, replaced as a whole. Also the texts of date and time.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <forward_list>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "board_journal.h"
#include "platform/board.h"
#include "platform/sysconf.h"
#include "simboard.h"

namespace simboard {
namespace {

constexpr char kStore[] = "etc/sysconf.env";
constexpr std::size_t kTextSize = 50;

using Store = std::map<std::string, std::string>;
std::mutex storeLock;
// Every text given to this thread stays readable until it closes the store.
thread_local std::forward_list<std::string> handedOut;

// Nothing when the file is there and cannot be read: it must not be replaced as if it were empty.
std::optional<Store> readStore() {
  Store store;
  std::ifstream file(path(kStore));
  if (!file) return errno == ENOENT ? std::optional(store) : std::nullopt;
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (equals != std::string::npos) store[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return store;
}

bool replaceStore(const Store& store) {
  const std::string fresh = path(kStore) + ".new";
  std::ofstream file(fresh);
  for (const auto& [key, value] : store) file << key << '=' << value << '\n';
  file.close();
  return file.good() && std::rename(fresh.c_str(), path(kStore).c_str()) == 0;
}

int localText(Fault fault, const char* format, char* text) {
  if (takeFault(fault)) return -1;
  timespec now{};
  board_clock(&now);
  tm local{};
  tzset();  // somebody may have changed the time zone
  if (localtime_r(&now.tv_sec, &local) == nullptr) return -1;
  return std::strftime(text, kTextSize, format, &local) > 0 ? 0 : -1;
}

}  // namespace

int storeEnvironment(const std::string& key, const std::string& value) {
  if (key.empty() || key.find_first_of("=\n") != std::string::npos || value.find('\n') != std::string::npos)
    return -1;
  const std::lock_guard guard(storeLock);
  auto store = readStore();
  if (!store) return -1;
  (*store)[key] = value;
  return replaceStore(*store) ? 0 : -1;
}

}  // namespace simboard

using namespace simboard;

int sysconf_openenv(void) {
  return takeFault(Fault::EnvOpen) ? -1 : 0;
}

void sysconf_closeenv(void) {
  handedOut.clear();
}

const char* sysconf_getenv(const char* key) {
  if (journalsReads()) JournalLine("env-get").word(key);
  const std::lock_guard guard(storeLock);
  const auto store = readStore();
  if (!store) return nullptr;
  const auto found = store->find(key);
  if (found == store->end()) return nullptr;
  return handedOut.emplace_front(found->second).c_str();
}

int sysconf_setenv(const char* key, const char* value) {
  const bool failed = takeFault(Fault::EnvSet) || storeEnvironment(key, value) != 0;
  if (journalsWrites()) JournalLine("env-set").word(key).word(value).failedIf(failed);
  return failed ? -1 : 0;
}

int sysconf_get_date_ymd(char* text) {
  return localText(Fault::DateText, "%Y-%m-%d", text);
}

int sysconf_get_date_hms(char* text) {
  return localText(Fault::TimeText, "%H:%M:%S", text);
}
