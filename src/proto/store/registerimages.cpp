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

namespace {

int writeRun(RegisterImages& images, std::size_t first, std::size_t length, FailureWords words) {
  FeatureImage& image = images.SendParameterReg;
  FeatureBytes room{};
  const auto bytes = std::span(room).first(std::min(length, room.size()));
  if (!image.copyTo(bytes, first)) return -1;
  return image.written(first, length, writeFpga(static_cast<uint32_t>(first), bytes, words),
                       isOnline(images));
}

// While flash could not give the rest. The last failure.
int writeDecided(RegisterImages& images, std::size_t first, std::size_t length, FailureWords words) {
  const FeatureImage& image = images.SendParameterReg;
  int result = 0;
  for (std::size_t at = first; at < first + length; ++at) {
    std::size_t run = 0;
    while (at + run < first + length && image.isDecided(at + run)) ++run;
    if (run == 0) continue;
    if (const int ret = writeRun(images, at, run, words)) result = ret;
    at += run;
  }
  return result;
}

}  // namespace

void putFeature(RegisterImages& images, const FeatureDraft& draft) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  draft.applyTo(images.SendParameterReg);
}

int putFeature(RegisterImages& images, const FeatureDraft& draft, uint32_t first, std::size_t length,
               FailureWords words) {
  CMutexGuardT<CMutexThread> guard(images.imageLock);
  draft.applyTo(images.SendParameterReg);
  const auto write = images.loadStates.feature.failed() ? &writeDecided : &writeRun;
  return write(images, first, length, words);
}

FeatureBytes featureBytes(const RegisterImages& images, const FeatureDraft& over) {
  FeatureBytes bytes{};
  snapshot(images, images.SendParameterReg, 0, bytes);
  over.applyTo(bytes);
  return bytes;
}

}  // namespace ORVE_MCUC
