#include "tests/fuzz/hostile_bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  fuzz::ReadBitmap({data, size});
  return 0;
}
