#include "annexb.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr uint8_t START_CODE[] = {0, 0, 1};

/** In both records the low two bits of one byte hold the size minus 1. */
int length_field(const AVCodecParameters &parameters, int offset) {
    const uint8_t *record = parameters.extradata;
    if (parameters.extradata_size <= offset || record[0] != 1) return 0;
    const int size = (record[offset] & 3) + 1;
    if (size == 3) throw std::runtime_error("broken codec configuration: 3-byte NAL lengths");
    return size;
}

}  // namespace

int nal_length_size(const AVCodecParameters &parameters) {
    switch (parameters.codec_id) {
        case AV_CODEC_ID_H264: return length_field(parameters, 4);
        case AV_CODEC_ID_HEVC: return length_field(parameters, 21);
        default: return 0;
    }
}

std::vector<uint8_t> with_start_codes(const uint8_t *data, size_t size, int length_size,
                                      bool &broken) {
    std::vector<uint8_t> unit;
    const uint8_t *const end = data + size;
    broken = false;
    while (data < end) {
        uint32_t length = 0;
        for (int i = 0; i < length_size && data < end; i++) length = length << 8 | *data++;
        broken = length > static_cast<size_t>(end - data);
        if (broken) break;
        unit.push_back(0);
        unit.insert(unit.end(), std::begin(START_CODE), std::end(START_CODE));
        unit.insert(unit.end(), data, data + length);
        data += length;
    }
    unit.resize(unit.size() + UNIT_SLACK);
    return unit;
}

std::vector<uint8_t> find_nal(const uint8_t *data, size_t size,
                              const std::function<bool(uint8_t)> &wanted) {
    const uint8_t *const end = data + size;
    const auto next = [end](const uint8_t *from) {
        return std::search(from, end, std::begin(START_CODE), std::end(START_CODE));
    };
    for (const uint8_t *start = next(data); end - start > 3; start = next(start + 3))
        if (wanted(start[3])) return {start + 3, next(start + 3)};
    return {};
}
