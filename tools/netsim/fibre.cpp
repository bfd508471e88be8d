#include "tools/netsim/fibre.h"

#include <cstdint>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define FIBRES_WATCHED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FIBRES_WATCHED 1
#endif
#endif

#ifdef FIBRES_WATCHED
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

constexpr std::size_t StackSize = 1UL << 20; // bytes

// The address sanitiser must be notified of every stack switch.
void StartSwitch([[maybe_unused]] void **keep, [[maybe_unused]] const void *stack,
                 [[maybe_unused]] std::size_t size) {
#ifdef FIBRES_WATCHED
  __sanitizer_start_switch_fiber(keep, stack, size);
#endif
}

void FinishSwitch([[maybe_unused]] void *kept, [[maybe_unused]] const void **from,
                  [[maybe_unused]] std::size_t *size) {
#ifdef FIBRES_WATCHED
  __sanitizer_finish_switch_fiber(kept, from, size);
#endif
}

} // namespace

Fibre::Fibre(std::function<void()> body)
    : body_(std::move(body)), stack_(std::make_unique<char[]>(StackSize)) {
  getcontext(&inside_);
  inside_.uc_stack.ss_sp = stack_.get();
  inside_.uc_stack.ss_size = StackSize;
  inside_.uc_link = &outside_;
  // `makecontext` passes only ints, so the address is split in two.
  const auto address = reinterpret_cast<std::uintptr_t>(this);
  makecontext(&inside_, reinterpret_cast<void (*)()>(&Fibre::Enter), 2, static_cast<unsigned>(address >> 32),
              static_cast<unsigned>(address));
}

void Fibre::Enter(unsigned high, unsigned low) {
  reinterpret_cast<Fibre *>(static_cast<std::uintptr_t>(high) << 32 | low)->Run();
}

void Fibre::Run() {
  FinishSwitch(nullptr, &outsideStack_, &outsideSize_);
  try {
    body_();
  } catch (...) {
    error_ = std::current_exception();
  }
  done_ = true;
  StartSwitch(nullptr, outsideStack_, outsideSize_);
}

void Fibre::Resume() {
  StartSwitch(&outsideFake_, stack_.get(), StackSize);
  swapcontext(&outside_, &inside_);
  FinishSwitch(outsideFake_, nullptr, nullptr);
  if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

void Fibre::Pause() {
  StartSwitch(&insideFake_, outsideStack_, outsideSize_);
  swapcontext(&inside_, &outside_);
  FinishSwitch(insideFake_, &outsideStack_, &outsideSize_);
}
