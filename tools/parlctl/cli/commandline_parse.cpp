// Reading the command line: the grammar is the library's, the words are this tool's.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <numeric>

#include "commandline.h"
#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

using Words = std::vector<std::string>;

constexpr char kNumberMark = '\x01';

std::string joined(const Words& list, const char* between) {
  std::string text;
  for (const std::string& word : list) text += (text.empty() ? "" : between) + word;
  return text;
}

std::string suggestion(const std::string& word, const Words& candidates) {
  const std::string hit = nearest(word, candidates);
  return hit.empty() ? "" : "; did you mean '" + hit + "'?";
}

// What is wrong with a value; empty: nothing.
std::string objection(const Argument& argument, const std::string& value) {
  if (!argument.choices.empty() && std::ranges::find(argument.choices, value) == argument.choices.end())
    return "'" + value + "' is not one of: " + joined(argument.choices, ", ") +
           suggestion(value, argument.choices);
  if (!std::holds_alternative<uint32_t*>(argument.target)) return {};
  try {
    if (number(value) >= argument.first && number(value) <= argument.last) return {};
    return value + " is not from " + std::to_string(argument.first) + " to " + std::to_string(argument.last);
  } catch (const peer::Error& error) {
    return error.what();
  }
}

// The library's tree beside ours.
class Grammar {
 public:
  explicit Grammar(const Verb& root) : root_(root), app_(root.text, root.name) {
    mirror(root, app_);
    app_.add_flag("--version");
  }

  Asked read(int argc, char** argv);

 private:
  void mirror(const Verb& verb, CLI::App& app);
  void add(const Argument& argument, CLI::App& app);
  const Verb& deepest() const;
  std::string path() const;
  std::string name() const { return root_.name + (path().empty() ? "" : ' ' + path()); }
  Words optionsOf(const Verb& verb) const;
  std::string unexpected(const std::string& word) const;
  std::string missing() const;
  std::string wordsOf(const CLI::ParseError& error) const;

  const Verb& root_;
  CLI::App app_;
};

void Grammar::mirror(const Verb& verb, CLI::App& app) {
  for (const Argument& argument : verb.arguments) add(argument, app);
  for (const Argument& argument : verb.arguments)
    for (const std::string& other : argument.excludes)
      app.get_option(argument.name)->excludes(app.get_option(other));
  for (const Verb& inner : verb.verbs) mirror(inner, *app.add_subcommand(inner.name)->fallthrough());
  if (!verb.verbs.empty() && !verb.action) app.require_subcommand(1);
}

void Grammar::add(const Argument& argument, CLI::App& app) {
  CLI::Option* option = nullptr;
  const std::string name =
      (argument.letter == '\0' ? "" : std::string("-") + argument.letter + ',') + argument.name;
  if (auto* const* flag = std::get_if<bool*>(&argument.target)) option = app.add_flag(name, **flag);
  if (auto* const* text = std::get_if<std::string*>(&argument.target)) option = app.add_option(name, **text);
  if (auto* const* value = std::get_if<uint32_t*>(&argument.target)) option = app.add_option(name, **value);
  if (auto* const* list = std::get_if<Words*>(&argument.target)) option = app.add_option(name, **list);
  if (argument.required) option->required();
  if (std::holds_alternative<bool*>(argument.target)) return;
  const auto check = [&argument](std::string& value) {
    if (value.starts_with(kNumberMark)) value.erase(0, 1);
    return objection(argument, value);
  };
  option->transform(CLI::Validator(check, ""));
}

const Verb& Grammar::deepest() const {
  const Verb* verb = &root_;
  for (const CLI::App* app = &app_; !app->get_subcommands().empty();) {
    app = app->get_subcommands().back();
    verb = verb->find(app->get_name());
  }
  return *verb;
}

std::string Grammar::path() const {
  std::string text;
  for (const CLI::App* app = &app_; !app->get_subcommands().empty();) {
    app = app->get_subcommands().back();
    text += (text.empty() ? "" : " ") + app->get_name();
  }
  return text;
}

