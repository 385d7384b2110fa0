#include "tableseeds.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "calc/brightness_plans.h"
#include "maps/flashmap.h"
#include "maps/registers.h"
#include "maps/shortcutrecord.h"
#include "maps/spaces.h"
#include "maps/workkeys.h"
#include "pieces.h"

namespace fuzz {
namespace {

using namespace ORVE_MCUC;
using peer::Bytes;
using Seeds = std::vector<Bytes>;

constexpr std::size_t kMostData = 1500;
constexpr std::size_t kSomeData = 64;
constexpr std::size_t kStrained = 600;
constexpr std::size_t kFull = 6000;  // an input that gets no more requests

Bytes ramp(std::size_t length) {
  Bytes bytes(length);
  for (std::size_t i = 0; i < length; ++i) bytes[i] = static_cast<uint8_t>(i);
  return bytes;
}

Bytes number(uint32_t value, std::size_t length) {
  Bytes bytes(length);
  for (auto& byte : bytes) {
    byte = static_cast<uint8_t>(value);
    value >>= 8;
  }
  return bytes;
}

void append(Bytes& to, std::span<const uint8_t> bytes) {
  to.insert(to.end(), bytes.begin(), bytes.end());
}

void addPiece(Bytes& input, uint8_t what, std::span<const uint8_t> bytes) {
  input.push_back(what);
  append(input, number(static_cast<uint32_t>(bytes.size()), 2));
  append(input, bytes);
}

Bytes request(const peer::Frame& frame) {
  Bytes input;
  addPiece(input, kTickAfter, peer::encode(frame));
  return input;
}

Bytes reading(uint32_t address, std::size_t length) {
  return request({.address = address, .length = static_cast<uint16_t>(length)});
}

Bytes writing(uint32_t address, const Bytes& data) {
  return request(
      {.code = peer::kWrite, .address = address, .length = static_cast<uint16_t>(data.size()), .data = data});
}

// Counts and lengths lie at the head of records: each byte of it once beyond what there is room for.
constexpr std::size_t kHead = 24;
constexpr std::array<uint8_t, 3> kTooMuch{0x11, 0x41, 0xFF};

template <class Use>
void strain(Bytes record, std::size_t from, Use use) {
  for (std::size_t at = from; at < std::min(from + kHead, record.size()); ++at) {
    const uint8_t good = record[at];
    for (const uint8_t value : kTooMuch) {
      record[at] = value;
      use(record);
    }
    record[at] = good;
  }
}

void addStrainedWrites(Seeds& seeds, const SpaceRow& space) {
  const std::size_t length = std::min(static_cast<std::size_t>(space.offset.limits.cmdLenMax), kStrained);
  Bytes input;
  strain(Bytes(length), 0, [&](const Bytes& data) {
    append(input, writing(space.base, data));
    if (input.size() > kFull) seeds.push_back(std::exchange(input, {}));
  });
  seeds.push_back(input);
}

// A request with every byte of its head strained; and with lengths that its frame cannot have.
void addHeads(Seeds& seeds) {
  constexpr uint32_t kConnected = 0x010A7000;
  const Bytes frame = peer::encode(peer::Frame{.address = reg::kBackupInfo, .length = kSomeData});
  peer::Head head{.taskId = kConnected, .labelCount = 1, .frameLength = peer::kFrameOverhead};
  Bytes input;
  const auto add = [&](const Bytes& bytes) {
    Bytes message = bytes;
    append(message, frame);
    addPiece(input, kBeginsWithHead, message);
  };
  strain(peer::encode(head), 0, add);
  seeds.push_back(std::exchange(input, {}));
  constexpr uint32_t kLengths[] = {0, peer::kFrameOverhead - 1, peer::kMaxFrame + 1, UINT32_MAX};
  for (const uint32_t length : kLengths) {
    head.frameLength = length;
    add(peer::encode(head));
  }
  seeds.push_back(input);
}

// Each space with the shortest and the longest data that it takes, with data across its end and with strained
// data; each register with as many bytes as it has.
Seeds requests() {
  Seeds seeds;
  for (const auto& space : kSpaces) {
    const Fcmd_len limits = space.offset.limits;
    for (const int32_t limit : {limits.cmdLenMin, limits.cmdLenMax}) {
      const std::size_t length = std::min(static_cast<std::size_t>(limit), kMostData);
      seeds.push_back(reading(space.base, length));
      seeds.push_back(writing(space.base, ramp(length)));
    }
    seeds.push_back(writing(space.base + space.width - 1, ramp(kSomeData)));
    addStrainedWrites(seeds, space);
  }
  for (const auto& row : kRegisters) seeds.push_back(writing(row.address, ramp(row.length)));
  for (const auto& row : kPushedRegisters) seeds.push_back(writing(row.address, ramp(row.length)));
  for (const auto& row : kReadEffects) seeds.push_back(reading(row.address, row.length));
  addHeads(seeds);
  return seeds;
}

// Each key with nothing, and with data for the beginning of every space and for every register.
Seeds workItems() {
  Seeds seeds;
  for (const auto& row : kWorkKeys) {
    const auto what = static_cast<uint8_t>(row.key);
    Bytes input;
    const auto add = [&](uint32_t address, std::size_t length) {
      Bytes item = number(address, 4);
      append(item, number(static_cast<uint32_t>(length), 2));
      append(item, ramp(length));
      addPiece(input, what, item);
    };
    addPiece(input, what, {});
    seeds.push_back(input);
    for (const auto& space : kSpaces) {
      add(space.base, kSomeData);
      add(space.base + space.width - 1, kSomeData);
    }
    seeds.push_back(std::exchange(input, {}));
    for (const auto& named : kRegisters) add(named.address, named.length);
    seeds.push_back(input);
  }
  return seeds;
}

std::size_t placeOf(uint32_t address) {
  const auto row = std::ranges::find(flash::kAreas, address, &flash::Area::address);
  return static_cast<std::size_t>(row - flash::kAreas.begin());
}

// What the flash image holds is found by the place of its area in the flash map.
Bytes flashPiece(std::size_t area, std::span<const uint8_t> bytes) {
  Bytes piece = number(0, 2);
  append(piece, bytes);
  Bytes input{0};
  addPiece(input, static_cast<uint8_t>(area), piece);
  return input;
}

void addStrained(Seeds& seeds, std::size_t area, const Bytes& record, std::size_t from) {
  seeds.push_back(flashPiece(area, record));
  strain(record, from, [&](const Bytes& strained) { seeds.push_back(flashPiece(area, strained)); });
}

// Brightness plans of every mode.
Seeds flashPlans() {
  Seeds seeds;
  const std::size_t place = placeOf(flash::kBrightnessFile);
  const auto add = [&](const BrightnessFile& file) {
    addStrained(seeds, place, Bytes(file.begin(), file.begin() + kTestLength), 0);
  };
  add(programmablePlan(kThreeNodes));
  BrightnessFile sensors = programmablePlan({});
  sensors[brightness::kMode] = brightness::kAutomatic;
  add(sensors);
  for (const uint8_t mode : {brightness::kMixed, brightness::kSerialBlack, brightness::kHardware})
    add(mixedPlan({{0, 0, 60}, {6, 0, 30, true}, {18, 0, 10}}, true, mode));
  return seeds;
}

// A screen of two rows and columns, for the whole sender and for each of its ports.
Seeds flashScreens() {
  namespace at = shortcut;
  Seeds seeds;
  const std::size_t place = placeOf(flash::kShortcutConfig);
  Bytes record(at::kPortsLast + at::kPortSize);
  record[at::kRowsAt] = record[at::kColumnsAt] = record[at::kCardsPerPortAt] = 2;
  for (std::size_t port = at::kPortsAt; port + at::kPortSize <= record.size(); port += at::kPortSize)
    record[port + at::kPortRowsAt] = record[port + at::kPortColumnsAt] = 2;
  addStrained(seeds, place, record, at::kModeAt);
  addStrained(seeds, place, record, at::kPortsAt);
  return seeds;
}

// Each area with a ramp and erased, then what is taken apart.
Seeds flashImages() {
  Seeds seeds;
  for (std::size_t area = 0; area < flash::kAreas.size(); ++area) {
    const std::size_t length = std::min<std::size_t>(flash::kAreas[area].length, kMostData);
    seeds.push_back(flashPiece(area, ramp(length)));
    seeds.push_back(flashPiece(area, Bytes(length, 0xFF)));
  }
  for (const Seeds& more : {flashPlans(), flashScreens()})
    seeds.insert(seeds.end(), more.begin(), more.end());
  return seeds;
}

struct Maker {
  std::string_view target;
  Seeds (*make)();
};
constexpr std::array kMakers{
    Maker{"request", &requests},
    Maker{"workitem", &workItems},
    Maker{"flashimage", &flashImages},
};

}  // namespace

Seeds tableSeeds(std::string_view target) {
  const auto* const maker = std::ranges::find(kMakers, target, &Maker::target);
  return maker == kMakers.end() ? Seeds{} : maker->make();
}

}  // namespace fuzz
