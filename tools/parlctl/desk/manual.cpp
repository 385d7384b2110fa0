// manual, completion: what is made of the description of the command line for others to read.
#include <memory>

#include "commands.h"
#include "complete.h"
#include "manpage.h"
#include "output.h"

namespace parlctl {

namespace {

std::vector<std::string> nounNames(const Verb& root) {
  std::vector<std::string> names;
  for (const Verb& noun : root.verbs) names.push_back(noun.name);
  return names;
}

void printPage(const Verb& root, const std::string& noun) {
  const Verb* of = noun.empty() ? &root : root.find(noun);
  if (of == nullptr)
    throw peer::Error(peer::Failure::Usage, "there is no noun '" + noun + "'; did you mean '" +
                                                nearest(noun, nounNames(root)) + "'?");
  writeOutput(manPage(root, *of));
}

}  // namespace

void addManual(Verb& root, const Options& /*options*/) {
  auto noun = std::make_shared<std::string>();
  Verb& verb = root.verb("manual", "Print a manual page, as 'man' reads it");
  verb.optionalOperand("NOUN", *noun, "The page of one noun; without it, that of the tool");
  verb.example("manual wall | man -l -");
  verb.run([&root, noun] { printPage(root, *noun); });

  auto shell = std::make_shared<std::string>();
  Verb& completion = root.verb("completion", "Print the completion of a shell");
  completion.operand("SHELL", *shell, "The shell").oneOf({"bash", "zsh", "fish"});
  completion.note(
      "bash: eval \"$(parlctl completion bash)\"; cmake --install puts all three where shells find them.");
  completion.run([shell] { writeOutput(completionScript(*shell)); });
}

}  // namespace parlctl
