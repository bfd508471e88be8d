#include "tools/playthrough/usage.h"

#include "tools/playthrough/seat.h"

#include <X11/Xlib.h>
#include <X11/extensions/XRes.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds Interval(10); ///< between two samples
constexpr std::size_t WarmUp = 12;           ///< samples, at most a quarter of all

struct Kind {
  const char *Name;
  double MayGrow; ///< from the least of the second quarter of the time to that of the last
};
// In an hour's match a leak of 20 bytes per frame adds 1 MiB between the two quarters, and a leak of one
// file, thread or X resource per possession adds 50. The least, since they waver: a card is a window, a sound
// a thread, and a lobby has sockets for half of the time.
constexpr std::array<Kind, 5> Kinds = {{{"memory that no file backs, MiB", 1.0},
                                        {"open files and sockets", 1.0},
                                        {"threads", 1.0},
                                        {"X resources", 2.0},
                                        {"X pixmaps, KiB", 64.0}}};

double MemoryOf(const fs::path &process) {
  std::ifstream status(process / "status");
  double kibibytes = 0;
  for (std::string word; status >> word;) {
    if (word != "RssAnon:" && word != "RssShmem:") continue;
    double number = 0;
    status >> number;
    kibibytes += number;
  }
  return kibibytes / 1024;
}

double EntriesOf(const fs::path &directory) {
  std::error_code error;
  const fs::directory_iterator entries(directory, error);
  return static_cast<double>(std::distance(begin(entries), end(entries)));
}

using Server = std::unique_ptr<Display, int (*)(Display *)>;

/// Adds up what the X server keeps for the process, on all its connections. Returns whether it knows.
bool AskServer(Display *display, pid_t process, double &resources, double &kibibytes) {
  XResClientIdSpec all{None, XRES_CLIENT_ID_PID_MASK};
  long count = 0;
  XResClientIdValue *clients = nullptr;
  if (XResQueryClientIds(display, 1, &all, &count, &clients) != Success) return false;
  for (long i = 0; i < count; ++i) {
    if (XResGetClientPid(&clients[i]) != process) continue;
    int kinds = 0;
    XResType *types = nullptr;
    if (!XResQueryClientResources(display, clients[i].spec.client, &kinds, &types)) continue;
    for (int kind = 0; kind < kinds; ++kind) resources += types[kind].count;
    XFree(types);
    unsigned long bytes = 0;
    XResQueryClientPixmapBytes(display, clients[i].spec.client, &bytes);
    kibibytes += static_cast<double>(bytes) / 1024;
  }
  XResClientIdsDestroy(count, clients);
  return true;
}

} // namespace

Usage::Usage(pid_t process, const std::string &display, const fs::path &record) {
  Server opened(XOpenDisplay(display.empty() ? nullptr : display.c_str()), XCloseDisplay);
  if (!opened) throw GaveUp("no display to ask for X resources");
  sampler_ = std::jthread([this, process, record, server = std::move(opened)](const std::stop_token &stop) {
    const fs::path files = fs::path("/proc") / std::to_string(process);
    std::ofstream out(record);
    std::mutex mutex;
    std::condition_variable_any stopped;
    std::unique_lock lock(mutex);
    const auto start = Clock::now();
    do {
      Sample sample{MemoryOf(files), EntriesOf(files / "fd"), EntriesOf(files / "task")};
      lost_ = !AskServer(server.get(), process, sample[3], sample[4]);
      if (lost_) return;
      samples_.push_back(sample);
      out << std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count();
      for (const double figure : sample) out << '\t' << figure;
      out << std::endl;
    } while (!stopped.wait_for(lock, stop, Interval, [&] { return stop.stop_requested(); }));
  });
}

bool Usage::Report() const {
  const std::size_t begin = std::min(WarmUp, samples_.size() / 4);
  const std::size_t quarter = samples_.size() / 4;
  if (lost_ || quarter == 0) {
    std::printf("%zu samples%s: too few to tell whether anything grows\n", samples_.size(),
                lost_ ? ", then the display no longer answered" : "");
    std::fflush(stdout);
    return false;
  }
  bool flat = true;
  std::printf("%zu samples, %zu of them warm-up\n%-32s%10s%10s%10s%10s%10s%10s\n", samples_.size(), begin, "",
              "first", "least", "most", "end", "2nd q.", "4th q.");
  for (std::size_t kind = 0; kind < Kinds.size(); ++kind) {
    std::vector<double> figures;
    for (const Sample &sample : samples_) figures.push_back(sample[kind]);
    const auto leastFrom = [&](std::size_t from) {
      const auto start = figures.begin() + static_cast<std::ptrdiff_t>(from);
      return *std::min_element(start, start + static_cast<std::ptrdiff_t>(quarter));
    };
    const auto [least, most] =
        std::minmax_element(figures.begin() + static_cast<std::ptrdiff_t>(begin), figures.end());
    const double before = leastFrom(quarter), after = leastFrom(figures.size() - quarter);
    const bool grown = after > before + Kinds[kind].MayGrow;
    std::printf("%-32s%10.2f%10.2f%10.2f%10.2f%10.2f%10.2f%s\n", Kinds[kind].Name, figures.front(), *least,
                *most, figures.back(), before, after, grown ? "  GROWN" : "");
    flat = flat && !grown;
  }
  std::fflush(stdout);
  return flat;
}
