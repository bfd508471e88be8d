#include "platform/machine.h"

void Machine::RunPolls() {
  std::erase_if(polls_, [](const auto &poll) { return poll.expired(); });
  // A poll may register another one, so the list can grow while it is walked.
  for (std::size_t i = 0; i < polls_.size(); ++i) {
    if (const auto poll = polls_[i].lock()) (*poll)();
  }
}

std::shared_ptr<void> Machine::OnPump(std::function<void()> poll) {
  auto handle = std::make_shared<std::function<void()>>(std::move(poll));
  polls_.push_back(handle);
  return handle;
}

bool Machine::Delivers(const Event &event) const {
  if (event.delivery == Delivery::UnderModal) return true;
  return Receives(*event.window) && (inputOff_ == 0 || event.delivery == Delivery::CloseBox);
}

void Machine::Pump() {
  Collect();
  RunPolls();
  while (!events_.empty()) {
    const Event event = std::move(events_.front());
    events_.pop_front();
    if (Delivers(event)) event.call();
  }
}

void Machine::WaitUntil(std::int32_t deadline) {
  if (!HasEvents() && !ClockReached(deadline)) Sleep(deadline);
  Pump();
}

void Machine::Wait() {
  if (!HasEvents()) Sleep(std::nullopt);
  Pump();
}

void Machine::ShowModal(Window &window, const std::function<void()> &opened) {
  struct Shown {
    Machine &machine;
    Window &window;
    ~Shown() { machine.Hide(window); }
  };
  const ModalScope scope(*this, window);
  const Shown shown{*this, window};
  Show(window);
  if (opened) opened();
  while (window.Visible && !ModalsEnd()) Wait();
}

void Machine::Post(Window &window, std::function<void()> call, Delivery delivery) {
  events_.push_back({&window, std::move(call), delivery});
}

void Machine::DropEvents(Window &window) {
  std::erase_if(events_, [&](const Event &event) { return event.window == &window; });
}

float Machine::Rnd() {
  // A 32-bit float has 24 bits of precision, so the quotient is exact.
  constexpr float Range = 16777216.0f;
  return static_cast<float>(generator_() >> 8) / Range;
}

void CloseByUser(Machine &machine, Window &window) {
  if (window.QueryClose) {
    window.QueryClose();
  } else {
    machine.Hide(window);
  }
}
