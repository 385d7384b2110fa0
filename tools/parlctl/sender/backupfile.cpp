#include "backupfile.h"

#include <algorithm>
#include <fstream>

#include "cardfeatures.h"

namespace parlctl {

namespace {

using peer::Bytes;
using peer::Error;
using peer::Failure;

constexpr const char* kFormat = "parlctl.backup";
constexpr int kVersion = 1;
constexpr std::size_t kMostBytes = 0x200000;  // of a file; a whole one has a quarter of it

[[noreturn]] void refuse(const std::string& why) {
  throw Error(Failure::Usage, "this is no backup: " + why);
}

std::string stringIn(const Json& object, const char* name) {
  const auto found = object.find(name);
  return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

Bytes sectionBytes(const std::string& name, const Json& value) {
  const auto* section = std::ranges::find(kBackupSections, name, &BackupSection::name);
  if (section == kBackupSections.end()) refuse("it has a section '" + name + "'");
  if (!value.is_string() || value.get_ref<const std::string&>().size() != 2 * section->length)
    refuse("its section '" + name + "' has not " + std::to_string(section->length) + " bytes");
  return peer::fromHex(value.get<std::string>());
}

}  // namespace

Bytes readSection(peer::Peer& daemon, const BackupSection& section) {
  if (section.restoring == Restoring::Features) return readImage(daemon);
  Bytes bytes;
  for (uint32_t at = 0; at < section.length; at += section.block) {
    const Bytes piece = daemon.read(section.address + at, std::min(section.block, section.length - at));
    bytes.insert(bytes.end(), piece.begin(), piece.end());
  }
  return bytes;
}

Backup readBackup(peer::Peer& daemon) {
  Backup backup{.time = timeText(), .sections = {}};
  for (const BackupSection& section : kBackupSections)
    backup.sections.emplace(section.name, readSection(daemon, section));
  return backup;
}

std::string backupText(const Backup& backup) {
  Json file{{"format", kFormat}, {"version", kVersion}, {"time", backup.time}, {"sections", Json::object()}};
  for (const BackupSection& section : kBackupSections) {
    const auto found = backup.sections.find(section.name);
    if (found != backup.sections.end())
      file["sections"][std::string(section.name)] = peer::toHex(found->second);
  }
  return file.dump(1) + '\n';
}

Backup backupOfText(const std::string& text) {
  const Json file = Json::parse(text, nullptr, false);
  if (!file.is_object() || stringIn(file, "format") != kFormat) refuse("its format is another one");
  if (file.value("version", Json()) != kVersion) refuse("its version is another one");
  const auto sections = file.find("sections");
  if (sections == file.end() || !sections->is_object() || sections->empty()) refuse("it has no sections");
  Backup backup{.time = stringIn(file, "time"), .sections = {}};
  for (const auto& [name, value] : sections->items())
    backup.sections.emplace(name, sectionBytes(name, value));
  return backup;
}

Backup backupOfFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(kMostBytes + 1, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
  if (text.empty()) throw Error(Failure::Usage, path + " cannot be read, or is empty");
  if (text.size() > kMostBytes) refuse("it is longer than any");
  return backupOfText(text);
}

}  // namespace parlctl
