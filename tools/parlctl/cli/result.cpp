#include "result.h"

#include <algorithm>

namespace parlctl {

namespace {

Json head(const std::string& verb, bool ok, std::string_view word) {
  std::string schema = "parlctl" + (verb.empty() ? "" : ' ' + verb);
  std::replace(schema.begin(), schema.end(), ' ', '.');
  return {{"schema", schema}, {"schema_version", kSchemaVersion}, {"ok", ok}, {"result", word}};
}

}  // namespace

Json envelope(const std::string& verb, const Result& result) {
  const OutcomeText& text = textOf(result.outcome);
  Json object = head(verb, text.status == kDone, text.word);
  object.update(result.fields);
  return object;
}

Json envelope(const std::string& verb, peer::Failure failure, const std::string& text) {
  const FailureText& row = textOf(failure);
  Json object = head(verb, false, "failed");
  object["error"] = {{"kind", row.word}, {"exit_status", static_cast<int>(row.status)}, {"text", text}};
  return object;
}

std::string words(const Json& object) {
  if (object.is_null()) return "not told";
  std::string text;
  for (const auto& [key, value] : object.items()) {
    std::string name = key;
    std::replace(name.begin(), name.end(), '_', ' ');
    text += (text.empty() ? "" : ", ") + name;
    if (value.is_array()) {
      for (const Json& item : value) text += ' ' + item.dump();
      if (value.empty()) text += " -";
    } else {
      text += ' ' + (value.is_string() ? value.get<std::string>() : value.dump());
    }
  }
  return text;
}

}  // namespace parlctl