Words Grammar::optionsOf(const Verb& verb) const {
  Words names{"--help", "--version"};
  for (const Verb* each : {&verb, &root_})
    for (const Argument& argument : each->arguments)
      if (argument.isOption()) names.push_back(argument.name);
  return names;
}

std::string Grammar::unexpected(const std::string& word) const {
  const Verb& verb = deepest();
  if (word.starts_with('-'))
    return "'" + name() + "' has no option '" + word + "'" +
           suggestion(word.substr(0, word.find('=')), optionsOf(verb));
  if (verb.verbs.empty()) return "'" + word + "' is one argument too many for '" + name() + "'";
  Words verbs;
  for (const Verb& inner : verb.verbs) verbs.push_back(inner.name);
  return "'" + name() + "' has no verb '" + word + "'" + suggestion(word, verbs) +
         "\nIts verbs: " + joined(verbs, ", ");
}

std::string Grammar::missing() const {
  const Verb& verb = deepest();
  Words verbs;
  for (const Verb& inner : verb.verbs) verbs.push_back(inner.name);
  if (!verbs.empty()) return "'" + name() + "' needs a verb: " + joined(verbs, ", ");
  Words operands;
  for (const Argument& argument : verb.arguments)
    if (argument.required) operands.push_back(argument.name);
  return "'" + name() + "' needs " + joined(operands, " ") + "; see 'parlctl " + path() + " --help'";
}

std::string Grammar::wordsOf(const CLI::ParseError& error) const {
  const auto kind = static_cast<CLI::ExitCodes>(error.get_exit_code());
  const std::string told = error.what();
  const std::string option = told.substr(0, told.find_first_of(": "));
  switch (kind) {
    case CLI::ExitCodes::RequiredError:
    case CLI::ExitCodes::ExtrasError: {
      const Words extras = app_.remaining(true);
      return extras.empty() ? missing() : unexpected(extras.front());
    }
    case CLI::ExitCodes::ExcludesError:
      return option + " and " + told.substr(told.rfind(' ') + 1) + " exclude each other";
    case CLI::ExitCodes::ArgumentMismatch:
      if (told.find("At Most") != std::string::npos) return option + " is given more than once";
      return option + (told.find("override") != std::string::npos ? " takes no value" : " needs a value");
    case CLI::ExitCodes::ValidationError:
      return told;  // ours: see objection
    default:
      return "a value of '" + name() + "' cannot be read";
  }
}

// The library takes "-30" for an option; a number is marked on its way through it.
Words marked(int argc, char** argv) {
  Words words;
  for (int i = argc; --i > 0;) {  // it wants them backwards
    const std::string word = argv[i];
    const bool isNumber = word.size() > 1 && word[0] == '-' && word[1] >= '0' && word[1] <= '9';
    words.push_back(isNumber ? kNumberMark + word : word);
  }
  return words;
}

Asked Grammar::read(int argc, char** argv) {
  try {
    app_.parse(marked(argc, argv));
    Asked asked{&deepest(), path()};
    asked.version = app_.count("--version") != 0;
    return asked;
  } catch (const CLI::CallForHelp&) {
    return {.verb = &deepest(), .path = path(), .help = true};
  } catch (const CLI::ParseError& error) {
    if (app_.count("--version") != 0) return {.verb = &root_, .path = "", .version = true};
    throw UsageError{wordsOf(error), path()};
  }
}

// Letters to change, add, leave out or swap.
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    const std::vector<std::size_t> above = row;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = above;
  }
  return row.back();
}

}  // namespace

Asked parse(const Verb& root, int argc, char** argv) {
  return Grammar(root).read(argc, argv);
}

std::string nearest(const std::string& word, const Words& candidates) {
  std::string hit;
  std::size_t best = std::max<std::size_t>(2, word.size() / 3) + 1;
  for (const std::string& candidate : candidates) {
    const std::size_t steps = word.size() > 1 && candidate.starts_with(word) ? 1 : distance(word, candidate);
    if (steps >= best || steps >= candidate.size()) continue;
    best = steps;
    hit = candidate;
  }
  return hit;
}

}  // namespace parlctl
