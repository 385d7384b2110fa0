// Thousands of random requests beside a model of the register spaces: every reply, and in the end every byte
// of flash and FPGA, must be what the model says. The model is slow and plain on purpose.
#include <algorithm>
#include <map>
#include <random>

#include "daemontest.h"

namespace {

using peer::Bytes;
using peer::Frame;

constexpr uint32_t kImageSize = 32U << 20;  // the whole flash, and more of the bus than these requests reach
constexpr uint16_t kAnyLength = 65535;

enum class Kind { Hardware, Silent, Echo, Backup, Table, Gamma, Files, Generator, Program, Bus };
struct Space {
  Kind kind;
  uint32_t first, last;
  uint16_t least, most;
};
constexpr Space kSpaces[] = {
    {Kind::Hardware, 0x00000000, 0x0000FFFF, 0, kAnyLength},
    {Kind::Silent, 0x00010000, 0x0001FFFF, 1, 512},
    {Kind::Echo, 0x02100000, 0x0210FFFF, 1, 1024},
    {Kind::Backup, 0x02300000, 0x0230FFFF, 1, 512},
    {Kind::Silent, 0x02700000, 0x0270FFFF, 1, kAnyLength},
    {Kind::Table, 0x05000000, 0x0500FFFF, 1, 32768},
    {Kind::Table, 0x05060000, 0x0506FFFF, 1, 32768},
    {Kind::Gamma, 0x0E000000, 0x0EFFFFFF, 1, 1024},
    {Kind::Files, 0x0F000000, 0x0FFFFFFF, 0, 2048},
    {Kind::Generator, 0x12010000, 0x1201FFFF, 0, 2048},
    {Kind::Program, 0x18000000, 0x1800FFFF, 256, 4096},
    {Kind::Program, 0x18200000, 0x1820FFFF, 256, 4096},
    {Kind::Bus, 0xF0000000, 0xF1FFFFFF, 0, kAnyLength},
};

enum Outcome : uint8_t { Done = 0, BadChecksum = 2, Refused = 4 };

class Model {
 public:
  Model(Bytes flashImage, Bytes busImage) : flash(std::move(flashImage)), bus(std::move(busImage)) {}

  // Carries a frame out. What comes back for it; nothing for one that is dropped.
  std::optional<Bytes> answer(const Bytes& frame) {
    if (frame.size() < 20 || frame.size() > 65536) return std::nullopt;
    const auto word = [&](std::size_t at) { return static_cast<uint16_t>(frame[at] | frame[at + 1] << 8); };
    Frame f{.tag = {frame[1], frame[0]},
            .label = frame[3],
            .source = frame[4],
            .destination = frame[5],
            .deviceType = frame[6],
            .port = frame[7],
            .board = word(8),
            .code = frame[10],
            .reserved = frame[11],
            .address = word(12) | static_cast<uint32_t>(word(14)) << 16,
            .length = word(16)};
    if (f.code == peer::kWrite) {
      if (frame.size() < 20U + f.length) return std::nullopt;
      f.data.assign(frame.begin() + 18, frame.begin() + 18 + f.length);
    }
    uint16_t sum = 0x5555;
    for (std::size_t i = 2; i + 2 < frame.size(); ++i) sum = static_cast<uint16_t>(sum + frame[i]);
    f.ack = sum == word(frame.size() - 2) ? carryOut(f) : BadChecksum;
    if (f.code == peer::kWrite && f.reserved != 0xFF) f.data.clear();
    f.length = static_cast<uint16_t>(f.data.size());
    return peer::encode(f);
  }

  Bytes flash, bus;

 private:
  Outcome carryOut(Frame& f) {
    const auto* space = std::find_if(std::begin(kSpaces), std::end(kSpaces), [&](const Space& s) {
      return f.address >= s.first && f.address <= s.last;
    });
    if (f.deviceType > 4 || space == std::end(kSpaces)) return Done;
    const bool checksLimits = space->kind != Kind::Hardware && space->kind != Kind::Bus;
    if (checksLimits && (f.length < space->least || f.length > space->most || f.code > 1)) return Refused;
    if (space->kind == Kind::Program) return program(f);
    if (f.code == peer::kRead) return read(space->kind, f);
    if (f.code == peer::kWrite) return write(space->kind, f);
    return Done;
  }

