// The sources of this repository as the checks of the house see them.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace house {

/** A function by its first line (from 1) and its length with signature and closing brace. */
struct Function {
  std::size_t line;
  std::size_t length;
};

struct Source {
  std::size_t lines = 0;
  std::vector<std::string> includes;  // the quoted ones, as they are written
  std::vector<Function> functions;
};

/** The text with comments, strings and preprocessor lines as blanks; its lines stay where they are. */
std::string codeOnly(std::string_view text);

/** Functions with a body, the outermost ones: a lambda counts with the function around it. */
std::vector<Function> functionsOf(const std::string& code);

Source parse(std::string_view text);

/** Every *.h and *.cpp of these folders, by its path relative to root. */
std::map<std::string, Source> readTree(const std::string& root, const std::vector<std::string>& folders);

/** The path of the file that an include of this file names; empty if the repository has none. */
std::string resolve(const std::map<std::string, Source>& tree, const std::string& includer,
                    const std::string& included);

/** What each file includes, by path; what the repository does not hold is left out. */
using Graph = std::map<std::string, std::set<std::string>>;
Graph includeGraph(const std::map<std::string, Source>& tree);

/** A circle of includes as its files in order, empty if there is none. */
std::vector<std::string> circleIn(const Graph& graph);

}  // namespace house
