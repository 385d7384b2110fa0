// What may stand next on a command line, for the completion of shells.
#pragma once

#include "commandline.h"

namespace parlctl {

struct Candidate {
  std::string word;  // ":file": the name of a file
  std::string text;
};
// words: behind the tool's name; the last one is being typed and may be empty.
std::vector<Candidate> candidates(const Verb& root, const std::vector<std::string>& words);

// The first argument that asks for them: a word and, behind a tab, its text on each line.
inline constexpr const char* kCompleteWord = "__complete";

// A script for bash, zsh or fish; empty for another shell.
std::string completionScript(const std::string& shell);

}  // namespace parlctl
