// The planes of one call of a conversion.
#ifndef TAVU_KERNEL_TABLE_PICTURE_H
#define TAVU_KERNEL_TABLE_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels.h"

inline size_t plane_size(int32_t stride, int32_t rows, int32_t row_bytes) {
    return static_cast<size_t>(stride) * static_cast<size_t>(rows - 1) +
           static_cast<size_t>(row_bytes);
}

// Pointers and strides, in memory of the caller.
struct PicturePlanes {
    CscKernel kernel;
    int32_t code, src_w, src_h, dst_w, dst_h;
    uint8_t *src[4] = {}, *dst[4] = {};
    int32_t src_stride[4] = {}, dst_stride[4] = {};

    // The target size counts in kernels that resize.
    PicturePlanes(const CscKernel &k, int32_t dst_code, int32_t from_w, int32_t from_h,
                  int32_t to_w = 0, int32_t to_h = 0)
        : kernel(k),
          code(dst_code),
          src_w(from_w),
          src_h(from_h),
          dst_w(k.resizes ? to_w : from_w),
          dst_h(k.resizes ? to_h : from_h) {}

    // Each row is followed by `gap` bytes, and by `more` bytes more from plane to plane.
    // allocate(size) returns the memory of a plane; the channels of a packed source share it.
    template <class Allocate>
    void set_sources(int32_t gap, Allocate allocate, int32_t more = 0) {
        const int32_t row = src_w * kernel.src_step;
        for (int32_t p = 0; p < kernel.src_planes; p++) {
            src_stride[p] = row + gap + more * p;
            src[p] = p > 0 && kernel.src_step > 1 ? src[0] + p
                                                  : allocate(plane_size(src_stride[p], src_h, row));
        }
    }
    template <class Allocate>
    void set_targets(int32_t gap, Allocate allocate) {
        for (size_t p = 0; p < kernel.dst_bytes.size(); p++) {
            const int32_t row = dst_w * kernel.dst_bytes[p], distance = row + gap;
            dst_stride[p] = is_565(p) ? distance / 2 + dst_w : distance;
            dst_pointer(p) = allocate(plane_size(distance, dst_h, row));
        }
    }

    // B, G, R order goes through the third pointer.
    uint8_t *&dst_pointer(size_t plane) {
        return dst[!kernel.resizes && (code == 401 || code == 501) ? 2 : plane];
    }
    // Rows of 5-6-5 units are twice the stride less twice the width apart.
    int64_t row_distance(size_t plane, int32_t stride) const {
        return is_565(plane) ? 2 * (int64_t{stride} - dst_w) : stride;
    }

    // Kernels that do not resize ignore the target size.
    void convert(tavu_fn_csc_t routine) const {
        routine(src, src_w, src_h, src_stride, 13, dst, kernel.resizes ? dst_w : 0,
                kernel.resizes ? dst_h : 0, dst_stride, code);
    }

  private:
    bool is_565(size_t plane) const { return plane == 0 && kernel.dst_bytes[0] == 2; }
};

inline std::vector<uint8_t> noise(size_t size) {
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; i++) bytes[i] = static_cast<uint8_t>(i * 2654435761U >> 13);
    return bytes;
}

// Takes one plane after the other from a buffer.
struct PlaneAllocator {
    uint8_t *next;
    uint8_t *operator()(size_t size) {
        next += size;
        return next - size;
    }
};

// With memory of its own: noise in the planes of the source, without gaps.
struct Picture : PicturePlanes {
    Picture(const CscKernel &k, int32_t from_w, int32_t from_h, int32_t to_w = 0, int32_t to_h = 0)
        : PicturePlanes(k, k.codes[0], from_w, from_h, to_w, to_h),
          in(noise(size_t{4} * static_cast<size_t>(src_w * src_h))),
          out(size_t{4} * static_cast<size_t>(dst_w * dst_h)) {
        set_sources(0, PlaneAllocator{in.data()});
        set_targets(0, PlaneAllocator{out.data()});
    }

    std::vector<uint8_t> in, out;
};

#endif