  Outcome read(Kind kind, Frame& f) {
    const uint32_t low = f.address & 0xFFFF;
    switch (kind) {
      case Kind::Hardware:
        if (low + f.length <= 256) f.data = hardware(low, f.length);
        break;
      case Kind::Silent:
        break;
      case Kind::Echo:
        f.data = echoed(low & 0xFF, std::min<uint32_t>(f.length, 392));
        break;
      case Kind::Backup:
        f.data = part(flash, f.address - 0x02300000 + 0xB98000, f.length);
        break;
      case Kind::Table:
        f.data = f.address == 0x0500FFFF && f.length == 1
                     ? Bytes{0xC8}
                     : part(flash, f.address - 0x05000000 + 0xC30000, f.length);
        break;
      case Kind::Gamma:
        f.data = gamma(f.address & 0xFFFFFF, f.length);
        break;
      case Kind::Files:
        f.data = part(flash, (f.address & 0x7FFFFF) + ((f.address & 0x800000) != 0 ? 0xD14000 : 0xE00000),
                      f.length);
        break;
      case Kind::Generator:
        if (low + f.length < 64) f.data = part(bus, 0xA00000 + low, f.length);
        break;
      case Kind::Bus:
        if (f.length >= 4096) return Refused;
        f.data = part(bus, f.address & 0x0FFFFFFF, f.length);
        break;
      case Kind::Program:
        break;
    }
    return Done;
  }

  Outcome write(Kind kind, const Frame& f) {
    switch (kind) {
      case Kind::Echo:
        for (uint32_t i = 0, at = f.address & 0xFF; i < f.length && at < 32; ++i, ++at) echo[at] = f.data[i];
        break;
      case Kind::Backup:
        put(flash, f.address - 0x02300000 + 0xB98000, f.data);
        break;
      case Kind::Table:
        put(flash, f.address - 0x05000000 + 0xC30000, f.data);
        break;
      case Kind::Gamma:
        storeGamma(f.address & 0xFFFFFF, f.data);
        break;
      case Kind::Bus:
        if (f.length > 4096) return Refused;
        put(bus, f.address & 0x0FFFFFFF, f.data);
        if (f.address == 0xF1200000 && f.length == 25) bus[0x100051] = 1;
        break;
      default:  // the requests leave out writes whose work goes beyond storing bytes
        EXPECT_TRUE(kind == Kind::Silent || f.data.empty()) << f.address;
    }
    return Done;
  }

  static Outcome program(Frame& f) {
    const uint32_t low = f.address & 0xFFFF;
    if (f.code != peer::kRead || (low != 0 && low != 0x1000)) return Refused;
    f.data = zeros(f.length);
    return Done;
  }

  // The page in the flash; model and serial number come from the environment when both ends are asked for.
  Bytes hardware(uint32_t from, uint32_t length) const {
    Bytes page = part(flash, 0x1000, 256);
    if (from <= 2 && from + length >= 4) put(page, 2, {0x0D, 0x4C});
    if (from <= 22 && from + length >= 30) put(page, 22, peer::fromHex("1A2B3C4D5E6F7081"));
    return part(page, from, length);
  }

  Bytes echoed(uint32_t from, uint32_t length) {
    put(echo, 6, {128, 0, 128, 0});
    return part(echo, from, length);
  }

  static bool inTable(uint32_t at) {
    const uint32_t colour = at >> 20;
    const uint32_t low = at & 0xFFFFF;
    return colour < 3 && low < 0x4000 && (low & 0x1FFF) != 0x1FFF;
  }
  Bytes gamma(uint32_t at, uint32_t length) const {
    if (at == 0x302000 && length == 1) return part(bus, 0xD13000, 1);
    if (at == 0x300000 && length == 1) return part(bus, 0xD12000, 1);
    return inTable(at) ? part(bus, 0x700000 + (at >> 20) * 0x10000 + (at & 0xFFFF), length) : zeros(length);
  }
  void storeGamma(uint32_t at, const Bytes& data) {
    if (at == 0x302000 && data.size() == 1) put(flash, 0xD13000, data);
    if (at == 0x300000 && data.size() == 1) put(flash, 0xD12000, data);
    if (!inTable(at)) return;
    const uint32_t colour = at >> 20;
    const bool tenBit = (at & 0x2000) != 0;
    const uint32_t room = 0x2000 - (at & 0x1FFF);
    const uint32_t table = (tenBit ? 0xD03000 : 0xD0C000) + colour * 0x2000;
    put(flash, table + (at & 0x1FFF), part(data, 0, std::min<std::size_t>(room, data.size())));
    if (data.size() == room)
      put(flash, (tenBit ? 0xD00000 : 0xD09000) + colour * 0x1000, {0x39, 0xF6, 0xA5, 0x5A});
  }

