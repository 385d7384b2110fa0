#include "cabfiletext.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "calc/rvplayback.h"
#include "mcucdatablock.h"
#include "peer/error.h"
#include "values.h"

namespace parlctl {

namespace {

namespace rv = ORVE_MCUC::rv;
using peer::Bytes;
using peer::Error;
using peer::Failure;

constexpr std::size_t kReservedAt = 2;
constexpr std::size_t kBytesOfALine = 16;

struct Item {
  uint32_t cardRegister = 0;
  uint16_t pauseMs = 0;
  bool paused = false;
  Bytes data;
};

std::string trimmed(const std::string& text) {
  const char* kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == text.npos ? "" : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// What is compiled so far.
class Compiler {
 public:
  void line(const std::string& text) {
    const std::string words = trimmed(text.substr(0, text.find('#')));
    if (words.empty()) return;
    const std::size_t equals = words.find('=');
    if (words.starts_with("pause ")) {
      pause(trimmed(words.substr(6)));
    } else if (words.starts_with('+')) {
      more(words.substr(1));
    } else if (equals == words.npos) {
      throw Error(Failure::Usage, "\"" + words + "\" is neither ADDRESS = BYTES nor + BYTES nor pause MS");
    } else if (trimmed(words.substr(0, equals)) == "reserved") {
      reserve(words.substr(equals + 1));
    } else {
      items_.emplace_back().cardRegister = number(trimmed(words.substr(0, equals)));
      more(words.substr(equals + 1));
    }
  }

  Bytes file() const {
    if (items_.size() > 0xFFFF) throw Error(Failure::Usage, "a file has at most 65535 items");
    Bytes bytes(rv::kFileHeadBytes);
    ORVE_MCUC::putLe16(bytes, 0, static_cast<uint16_t>(items_.size()));
    std::copy(reserved_.begin(), reserved_.end(), bytes.begin() + kReservedAt);
    for (const Item& item : items_) {
      std::array<uint8_t, rv::kItemHeadBytes> head{};
      ORVE_MCUC::ByteWriter to(head);
      to.le32(item.cardRegister);
      to.le16(item.pauseMs);
      to.le16(static_cast<uint16_t>(item.data.size()));
      bytes.insert(bytes.end(), head.begin(), head.end());
      bytes.insert(bytes.end(), item.data.begin(), item.data.end());
    }
    return bytes;
  }

 private:
  Item& last() {
    if (items_.empty()) throw Error(Failure::Usage, "no register write stands before it");
    return items_.back();
  }
  void more(const std::string& hex) {
    Bytes& data = last().data;
    const Bytes bytes = peer::fromHex(trimmed(hex));
    data.insert(data.end(), bytes.begin(), bytes.end());
    if (data.size() > rv::kMostItemData) throw Error(Failure::Usage, "an item has at most 4096 bytes");
  }
  void pause(const std::string& milliseconds) {
    Item& item = last();
    if (item.paused) throw Error(Failure::Usage, "an item has one pause");
    item.pauseMs = static_cast<uint16_t>(number(milliseconds, 0xFFFF));
    item.paused = true;
  }
  void reserve(const std::string& hex) {
    reserved_ = peer::fromHex(trimmed(hex));
    if (reserved_.size() != rv::kFileHeadBytes - kReservedAt) {
      throw Error(Failure::Usage, "30 bytes are reserved");
    }
  }

  std::vector<Item> items_;
  Bytes reserved_;
};

std::string spaced(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) text += " " + peer::toHex({&byte, 1});
  return text;
}

std::string textOf(const ORVE_MCUC::RvItem& item) {
  const std::string address = hexAddress(item.cardRegister);
  std::string text =
      address + " =" + spaced(item.data.first(std::min(item.data.size(), kBytesOfALine))) + "\n";
  for (std::size_t at = kBytesOfALine; at < item.data.size(); at += kBytesOfALine) {
    text += std::string(address.size(), ' ') + " +" +
            spaced(item.data.subspan(at, std::min(item.data.size() - at, kBytesOfALine))) + "\n";
  }
  if (item.pauseMs != 0) text += "pause " + std::to_string(item.pauseMs) + "\n";
  return text;
}

}  // namespace

Bytes compileCabFile(const std::string& text) {
  Compiler compiler;
  std::istringstream lines(text);
  std::string line;
  for (std::size_t n = 1; std::getline(lines, line); ++n) {
    try {
      compiler.line(line);
    } catch (const Error& error) {
      throw Error(Failure::Usage, "line " + std::to_string(n) + ": " + error.what());
    }
  }
  return compiler.file();
}

std::string decompileCabFile(std::span<const uint8_t> file) {
  if (file.size() < rv::kFileHeadBytes)
    throw Error(Failure::Usage, "a configuration file begins with 32 bytes");
  std::string text;
  const auto reserved = file.subspan(kReservedAt, rv::kFileHeadBytes - kReservedAt);
  if (std::ranges::any_of(reserved, [](uint8_t byte) { return byte != 0; })) {
    text += "reserved =" + spaced(reserved) + "\n";
  }
  std::size_t items = 0;
  const auto end = ORVE_MCUC::forEachRvItem(file, [&](const ORVE_MCUC::RvItem& item) {
    ++items;
    text += textOf(item);
    return true;
  });
  if (end != ORVE_MCUC::RvEnd::kDone) {
    throw Error(Failure::Usage, "item " + std::to_string(items + 1) +
                                    (end == ORVE_MCUC::RvEnd::kTooLong ? " is longer than 4096 bytes"
                                                                       : " does not lie within the file"));
  }
  return text;
}

}  // namespace parlctl
