#include "cardfeatures.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "calc/bypass.h"
#include "clocktext.h"
#include "commandline.h"
#include "maps/fpgamap.h"
#include "maps/registers.h"
#include "mcucdatablock.h"
#include "readback.h"
#include "values.h"

namespace parlctl {

namespace {

using namespace ORVE_MCUC;
using peer::Bytes;
using peer::Error;
using peer::Failure;

// What the map of the registers does not say: how a value is written where it is no plain number.
struct Kind {
  uint32_t offset;
  FeatureKind kind;
  bool hardware = false;
};
constexpr bool kHardware = true;
constexpr std::array kKinds{
    Kind{fpga::kClock, FeatureKind::Clock},
    Kind{fpga::kMasterSlavePorts1To4, FeatureKind::Bytes},
    Kind{fpga::kRedundancyPorts1To4, FeatureKind::Bytes, kHardware},
    Kind{fpga::kNetLinkPorts1To4, FeatureKind::Bytes, kHardware},
    Kind{fpga::kMasterSlavePorts5To8, FeatureKind::Bytes},
    Kind{fpga::kBackupMark, FeatureKind::Word},
    Kind{fpga::kRedundancyPorts5To8, FeatureKind::Bytes, kHardware},
    Kind{fpga::kNetLinkPorts5To8, FeatureKind::Bytes, kHardware},
    Kind{fpga::kMasterSlavePorts9To16, FeatureKind::Bytes},
    Kind{fpga::kRedundancyPorts9To16, FeatureKind::Bytes, kHardware},
    Kind{fpga::kNetLinkPorts9To16, FeatureKind::Bytes, kHardware},
    Kind{fpga::kFiberLink, FeatureKind::Bytes, kHardware},
    Kind{fpga::kFiberToNetStatus, FeatureKind::Bytes, kHardware},
    Kind{fpga::kFiberToNetStatus + 1, FeatureKind::Bytes, kHardware},
    Kind{fpga::kSignedOffsetX, FeatureKind::Signed},
    Kind{fpga::kSignedOffsetY, FeatureKind::Signed},
    Kind{fpga::kOffsetMode, FeatureKind::Word},
};

// Bytes that have a word. The first row of a byte is what is shown, the first of a word what is written.
struct ValueWord {
  uint32_t offset;
  uint8_t byte;
  std::string_view word;
};
constexpr std::array kWords{
    ValueWord{fpga::kBackupMark, fpga::kSlaveMark, "slave"},
    ValueWord{fpga::kBackupMark, 0, "master"},
    ValueWord{fpga::kOffsetMode, 0, "normal"},
    ValueWord{fpga::kOffsetMode, kOpenBypass, "bypass"},
    ValueWord{fpga::kOffsetMode, 1, "bypass"},
    ValueWord{fpga::kOffsetMode, 2, "bypass-signed"},
};

// "links of ports 0-3" as one word: "links-of-ports-0-3".
std::string hyphened(std::string_view name) {
  std::string text;
  for (const char letter : name) {
    if (std::isalnum(static_cast<unsigned char>(letter)) != 0)
      text += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    else if (!text.ends_with('-'))
      text += '-';
  }
  return text;
}

bool isFeature(const NamedRegister& row) {
  return reg::routerKey(row.address) == reg::kFeature;
}

Feature featureOfRow(const NamedRegister& row) {
  const uint32_t offset = row.address - reg::kFeature;
  const auto kind = std::ranges::find(kKinds, offset, &Kind::offset);
  if (kind == kKinds.end())
    return {.name = hyphened(row.name),
            .offset = offset,
            .length = row.length,
            .kind = FeatureKind::Number,
            .effect = row.writing};
  return {.name = hyphened(row.name),
          .offset = offset,
          .length = row.length,
          .kind = kind->kind,
          .hardware = kind->hardware,
          .effect = row.writing};
}

std::vector<Feature> makeFeatures() {
  std::vector<Feature> all;
  for (const NamedRegister& row : kRegisters)
    if (isFeature(row)) all.push_back(featureOfRow(row));
  for (const NamedRegister& row : kPushedRegisters)
    if (isFeature(row))
      all.push_back({.name = hyphened(row.name),
                     .offset = row.address - reg::kFeature,
                     .length = row.length,
                     .kind = FeatureKind::Bytes,
                     .hardware = true,
                     .onBus = true});
  return all;
}

uint64_t numberOf(std::span<const uint8_t> bytes) {
  uint64_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

int64_t signedOf(std::span<const uint8_t> bytes) {
  return static_cast<int32_t>(static_cast<uint32_t>(numberOf(bytes)));
}

Bytes littleEndian(uint64_t value, uint32_t length) {
  Bytes bytes(length);
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(value);
    value >>= 8;
  }
  return bytes;
}

std::string_view wordOf(const Feature& feature, uint8_t byte) {
  for (const ValueWord& row : kWords)
    if (row.offset == feature.offset && row.byte == byte) return row.word;
  return {};
}

Bytes bytesOfNumber(const Feature& feature, const std::string& text) {
  const uint64_t limit = (uint64_t{1} << 8 * feature.length) - 1;
  return littleEndian(number(text, static_cast<uint32_t>(limit)), feature.length);
}

Bytes bytesOfSigned(const Feature& feature, const std::string& text) {
  constexpr uint32_t kMost = 0x7FFFFFFF;
  const bool negative = text.starts_with('-');
  const uint32_t size = number(negative ? text.substr(1) : text, negative ? kMost + 1 : kMost);
  return littleEndian(negative ? 0 - uint64_t{size} : size, feature.length);
}

Bytes bytesOfWord(const Feature& feature, const std::string& text) {
  for (const ValueWord& row : kWords)
    if (row.offset == feature.offset && row.word == text) return {row.byte};
  return bytesOfNumber(feature, text);
}

Bytes bytesOfHex(const Feature& feature, const std::string& text) {
  Bytes bytes = peer::fromHex(text);
  if (bytes.size() != feature.length)
    throw Error(Failure::Usage, feature.name + " takes " + countText(feature.length, "byte") + ", not " +
                                    std::to_string(bytes.size()));
  return bytes;
}

[[noreturn]] void unknownName(const std::string& text) {
  std::vector<std::string> names;
  for (const Feature& feature : features()) names.push_back(feature.name);
  const std::string near = nearest(text, names);
  throw Error(Failure::Usage,
              "no feature '" + text + "'" +
                  (near.empty() ? " (parlctl feature list shows them)" : ": did you mean " + near + "?"));
}

// An address that has no name of its own is so many bytes.
Feature unnamed(uint32_t offset, uint32_t length) {
  return {.name = hexAddress(reg::kFeature + offset),
          .offset = offset,
          .length = length,
          .kind = FeatureKind::Bytes};
}

// What is written and what is read back differ where a mode has two bytes for one word.
bool isAsWritten(const Feature& feature, std::span<const uint8_t> written, std::span<const uint8_t> found) {
  if (feature.kind == FeatureKind::Clock) return clockIsNear(written, found);
  return std::ranges::equal(written, found) ||
         (feature.kind == FeatureKind::Word && valueText(feature, written) == valueText(feature, found));
}

Comparison compare(const Feature& feature, const Bytes& written, const Bytes& found) {
  if (isAsWritten(feature, written, found)) return {Outcome::Verified, ""};
  return {Outcome::Mismatch, "read back " + valueText(feature, found)};
}

}  // namespace

uint32_t Feature::address() const {
  return (onBus ? reg::kTestPrint : reg::kFeature) + offset;
}

const std::vector<Feature>& features() {
  static const std::vector<Feature> kAll = makeFeatures();
  return kAll;
}

Feature featureOf(const std::string& text) {
  if (const auto row = std::ranges::find(features(), text, &Feature::name); row != features().end())
    return *row;
  if (text.empty() || std::isdigit(static_cast<unsigned char>(text[0])) == 0) unknownName(text);
  const std::size_t colon = text.find(':');
  const uint32_t given = number(text.substr(0, colon));
  const uint32_t offset = given >= kFeatureBytes ? given - reg::kFeature : given;
  const uint32_t length = colon == std::string::npos ? 0 : fromOne(text.substr(colon + 1), kFeatureBytes);
  if (offset >= kFeatureBytes || offset + std::max(length, 1U) > kFeatureBytes)
    throw Error(Failure::Usage, "'" + text + "' is not inside the feature space of 512 bytes");
  const auto row = std::ranges::find(features(), offset, &Feature::offset);
  const bool named = row != features().end() && !row->onBus && (length == 0 || length == row->length);
  return named ? *row : unnamed(offset, std::max(length, 1U));
}

const Feature& featureAt(uint32_t fpgaRegister) {
  return *std::ranges::find(features(), fpgaRegister, &Feature::offset);
}

std::string valueText(const Feature& feature, std::span<const uint8_t> bytes) {
  switch (feature.kind) {
    case FeatureKind::Number:
      return std::to_string(numberOf(bytes));
    case FeatureKind::Signed:
      return std::to_string(signedOf(bytes));
    case FeatureKind::Clock:
      return clockText(bytes);
    case FeatureKind::Word:
      if (const auto word = wordOf(feature, bytes[0]); !word.empty()) return std::string(word);
      break;
    case FeatureKind::Bytes:
      break;
  }
  return peer::toHex(bytes);
}

Json valueJson(const Feature& feature, std::span<const uint8_t> bytes) {
  switch (feature.kind) {
    case FeatureKind::Number:
      return numberOf(bytes);
    case FeatureKind::Signed:
      return signedOf(bytes);
    default:
      return valueText(feature, bytes);
  }
}

Bytes valueBytes(const Feature& feature, const std::string& text) {
  switch (feature.kind) {
    case FeatureKind::Number:
      return bytesOfNumber(feature, text);
    case FeatureKind::Signed:
      return bytesOfSigned(feature, text);
    case FeatureKind::Clock:
      return clockBytes(text);
    case FeatureKind::Word:
      return bytesOfWord(feature, text);
    case FeatureKind::Bytes:
      break;
  }
  return bytesOfHex(feature, text);
}

Bytes readFeature(peer::Peer& daemon, const Feature& feature) {
  return daemon.read(feature.address(), feature.length);
}

// In two reads the daemon does not ask the FPGA: neither reaches over the mirror's end.
Bytes readImage(peer::Peer& daemon, bool refresh) {
  if (refresh) return daemon.read(reg::kFeature, kFeatureBytes);
  Bytes image = daemon.read(reg::kFeature, fpga::kMirrorEnd);
  const Bytes rest = daemon.read(reg::ofFeature(fpga::kMirrorEnd), kFeatureBytes - fpga::kMirrorEnd);
  image.insert(image.end(), rest.begin(), rest.end());
  return image;
}

Result setFeature(const Options& options, peer::Peer& daemon, const Feature& feature, const Bytes& bytes) {
  daemon.write(feature.address(), bytes);
  const Comparison seen =
      lookUntil(options.patience(), [&] { return compare(feature, bytes, readFeature(daemon, feature)); });
  const std::string wanted = feature.name + " " + valueText(feature, bytes);
  Result result{{{"name", feature.name}, {"address", hexAddress(feature.address())}},
                std::string(textOf(seen.outcome).word) + ": " + wanted,
                seen.outcome};
  result.fields["value"] = valueJson(feature, bytes);
  if (!seen.text.empty()) result.text += ", " + seen.text;
  return result;
}

}  // namespace parlctl
