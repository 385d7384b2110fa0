// What the constexpr tables share: padding to a fixed number of rows, and the checks that the compiler makes
// of them.
#pragma once

#include <array>
#include <cstddef>

namespace ORVE_MCUC {

// A table of N rows that begins with the given rows; the rest is empty, so that the first empty row ends it.
template <std::size_t N, class Row, std::size_t Used>
constexpr std::array<Row, N> padded(const std::array<Row, Used>& rows) {
  static_assert(Used < N, "no room for the empty row that ends the table");
  std::array<Row, N> table{};
  for (std::size_t i = 0; i < Used; ++i) table[i] = rows[i];
  return table;
}

// Whether no two rows have the same value of a member.
template <class Table, class Member>
constexpr bool allDiffer(const Table& rows, Member member) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      if (rows[i].*member == rows[k].*member) return false;
    }
  }
  return true;
}

// Whether the values of a member ascend, each above the one before.
template <class Table, class Member>
constexpr bool ascends(const Table& rows, Member member) {
  for (std::size_t i = 1; i < rows.size(); ++i) {
    if (!(rows[i - 1].*member < rows[i].*member)) return false;
  }
  return true;
}

}  // namespace ORVE_MCUC
