#include "proto/store/registerimages.h"

namespace ORVE_MCUC {
namespace {

template <class Image>
void applyBytes(const FeatureBytes& bytes, const std::bitset<kFeatureSize>& taken, Image&& image) {
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (taken[at]) image[at] = bytes[at];
  }
}

}  // namespace

void FeatureDraft::put(const FeatureDraft& later) {
  later.applyTo(std::span(bytes_));
  taken_ |= later.taken_;
}
void FeatureDraft::applyTo(std::span<uint8_t, kFeatureSize> image) const {
  applyBytes(bytes_, taken_, image);
}
void FeatureDraft::applyTo(FeatureImage& image) const {
  applyBytes(bytes_, taken_, image);
}

void putFeature(RegisterImages& images, const FeatureDraft& draft) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  draft.applyTo(images.SendParameterReg);
}

int putFeature(RegisterImages& images, const FeatureDraft& draft, uint32_t first, std::size_t length,
               FailureWords words) {
  FeatureBytes block{};
  const auto bytes = std::span(block).first(std::min(length, block.size()));
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  draft.applyTo(images.SendParameterReg);
  return images.SendParameterReg.copyTo(bytes, first) ? writeFpga(first, bytes, words) : -1;
}

FeatureBytes featureBytes(const RegisterImages& images, const FeatureDraft& over) {
  FeatureBytes bytes{};
  snapshot(images, images.SendParameterReg, 0, bytes);
  over.applyTo(bytes);
  return bytes;
}

}  // namespace ORVE_MCUC
