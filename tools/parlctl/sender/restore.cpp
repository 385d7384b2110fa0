// restore: a backup back into the card.
#include <algorithm>
#include <memory>

#include "cardfeatures.h"
#include "commands.h"
#include "helptext.h"
#include "maps/fpgamap.h"
#include "maps/gammamap.h"
#include "readback.h"
#include "restoreplan.h"

namespace parlctl {

namespace {

namespace fpga = ORVE_MCUC::fpga;
namespace reg = ORVE_MCUC::reg;
using peer::Bytes;

constexpr std::size_t kShownBytes = 8;

struct RestoreArguments {
  std::string file;
  bool dryRun = false;
};

struct Restored {
  std::size_t differences = 0;
  std::vector<std::string> lines;
  std::vector<std::string> kept;
  std::vector<std::string> wrong;
};

std::string shortHex(const Bytes& bytes) {
  const std::string text = peer::toHex(std::span(bytes).first(std::min(bytes.size(), kShownBytes)));
  return bytes.size() > kShownBytes ? text + "…" : text;
}

// From the first byte that differs on.
std::string lineOf(const RegisterChange& change) {
  const auto [want, got] = std::ranges::mismatch(change.wanted, change.found);
  const auto rest = [](const Bytes& bytes, auto at) { return Bytes(at, bytes.end()); };
  return change.place + ": " + shortHex(rest(change.found, got)) + " -> " +
         shortHex(rest(change.wanted, want));
}

// The daemon calculates it behind its reply, and what that writes is compared only then.
void restoreWall(const Options& options, peer::Peer& daemon, const Bytes& wanted, bool dryRun,
                 Restored& done) {
  const CardSize card = cardSize(daemon).size;
  const auto record = wallToSubmit(wanted, readRecord(daemon).bytes(), card);
  if (!record) return;
  ++done.differences;
  const WallPlan plan = record->plan(card);
  done.lines.push_back("wall: " + sizeText({plan.rows(), plan.columns()}) + " cards");
  if (dryRun) return;
  WallRecord(wanted).isAdvanced() ? submitAdvanced(daemon, *record) : submitSmart(daemon, *record);
  const Comparison seen = lookUntil(options.patience(), [&]() -> Comparison {
    const Seen there = lookAtFpga(options, daemon, plan);
    return {there.outcome == Outcome::Differs ? Outcome::Mismatch : there.outcome, there.text};
  });
  if (seen.outcome != Outcome::Verified) done.wrong.push_back("wall: " + seen.text);
}

void restoreChange(const Options& options, peer::Peer& daemon, const RegisterChange& change, Restored& done) {
  daemon.write(change.address, change.wanted);
  const Comparison seen = readBack(daemon,
                                   {.code = peer::kWrite,
                                    .address = change.address,
                                    .length = static_cast<uint16_t>(change.wanted.size()),
                                    .data = change.wanted},
                                   options.patience());
  if (seen.outcome != Outcome::Verified) done.wrong.push_back(change.place + ": " + seen.text);
}

bool isGamma(const BackupSection& section) {
  return section.restoring == Restoring::Gamma;
}

// The curves reach the FPGA together, of the bank that is in force; a curve for HDR is calculated.
void writeCurves(peer::Peer& daemon, const Backup& backup) {
  const bool tenBit = daemon.read(reg::kTestPrint + fpga::kBitDepthMark, 1)[0] != ORVE_MCUC::kBank12Bit;
  for (const BackupSection& section : kBackupSections) {
    if (!isGamma(section)) continue;
    const Bytes& curve = backup.sections.find(section.name)->second;
    const uint32_t first = section.address + (tenBit ? ORVE_MCUC::flash::kGammaTableSize : 0);
    for (uint32_t at = 0; at < section.length; at += section.block)
      daemon.write(first + at, Bytes(curve.begin() + at, curve.begin() + at + section.block));
  }
}

Comparison compareCurves(peer::Peer& daemon, const Backup& backup) {
  for (const BackupSection& section : kBackupSections) {
    if (!isGamma(section)) continue;
    Comparison seen = compareBytes(section.address, backup.sections.find(section.name)->second,
                                   readSection(daemon, section));
    if (seen.outcome != Outcome::Verified) return seen;
  }
  return {Outcome::Verified, ""};
}

void restoreGamma(const Options& options, peer::Peer& daemon, const Backup& backup, bool dryRun,
                  Restored& done) {
  const bool whole = std::ranges::all_of(kBackupSections, [&](const BackupSection& section) {
    return !isGamma(section) || backup.sections.contains(section.name);
  });
  if (!whole || compareCurves(daemon, backup).outcome == Outcome::Verified) return;
  if (readFeature(daemon, featureAt(fpga::kHdrEnable))[0] != 0) {
    done.kept.emplace_back("gamma: a curve for HDR is loaded");
    return;
  }
  ++done.differences;
  done.lines.emplace_back("gamma: all three curves");
  if (dryRun) return;
  writeCurves(daemon, backup);
  const Comparison seen = lookUntil(options.patience(), [&] { return compareCurves(daemon, backup); });
  if (seen.outcome != Outcome::Verified) done.wrong.push_back("gamma: " + seen.text);
}

void restoreSection(const Options& options, peer::Peer& daemon, const BackupSection& section,
                    const Bytes& wanted, bool dryRun, Restored& done) {
  if (section.restoring == Restoring::Wall) return restoreWall(options, daemon, wanted, dryRun, done);
  const RestorePlan plan = planSection(section, wanted, readSection(daemon, section));
  done.kept.insert(done.kept.end(), plan.kept.begin(), plan.kept.end());
  for (const RegisterChange& change : plan.changes) {
    ++done.differences;
    done.lines.push_back(lineOf(change));
    if (!dryRun) restoreChange(options, daemon, change, done);
  }
}

std::string listed(const std::vector<std::string>& lines, const char* before) {
  std::string text;
  for (const std::string& line : lines) text += '\n' + wrapped(before + line, 4);
  return text;
}

Result resultOf(const RestoreArguments& arguments, const Restored& done) {
  const std::string count = countText(done.differences, "difference");
  Result result{{{"file", arguments.file},
                 {"differences", done.lines},
                 {"not_restored", done.kept},
                 {"wrong", done.wrong}},
                listed(done.lines, "  ").substr(done.lines.empty() ? 0 : 1)};
  if (!done.lines.empty()) result.text += '\n';
  if (arguments.dryRun) {
    result.outcome = done.differences == 0 ? Outcome::Done : Outcome::Found;
    result.text += count + "; nothing was written";
  } else {
    result.outcome = done.wrong.empty() ? Outcome::Verified : Outcome::Mismatch;
    result.text += done.wrong.empty() ? "verified: the card is as in the backup, " + count + " restored"
                                      : "mismatch:" + listed(done.wrong, "  ");
  }
  result.text += listed(done.kept, "not restored: ");
  return result;
}

void restore(const Options& options, const RestoreArguments& arguments) {
  const Backup backup = backupOfFile(arguments.file);
  peer::Peer daemon = options.connect();
  Restored done;
  for (const BackupSection& section : kBackupSections) {
    const auto wanted = backup.sections.find(section.name);
    if (wanted != backup.sections.end() && !isGamma(section))
      restoreSection(options, daemon, section, wanted->second, arguments.dryRun, done);
  }
  restoreGamma(options, daemon, backup, arguments.dryRun, done);
  options.print(resultOf(arguments, done));
}

}  // namespace

void addRestore(Verb& root, const Options& options) {
  const auto arguments = std::make_shared<RestoreArguments>();
  root.verb("restore", "Bring the card back to what a backup holds, and read it back")
      .operand("FILE", arguments->file, "What 'backup' has written")
      .isFile()
      .flag("--dry-run", arguments->dryRun,
            "Show the differences and write nothing; exit status 1: there are some")
      .note(
          "Only what differs is written. Clock, status of the hardware and bypass mode stay as they are; "
          "what stays and differs is named")
      .example("restore before.json --dry-run")
      .run([&options, arguments] { restore(options, *arguments); });
}

}  // namespace parlctl
