// Words of the trace log that stand around work: the lines that begin and finish a section, and the line that
// says what failed. The texts are exact, misspellings included: the service tools that read the logs of
// devices in the field search for them, so each stands once, in a table of its room, and is never put
// together anew.
#pragma once

#include <string_view>

#include "mcuctrace.h"

namespace ORVE_MCUC {

// The lines around a section of work. A line is begin (or finish), what and rest, so that a family of
// sections shares its texts and a section that stands alone gives whole lines. The texts must outlive the
// section.
struct SectionWords {
  std::string_view begin;
  std::string_view finish;
  std::string_view what = {};
  std::string_view rest = {};
};

// Where a line says it comes from. As a default argument it is the caller's place.
struct LogPlace {
  const char* file;
  int line;
};

// Logs at Info level that a section begins and, when it goes out of scope, that it finishes. Lines name the
// place where the section stands. Any thread.
class LogSection {
 public:
  explicit LogSection(const SectionWords& words, LogPlace place = {__builtin_FILE(), __builtin_LINE()});
  // A number follows a beginning that ends in "= ".
  LogSection(const SectionWords& words, unsigned value,
             LogPlace place = {__builtin_FILE(), __builtin_LINE()});
  ~LogSection();
  LogSection(const LogSection&) = delete;
  LogSection& operator=(const LogSection&) = delete;

  // The work ends here without its finish line, as after a failure.
  void abandon() { m_abandoned = true; }

 private:
  const SectionWords m_words;
  const LogPlace m_place;
  bool m_abandoned = false;
};

}  // namespace ORVE_MCUC
