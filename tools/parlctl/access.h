// Reading and writing registers, as the nouns share it: verbs, requests, and what is printed of the replies.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "options.h"

namespace parlctl {

struct AccessArguments {
  std::vector<std::string> items;
  std::string deviceType;
  std::string port = "0";
  std::string card = "0";
};

struct AccessNoun {
  const char* name;
  const char* description;
  const char* deviceType;  // when the command line names none
  void (*addDeviceType)(CLI::App& verb, AccessArguments& arguments);
  const char* readFooter;
  const char* writeFooter;
};

// Adds a noun with its verbs read (ADDRESS[:LENGTH]...) and write (ADDRESS=HEX...).
void addAccess(CLI::App& app, const Options& options, const AccessNoun& noun);

}  // namespace parlctl
