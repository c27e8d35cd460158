// A pixel-by-pixel resizer with any weights: positions are products, and there is no state. And the
// library's resizers on the same arguments.
#ifndef TAVU_TESTS_IMGP_RESIZE_REFERENCE_H
#define TAVU_TESTS_IMGP_RESIZE_REFERENCE_H

#include <algorithm>
#include <memory>
#include <ostream>

#include "kernels.h"
#include "memory.h"

inline const std::vector<ResizeKernel> FORMATS = resize_kernels();

struct Axis {
    int64_t step, shift;
    Axis(int src, int dst) {
        const int ratio = src / dst;
        shift = ratio <= 2 ? 0 : ratio <= 4 ? 1 : ratio <= 8 ? 2 : ratio <= 16 ? 3 : 4;
        step = (static_cast<int64_t>((src - 1) >> shift) << 18) / dst;
    }
    int64_t upper(int i) const { return (i * step >> 18) << shift; }
    int64_t lower(int i) const { return upper(i) + (1 << shift); }
    int64_t eighths(int i) const { return i * step >> 15 & 7; }
};

inline Bytes bilinear_weights() {
    Bytes weights;
    for (int i = 0; i < 256; i++) {
        const int a = i / 32, b = i / 4 % 8;
        weights.push_back(static_cast<uint8_t>((i & 1 ? a : 8 - a) * (i & 2 ? b : 8 - b)));
    }
    return weights;
}

struct Size {
    int w, h, gap;  // gap: pixels between rows
    int stride() const { return w + gap; }
};

struct Reference {
    ResizeKernel f;
    Size src, dst;
    int band_h;      // 0: whole image
    bool bottom_up;  // order of target rows
    Bytes weights, plane;

    Reference(const ResizeKernel &format, Size source, Size target, int band, unsigned seed = 1,
              const Bytes &table = bilinear_weights())
        : f(format),
          src(source),
          dst(target),
          band_h(band),
          bottom_up(seed % 2 == 0),
          weights(table),
          plane(random_bytes(static_cast<size_t>(plane_pixels() * f.src_bytes), seed)) {}

    Axis columns() const { return {src.w, dst.w}; }
    Axis rows() const { return {src.h, dst.h}; }
    int src_line() const { return src.stride() * f.src_bytes; }
    int dst_line() const { return dst.stride() * f.dst_bytes; }
    int line_size() const { return f.format == TAVU_IRSZ_5B6B5B ? src.stride() : src_line(); }
    size_t target_size() const {
        return static_cast<size_t>((dst.h - 1) * dst_line() + dst.w * f.dst_bytes);
    }

    struct Quad {
        const uint8_t *weights;
        int64_t x[4], y[4];
        bool carried;
    };
    Quad quad(const Axis &ax, const Axis &ay, int i, int j) const {
        const int64_t l = ax.upper(i), r = ax.lower(i), t = ay.upper(j), u = ay.lower(j);
        return {&weights[static_cast<size_t>(32 * ax.eighths(i) + 4 * ay.eighths(j))],
                {l, r, l, r},
                {t, t, u, u},
                band_h > 0 && t / band_h != u / band_h};
    }

    // Pixels of the source, with rows and columns outside that have weight if a step is 0.
    int64_t plane_pixels() const {
        int64_t w = src.w, h = src.h;
        for (int pixel = 0; pixel < dst.w * dst.h; pixel++) {
            if (columns().step != 0 && rows().step != 0) break;
            const Quad q = quad(columns(), rows(), pixel % dst.w, pixel / dst.w);
            for (int n = 0; n < 4; n++) {
                if (q.weights[n] > 0) w = std::max(w, q.x[n] + 1), h = std::max(h, q.y[n] + 1);
            }
        }
        return (h - 1) * src.stride() + w;
    }

    // Channel k of a source pixel; a carried 5-6-5 row has only the first half of its stride.
    int64_t sample(int64_t x, int64_t y, int k, bool carried) const {
        const uint8_t *p = &plane[static_cast<size_t>((y * src.stride() + x) * f.src_bytes)];
        if (f.format != TAVU_IRSZ_5B6B5B) return k < f.src_bytes ? p[k] : 0;
        const int kept = carried ? src.stride() - static_cast<int>(2 * x) : 2;  // bytes
        const int unit = (kept > 0 ? p[0] : 0) | (kept > 1 ? p[1] << 8 : 0);
        return k == 0 ? unit >> 8 & 0xF8 : k == 1 ? unit >> 3 & 0xFC : unit << 3 & 0xF8;
    }

    int64_t average(const Quad &q, int k) const {
        int64_t sum = 0;
        for (int n = 0; n < 4; n++) {
            const bool carried = q.carried && n < 2;
            if (q.weights[n] > 0) sum += q.weights[n] * sample(q.x[n], q.y[n], k, carried);
        }
        return sum >> 6;
    }

