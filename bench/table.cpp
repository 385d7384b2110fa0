#include "table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "rounds.h"

namespace bench {
namespace {

constexpr std::array kVerdicts{"", "ok", "missed", "not measured"};

std::string number(double value, const std::string& unit = "") {
  std::array<char, 64> text{};
  const int decimals = value >= 1000 ? 0 : value >= 10 ? 1 : 3;
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return unit.empty() ? text.data() : text.data() + (" " + unit);
}

std::string goalText(const Row& row) {
  switch (row.goal) {
    case Goal::None:
      return "";
    case Goal::ValueAtMost:
      return "<= " + number(row.limit, row.unit);
    case Goal::RatioAtMost:
      return "<= x" + number(row.limit);
    case Goal::RatioAtLeast:
      return ">= x" + number(row.limit);
  }
  return "";
}

const char* verdictText(const Row& row) {
  return kVerdicts[static_cast<std::size_t>(row.verdict())];
}

using Cells = std::array<std::string, 7>;

Cells cells(const Row& row) {
  const bool ratio = row.ratio > 0;
  return {row.measure,
          row.value > 0 || row.problem.empty() ? number(row.value, row.unit) : row.problem,
          row.yardstick,
          row.yardstick.empty() ? ""
          : ratio               ? number(row.yardstickValue, row.unit)
                                : row.problem,
          ratio ? number(row.ratio) : "",
          goalText(row),
          verdictText(row)};
}

}  // namespace

Row::Verdict Row::verdict() const {
  if (goal == Goal::None) return problem.empty() ? Verdict::NotAsked : Verdict::NotMeasured;
  if (!problem.empty()) return Verdict::NotMeasured;
  const bool reached = goal == Goal::ValueAtMost   ? value <= limit
                       : goal == Goal::RatioAtMost ? ratio <= limit
                                                   : ratio >= limit;
  return reached ? Verdict::Ok : Verdict::Missed;
}

Row against(std::string measure, std::string unit, const std::vector<double>& value, std::string yardstick,
            const std::vector<double>& yardstickValue, Goal goal, double limit) {
  std::vector<double> ratios;
  for (std::size_t i = 0; i < std::min(value.size(), yardstickValue.size()); ++i)
    ratios.push_back(value[i] / yardstickValue[i]);
  return {std::move(measure),
          std::move(unit),
          median(value),
          std::move(yardstick),
          median(yardstickValue),
          median(ratios),
          goal,
          limit,
          {}};
}

Row notInstalled(std::string measure, std::string unit, const std::vector<double>& value,
                 std::string yardstick) {
  return {std::move(measure), std::move(unit), median(value), std::move(yardstick), 0, 0, Goal::None, 0,
          "not installed"};
}

Row alone(std::string measure, std::string unit, double value, Goal goal, double limit) {
  return {std::move(measure), std::move(unit), value, {}, 0, 0, goal, limit, {}};
}

std::string Table::text() const {
  std::vector<Cells> lines{{"measure", "value", "yardstick", "its value", "ratio", "goal", "verdict"}};
  for (const Row& row : rows_) lines.push_back(cells(row));
  std::array<std::size_t, std::tuple_size_v<Cells>> widths{};
  for (const Cells& line : lines)
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());

  std::string text;
  for (const Cells& line : lines) {
    std::string padded;
    for (std::size_t i = 0; i < line.size(); ++i)
      padded += line[i] + std::string(widths[i] - line[i].size() + 2, ' ');
    text += padded.substr(0, padded.find_last_not_of(' ') + 1) + '\n';
  }
  return text;
}

std::string Table::json() const {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const Row& row : rows_) {
    rows.push_back({{"measure", row.measure}, {"unit", row.unit}, {"value", row.value}});
    auto& out = rows.back();
    if (!row.yardstick.empty()) out["yardstick"] = row.yardstick;
    if (row.ratio > 0) out["yardstick_value"] = row.yardstickValue;
    if (row.ratio > 0) out["ratio"] = row.ratio;
    if (row.goal != Goal::None) out["goal"] = goalText(row);
    if (!row.problem.empty()) out["problem"] = row.problem;
    if (row.verdict() != Row::Verdict::NotAsked) out["verdict"] = verdictText(row);
  }
  return rows.dump(2) + '\n';
}

}  // namespace bench