  static Bytes part(const Bytes& bytes, std::size_t at, std::size_t length) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(at),
            bytes.begin() + static_cast<std::ptrdiff_t>(at + length)};
  }
  static void put(Bytes& to, std::size_t at, const Bytes& bytes) {
    std::copy(bytes.begin(), bytes.end(), to.begin() + static_cast<std::ptrdiff_t>(at));
  }

  Bytes echo = zeros(392 + 256);  // a read past the table's 392 bytes shows zeros
};

// Where the requests go: few places, so that they meet. Only what stands at once may be read between writes.
enum Use : uint8_t { ReadOnly, Queued, AtOnce };
struct Window {
  uint32_t first, size;
  Use use;
};
constexpr Window kWindows[] = {
    {0x00000000, 0x120, ReadOnly}, {0x0000FFF0, 0x10, ReadOnly},    {0x00010000, 0x10000, AtOnce},
    {0x02100000, 0x30, Queued},    {0x02104000, 0x100, Queued},     {0x02300000, 0x300, Queued},
    {0x0230FE80, 0x180, Queued},   {0x02700000, 0x10000, AtOnce},   {0x05000000, 0x300, Queued},
    {0x0500FFF8, 8, Queued},       {0x0500FFFF, 1, ReadOnly},       {0x05060000, 0x300, Queued},
    {0x0E000000, 0x200, Queued},   {0x0E001E00, 0x400, Queued},     {0x0E003F00, 0x200, Queued},
    {0x0E101E00, 0x400, Queued},   {0x0E103F00, 0x200, Queued},     {0x0E200000, 0x200, Queued},
    {0x0E202000, 0x200, Queued},   {0x0E300000, 1, Queued},         {0x0E302000, 1, Queued},
    {0x0F000000, 0x800, ReadOnly}, {0x0F800000, 0x800, ReadOnly},   {0x12010000, 0x48, ReadOnly},
    {0x18000000, 1, AtOnce},       {0x18201000, 1, AtOnce},         {0x18000FFE, 4, AtOnce},
    {0xF0700000, 0x200, AtOnce},   {0xF0701E00, 0x400, AtOnce},     {0xF0722000, 0x200, AtOnce},
    {0xF0A00000, 0x40, AtOnce},    {0xF0C0FE00, 0x200, AtOnce},     {0xF0D12000, 1, AtOnce},
    {0xF0D13000, 1, AtOnce},       {0xF1200000, 1, AtOnce},         {0x02250000, 0x10000, AtOnce},
    {0x05010000, 0x50000, AtOnce}, {0x13000000, 0x1000000, AtOnce},
};

class Requests {
 public:
  explicit Requests(unsigned seed) : random_(seed) {}

  // betweenWrites: queued writes may be under way, so that what they touch must not be read.
  Bytes next(bool betweenWrites) {
    const Window& window = kWindows[below(std::size(kWindows))];
    Frame frame{.label = byte(), .source = byte(), .destination = oneIn(8) ? byte() : uint8_t{0}};
    frame.deviceType = oneIn(40) ? static_cast<uint8_t>(5 + below(251)) : uint8_t{0};
    frame.port = byte();
    frame.board = byte();
    frame.reserved = oneIn(8) ? uint8_t{0xFF} : uint8_t{0};
    frame.address = window.first + below(window.size);
    frame.length = length(frame.address);
    const bool mayWrite = betweenWrites && window.use != ReadOnly;
    const bool mayRead = !betweenWrites || window.use == AtOnce;
    if (!mayWrite && !mayRead) return next(betweenWrites);
    frame.code = mayWrite && (!mayRead || oneIn(2)) ? peer::kWrite : peer::kRead;
    if (oneIn(50)) frame.code = static_cast<uint8_t>(2 + below(254));
    if (frame.code == peer::kWrite) {
      frame.length = std::min<uint16_t>(frame.length, peer::kMaxData);
      frame.data.resize(frame.length);
      for (uint8_t& value : frame.data) value = byte();
    }
    return oneIn(5) ? spoilt(frame) : peer::encode(frame);
  }

