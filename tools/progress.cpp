#include "progress.h"

#include <unistd.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "report.h"

Progress::Progress(const char *units, bool quiet)
    : units_(units), terminal_(!quiet && takes_escapes(STDERR_FILENO)) {}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::step(double part) {
    count_++;
    if (!terminal_) return;
    const auto now = Clock::now();
    if (now < next_) return;
    next_ = now + std::chrono::milliseconds(200);
    show(part, std::chrono::duration<double>(now - start_).count());
}

void Progress::show(double part, double seconds) {
    const double rate = static_cast<double>(count_) / seconds;
    std::fprintf(stderr, "\r%" PRId64 " %s, %.*f/s", count_, units_, rate < 10 ? 1 : 0, rate);
    if (part > 0) {
        const auto left = static_cast<int64_t>(std::ceil(seconds * (1 - part) / part));
        std::fprintf(stderr, ", %.0f %%, %" PRId64 ":%02d left", 100 * part, left / 60,
                     static_cast<int>(left % 60));
    }
    std::fputs("\033[K", stderr);
    shown_ = true;
}
