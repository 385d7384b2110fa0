// The pattern of every register space, written once. A space is a row of maps/spaces.h, a line in
// proto/spaces/spaces.h, and one source file with its operations and
//
//   const RegisterSpace& spaceAt(At<reg::kX>) {
//     static constexpr RegisterSpace kSpace =
//         registerSpace<reg::kX>({.read = &ReadFromX, .write = &queueWrite<DoXKey>});
//     return kSpace;
//   }
//
// with its differences as further traits. Everything here runs on the receive thread, one request at a time.
#pragma once

#include <algorithm>
#include <array>
#include <span>

#include "maps/spaces.h"
#include "maps/workkeys.h"
#include "mcuctrace.h"
#include "proto/spaces/fshl_cmd.h"
#include "proto/store/deviceaccess.h"
#include "results.h"

namespace ORVE_MCUC {

// Names a space by its first base address.
template <uint32_t base>
struct At {};

struct RegisterSpace;

// An operation leaves reply data and acknowledge code in the request. A result of results.h.
using SpaceOperation = int (*)(IMD_proto3rd& request);

// What a space does, and where it differs from the others.
struct SpaceTraits {
  SpaceOperation read = nullptr;
  SpaceOperation write = nullptr;
  // Instead of the two: the operation of the row that was found, for reads and writes.
  int (*handle)(IMD_proto3rd& request, const OffsetRow& row) = nullptr;

  bool checks = true;                    // false: the operations check their accesses, no row is looked up
  bool keyIsOffset = false;              // rows are found by the low 16 bits of an address, not by the base
  int unknownKey = kFailed;              // result for an address without a row
  int unknownCode = kFailed;             // result for a request that neither reads nor writes
  std::span<const OffsetRow> rows = {};  // instead of those of maps/spaces.h

  void (*entered)(const RegisterSpace& space, const IMD_proto3rd& request) = nullptr;  // first of all
  void (*refused)(int result) = nullptr;                                               // after a failed check
};

struct RegisterSpace {
  const SpaceRow& map;
  std::span<const OffsetRow> rows;
  SpaceTraits traits;

  // The router's way in: finds the row of the address, checks the access, and reads or writes.
  int Ssh_cmd(IMD_proto3rd& request) const;
  // Prints the rows on standard output. Returns 0.
  int Ssh_print() const;

 private:
  const OffsetRow* find(uint32_t address) const;
  int carryOut(IMD_proto3rd& request, const OffsetRow* row) const;
};

// The rows that maps/spaces.h has for the space at a base.
template <uint32_t base>
inline constexpr auto kOffsetRows = [] {
  constexpr auto belongs = [](const SpaceRow& row) {
    return row.owner == spaceRow(base).owner && row.offset.name != nullptr;
  };
  std::array<OffsetRow, static_cast<std::size_t>(std::ranges::count_if(kSpaces, belongs))> rows{};
  auto next = rows.begin();
  for (const auto& row : kSpaces) {
    if (belongs(row)) *next++ = row.offset;
  }
  return rows;
}();

template <uint32_t base>
consteval RegisterSpace registerSpace(const SpaceTraits& traits) {
  static_assert(firstBase(spaceRow(base)) == base, "a space is named by its first base");
  static_assert(allDiffer(kOffsetRows<base>, &OffsetRow::key));
  return {spaceRow(base), traits.rows.empty() ? std::span<const OffsetRow>(kOffsetRows<base>) : traits.rows,
          traits};
}

// For traits: log lines that several spaces begin with.
void logEntry(const RegisterSpace& space, const IMD_proto3rd& request);
void logEntryAndRows(const RegisterSpace& space, const IMD_proto3rd& request);

// Sets a request's data to the bytes that its reply carries.
void replyWith(IMD_proto3rd& request, std::span<const uint8_t> bytes);
// The same with as many bytes as were asked for, read from there. 0, or the driver's result and no data.
int replyFromFlash(IMD_proto3rd& request, uint32_t flashAddress, FailureWords words);
int replyFromFpga(IMD_proto3rd& request, uint32_t fpgaRegister);

// Wraps a write into a work item and queues it: the reply says done, the handler of the key does the work
// later. kDone; kRefused for more data than an item holds or no memory; kBadAccess for a write without data.
// beforeQueueing(request) runs when there is an item, ahead of its handler.
int queueWrite(IMD_proto3rd& request, const WorkKey& key,
               void (*beforeQueueing)(const IMD_proto3rd& request) = nullptr);
// Queues a payload as it stands, with the request's transport head: kDone, or kRefused without memory.
int queuePayload(IMD_proto3rd& request, const WorkKey& key, std::span<const uint8_t> payload);
// The same without lines of its own, for a space that logs around more than the queueing.
int queueBytes(IMD_proto3rd& request, const WorkKey& key, std::span<const uint8_t> payload);

template <enum_Process_Key_Table key>
int queueWrite(IMD_proto3rd& request) {
  return queueWrite(request, workKey<key>);
}
template <enum_Process_Key_Table key>
int queuePayload(IMD_proto3rd& request, std::span<const uint8_t> payload) {
  return queuePayload(request, workKey<key>, payload);
}

}  // namespace ORVE_MCUC