 private:
  uint16_t length(uint32_t address) {
    constexpr uint16_t kLengths[] = {0,   1,   2,    25,   63,   64,   255,  256,  257,  511, 512,
                                     513, 600, 1023, 1024, 1025, 2048, 2049, 4095, 4096, 4097};
    constexpr uint16_t kLongLengths[] = {5000, 32767, 32768, 32769, 65516, 65535};
    if (oneIn(60)) return kLongLengths[below(std::size(kLongLengths))];
    if (oneIn(4)) return kLengths[below(std::size(kLengths))];
    // To the end of a gamma table, or nearly so.
    if (oneIn(6)) return static_cast<uint16_t>(0x2001 - (address & 0x1FFF) - below(3));
    return static_cast<uint16_t>(1 + below(40));
  }

  Bytes spoilt(Frame frame) {
    Bytes bytes = peer::encode(frame);
    const auto size = static_cast<unsigned>(bytes.size());
    switch (below(6)) {
      case 0:
        bytes.resize(below(size));
        return bytes;
      case 1:
        bytes.resize(size + 1 + below(8), byte());
        return bytes;
      case 2:  // bytes behind the data, covered by the checksum
        frame.data.resize(frame.data.size() < peer::kMaxData - 8 ? frame.data.size() + 1 + below(8)
                                                                 : frame.data.size());
        return peer::encode(frame);
      case 3:  // a length that is not that of the data
        frame.length = static_cast<uint16_t>(oneIn(2) ? below(65536) : frame.length + below(5) - 2);
        return peer::encode(frame);
      default:
        bytes[oneIn(2) ? below(std::min(size, 20U)) : below(size)] ^= static_cast<uint8_t>(1U << below(8));
        return bytes;
    }
  }

  uint32_t below(std::size_t limit) { return static_cast<uint32_t>(random_() % limit); }
  bool oneIn(unsigned n) { return below(n) == 0; }
  uint8_t byte() { return static_cast<uint8_t>(random_()); }

  std::mt19937 random_;
};

class ModelTest : public DaemonTest, public testing::WithParamInterface<unsigned> {
 protected:
  ModelTest() : DaemonTest(TestDaemon::Later{}) {
    daemon.prepare("etc/sysconf.env", "device_sn=1a2B3c4D5e6F7081\ndevice_modelid=4c0d\n");
    daemon.start("fpga_autoload = no\n");
    for (const uint32_t address : {0xB98000U, 0xC30000U, 0xC90000U, 0xD14000U, 0xE00000U})
      daemon.board.setFlash(address, counting(4096, address >> 12));
    model.emplace(flash(0, kImageSize), fpga(0, kImageSize));
  }

  void compare(const Bytes& frame) {
    SCOPED_TRACE(peer::toHex(frame));
    const auto expected = model->answer(frame);
    const auto message = daemon.exchange(frame);
    ++outcomes[expected ? static_cast<int>(expected->at(2)) : -1];
    ASSERT_EQ(message.has_value(), expected.has_value());
    if (!expected) return;
    ASSERT_EQ(peer::toHex(message->frame), peer::toHex(*expected));
    ASSERT_EQ(message->head.result, expected->at(2));
    ASSERT_EQ(message->head.frameLength, expected->size());
  }

  static void expectSame(const Bytes& is, const Bytes& shouldBe, const char* what) {
    ASSERT_EQ(is.size(), shouldBe.size());
    const auto [left, right] = std::mismatch(is.begin(), is.end(), shouldBe.begin());
    if (left == is.end()) return;
    ADD_FAILURE() << what << " differs at 0x" << std::hex << left - is.begin() << ": 0x" << int{*left}
                  << " instead of 0x" << int{*right};
  }

  std::optional<Model> model;
  std::map<int, unsigned> outcomes;  // by acknowledge code; -1: no reply
};

TEST_P(ModelTest, RepliesAndMemoryAreThoseOfTheModel) {
  Requests requests(GetParam());
  for (unsigned round = 0; round < 200; ++round) {
    for (unsigned i = 0; i < 20; ++i) {
      compare(requests.next(i >= 8));
      if (HasFatalFailure()) return;
    }
    daemon.workOff();
  }
  for (const int outcome : {int{Done}, int{BadChecksum}, int{Refused}, -1})
    EXPECT_GE(outcomes[outcome], 100U);
  expectSame(flash(0, kImageSize), model->flash, "flash");
  expectSame(fpga(0, kImageSize), model->bus, "FPGA");
}

INSTANTIATE_TEST_SUITE_P(Seeds, ModelTest, testing::Values(20170619U, 4711U));

}  // namespace
