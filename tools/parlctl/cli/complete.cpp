#include "complete.h"

#include <algorithm>

namespace parlctl {

namespace {

constexpr const char* kFile = ":file";

// Where the words before the last one lead.
struct Position {
  const Verb* verb;
  const Argument* option = nullptr;  // whose value comes next
  std::size_t operands = 0;          // given already
};

const Argument* optionOf(const Verb& verb, const std::string& word) {
  for (const Argument& argument : verb.arguments) {
    const bool letter = argument.letter != '\0' && word == std::string("-") + argument.letter;
    if (argument.isOption() && (argument.name == word || letter)) return &argument;
  }
  return nullptr;
}

Position follow(const Verb& root, const std::vector<std::string>& words) {
  Position at{&root};
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    const std::string& word = words[i];
    if (at.option != nullptr) {
      at.option = nullptr;
    } else if (word.starts_with('-')) {
      const Argument* option = optionOf(*at.verb, word);
      if (option == nullptr) option = optionOf(root, word);
      if (option != nullptr && !option->value.empty()) at.option = option;
    } else if (const Verb* inner = at.verb->find(word); inner != nullptr) {
      at.verb = inner;
    } else {
      ++at.operands;
    }
  }
  return at;
}

void addValues(const Argument& argument, std::vector<Candidate>& found) {
  for (const std::string& choice : argument.choices) found.push_back({choice, ""});
  if (argument.file) found.push_back({kFile, ""});
}

void addOptions(const Verb& verb, std::vector<Candidate>& found) {
  for (const Argument& argument : verb.arguments)
    if (argument.isOption()) found.push_back({argument.name, argument.text});
}

// The operand in a place; the last one when it takes many.
const Argument* operandAt(const Verb& verb, std::size_t place) {
  const Argument* last = nullptr;
  for (const Argument& argument : verb.arguments) {
    if (argument.isOption()) continue;
    last = &argument;
    if (place-- == 0) return last;
  }
  const bool many = last != nullptr && std::holds_alternative<std::vector<std::string>*>(last->target);
  return many ? last : nullptr;
}

constexpr const char* kBash = R"(# bash completion for parlctl
_parlctl() {
  local word text
  COMPREPLY=()
  while IFS=$'\t' read -r word text; do
    if [[ $word == :file ]]; then
      compopt -o filenames 2>/dev/null
      mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
    else
      COMPREPLY+=("$word")
    fi
  done < <("${COMP_WORDS[0]}" __complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _parlctl parlctl
)";

constexpr const char* kZsh = R"(#compdef parlctl
_parlctl() {
  local -a items
  local word text
  while IFS=$'\t' read -r word text; do
    if [[ $word == :file ]]; then
      _files
    else
      items+=("${word//:/\\:}${text:+:$text}")
    fi
  done < <("${words[1]}" __complete "${(@)words[2,CURRENT]}" 2>/dev/null)
  (( $#items )) && _describe parlctl items
}
if [[ ${zsh_eval_context[-1]} == loadautofunc ]]; then
  _parlctl "$@"
else
  compdef _parlctl parlctl
fi
)";

constexpr const char* kFish = R"(# fish completion for parlctl
function __parlctl_complete
  set -l words (commandline -opc) (commandline -ct)
  for line in (parlctl __complete $words[2..-1] 2>/dev/null)
    if test "$line" = ":file"
      __fish_complete_path (commandline -ct)
    else
      echo $line
    end
  end
end
complete -c parlctl -f -a '(__parlctl_complete)'
)";

}  // namespace

std::vector<Candidate> candidates(const Verb& root, const std::vector<std::string>& words) {
  const std::string typed = words.empty() ? "" : words.back();
  const Position at = follow(root, words);
  std::vector<Candidate> found;
  if (at.option != nullptr) {
    addValues(*at.option, found);
  } else if (typed.starts_with('-')) {
    addOptions(*at.verb, found);
    if (at.verb != &root) addOptions(root, found);
    found.push_back({"--help", "Show the help"});
  } else if (!at.verb->verbs.empty()) {
    for (const Verb& inner : at.verb->verbs) found.push_back({inner.name, inner.text});
  } else if (const Argument* operand = operandAt(*at.verb, at.operands); operand != nullptr) {
    addValues(*operand, found);
  }
  std::erase_if(found,
                [&](const Candidate& each) { return each.word != kFile && !each.word.starts_with(typed); });
  return found;
}

std::string completionScript(const std::string& shell) {
  if (shell == "bash") return kBash;
  if (shell == "zsh") return kZsh;
  return shell == "fish" ? kFish : "";
}

}  // namespace parlctl
