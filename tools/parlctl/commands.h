// The nouns of the command line: each adds its verbs. A verb throws peer::Error when it fails.
#pragma once

#include <CLI/CLI.hpp>

#include "options.h"

namespace parlctl {

void addReg(CLI::App& app, const Options& options);
void addCard(CLI::App& app, const Options& options);
void addStatus(CLI::App& app, const Options& options);
void addWatch(CLI::App& app, const Options& options);
void addBoard(CLI::App& app, const Options& options);
void addWall(CLI::App& app, const Options& options);

}  // namespace parlctl
