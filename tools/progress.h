#pragma once

#include <unistd.h>

#include <chrono>
#include <cstdio>

/** Tells on a terminal how far a long job is; cleans up behind itself. */
class Progress {
  public:
    Progress() = default;
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress() {
        if (shown_) std::fputs("\r\033[K", stderr);
    }

    void show(double part) {
        const auto now = Clock::now();
        if (!terminal_ || now < next_) return;
        std::fprintf(stderr, "\r%3.0f %%", 100 * part);
        shown_ = true;
        next_ = now + std::chrono::milliseconds(200);
    }

  private:
    using Clock = std::chrono::steady_clock;

    bool terminal_ = isatty(STDERR_FILENO) != 0;
    bool shown_ = false;
    Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
};
