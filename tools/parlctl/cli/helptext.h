// The command line for people: help on a terminal of 80 columns.
#pragma once

#include "commandline.h"

namespace parlctl {

inline constexpr std::size_t kColumns = 80;

// The help of a verb; path: its names from below the root. Line ends included.
std::string helpText(const Verb& root, const Verb& verb, const std::string& path);

// "reg read RANGE... [--port N]": what may stand behind a verb's name.
std::string synopsis(const Verb& verb);

// An argument as it is typed, "--port N" or "[DIR]", and what it means, with choices and default.
std::string argumentTitle(const Argument& argument);
std::string argumentText(const Argument& argument);

// Words in lines of at most kColumns, all but the first indented; lines already there stay apart.
std::string wrapped(const std::string& text, std::size_t indent = 0);

}  // namespace parlctl
