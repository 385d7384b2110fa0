// The result: one row a measure, with the yardstick beside it and the goal it has to reach.
#pragma once

#include <string>
#include <vector>

namespace bench {

enum class Goal { None, ValueAtMost, RatioAtMost, RatioAtLeast };

struct Row {
  std::string measure;
  std::string unit;
  double value = 0;
  std::string yardstick;  // empty: the value stands alone
  double yardstickValue = 0;
  double ratio = 0;  // 0: there is none
  Goal goal = Goal::None;
  double limit = 0;
  std::string problem;  // why there is no value or no yardstick

  enum class Verdict { NotAsked, Ok, Missed, NotMeasured };
  Verdict verdict() const;
};

// Rows of a measure over a yardstick, both measured in the same rounds. The ratio is the median of the
// rounds' ratios, so that a slow round does not count on one side only.
Row against(std::string measure, std::string unit, const std::vector<double>& value, std::string yardstick,
            const std::vector<double>& yardstickValue, Goal goal, double limit);
// A row whose optional yardstick is not there.
Row notInstalled(std::string measure, std::string unit, const std::vector<double>& value,
                 std::string yardstick);
// A row of one number.
Row alone(std::string measure, std::string unit, double value, Goal goal = Goal::None, double limit = 0);

class Table {
 public:
  void add(Row row) { rows_.push_back(std::move(row)); }
  std::string text() const;
  std::string json() const;

 private:
  std::vector<Row> rows_;
};

}  // namespace bench
