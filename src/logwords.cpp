#include "logwords.h"

namespace ORVE_MCUC {
namespace {

// As PARLEND_TRACE, for a place that the caller named.
template <class... Parts>
void logAt(const LogPlace& place, Level level, const Parts&... parts) {
  if (!tracePasses(level)) return;
  const std::string_view file = place.file;
  TraceLine line(level, file.substr(0, file.rfind('.')), place.line);
  (line.record() << ... << parts);
}

}  // namespace

LogSection::LogSection(const SectionWords& words, LogPlace place) : m_words(words), m_place(place) {
  logAt(m_place, kInfo, m_words.begin, m_words.what, m_words.rest);
}

LogSection::LogSection(const SectionWords& words, unsigned value, LogPlace place)
    : m_words(words), m_place(place) {
  if (m_words.begin.ends_with("= ")) {
    logAt(m_place, kInfo, m_words.begin, value, m_words.rest);
  } else {
    logAt(m_place, kInfo, m_words.begin, m_words.what, m_words.rest);
  }
}

LogSection::~LogSection() {
  if (!m_abandoned) logAt(m_place, kInfo, m_words.finish, m_words.what, m_words.rest);
}

}  // namespace ORVE_MCUC
