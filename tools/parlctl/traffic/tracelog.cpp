#include "tracelog.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <optional>
#include <sstream>

#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

namespace fs = std::filesystem;
using peer::Error;
using peer::Failure;

constexpr std::size_t kHeader = 32;       // bytes of a file: where its data end, as a number
constexpr std::size_t kPiece = 0x400000;  // of a file at once
constexpr std::array<const char*, 4> kLevelNames{"Error", "Warning", "Debug", "Info"};

// Where the data of a file end; nothing when its header says no number.
std::optional<uint64_t> dataEnd(std::ifstream& file) {
  std::array<char, kHeader> header{};
  if (!file.read(header.data(), header.size())) return std::nullopt;
  uint64_t end = 0;
  const auto [stop, error] = std::from_chars(header.data(), header.data() + header.size(), end);
  if (error != std::errc{} || stop == header.data() || end < kHeader) return std::nullopt;
  return end;
}

// Seconds since 1970 of a civil date, as if it were UTC.
int64_t secondsOf(int year, int month, int day, int hour, int minute, int second) {
  using namespace std::chrono;
  const auto days = sys_days(std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) /
                             std::chrono::day(static_cast<unsigned>(day)));
  return duration_cast<seconds>(days.time_since_epoch()).count() + hour * 3600 + minute * 60 + second;
}

bool isDay(int year, int month, int day) {
  return std::chrono::year_month_day(std::chrono::year(year),
                                     std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day)))
      .ok();
}

bool isTime(int hour, int minute, int second) {
  return hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second <= 60;
}

std::string firstStamp(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  file.seekg(kHeader);
  std::string line;
  std::getline(file, line);
  return line.substr(0, line.find(']'));
}

int64_t firstMoment(const fs::path& path) {
  TraceLine line;
  return parseTraceLine(firstStamp(path) + "] Info:", line) ? line.milliseconds : 0;
}

}  // namespace

bool parseTraceLine(std::string_view text, TraceLine& line) {
  const std::string stamp(text.substr(0, 25));
  int month = 0;
  int day = 0;
  int year = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int milli = 0;
  if (std::sscanf(stamp.c_str(), "[%2d/%2d/%4d %2d:%2d:%2d.%3d", &month, &day, &year, &hour, &minute, &second,
                  &milli) != 7)
    return false;
  if (month < 1 || month > 12 || day < 1 || day > 31) return false;
  line.milliseconds = secondsOf(year, month, day, hour, minute, second) * 1000 + milli;
  line.level = TraceLevel::Info;
  line.text = text;
  line.source.clear();
  line.message.clear();
  const std::size_t close = text.find("] ");
  if (close == std::string_view::npos) return true;
  std::string_view rest = text.substr(close + 2);
  for (std::size_t i = 0; i < kLevelNames.size(); ++i) {
    const std::string name = std::string(kLevelNames[i]) + ':';
    if (!rest.starts_with(name)) continue;
    line.level = static_cast<TraceLevel>(i);
    rest.remove_prefix(name.size());
    break;
  }
  const std::size_t colon = rest.find(" : ");
  if (colon == std::string_view::npos) return true;
  line.source = rest.substr(0, colon);
  rest.remove_prefix(colon + 3);
  const std::size_t digits = rest.find_first_not_of("0123456789");
  line.message = digits == std::string_view::npos ? std::string_view() : rest.substr(digits + 1);
  return true;
}

std::vector<std::string> TraceReader::files() const {
  std::vector<std::pair<int64_t, std::string>> found;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(directory_, error))
    if (entry.path().extension() == ".log" &&
        entry.path().filename().string().find("_info_") != std::string::npos)
      found.emplace_back(firstMoment(entry.path()), entry.path().filename().string());
  if (error) throw Error(Failure::Board, "no trace files in " + directory_.string() + ": " + error.message());
  std::ranges::sort(found);
  std::vector<std::string> names;
  for (auto& [moment, name] : found) names.push_back(std::move(name));
  return names;
}

void TraceReader::readFile(const fs::path& path, std::vector<TraceLine>& lines) {
  std::ifstream file(path, std::ios::binary);
  const auto end = dataEnd(file);
  if (!end) return;
  Place& place = places_[path.filename().string()];
  const std::string begin = firstStamp(path);
  if (place.begin != begin || *end < place.offset) place = {kHeader, begin};
  while (place.offset < *end) {
    std::string piece(static_cast<std::size_t>(std::min<uint64_t>(kPiece, *end - place.offset)), '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(place.offset));
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    piece.resize(static_cast<std::size_t>(file.gcount()));
    const std::size_t whole = piece.rfind('\n');
    if (whole == std::string::npos) return;  // the end of a line is still to come
    place.offset += whole + 1;
    std::istringstream rows(piece.substr(0, whole));
    for (std::string row; std::getline(rows, row);) {
      if (!parseTraceLine(row, last_)) {
        last_.text = row;
        last_.source.clear();
        last_.message = row;
      }
      lines.push_back(last_);
    }
  }
}

std::vector<TraceLine> TraceReader::more() {
  std::vector<TraceLine> lines;
  for (const std::string& name : files()) readFile(directory_ / name, lines);
  return lines;
}

std::string stampText(int64_t milliseconds) {
  const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
  std::tm civil{};
  gmtime_r(&seconds, &civil);
  std::array<char, 40> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%m/%d/%Y %H:%M:%S", &civil);
  std::snprintf(text.data() + length, text.size() - length, ".%03d", static_cast<int>(milliseconds % 1000));
  return text.data();
}

std::string isoText(int64_t milliseconds) {
  auto seconds = static_cast<std::time_t>(milliseconds / 1000);
  std::tm civil{};
  gmtime_r(&seconds, &civil);
  civil.tm_isdst = -1;
  std::string text = timeText(std::mktime(&civil));
  std::array<char, 8> fraction{};
  std::snprintf(fraction.data(), fraction.size(), ".%03d", static_cast<int>(milliseconds % 1000));
  return text.insert(text.size() - 6, fraction.data());
}

int64_t localNow(int64_t clockOffset) {
  const auto seconds = static_cast<std::time_t>(std::time(nullptr) + clockOffset);
  std::tm local{};
  localtime_r(&seconds, &local);
  return (seconds + local.tm_gmtoff) * 1000;
}

int64_t momentOf(const std::string& text, int64_t now) {
  constexpr std::pair<char, int64_t> kUnits[] = {{'s', 1}, {'m', 60}, {'h', 3600}, {'d', 86400}};
  for (const auto& [unit, seconds] : kUnits)
    if (text.size() > 1 && text.back() == unit)
      return now - int64_t{number(text.substr(0, text.size() - 1), 10'000'000)} * seconds * 1000;
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  char more = '\0';
  const int fields = std::sscanf(text.c_str(), "%4d-%2d-%2d%*1[T ]%2d:%2d:%2d%c", &year, &month, &day, &hour,
                                 &minute, &second, &more);
  const bool time = isTime(hour, minute, second);
  if (((fields == 3 && text.size() == 10) || fields == 5 || fields == 6) && isDay(year, month, day) && time)
    return secondsOf(year, month, day, hour, minute, second) * 1000;
  const int parts = std::sscanf(text.c_str(), "%2d:%2d:%2d%c", &hour, &minute, &second, &more);
  if ((parts == 2 || parts == 3) && isTime(hour, minute, second))
    return now / 86'400'000 * 86'400'000 + (hour * 3600 + minute * 60 + second) * 1000;
  throw Error(Failure::Usage, "'" + text + "' is no time: 10m, 2h, 10:20 or 2024-01-02T10:20:30");
}

}  // namespace parlctl
