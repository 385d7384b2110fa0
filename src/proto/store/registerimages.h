// Images of the register spaces that FPGA and flash hold, and the ways in which they change together with the
// FPGA. Owner: the store. Any thread reads single bytes; whatever an image and the FPGA must agree on changes
// under the image lock, which is held for one bus access and never over flash, shell, cards, sends or pauses.
#pragma once

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <span>

#include "maps/cardgeometry.h"
#include "mcucdatablock.h"
#include "mcucmutex.h"
#include "proto/store/deviceaccess.h"
#include "proto/store/fpgaimage.h"
#include "proto/store/loadstate.h"

namespace ORVE_MCUC {

inline constexpr std::size_t kFeatureSize = 512;
using FeatureImage = FpgaImage<kFeatureSize>;
using FeatureBytes = std::array<uint8_t, kFeatureSize>;  // the image at one moment

// What flash could not give is neither saved nor brought to the FPGA.
struct LoadStates {
  LoadState feature;
  LoadState global;
  LoadState number;
  LoadState screen;
  std::array<LoadState, kMappedPorts> portTables;
};

// What a restore has written to the FPGA, every byte of it.
struct RestoredParts {
  bool feature = false;
  bool number = false;
  std::array<bool, kMappedPorts> portTables{};
  bool all() const { return feature && number && std::ranges::all_of(portTables, std::identity{}); }
};

struct RegisterImages {
  FeatureImage SendParameterReg;        // feature parameters: FPGA registers 0x000..0x1FF
  ByteImage<392> ScreenParaReg;         // screen information
  FpgaImage<512> HardwareScreenGenReg;  // test-pattern generator
  LoadStates loadStates;                // under the configuration lock, as what follows
  RestoredParts restoredParts;
  RelaxedByte FpgaOnlineFlag;  // 1: the device has loaded the FPGA; set by the flag and status thread
  // Also for the images beside the store: PortsTopoPara, VsPartPara, ParaTable.
  mutable CMutexThread imageLock;
};

inline bool isOnline(const RegisterImages& images) {
  return images.FpgaOnlineFlag == 1;
}

// New values of the feature image, composed aside and put in at once.
class FeatureDraft {
 public:
  void put(std::size_t at, uint8_t value) {
    bytes_.at(at) = value;
    taken_.set(at);
  }
  void putLe16(std::size_t at, uint16_t value) {
    put(at, static_cast<uint8_t>(value));
    put(at + 1, static_cast<uint8_t>(value >> 8));
  }
  void put(std::size_t at, std::span<const uint8_t> values) {
    for (const uint8_t value : values) put(at++, value);
  }
  // What another draft holds, over what was put before.
  void put(const FeatureDraft& later);
  // Only what was put; the rest stays.
  void applyTo(std::span<uint8_t, kFeatureSize> image) const;
  void applyTo(FeatureImage& image) const;  // which decides them

 private:
  FeatureBytes bytes_{};
  std::bitset<kFeatureSize> taken_;
};

// A draft into the image; with a block, that block of the image to the FPGA as well: of an image that flash
// could not give only what was decided.
void putFeature(RegisterImages& images, const FeatureDraft& draft);
int putFeature(RegisterImages& images, const FeatureDraft& draft, uint32_t first, std::size_t length,
               FailureWords words);

// The image at one moment, with a draft laid over it.
FeatureBytes featureBytes(const RegisterImages& images, const FeatureDraft& over = {});

// Changes bytes of an image that depend on each other, at one moment. change(image) waits for nothing.
template <class Image, class Change>
void changeImage(const RegisterImages& images, Image& image, Change change) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  change(image);
}

// The three that follow log a failure of the FPGA with the words that they are given, if any.

// Bytes into an image and to the FPGA. -1, and nothing done, when they do not lie inside the image, else
// DriverUtil's result.
template <std::size_t N>
int writeThrough(const RegisterImages& images, FpgaImage<N>& image, std::size_t at, uint32_t fpgaRegister,
                 std::span<const uint8_t> bytes, FailureWords words = {}) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  if (!image.decide(bytes, at)) return -1;
  return image.written(at, bytes.size(), writeFpga(fpgaRegister, bytes, words), isOnline(images));
}

// Bytes to the FPGA past an image, which follows with the next read. The same results.
template <std::size_t N>
int writePast(const RegisterImages& images, FpgaImage<N>& image, std::size_t at, uint32_t fpgaRegister,
              std::span<const uint8_t> bytes, FailureWords words = {}) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  const int ret = writeFpga(fpgaRegister, bytes, words);
  return ret == 0 ? image.written(at, bytes.size(), ret, isOnline(images)) : ret;
}

// A part of an image to the FPGA, as it is; at most 1024 bytes. The same results.
template <std::size_t N>
int writeImage(const RegisterImages& images, FpgaImage<N>& image, std::size_t at, std::size_t length,
               uint32_t fpgaRegister, FailureWords words = {}) {
  std::array<uint8_t, 1024> room{};
  if (length > room.size()) return -1;
  const auto bytes = std::span(room).first(length);
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  if (!image.copyTo(bytes, at)) return -1;
  return image.written(at, length, writeFpga(fpgaRegister, bytes, words), isOnline(images));
}

// Registers of the FPGA into an image, which keeps what the FPGA was not told yet, and all of its bytes when
// they cannot be read. The same results.
template <std::size_t N>
int readThrough(const RegisterImages& images, FpgaImage<N>& image, std::size_t at, uint32_t fpgaRegister,
                std::span<uint8_t> bytes, FailureWords words = {}) {
  const auto reads = holdReads();
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  if (const int ret = readFpga(fpgaRegister, bytes, words)) return ret;
  return image.refresh(bytes, at) ? 0 : -1;
}

// Bytes into an image: decided by somebody, or known to be what the FPGA holds; and a part of an image as it
// is at one moment.
template <std::size_t N>
bool putBytes(const RegisterImages& images, FpgaImage<N>& image, std::size_t at,
              std::span<const uint8_t> bytes) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  return image.decide(bytes, at);
}
template <std::size_t N>
bool refreshBytes(const RegisterImages& images, FpgaImage<N>& image, std::size_t at,
                  std::span<const uint8_t> bytes) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  return image.refresh(bytes, at);
}
template <std::size_t N>
bool putBytes(const RegisterImages& images, ByteImage<N>& image, std::size_t at,
              std::span<const uint8_t> bytes) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  return image.copyFrom(bytes, at);
}
template <std::size_t N>
bool snapshot(const RegisterImages& images, const ByteImage<N>& image, std::size_t at,
              std::span<uint8_t> bytes) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  return image.copyTo(bytes, at);
}

}  // namespace ORVE_MCUC
