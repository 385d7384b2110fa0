#include "proto/store/registerimages.h"

namespace ORVE_MCUC {

void FeatureDraft::put(const FeatureDraft& later) {
  later.applyTo(std::span(bytes_));
  taken_ |= later.taken_;
}
void FeatureDraft::applyTo(std::span<uint8_t, kFeatureSize> image) const {
  for (std::size_t at = 0; at < bytes_.size(); ++at) {
    if (taken_[at]) image[at] = bytes_[at];
  }
}
void FeatureDraft::applyTo(FeatureImage& image) const {
  for (std::size_t at = 0; at < bytes_.size(); ++at) {
    if (taken_[at]) image.decide(std::span(bytes_).subspan(at, 1), at);
  }
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
  if (!images.SendParameterReg.copyTo(bytes, first)) return -1;
  return images.SendParameterReg.written(first, bytes.size(), writeFpga(first, bytes, words));
}

FeatureBytes featureBytes(const RegisterImages& images, const FeatureDraft& over) {
  FeatureBytes bytes{};
  snapshot(images, images.SendParameterReg, 0, bytes);
  over.applyTo(bytes);
  return bytes;
}

}  // namespace ORVE_MCUC
