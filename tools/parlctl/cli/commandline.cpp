#include "commandline.h"

#include <algorithm>

namespace parlctl {

Verb& Verb::verb(const std::string& verbName, const std::string& verbText) {
  return verbs.emplace_back(verbName, verbText);
}

Verb& Verb::add(Argument argument) {
  arguments.push_back(std::move(argument));
  return *this;
}

Verb& Verb::operand(const std::string& placeholder, std::string& to, const std::string& what) {
  return add({.name = placeholder, .value = "", .text = what, .target = &to, .required = true});
}

Verb& Verb::optionalOperand(const std::string& placeholder, std::string& to, const std::string& what) {
  return add({.name = placeholder, .value = "", .text = what, .target = &to});
}

Verb& Verb::operands(const std::string& placeholder, std::vector<std::string>& to, const std::string& what) {
  return add({.name = placeholder, .value = "", .text = what, .target = &to, .required = true});
}

Verb& Verb::option(const std::string& option, const std::string& placeholder, std::string& to,
                   const std::string& what) {
  return add({.name = option, .value = placeholder, .text = what, .target = &to, .standard = to});
}

Verb& Verb::option(const std::string& option, const std::string& placeholder, uint32_t& to, uint32_t first,
                   uint32_t last, const std::string& what) {
  const bool shown = to >= first && to <= last;
  return add({.name = option,
              .value = placeholder,
              .text = what,
              .target = &to,
              .standard = shown ? std::to_string(to) : "",
              .first = first,
              .last = last});
}

Verb& Verb::flag(const std::string& option, bool& to, const std::string& what) {
  return add({.name = option, .value = "", .text = what, .target = &to});
}

Verb& Verb::oneOf(std::vector<std::string> choices) {
  arguments.back().choices = std::move(choices);
  return *this;
}

Verb& Verb::excludes(std::vector<std::string> options) {
  arguments.back().excludes = std::move(options);
  return *this;
}

Verb& Verb::isFile() {
  arguments.back().file = true;
  return *this;
}

Verb& Verb::letter(char shortForm) {
  arguments.back().letter = shortForm;
  return *this;
}

Verb& Verb::required() {
  arguments.back().required = true;
  return *this;
}

Verb& Verb::note(const std::string& paragraph) {
  notes.push_back(paragraph);
  return *this;
}

Verb& Verb::example(const std::string& line) {
  examples.push_back(line);
  return *this;
}

Verb& Verb::run(std::function<void()> what) {
  action = std::move(what);
  return *this;
}

const Verb* Verb::find(std::string_view verbName) const {
  const auto hit = std::ranges::find(verbs, verbName, &Verb::name);
  return hit == verbs.end() ? nullptr : &*hit;
}

}  // namespace parlctl
