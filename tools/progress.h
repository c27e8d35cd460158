#ifndef TAVU_TOOLS_PROGRESS_H
#define TAVU_TOOLS_PROGRESS_H

#include <chrono>
#include <cstdint>

/** Tells on a terminal how far a long job is, how fast, and how long it still takes. */
class Progress {
  public:
    /** `units` names what step() counts. */
    Progress(const char *units, bool quiet);
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    /** Cleans up behind itself. */
    ~Progress();

    /** Counts one more; `part` of the whole job, 0..1, is done, or 0 if that is unknown. */
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
