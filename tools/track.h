#ifndef TAVU_TOOLS_TRACK_H
#define TAVU_TOOLS_TRACK_H

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "media.h"
#include "sps.h"

/** One coded video picture as stored in the file. */
struct AccessUnit {
    double seconds;
    int bytes;
    bool container_key, detector_key;
};

struct Track {
    int index;
    std::string kind;
    uint32_t fourcc;
    int32_t media_type;
    int width, height;
    std::optional<SequenceInfo> sequence;  ///< H.264 only
    std::vector<AccessUnit> units;         ///< video only

    /** Units for which `test` holds. */
    template <class Test>
    int64_t count(Test test) const {
        return std::count_if(units.begin(), units.end(), test);
    }
};

/** Describes all tracks and reads the whole file; faults are recorded in `media`. */
std::vector<Track> read_tracks(Media &media, bool quiet);

#endif
