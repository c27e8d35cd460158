#include "sps.h"

#include <algorithm>
#include <stdexcept>

#include "annexb.h"
#include "tavu.h"

namespace {

[[noreturn]] void fail() { throw std::runtime_error("broken H.264 sequence parameter set"); }

/** Removes the emulation prevention byte 03 after each 00 00 of a NAL unit. */
std::vector<uint8_t> without_emulation_prevention(const std::vector<uint8_t> &nal) {
    std::vector<uint8_t> out;
    int zeros = 0;
    for (const uint8_t byte : nal) {
        const bool inserted = zeros >= 2 && byte == 3;
        zeros = byte == 0 ? zeros + 1 : 0;
        if (!inserted) out.push_back(byte);
    }
    return out;
}

/** The library's bit reader with end and range checks. */
class Reader {
  public:
    explicit Reader(const std::vector<uint8_t> &data) {
        tavu_bsr_init(&bs_, data.data(), static_cast<int32_t>(data.size()), nullptr);
    }

    int bits(int count) {  // fewer than 32, so that -1 is not a value
        const int32_t value = tavu_bsr_read(&bs_, count);
        if (value < 0 || bs_.leftbits < 0) fail();
        return value;
    }

    bool flag() { return bits(1) != 0; }

    int ue(int max) {
        const int32_t value = tavu_bsr_read_ue(&bs_);
        if (value < 0 || value > max || bs_.leftbits < 0) fail();
        return value;
    }

    int se() { return tavu_bsr_read_se(&bs_); }

  private:
    tavu_bsr_t bs_{};
};

void skip_scaling_list(Reader &reader, int size) {
    int last = 8, next = 8;
    for (int i = 0; i < size && next != 0; i++) {
        next = (last + reader.se()) & 0xFF;
        if (next != 0) last = next;
    }
}

void skip_scaling_matrix(Reader &reader, int lists) {
    for (int i = 0; i < lists; i++)
        if (reader.flag()) skip_scaling_list(reader, i < 6 ? 16 : 64);
}

bool has_chroma_fields(int profile) {
    constexpr int PROFILES[] = {44, 83, 86, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244};
    return std::binary_search(std::begin(PROFILES), std::end(PROFILES), profile);
}

/** Returns the chroma format. */
int read_chroma_fields(Reader &reader) {
    const int chroma_format = reader.ue(3);
    if (chroma_format == 3) reader.flag();  // separate colour planes
    reader.ue(6);                           // luma bit depth
    reader.ue(6);                           // chroma bit depth
    reader.flag();                          // lossless transform bypass
    if (reader.flag()) skip_scaling_matrix(reader, chroma_format == 3 ? 12 : 8);
    return chroma_format;
}

void skip_order_count(Reader &reader) {
    const int type = reader.ue(2);
    if (type == 0) reader.ue(12);
    if (type != 1) return;
    reader.flag();
    reader.se();
    reader.se();
    const int cycle = reader.ue(255);
    for (int i = 0; i < cycle; i++) reader.se();
}

void read_size(Reader &reader, int chroma_format, SequenceInfo &info) {
    constexpr int MAX_BLOCKS = 4096;  // 65,536 pixels, far above the limit of any level
    const int columns = reader.ue(MAX_BLOCKS - 1) + 1;
    const int rows = reader.ue(MAX_BLOCKS - 1) + 1;
    const int fields = reader.flag() ? 1 : 2;
    if (fields == 2) reader.flag();
    reader.flag();  // direct 8x8 inference
    info.width = 16 * columns;
    info.height = 16 * rows * fields;
    if (!reader.flag()) return;
    const int unit_x = chroma_format == 1 || chroma_format == 2 ? 2 : 1;
    const int unit_y = (chroma_format == 1 ? 2 : 1) * fields;
    const int left = reader.ue(info.width), right = reader.ue(info.width);
    const int top = reader.ue(info.height), bottom = reader.ue(info.height);
    info.width -= (left + right) * unit_x;
    info.height -= (top + bottom) * unit_y;
    if (info.width < 1 || info.height < 1) fail();
}

bool is_sequence(uint8_t header) { return (header & 0x1F) == 7; }

/** The first parameter set of an avcC record; empty if it has none. */
std::vector<uint8_t> first_of_record(const uint8_t *data, size_t size) {
    constexpr size_t SETS = 8;  // after the count and the first length
    if (size < SETS || (data[5] & 0x1F) == 0) return {};
    const size_t length = static_cast<size_t>(data[6]) << 8 | data[7];
    if (length == 0 || length > size - SETS) fail();
    return {data + SETS, data + SETS + length};
}

}  // namespace

std::string SequenceInfo::profile_name() const {
    switch (profile) {
        case 66: return constraints & 0x40 ? "Constrained Baseline" : "Baseline";
        case 77: return "Main";
        case 88: return "Extended";
        case 100: return "High";
        case 110: return constraints & 0x10 ? "High 10 Intra" : "High 10";
        case 122: return constraints & 0x10 ? "High 4:2:2 Intra" : "High 4:2:2";
        case 244: return constraints & 0x10 ? "High 4:4:4 Intra" : "High 4:4:4 Predictive";
        default: return "profile " + std::to_string(profile);
    }
}

std::string SequenceInfo::level_name() const {
    const bool level_1b = level == 9 || (level == 11 && profile < 100 && (constraints & 0x10));
    return level_1b ? "1b" : std::to_string(level / 10) + "." + std::to_string(level % 10);
}

SequenceInfo read_sequence(const std::vector<uint8_t> &nal) {
    const std::vector<uint8_t> payload = without_emulation_prevention(nal);
    Reader reader(payload);
    SequenceInfo info;
    if (!is_sequence(static_cast<uint8_t>(reader.bits(8)))) fail();
    info.profile = reader.bits(8);
    info.constraints = reader.bits(8);
    info.level = reader.bits(8);
    reader.ue(31);  // parameter set id
    const int chroma_format = has_chroma_fields(info.profile) ? read_chroma_fields(reader) : 1;
    reader.ue(12);  // frame number bits
    skip_order_count(reader);
    reader.ue(16);  // reference frames
    reader.flag();  // gaps in frame numbers
    read_size(reader, chroma_format, info);
    return info;
}

std::optional<SequenceInfo> find_sequence(const uint8_t *data, size_t size) {
    const bool record = size > 0 && data[0] == 1;
    const auto nal = record ? first_of_record(data, size) : find_nal(data, size, is_sequence);
    if (nal.empty()) return std::nullopt;
    return read_sequence(nal);
}
