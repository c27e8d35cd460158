#ifndef TAVU_TOOLS_PROGRESS_H
#define TAVU_TOOLS_PROGRESS_H

#include <chrono>
#include <cstdint>

/** Shows the progress, speed and remaining time of a long job on a terminal. */
class Progress {
  public:
    /** `units` is the name of the items that step() counts. */
    Progress(const char *units, bool quiet);
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    /** Clears the line. */
    ~Progress();

    /** Counts one item; `part` is the fraction of the job that is done, 0..1, or 0 if unknown. */
    void step(double part);

  private:
    using Clock = std::chrono::steady_clock;

    void show(double part, double seconds);

    const char *units_;
    bool terminal_, shown_ = false;
    int64_t count_ = 0;
    Clock::time_point start_ = Clock::now(), next_ = start_ + std::chrono::milliseconds(500);
};

#endif
