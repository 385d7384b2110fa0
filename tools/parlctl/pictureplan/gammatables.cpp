#include "gammatables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "mcucdatablock.h"
#include "peer/error.h"

namespace parlctl {

namespace {

using ORVE_MCUC::kGammaEntries;
using Row = std::vector<uint32_t>;
constexpr uint32_t kFullScale = 65535;

[[noreturn]] void refuse(const std::string& name, const std::string& why) {
  throw peer::Error(peer::Failure::Usage, name + ": " + why);
}

bool isSeparator(char letter) {
  return letter == ',' || letter == ';' || letter == ' ' || letter == '\t' || letter == '\r';
}

// The numbers of a line; nothing that is none may stand between them.
Row numbersOf(const std::string& line, const std::string& place) {
  Row row;
  const char* at = line.data();
  const char* end = at + line.size();
  while (true) {
    at = std::find_if_not(at, end, isSeparator);
    if (at == end) return row;
    uint32_t value = 0;
    const auto [stop, error] = std::from_chars(at, end, value);
    if (error != std::errc{} || (stop != end && !isSeparator(*stop)) || value > kFullScale)
      refuse(place, "not a number from 0 to 65535");
    row.push_back(value);
    at = stop;
  }
}

bool isHead(const std::string& line) {
  const auto first = std::find_if_not(line.begin(), line.end(), isSeparator);
  return first != line.end() && (*first < '0' || *first > '9') && *first != '-';
}

std::vector<Row> rowsOf(const std::string& text, const std::string& name) {
  std::vector<Row> rows;
  std::istringstream lines(text);
  std::size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (rows.empty() && isHead(line)) continue;
    Row row = numbersOf(line, name + " line " + std::to_string(number));
    if (!row.empty()) rows.push_back(std::move(row));
  }
  return rows;
}

// One table in lines of any length; empty when the numbers are not those of one.
GammaCurve oneTable(const std::vector<Row>& rows) {
  GammaCurve curve;
  for (const Row& row : rows)
    for (const uint32_t value : row) curve.push_back(static_cast<uint16_t>(value));
  return curve.size() == kGammaEntries ? curve : GammaCurve{};
}

template <class Light>
GammaCurve curveOf(Light light) {
  GammaCurve curve(kGammaEntries);
  for (std::size_t i = 0; i < kGammaEntries; ++i) {
    const double signal = static_cast<double>(i) / (kGammaEntries - 1);
    curve[i] = static_cast<uint16_t>(std::lround(std::clamp(light(signal), 0.0, 1.0) * kFullScale));
  }
  return curve;
}

}  // namespace

GammaTables gammaOfText(const std::string& text, const std::string& name) {
  const std::vector<Row> rows = rowsOf(text, name);
  if (const GammaCurve curve = oneTable(rows); !curve.empty()) return {curve, curve, curve};
  const std::size_t columns = rows.empty() ? 0 : rows.front().size();
  if (columns == 0 || columns > 4) refuse(name, "neither 4096 numbers nor lines of one to four");
  const std::size_t shift = columns % 2 == 0 ? 1 : 0;
  GammaTables tables;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string place = name + " entry " + std::to_string(i);
    if (rows[i].size() != columns) refuse(place, "not as many numbers as before");
    if (shift != 0 && rows[i][0] != i) refuse(place, "entries do not count from 0");
    for (std::size_t channel = 0; channel < tables.size(); ++channel)
      tables[channel].push_back(static_cast<uint16_t>(rows[i][shift + (columns > 2 ? channel : 0)]));
  }
  return tables;
}

void checkGamma(const GammaTables& tables, const std::string& name) {
  for (std::size_t channel = 0; channel < tables.size(); ++channel) {
    const GammaCurve& curve = tables[channel];
    const std::string place = name + ": " + kChannelNames[channel];
    if (curve.size() != kGammaEntries)
      refuse(place,
             std::to_string(curve.size()) + " entries, and a table has " + std::to_string(kGammaEntries));
    const auto fall = std::is_sorted_until(curve.begin(), curve.end());
    if (fall != curve.end())
      refuse(place, "entry " + std::to_string(fall - curve.begin()) + " is below the one before");
    if (curve.front() != 0 || curve.back() != kFullScale)
      refuse(place, "runs from " + std::to_string(curve.front()) + " to " + std::to_string(curve.back()) +
                        " instead of from 0 to 65535");
  }
}

std::string textOfGamma(const GammaCurve& curve) {
  std::string text = "entry,light";
  for (std::size_t i = 0; i < curve.size(); ++i)
    text += '\n' + std::to_string(i) + ',' + std::to_string(curve[i]);
  return text;
}

peer::Bytes bytesOfGamma(const GammaCurve& curve) {
  peer::Bytes bytes(2 * curve.size());
  for (std::size_t i = 0; i < curve.size(); ++i) ORVE_MCUC::putLe16(std::span(bytes), 2 * i, curve[i]);
  return bytes;
}

GammaCurve gammaOfBytes(std::span<const uint8_t> bytes) {
  GammaCurve curve(bytes.size() / 2);
  for (std::size_t i = 0; i < curve.size(); ++i) curve[i] = ORVE_MCUC::le16(bytes, 2 * i);
  return curve;
}

GammaCurve builtInGamma() {
  static constexpr auto kTable = ORVE_MCUC::gammacurve::defaultTable();
  return gammaOfBytes(kTable);
}

GammaCurve powerGamma(double exponent) {
  return curveOf([exponent](double signal) { return std::pow(signal, exponent); });
}

GammaCurve pqGamma(double peak) {
  constexpr double m1 = 2610.0 / 16384, m2 = 2523.0 / 32;
  constexpr double c1 = 3424.0 / 4096, c2 = 2413.0 / 128, c3 = 2392.0 / 128;
  return curveOf([peak](double signal) {
    const double power = std::pow(signal, 1 / m2);
    return 10000 / peak * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1 / m1);
  });
}

GammaCurve hlgGamma() {
  constexpr double a = 0.17883277, b = 1 - 4 * a;
  const double c = 0.5 - a * std::log(4 * a);
  return curveOf([c](double signal) {
    return signal <= 0.5 ? signal * signal / 3 : (std::exp((signal - c) / a) + b) / 12;
  });
}

double exponentOf(const GammaCurve& curve) {
  const std::size_t middle = curve.size() / 2;
  if (curve.size() != kGammaEntries || curve[middle] == 0 || curve[middle] == kFullScale) return 0;
  return std::log(static_cast<double>(curve[middle]) / kFullScale) /
         std::log(static_cast<double>(middle) / (kGammaEntries - 1));
}

}  // namespace parlctl
