// The wall as the daemon knows it: its registers for the screen configurations.
#pragma once

#include <optional>

#include "options.h"
#include "readback.h"
#include "wallverify.h"

namespace parlctl {

// The requests below throw peer::Error as the peer does.

// Pixels of a receiving card: as the first card that answers says it, or as the daemon takes it to be.
struct MeasuredCard {
  CardSize size;
  bool measured = false;
};
MeasuredCard cardSize(peer::Peer& daemon);

// The configuration record, whole: what the two kinds of configuration say, and which of them was submitted
// last. Nothing in it needs to be right.
class WallRecord {
 public:
  explicit WallRecord(peer::Bytes bytes);  // kSize bytes
  static constexpr std::size_t kSize = 0x2D0;

  uint8_t status() const { return bytes_[0]; }
  bool isAdvanced() const;
  // The smart configuration has rows and columns at all.
  bool isEmpty() const;
  // In words: "smart configuration", "advanced configuration", "tables written directly", "none".
  std::string statusText() const;
  SmartScreen smart(CardSize card) const;
  AdvancedScreen advanced() const;
  void set(const SmartScreen& screen);
  void set(const AdvancedScreen& blocks);
  const peer::Bytes& bytes() const { return bytes_; }
  // The plan of what was submitted last; throws peer::Error (Usage) when it is not mapped.
  WallPlan plan(CardSize card) const;

 private:
  peer::Bytes bytes_;
};
WallRecord readRecord(peer::Peer& daemon);
// Sends what the record says of the one kind of configuration, and with an advanced one the command that
// submits it.
void submitSmart(peer::Peer& daemon, const WallRecord& record);
void submitAdvanced(peer::Peer& daemon, const WallRecord& record);

// Ports 0..15 with a link, over copper or fiber. Nothing when all registers there are zero, which is also
// what the daemon says of an FPGA that it cannot read.
std::optional<std::vector<unsigned>> linkedPorts(peer::Peer& daemon);
// Copper links of ports 0..15 from the feature registers, of which at least 0x128 are given.
uint16_t copperLinks(std::span<const uint8_t> registers);

// What the FPGA holds beside a plan: Verified, Differs, or Unknown with the reason, in one line.
struct Seen {
  Outcome outcome = Outcome::Unknown;
  std::string text;  // "in the FPGA (…)", "differs: port 0, …", "unknown: …"
};
Seen lookAtFpga(const Options& options, peer::Peer& daemon, const WallPlan& plan);
// The same of the saved copy. Only a board's flash can be looked at; of any other it is Unknown.
Seen lookAtFlash(const Options& options, const WallPlan& plan);

// Tells whether a calculation has run since it was made: the last table entry that the calculation writes,
// which no card needs but the last one of a chain longer than half the table, is given a value that no
// calculation gives. Where it was never replaced it is put back at the end.
class CalculationWitness {
 public:
  CalculationWitness(peer::Peer& daemon, const WallPlan& plan);
  ~CalculationWitness();
  CalculationWitness(const CalculationWitness&) = delete;
  CalculationWitness& operator=(const CalculationWitness&) = delete;

  // Whether the mark could be set: without it nothing can be told.
  bool works() const { return works_; }
  bool hasSeen();

 private:
  peer::Bytes entry();

  peer::Peer& daemon_;
  uint32_t address_;
  peer::Bytes before_;
  bool works_ = false;
  bool seen_ = false;
};

}  // namespace parlctl
