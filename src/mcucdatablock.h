// Bytes of frames, register images and flash records: little-endian access that checks its bounds, and byte
// images that several threads may touch at once.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

namespace ORVE_MCUC {

// Reads one field after the other and remembers the first one that was not there: read everything, ask ok()
// once. A missing field is 0 or an empty span, and so is everything after it.
class ByteReader {
 public:
  explicit constexpr ByteReader(std::span<const uint8_t> bytes) : rest_(bytes) {}

  constexpr uint8_t u8() { return static_cast<uint8_t>(number(1)); }
  constexpr uint16_t le16() { return static_cast<uint16_t>(number(2)); }
  constexpr uint32_t le32() { return number(4); }
  constexpr std::span<const uint8_t> bytes(std::size_t count) {
    ok_ = ok_ && count <= rest_.size();
    if (!ok_) return {};
    const auto taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
  }

  constexpr bool ok() const { return ok_; }
  constexpr std::size_t left() const { return ok_ ? rest_.size() : 0; }

 private:
  constexpr uint32_t number(std::size_t count) {
    const auto field = bytes(count);
    uint32_t value = 0;
    for (std::size_t i = field.size(); i-- > 0;) value = value << 8 | field[i];
    return value;
  }

  std::span<const uint8_t> rest_;
  bool ok_ = true;
};

// Writes one field after the other. A field that does not fit is left out as a whole, and so is everything
// after it.
class ByteWriter {
 public:
  explicit constexpr ByteWriter(std::span<uint8_t> room) : room_(room) {}

  constexpr void u8(uint8_t value) { number(value, 1); }
  constexpr void le16(uint16_t value) { number(value, 2); }
  constexpr void le32(uint32_t value) { number(value, 4); }
  constexpr void bytes(std::span<const uint8_t> source) {
    if (reserve(source.size())) std::copy(source.begin(), source.end(), field_.begin());
  }

  constexpr bool ok() const { return ok_; }
  constexpr std::size_t written() const { return written_; }

 private:
  constexpr bool reserve(std::size_t count) {
    ok_ = ok_ && count <= room_.size() - written_;
    if (!ok_) return false;
    field_ = room_.subspan(written_, count);
    written_ += count;
    return true;
  }
  constexpr void number(uint32_t value, std::size_t count) {
    if (!reserve(count)) return;
    for (std::size_t i = 0; i < count; ++i) field_[i] = static_cast<uint8_t>(value >> 8 * i);
  }

  std::span<uint8_t> room_;
  std::span<uint8_t> field_;
  std::size_t written_ = 0;
  bool ok_ = true;
};

// Single fields at an offset. A field that does not lie wholly inside reads as 0 and is not written (false).
constexpr bool fits(std::size_t size, std::size_t offset, std::size_t count) {
  return offset <= size && count <= size - offset;
}

constexpr uint16_t le16(std::span<const uint8_t> bytes, std::size_t offset = 0) {
  return fits(bytes.size(), offset, 2) ? ByteReader(bytes.subspan(offset)).le16() : uint16_t{0};
}

constexpr uint32_t le32(std::span<const uint8_t> bytes, std::size_t offset = 0) {
  return fits(bytes.size(), offset, 4) ? ByteReader(bytes.subspan(offset)).le32() : 0;
}

constexpr bool putLe16(std::span<uint8_t> bytes, std::size_t offset, uint16_t value) {
  if (!fits(bytes.size(), offset, 2)) return false;
  ByteWriter(bytes.subspan(offset)).le16(value);
  return true;
}

constexpr bool putLe32(std::span<uint8_t> bytes, std::size_t offset, uint32_t value) {
  if (!fits(bytes.size(), offset, 4)) return false;
  ByteWriter(bytes.subspan(offset)).le32(value);
  return true;
}

// A number that threads share as they would a plain one: no order is promised, only that no read is torn. A
// value that announces other data needs an std::atomic of its own.
template <class T>
class RelaxedValue {
 public:
  constexpr RelaxedValue(T value = {}) : value_(value) {}
  RelaxedValue(const RelaxedValue& other) : value_(other) {}
  RelaxedValue& operator=(const RelaxedValue& other) { return *this = static_cast<T>(other); }
  RelaxedValue& operator=(T value) {
    value_.store(value, std::memory_order_relaxed);
    return *this;
  }
  operator T() const { return value_.load(std::memory_order_relaxed); }
  void add(T amount) { value_.fetch_add(amount, std::memory_order_relaxed); }

 private:
  static_assert(std::atomic<T>::is_always_lock_free);
  std::atomic<T> value_;
};

using RelaxedByte = RelaxedValue<uint8_t>;

// N bytes with the interface of an array, each of which may be touched by any thread at any time.
template <std::size_t N>
class ByteImage {
 public:
  RelaxedByte& operator[](std::size_t index) { return bytes_[index]; }
  const RelaxedByte& operator[](std::size_t index) const { return bytes_[index]; }
  static constexpr std::size_t size() { return N; }

  // Whole ranges. False, and nothing copied, when the range does not lie inside the image.
  [[nodiscard]] bool copyTo(std::span<uint8_t> to, std::size_t from = 0) const {
    if (!fits(N, from, to.size())) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(from), to.size(), to.begin());
    return true;
  }
  [[nodiscard]] bool copyFrom(std::span<const uint8_t> from, std::size_t at = 0) {
    if (!fits(N, at, from.size())) return false;
    std::copy(from.begin(), from.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
  }
  // Ranges that are known to lie inside.
  template <std::size_t At, std::size_t Count>
  std::array<uint8_t, Count> part() const {
    static_assert(fits(N, At, Count));
    std::array<uint8_t, Count> bytes{};
    std::copy_n(bytes_.begin() + At, Count, bytes.begin());
    return bytes;
  }
  std::array<uint8_t, N> bytes() const { return part<0, N>(); }
  template <std::size_t At, std::size_t Count>
  void put(std::span<const uint8_t, Count> from) {
    static_assert(fits(N, At, Count));
    std::copy(from.begin(), from.end(), bytes_.begin() + At);
  }
  void fill(uint8_t value) { bytes_.fill(value); }

  // A 16-bit field; one that does not lie inside reads as 0 and is not written (false).
  uint16_t le16(std::size_t at) const {
    return fits(N, at, 2) ? static_cast<uint16_t>(bytes_[at] | bytes_[at + 1] << 8) : uint16_t{0};
  }
  bool putLe16(std::size_t at, uint16_t value) {
    if (!fits(N, at, 2)) return false;
    bytes_[at] = static_cast<uint8_t>(value);
    bytes_[at + 1] = static_cast<uint8_t>(value >> 8);
    return true;
  }

 private:
  std::array<RelaxedByte, N> bytes_{};
};

static_assert(sizeof(ByteImage<512>) == 512);

}  // namespace ORVE_MCUC
