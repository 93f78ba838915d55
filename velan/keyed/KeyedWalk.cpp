#include "velan/keyed/KeyedFindInternal.h"

namespace velan::keyed {
namespace {

size_t skipFixed(const uint8_t* bytes, size_t length, uint64_t sought) {
  return skipSome(bytes, length, sought, SIZE_MAX);
}

}  // namespace

const Kernels<FindIdentity>& findIdentityKernels() {
  using enum CPUFeatures;
  static const Kernels<FindIdentity> kernels({
      {"scalar", None, findWith<skipFixed>},
#ifdef __x86_64__
      {"AVX2", AVX2, findIdentityAvx2},
      {"AVX512", AVX2 | AVX512, findIdentityAvx512},
#endif
  });
  return kernels;
}

bool RecordWalk::findFurther(uint64_t sought) {
  static const FindIdentity findIdentity = findIdentityKernels().best();
  const size_t at = findIdentity(_at, _remaining, sought);
  if (at == kNotFound) return false;
  step(at);
  return true;
}

}  // namespace velan::keyed
