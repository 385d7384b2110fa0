// Reading and writing registers, as the nouns share it: verbs, requests, and what is printed of the replies.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "commandline.h"
#include "options.h"

namespace parlctl {

// Kinds of cards behind the ports in the order of their device types, which begin with 1.
inline constexpr std::array<std::string_view, 4> kCardKinds{"receiving", "multi", "distribution", "launcher"};

struct AccessArguments {
  std::vector<std::string> items;
  std::string deviceType;  // a number, or one of kCardKinds
  std::string port = "0";
  std::string card = "0";
  bool raw = false;         // a read prints its bytes as they are
  bool verify = false;      // a write is read back
  bool force = false;       // what is on no map is sent, too
  bool sideEffect = false;  // a read that does something is wanted
};

struct AccessNoun {
  const char* name;
  const char* description;
  const char* deviceType;  // when the command line names none
  void (*addDeviceType)(Verb& verb, AccessArguments& arguments);
  const char* readExample;
  const char* writeExample;
  const char* writeNote;
};

// Adds a noun with its verbs read (ADDRESS[:LENGTH]...) and write (ADDRESS=HEX|@FILE|-...).
void addAccess(Verb& root, const Options& options, const AccessNoun& noun);

}  // namespace parlctl
