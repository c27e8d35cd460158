#ifndef TAVU_TOOLS_SPS_H
#define TAVU_TOOLS_SPS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** Properties of a stream from its H.264 sequence parameter set. */
struct SequenceInfo {
    int profile = 0;            ///< profile_idc
    int constraints = 0;        ///< constraint_set0_flag in bit 7, and so on
    int level = 0;              ///< level_idc
    int width = 0, height = 0;  ///< after cropping

    std::string profile_name() const;
    /** Such as "1.3" or "1b". */
    std::string level_name() const;
};

/** Reads the NAL unit of a sequence parameter set, header byte included; throws if broken. */
SequenceInfo read_sequence(const std::vector<uint8_t> &nal);

/** Finds a parameter set in an avcC record or among NAL units with start codes, and reads it. */
std::optional<SequenceInfo> find_sequence(const uint8_t *data, size_t size);

#endif
