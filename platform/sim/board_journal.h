// hw/journal.log: what the daemon did to the board, in order. One line a call, appended whole.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "board_conf.h"

namespace simboard {

// Opens the journal: anew, or going on after a reboot with the time of the first start. False: not possible.
bool openJournal(JournalLevel level, bool goOn);
void closeJournal();

// Whether calls that change something, or that only read, are journaled: asked before a line is composed.
bool journalsWrites();
bool journalsReads();

// Somebody looks at each line before it is appended, in the middle of its call; null: nobody does.
void onJournal(void (*look)(std::string_view line));

// One line, composed piece by piece and appended when it goes out of scope.
class JournalLine {
 public:
  explicit JournalLine(const char* call);
  ~JournalLine();
  JournalLine(const JournalLine&) = delete;
  JournalLine& operator=(const JournalLine&) = delete;

  JournalLine& word(std::string_view text);
  JournalLine& number(long long value);
  JournalLine& address(uint32_t value);
  // The first 64 bytes and how many more there are.
  JournalLine& bytes(std::span<const unsigned char> data);
  JournalLine& failedIf(bool failed);

 private:
  std::string text_;
};

}  // namespace simboard
