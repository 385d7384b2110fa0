#include "sources.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace house {
namespace {

/** The end of what begins at `at` and is no code: a comment, a string, a character, a preprocessor line. */
std::optional<std::size_t> endOfNoCode(std::string_view text, std::size_t at) {
  const auto after = [&](std::string_view mark, std::size_t from) {
    const std::size_t found = text.find(mark, from);
    return found == text.npos ? text.size() : found + mark.size();
  };
  const std::string_view rest = text.substr(at);
  if (rest.starts_with("//")) return std::min(text.find('\n', at), text.size());
  if (rest.starts_with("/*")) return after("*/", at + 2);
  if (rest.starts_with("R\"")) {
    const std::string_view mark = rest.substr(2, rest.find('(') - 2);
    return after(")" + std::string(mark) + "\"", at + 2);
  }
  // An apostrophe between digits separates them.
  const bool separator =
      rest.starts_with('\'') && at > 0 && std::isxdigit(static_cast<unsigned char>(text[at - 1]));
  if ((rest.starts_with('"') || rest.starts_with('\'')) && !separator) {
    std::size_t end = at + 1;
    while (end < text.size() && text[end] != text[at] && text[end] != '\n') end += text[end] == '\\' ? 2 : 1;
    return std::min(end + 1, text.size());
  }
  if (rest.starts_with('#')) {
    std::size_t end = text.find('\n', at);
    while (end != text.npos && text[end - 1] == '\\') end = text.find('\n', end + 1);
    return std::min(end, text.size());
  }
  return std::nullopt;
}

/** Whether a brace behind these words opens a function's body: not a namespace, a class, a value. */
bool opensFunction(std::string words) {
  words.erase(0, words.find_first_not_of(" \n"));
  for (const std::string_view other : {"namespace", "class", "struct", "enum", "union"})
    if (words.starts_with(other)) return false;
  const std::size_t parameters = words.find('(');
  return parameters != words.npos && words.substr(0, parameters).find(" = ") == words.npos;
}

std::size_t lineOf(const std::string& code, std::size_t at) {
  return 1 + static_cast<std::size_t>(
                 std::count(code.begin(), code.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

bool visit(const Graph& graph, const std::string& file, std::set<std::string>& done,
           std::vector<std::string>& path) {
  if (const auto again = std::ranges::find(path, file); again != path.end()) {
    path.erase(path.begin(), again);
    return true;
  }
  if (!done.insert(file).second) return false;
  path.push_back(file);
  const auto found = graph.find(file);
  if (found != graph.end())
    for (const std::string& next : found->second)
      if (visit(graph, next, done, path)) return true;
  path.pop_back();
  return false;
}

}  // namespace

std::string codeOnly(std::string_view text) {
  std::string code(text);
  for (std::size_t at = 0; at < text.size();) {
    const auto end = endOfNoCode(text, at);
    if (end)
      std::replace_if(
          code.begin() + static_cast<std::ptrdiff_t>(at), code.begin() + static_cast<std::ptrdiff_t>(*end),
          [](char c) { return c != '\n'; }, ' ');
    at = end ? *end : at + 1;
  }
  return code;
}

std::vector<Function> functionsOf(const std::string& code) {
  std::vector<Function> functions;
  std::size_t wordsFrom = 0;    // where the statement begins that a brace may end
  std::size_t depthInside = 0;  // open braces inside of a function, its own included
  std::size_t parentheses = 0;  // a brace between parentheses is a value
  std::size_t firstLine = 0;
  for (std::size_t at = 0; at < code.size(); ++at) {
    const char c = code[at];
    if (depthInside > 0) {
      depthInside += c == '{' ? 1 : 0;
      depthInside -= c == '}' ? 1 : 0;
      if (depthInside > 0) continue;
      // A member's initializer in braces: the body is still to come.
      const std::size_t next = code.find_first_not_of(" \n", at + 1);
      if (next != code.npos && (code[next] == ',' || code[next] == '{')) continue;
      functions.push_back({firstLine, lineOf(code, at) - firstLine + 1});
    }
    parentheses += c == '(' ? 1 : 0;
    parentheses -= c == ')' && parentheses > 0 ? 1 : 0;
    if (c == '{' && parentheses == 0 && opensFunction(code.substr(wordsFrom, at - wordsFrom))) {
      depthInside = 1;
      firstLine = lineOf(code, code.find_first_not_of(" \n", wordsFrom));
    } else if ((c == '{' || c == '}' || c == ';') && parentheses == 0)
      wordsFrom = at + 1;
  }
  return functions;
}

Source parse(std::string_view text) {
  Source source;
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line); ++source.lines)
    if (line.starts_with("#include \"")) source.includes.push_back(line.substr(10, line.find('"', 10) - 10));
  source.functions = functionsOf(codeOnly(text));
  return source;
}

std::map<std::string, Source> readTree(const std::string& root, const std::vector<std::string>& folders) {
  std::map<std::string, Source> tree;
  for (const std::string& folder : folders) {
    if (!std::filesystem::exists(root + "/" + folder)) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root + "/" + folder)) {
      const std::string kind = entry.path().extension();
      if (kind != ".h" && kind != ".cpp") continue;
      std::ifstream stream(entry.path());
      const std::string text{std::istreambuf_iterator<char>(stream), {}};
      tree[std::filesystem::relative(entry.path(), root)] = parse(text);
    }
  }
  return tree;
}

std::string resolve(const std::map<std::string, Source>& tree, const std::string& includer,
                    const std::string& included) {
  std::string beside = (std::filesystem::path(includer).parent_path() / included).lexically_normal();
  if (tree.contains(beside)) return beside;
  std::string found;
  for (const auto& [path, source] : tree)
    if (path.ends_with("/" + included) && (found.empty() || path.size() < found.size())) found = path;
  return found;
}

Graph includeGraph(const std::map<std::string, Source>& tree) {
  Graph graph;
  for (const auto& [path, source] : tree)
    for (const std::string& included : source.includes)
      if (const std::string file = resolve(tree, path, included); !file.empty()) graph[path].insert(file);
  return graph;
}

std::vector<std::string> circleIn(const Graph& graph) {
  std::set<std::string> done;
  std::vector<std::string> path;
  for (const auto& [file, included] : graph)
    if (visit(graph, file, done, path)) return path;
  return {};
}

}  // namespace house
