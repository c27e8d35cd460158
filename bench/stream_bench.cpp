// Compares MD5, key-frame detection and bits with the best packaged peers. A row of many symbols
// names their number, because the branch predictor learns short streams.
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "require.h"
#include "rows.h"
#include "tavu.h"

#if TAVU_HAVE_OPENSSL
#define OPENSSL_SUPPRESS_DEPRECATED  // these calls avoid the cost of a provider lookup
#include <openssl/md5.h>
#endif
#if TAVU_HAVE_GSTREAMER
#include <gst/base/gstbitreader.h>
#include <gst/base/gstbitwriter.h>
#include <gst/base/gstbytereader.h>
#endif

namespace {

using Bytes = std::vector<uint8_t>;

struct Digest {
    uint8_t bytes[16];
    bool operator==(const Digest &other) const { return memcmp(bytes, other.bytes, 16) == 0; }
};

void add_md5(size_t size) {
    const std::string row = "md5/" + std::to_string(size);
    const auto data = std::make_shared<Bytes>(size, uint8_t{0x5A});
    const auto ours = [data] {
        tavu_md5_t md5;
        Digest digest;
        tavu_md5_init(&md5);
        tavu_md5_update(&md5, data->data(), static_cast<uint32_t>(data->size()));
        tavu_md5_finish(&md5, digest.bytes);
        return digest;
    };
    add_side(row, "tavu", ours);
#if TAVU_HAVE_OPENSSL
    const auto peer = [data] {
        MD5_CTX md5;
        Digest digest;
        MD5_Init(&md5);
        MD5_Update(&md5, data->data(), data->size());
        MD5_Final(digest.bytes, &md5);
        return digest;
    };
    require(ours() == peer(), row);
    add_side(row, "openssl", peer);
#endif
}

// Random bytes, `percent` of them zero, with no start code except `last` at the end.
Bytes make_unit(unsigned percent, const Bytes &last) {
    std::mt19937 random(percent);
    Bytes unit(1 << 20);
    size_t zeros = 0;
    for (uint8_t &b : unit) {
        b = random() % 100 < percent ? 0 : static_cast<uint8_t>(1 + random() % 255);
        if (zeros >= 2 && (b == 1 || (b & 0xFC) == 0x80)) b = 3;
        zeros = b == 0 ? zeros + 1 : 0;
    }
    memcpy(&unit[unit.size() - last.size()], last.data(), last.size());
    return unit;
}

void add_scan(const std::string &name, int32_t codec, unsigned percent, const Bytes &last) {
    const std::string row = "is_vkeyfrm/" + name + ' ' + std::to_string(percent) + "% zeros";
    const auto unit = std::make_shared<Bytes>(make_unit(percent, last));
    const auto size = static_cast<int32_t>(unit->size());
    require(tavu_is_vkeyfrm(codec, unit->data(), size) == 1, row);
    add_side(row, "tavu", [=] { return tavu_is_vkeyfrm(codec, unit->data(), size); });
    const auto with_memmem = [=] {
        return static_cast<uint8_t *>(memmem(unit->data(), unit->size(), "\0\0\1", 3));
    };
    require(with_memmem() == &*unit->end() - last.size(), row);
    add_side(row, "memmem", with_memmem);
#if TAVU_HAVE_GSTREAMER
    const auto with_gstreamer = [=] {
        const GstByteReader reader = {unit->data(), static_cast<unsigned>(size), 0, {}};
        return gst_byte_reader_masked_scan_uint32(&reader, 0xFFFFFF00, 0x00000100, 0, reader.size);
    };
    require(with_gstreamer() == unit->size() - last.size(), row);
    add_side(row, "gstreamer", with_gstreamer);
#endif
}

// Values as in headers: mostly small.
std::vector<uint32_t> make_symbols(size_t count) {
    std::mt19937 random(1);
    std::vector<uint32_t> symbols(count);
    for (uint32_t &s : symbols) {
        unsigned bits = 0;
        while (bits < 15 && random() % 2 == 0) bits++;
        s = (1U << bits) - 1 + static_cast<uint32_t>(random()) % (1U << bits);
    }
    return symbols;
}

constexpr size_t SYMBOLS = 300000;
const std::string UNIT = "/" + std::to_string(SYMBOLS) + " symbols";

size_t write_ue(Bytes *out, const std::vector<uint32_t> &symbols) {
    tavu_bsw_t writer;
    tavu_bsw_init(&writer, out->data(), static_cast<int32_t>(out->size()), nullptr);
    for (const uint32_t s : symbols) tavu_bsw_write_ue(&writer, s);
    tavu_bsw_sink(&writer);
    return static_cast<size_t>(writer.cur - writer.beg);
}

uint64_t read_ue(const Bytes &stream) {
    tavu_bsr_t reader;
    tavu_bsr_init(&reader, stream.data(), static_cast<int32_t>(stream.size()), nullptr);
    uint64_t sum = 0;
    for (size_t i = 0; i < SYMBOLS; i++) sum += static_cast<uint32_t>(tavu_bsr_read_ue(&reader));
    return sum;
}

uint64_t read_fields(const Bytes &stream, const Bytes &widths) {
    tavu_bsr_t reader;
    tavu_bsr_init(&reader, stream.data(), static_cast<int32_t>(stream.size()), nullptr);
    uint64_t sum = 0;
    for (const uint8_t n : widths) sum += static_cast<uint32_t>(tavu_bsr_read(&reader, n));
    return sum;
}

#if TAVU_HAVE_GSTREAMER
uint64_t gst_read_ue(const Bytes &stream) {
    GstBitReader reader;
    gst_bit_reader_init(&reader, stream.data(), static_cast<unsigned>(stream.size()));
    uint64_t sum = 0;
    for (size_t i = 0; i < SYMBOLS; i++) {
        // The unchecked reader does not check the end; the stream ends with enough zeros.
        const uint32_t next = gst_bit_reader_peek_bits_uint32_unchecked(&reader, 32);
        const auto zeros = static_cast<unsigned>(__builtin_clz(next));
        gst_bit_reader_skip_unchecked(&reader, 2 * zeros + 1);
        sum += (next >> (31 - 2 * zeros)) - 1;
    }
    return sum;
}

uint64_t gst_read_fields(const Bytes &stream, const Bytes &widths) {
    GstBitReader reader;
    gst_bit_reader_init(&reader, stream.data(), static_cast<unsigned>(stream.size()));
    uint64_t sum = 0;
    for (const uint8_t n : widths) {
        uint32_t value = 0;
        gst_bit_reader_get_bits_uint32(&reader, &value, n);
        sum += value;
    }
    return sum;
}

size_t gst_write_ue(Bytes *out, const std::vector<uint32_t> &symbols) {
    GstBitWriter writer;
    gst_bit_writer_init_with_data(&writer, out->data(), static_cast<unsigned>(out->size()), FALSE);
    for (const uint32_t s : symbols) {
        const auto bits = 63U - 2 * static_cast<unsigned>(__builtin_clz(s + 1));
        gst_bit_writer_put_bits_uint32(&writer, s + 1, bits);
    }
    gst_bit_writer_align_bytes(&writer, 0);
    return gst_bit_writer_get_size(&writer) / 8;
}
#endif

void add_bits() {
    const auto symbols = std::make_shared<std::vector<uint32_t>>(make_symbols(SYMBOLS));
    const auto stream = std::make_shared<Bytes>(4 * SYMBOLS);
    const size_t size = write_ue(stream.get(), *symbols);
    stream->resize(size + 8);
    const auto fields = std::make_shared<Bytes>(3 * SYMBOLS);
    const auto widths = std::make_shared<Bytes>(SYMBOLS);
    std::mt19937 random(2);
    for (uint8_t &b : *fields) b = static_cast<uint8_t>(random());
    for (uint8_t &n : *widths) n = static_cast<uint8_t>(1 + random() % 24);
    const auto out = std::make_shared<Bytes>(*stream);

    uint64_t sum = 0;
    for (const uint32_t s : *symbols) sum += s;
    require(read_ue(*stream) == sum, "bsr_read_ue");
    add_side("bsr_read_ue" + UNIT, "tavu", [=] { return read_ue(*stream); });
    add_side("bsr_read 1..24 bits" + UNIT, "tavu", [=] { return read_fields(*fields, *widths); });
    add_side("bsw_write_ue" + UNIT, "tavu", [=] { return write_ue(out.get(), *symbols); });
#if TAVU_HAVE_GSTREAMER
    require(gst_read_ue(*stream) == sum, "bsr_read_ue");
    require(gst_read_fields(*fields, *widths) == read_fields(*fields, *widths), "bsr_read");
    require(gst_write_ue(out.get(), *symbols) == size && *out == *stream, "bsw_write_ue");
    add_side("bsr_read_ue" + UNIT, "gstreamer", [=] { return gst_read_ue(*stream); });
    add_side("bsr_read 1..24 bits" + UNIT, "gstreamer",
             [=] { return gst_read_fields(*fields, *widths); });
    add_side("bsw_write_ue" + UNIT, "gstreamer", [=] { return gst_write_ue(out.get(), *symbols); });
#endif
}

}  // namespace

void add_stream_rows() {
    for (const size_t size : {64U, 1500U, 1U << 20}) add_md5(size);
    const Bytes idr{0, 0, 1, 0x65}, idr_hevc{0, 0, 1, 0x26}, vop{0, 0, 1, 0xB6, 0x10};
    add_scan("h264", TAVU_MT_VID_H264, 1, idr);
    add_scan("h264", TAVU_MT_VID_H264, 25, idr);
    add_scan("hevc", TAVU_MT_VID_HEVC, 5, idr_hevc);
    add_scan("mpeg4", TAVU_MT_VID_MPEG4, 5, vop);
    add_bits();
}
