#include "helptext.h"

#include <algorithm>
#include <sstream>

#include "outcome.h"

namespace parlctl {

namespace {

constexpr std::size_t kTextColumn = 20;

std::string operandText(const Argument& argument) {
  const bool many = std::holds_alternative<std::vector<std::string>*>(argument.target);
  const std::string text = argument.name + (many ? "..." : "");
  return argument.required ? text : '[' + text + ']';
}

// A term and its explanation beside it, or below where the term is long.
std::string row(const std::string& term, const std::string& text) {
  std::string line = "  " + term;
  if (line.size() + 2 > kTextColumn)
    line += '\n' + std::string(kTextColumn, ' ');
  else
    line.resize(kTextColumn, ' ');
  const std::size_t lead = line.rfind('\n') == std::string::npos ? 0 : line.rfind('\n') + 1;
  return line.substr(0, lead) + wrapped(line.substr(lead) + text, kTextColumn) + '\n';
}

std::string argumentRows(const Verb& verb, bool options) {
  std::string text;
  for (const Argument& argument : verb.arguments)
    if (argument.isOption() == options) text += row(argumentTitle(argument), argumentText(argument));
  return text;
}

std::string verbRows(const Verb& verb) {
  std::string text;
  for (const Verb& inner : verb.verbs) text += row(inner.name, inner.text);
  return text;
}

std::string section(const char* title, const std::string& rows) {
  return rows.empty() ? "" : '\n' + std::string(title) + ":\n" + rows;
}

std::string statusRows() {
  std::string text;
  for (const StatusText& status : kExitStatuses)
    text += row(std::to_string(status.status), std::string(status.text));
  return text;
}

}  // namespace

std::string argumentTitle(const Argument& argument) {
  if (!argument.isOption()) return operandText(argument);
  const std::string letter = argument.letter == '\0' ? "" : std::string("-") + argument.letter + ", ";
  return letter + argument.name + (argument.value.empty() ? "" : ' ' + argument.value);
}

std::string argumentText(const Argument& argument) {
  std::string text = argument.text;
  if (!argument.choices.empty()) {
    text += ": ";
    for (const std::string& choice : argument.choices)
      text += (&choice == &argument.choices[0] ? "" : ", ") + choice;
  }
  if (!argument.standard.empty()) text += " [" + argument.standard + ']';
  return text;
}

std::string wrapped(const std::string& text, std::size_t indent) {
  std::string all;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!all.empty()) all += '\n';
    while (line.size() > kColumns) {
      std::size_t at = line.rfind(' ', kColumns);
      if (at == std::string::npos || at <= indent) break;
      all += line.substr(0, line.find_last_not_of(' ', at) + 1) + '\n';
      line = std::string(indent, ' ') + line.substr(at + 1);
    }
    all += line;
  }
  return all;
}

std::string synopsis(const Verb& verb) {
  if (!verb.verbs.empty()) return "VERB ...";
  std::string text;
  bool options = false;
  for (const Argument& argument : verb.arguments) {
    options = options || argument.isOption();
    if (!argument.isOption()) text += (text.empty() ? "" : " ") + operandText(argument);
  }
  return text + (options ? (text.empty() ? "[OPTION...]" : " [OPTION...]") : "");
}

std::string helpText(const Verb& root, const Verb& verb, const std::string& path) {
  const bool isRoot = &root == &verb;
  const std::string name = root.name + (path.empty() ? "" : ' ' + path);
  std::string text = wrapped("usage: " + name + ' ' + synopsis(verb)) + "\n\n" + wrapped(verb.text) + '\n';
  text += section(isRoot ? "Nouns and verbs" : "Verbs", verbRows(verb));
  text += section("Arguments", argumentRows(verb, false));
  text +=
      section(isRoot ? "Options, which may stand behind a verb, too" : "Options", argumentRows(verb, true));
  for (const std::string& note : verb.notes) text += '\n' + wrapped(note) + '\n';
  std::string examples;
  for (const std::string& example : verb.examples) examples += "  " + root.name + ' ' + example + '\n';
  text += section(verb.examples.size() == 1 ? "Example" : "Examples", examples);
  if (isRoot) text += section("Exit status", statusRows());
  return text;
}

}  // namespace parlctl
