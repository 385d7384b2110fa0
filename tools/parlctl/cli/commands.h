// The nouns of the command line: each adds its verbs to the root. docs/design.md says how a noun is added.
#pragma once

#include <span>

#include "commandline.h"
#include "options.h"

namespace parlctl {

using AddNoun = void (*)(Verb& root, const Options& options);
// In the order of the help.
std::span<const AddNoun> nouns();

}  // namespace parlctl