    void store(const Quad &q, uint8_t *out) const {
        int64_t c[4];
        for (int k = 0; k < 4; k++) c[k] = average(q, k);
        const auto put = [&out](int64_t byte) { *out++ = static_cast<uint8_t>(byte); };
        if (f.format == TAVU_IRSZ_5B6B5B) {
            put((c[1] << 3 & 0xE0) | c[2] >> 3);
            put((c[0] & 0xF8) | c[1] >> 5);
        } else if (f.format == TAVU_IRSZ_8B8B8B_5B6B5B) {
            if (band_h > 0) put((c[0] & 0x8F) | c[1] >> 5);
            put((c[1] & 0xE0) | c[2] >> 3);
            if (band_h == 0) put((c[0] & 0xF8) | c[1] >> 5);
        } else {
            for (int k = 0; k < f.src_bytes; k++) put(c[k]);
        }
    }

    // The target, with canaries between its rows.
    Bytes run() const {
        const Axis ax = columns(), ay = rows();
        Bytes out(target_size(), GuardedBytes::CANARY);
        for (int j = 0; j < dst.h; j++) {
            uint8_t *row = &out[static_cast<size_t>((bottom_up ? dst.h - 1 - j : j) * dst_line())];
            for (int i = 0; i < dst.w; i++) store(quad(ax, ay, i, j), row + i * f.dst_bytes);
        }
        return out;
    }

    bool bands_suffice() const { return band_h >= 2 * ((src.h + dst.h - 1) / dst.h); }

    tavu_irsz_param param(uint8_t *target) const {
        const int mode = band_h > 0 ? TAVU_IRSZ_MODE_LINE : TAVU_IRSZ_MODE_FULL;
        if (bottom_up) target += (dst.h - 1) * dst_line();
        const int dst_s = bottom_up ? -dst.stride() : dst.stride();
        return {f.format, mode, src.w, src.h, src.stride(), band_h, dst.w, dst.h, dst_s, target};
    }
};

// One band at a time in memory that ends at an unreadable page. The last row of a band ends after
// the bytes that may be carried, and that of the image at its width, unless bands are so short that
// rows below the image may be read.
class BandMemory {
  public:
    explicit BandMemory(const Reference &r)
        : r_(r), memory_(static_cast<size_t>(r.band_h * r.src_line())) {}

    const uint8_t *rows_from(int row) {
        const auto first = static_cast<size_t>(row * r_.src_line());
        const int last_row = std::max(r_.line_size(), r_.src.w * r_.f.src_bytes);
        const auto whole = static_cast<size_t>((r_.band_h - 1) * r_.src_line() + last_row);
        const size_t stored = std::min(whole, r_.plane.size() - first);
        const size_t readable = r_.bands_suffice() ? stored : whole;
        uint8_t *band = memory_.data() + r_.band_h * r_.src_line() - readable;
        memset(memory_.data(), 0x5A, static_cast<size_t>(band - memory_.data()));
        memcpy(band, &r_.plane[first], stored);
        return band;
    }

  private:
    const Reference &r_;
    GuardedBytes memory_;
};

// The loop is extracted from the header.
inline void run_bands(tavu_irsz_t *rsz, const Reference &r) {
    BandMemory memory(r);
    const int32_t src_h = r.src.h, band_h = r.band_h;
    const auto band_at = [&memory](int32_t row) { return memory.rows_from(row); };
#include "band_loop.inc"
}

struct DeleteResizer {
    void operator()(tavu_irsz_t *rsz) const { tavu_irsz_delete(rsz); }
};
using Resizer = std::unique_ptr<tavu_irsz_t, DeleteResizer>;

// Resizes by a driver; source and target end at unreadable pages. Returns nothing if the resizer was
// not created or wrote before the target.
inline Bytes resize_by(tavu_irsz_fn driver, const Reference &r, bool *complete = nullptr) {
    GuardedBytes dst(r.target_size());
    const tavu_irsz_param param = r.param(dst.data());
    const Resizer rsz(tavu_irsz_create(&param, nullptr));
    if (rsz == nullptr || rsz->rsz_func != r.f.variants[0].driver) return {};
    rsz->rsz_func = driver;
    // A whole image ignores the arguments for rows.
    const auto any_rows = [&] {
        return tavu_irsz(rsz.get(), GuardedBytes(r.plane).data(), 3 - r.src.w, r.dst.w % 9 - 4);
    };
    if (r.band_h > 0) run_bands(rsz.get(), r);
    if (r.band_h == 0 && any_rows() != 0) return {};
    if (complete != nullptr) *complete = rsz->out_row == r.dst.h && rsz->pending == 0;
    return dst.front_is_intact() ? dst.bytes() : Bytes();
}

// Resizes a whole image by a kernel.
inline Bytes resize_by(tavu_irsz_full_t *full, const Reference &r) {
    GuardedBytes src(r.plane), dst(r.target_size());
    const tavu_irsz_param p = r.param(dst.data());
    int32_t x, y;
    bilinear_rsz_step_size(p.src_w, p.src_h, p.dst_w, p.dst_h, &x, &y);
    full(src.data(), r.src_line() / r.f.line_unit, p.dst_w, p.dst_h,
         p.dst_s * r.f.dst_bytes / r.f.line_unit, static_cast<uint8_t *>(p.dst), x, y);
    return dst.front_is_intact() ? dst.bytes() : Bytes();
}

inline std::ostream &operator<<(std::ostream &s, const Reference &r) {
    return s << r.f.format << ": " << r.src.w << 'x' << r.src.h << '+' << r.src.gap << " to "
             << r.dst.w << 'x' << r.dst.h << '+' << r.dst.gap << " by " << r.band_h;
}

#endif
