// One result of a verb, for people and for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "outcome.h"

namespace parlctl {

using Json = nlohmann::ordered_json;

// text: what people read, without the end of its last line. fields: what programs read, an object.
struct Result {
  Json fields = Json::object();
  std::string text;
  Outcome outcome = Outcome::Done;
};

// Version of the envelope and of all fields in it; it rises when a field changes its meaning or goes.
inline constexpr int kSchemaVersion = 1;

// The envelope: schema "parlctl.reg.read" for the verb "reg read", its version, whether all is well, and the
// outcome's word, followed by the fields; for a failure by its word, exit status and text.
Json envelope(const std::string& verb, const Result& result);
Json envelope(const std::string& verb, peer::Failure failure, const std::string& text);

// An object's entries in one line: "copper 0 1 2 3, fiber1 -"; null as "not told".
std::string words(const Json& object);

}  // namespace parlctl
