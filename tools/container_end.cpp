#include "container_end.h"

#include <cstring>

namespace {

constexpr int64_t UNKNOWN = -1;

/** Reads a number of `count` bytes, at most 8; 0 past the end of the file. */
uint64_t big_endian(const InputFile &file, int64_t at, size_t count) {
    uint8_t bytes[8];
    uint64_t value = 0;
    if (!file.read(at, bytes, count)) return 0;
    for (size_t i = 0; i < count; i++) value = value << 8 | bytes[i];
    return value;
}

uint64_t little_endian(const InputFile &file, int64_t at, size_t count) {
    const uint64_t value = big_endian(file, at, count);
    return __builtin_bswap64(value) >> (64 - 8 * count);
}

/** End of an element; unknown if the length is 0 or larger than any file, which is damage. */
int64_t end_of(int64_t at, uint64_t size) {
    constexpr uint64_t LARGEST = uint64_t{1} << 60;
    return size > 0 && size < LARGEST ? at + static_cast<int64_t>(size) : UNKNOWN;
}

int64_t riff_end(const InputFile &file, int64_t at) {
    constexpr uint64_t RIFF = 0x52494646, OPEN = 0xFFFFFFFF;
    const uint64_t size = little_endian(file, at + 4, 4);
    if (big_endian(file, at, 4) != RIFF || size == 0 || size == OPEN) return UNKNOWN;
    return end_of(at, 8 + size);
}

/** Accepts only common boxes, because other bytes may follow the last one. */
int64_t box_end(const InputFile &file, int64_t at) {
    constexpr const char *COMMON = "ftyp styp moov moof mdat sidx mfra free skip wide uuid meta";
    const uint64_t size = big_endian(file, at, 4);
    char kind[5] = {};
    if (!file.read(at + 4, kind, 4) || !std::strstr(COMMON, kind)) return UNKNOWN;
    if (size == 1) return end_of(at, big_endian(file, at + 8, 8));
    return size < 8 ? UNKNOWN : end_of(at, size);
}

/** A segment of unknown length ends before its content, so that its elements are read next. */
int64_t ebml_end(const InputFile &file, int64_t at) {
    constexpr uint64_t SEGMENT = 0x18538067;
    const auto length_at = [&file](int64_t place) {  // of a number; its first bits encode it
        const uint64_t first = big_endian(file, place, 1);
        return first == 0 ? 0 : __builtin_clzll(first) - 55;
    };
    const int id_length = length_at(at), size_length = length_at(at + id_length);
    if (id_length == 0 || id_length > 4 || size_length == 0) return UNKNOWN;
    const int64_t content = at + id_length + size_length;
    const uint64_t mask = (uint64_t{1} << 7 * size_length) - 1;
    const uint64_t size = big_endian(file, at + id_length, static_cast<size_t>(size_length)) & mask;
    if (size != mask) return size == 0 ? content : end_of(content, size);
    return big_endian(file, at, 4) == SEGMENT ? content : UNKNOWN;
}

int64_t asf_end(const InputFile &file, int64_t at) {
    constexpr uint64_t HEADER = 0x75B22630, DATA = 0x75B22636;
    const uint64_t kind = little_endian(file, at, 4), size = little_endian(file, at + 16, 8);
    return kind == HEADER || kind == DATA ? end_of(at, size) : UNKNOWN;
}

int64_t ogg_end(const InputFile &file, int64_t at) {
    constexpr uint64_t OGGS = 0x4F676753;
    const uint64_t segments = big_endian(file, at + 26, 1);
    uint8_t lengths[255];
    if (big_endian(file, at, 4) != OGGS || !file.read(at + 27, lengths, segments)) return UNKNOWN;
    uint64_t size = 27 + segments;
    for (uint64_t i = 0; i < segments; i++) size += lengths[i];
    return end_of(at, size);
}

struct Container {
    const char *format;
    int64_t (*element_end)(const InputFile &file, int64_t at);
};

constexpr Container CONTAINERS[] = {{"avi", riff_end},      {"wav", riff_end}, {"mov,mp4", box_end},
                                    {"matroska", ebml_end}, {"asf", asf_end},  {"ogg", ogg_end}};

}  // namespace

int64_t stated_end(const InputFile &file, const std::string &format) {
    constexpr int MOST_ELEMENTS = 1 << 20;
    int64_t end = 0;
    for (const Container &container : CONTAINERS) {
        if (format.compare(0, std::strlen(container.format), container.format) != 0) continue;
        for (int i = 0; i < MOST_ELEMENTS && end < file.size(); i++) {
            const int64_t next = container.element_end(file, end);
            if (next <= end) break;
            end = next;
        }
    }
    return end;
}
