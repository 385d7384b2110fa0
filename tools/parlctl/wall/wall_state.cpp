#include "wall_state.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace parlctl {

namespace {

using peer::Error;
using peer::Failure;
namespace fs = std::filesystem;

fs::path stateDirectory() {
  const char* state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return fs::path(state) / "parlctl";
  const char* home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? fs::path(home) / ".local/state/parlctl" : fs::path();
}

// What the file is for, whichever way it was named.
std::string boardName(const Options& options) {
  const fs::path named = options.socketPath.empty() ? options.boardDirectory : options.socketPath;
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(named, error);
  return error ? named.string() : whole.string();
}

// The name in 64 bits: FNV-1a.
std::string hashed(const std::string& name) {
  uint64_t hash = 0xCBF29CE484222325;
  for (const char letter : name) hash = (hash ^ static_cast<uint8_t>(letter)) * 0x100000001B3;
  peer::Bytes bytes;
  for (unsigned shift = 64; shift > 0; shift -= 8) bytes.push_back(static_cast<uint8_t>(hash >> (shift - 8)));
  return peer::toHex(bytes);
}

}  // namespace

std::string keptWallPath(const Options& options) {
  const fs::path directory = stateDirectory();
  return directory.empty() ? "" : (directory / ("wall-" + hashed(boardName(options)) + ".json")).string();
}

std::optional<KeptWall> keptWall(const Options& options) {
  const std::string path = keptWallPath(options);
  std::ifstream file(path);
  if (path.empty() || !file) return std::nullopt;
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const Json kept = Json::parse(text, nullptr, false);
  const auto field = [&kept](const char* name) {
    return kept.is_object() && kept.contains(name) && kept[name].is_string() ? kept[name].get<std::string>()
                                                                             : "";
  };
  const std::string record = field("record");
  if (field("board") != boardName(options) || record.size() != 2 * WallRecord::kSize)
    throw Error(Failure::Board, path + " does not hold the previous wall of this board");
  return KeptWall{WallRecord(peer::fromHex(record)), field("time")};
}

std::string keepWall(const Options& options, const WallRecord& record) {
  const std::string path = keptWallPath(options);
  if (path.empty()) return "neither XDG_STATE_HOME nor HOME is set";
  std::error_code error;
  fs::create_directories(fs::path(path).parent_path(), error);
  const std::string aside = path + ".new";
  std::ofstream file(aside);
  file << Json{{"board", boardName(options)}, {"time", timeText()}, {"record", peer::toHex(record.bytes())}}
              .dump(1)
       << '\n'
       << std::flush;
  file.close();
  if (file) fs::rename(aside, path, error);
  return file && !error ? "" : "cannot write " + path;
}

}  // namespace parlctl
