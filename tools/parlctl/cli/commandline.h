// The command line as data: nouns, verbs and their arguments. The parser, the help, the man pages and the
// completion are all made of it.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace parlctl {

struct Argument {
  std::string name;   // "--port"; of an operand its placeholder, "RANGE"
  std::string value;  // placeholder of an option's value, "N"; empty for flags and operands
  std::string text;   // for people, without a stop at the end
  std::variant<bool*, std::string*, uint32_t*, std::vector<std::string>*> target;  // where it goes
  std::string standard{};              // what holds without it, as the help shows it
  std::vector<std::string> choices{};  // empty: anything
  std::vector<std::string> excludes{};
  uint32_t first = 0;  // of a number
  uint32_t last = 0xFFFFFFFF;
  char letter = '\0';  // "-o" beside "--output"
  bool required = false;
  bool file = false;  // it names a file: completion offers some

  bool isOption() const { return name.starts_with("--"); }
};

// A noun, or a verb of one, or the whole tool, which is the root. What is given to the arguments must outlive
// it: a verb holds its own in what its action captures.
class Verb {
 public:
  Verb(std::string verbName, std::string verbText) : name(std::move(verbName)), text(std::move(verbText)) {}

  Verb& verb(const std::string& verbName, const std::string& verbText);
  // Operands, in their order. Those without a value given by the command line keep the one they have.
  Verb& operand(const std::string& placeholder, std::string& to, const std::string& what);
  Verb& optionalOperand(const std::string& placeholder, std::string& to, const std::string& what);
  Verb& operands(const std::string& placeholder, std::vector<std::string>& to, const std::string& what);
  // Options; the value that `to` has is the default and is shown.
  Verb& option(const std::string& option, const std::string& placeholder, std::string& to,
               const std::string& what);
  Verb& option(const std::string& option, const std::string& placeholder, uint32_t& to, uint32_t first,
               uint32_t last, const std::string& what);
  Verb& flag(const std::string& option, bool& to, const std::string& what);
  // Of the argument added last: its values, the options it cannot stand beside, that it names a file, its
  // short form, that it must be there.
  Verb& oneOf(std::vector<std::string> choices);
  Verb& excludes(std::vector<std::string> options);
  Verb& isFile();
  Verb& letter(char shortForm);
  Verb& required();
  // Paragraphs behind the arguments, and example command lines without "parlctl".
  Verb& note(const std::string& paragraph);
  Verb& example(const std::string& line);
  // What it does; throws peer::Error when it fails.
  Verb& run(std::function<void()> action);

  const Verb* find(std::string_view verbName) const;

  std::string name;
  std::string text;
  std::deque<Verb> verbs;  // references to them stay
  std::vector<Argument> arguments;
  std::vector<std::string> notes;
  std::vector<std::string> examples;
  std::function<void()> action;

 private:
  Verb& add(Argument argument);
};

// What a command line asks for.
struct Asked {
  const Verb* verb = nullptr;  // its arguments are filled in; the deepest one named when help is wanted
  std::string path;            // "reg read"
  bool help = false;
  bool version = false;
};

// Reads a command line; options of the root may stand anywhere. Throws UsageError.
Asked parse(const Verb& root, int argc, char** argv);

// A command line that cannot be read, in words of this tool, with the nearest that could; path: of what was
// understood.
struct UsageError {
  std::string text;
  std::string path;
};

// The candidate nearest to a mistyped word; empty when none is near.
std::string nearest(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace parlctl
