#include "cases.h"

#include <algorithm>
#include <climits>
#include <memory>

#include "metric_kernels.h"
#include "picture.h"
#include "resize_kernels.h"

namespace {

constexpr int32_t FROM_W = 1920, FROM_H = 1080, TO_W = 1280, TO_H = 720, STRIDE = 192;
constexpr size_t LARGEST = size_t{4} * FROM_W * FROM_H;

using Bytes = std::vector<uint8_t>;

uint8_t *source() {
    static Bytes bytes;
    for (size_t i = bytes.size(); i < LARGEST; i++) {
        bytes.push_back(static_cast<uint8_t>(i * 2654435761U >> 13));
    }
    return bytes.data();
}

Bytes &target() {
    static Bytes bytes(LARGEST);
    return bytes;
}

// What the model and the variants are called with: bind(routine) is one call of it.
template <class Routine, class Variants, class Bind>
Case make_case(size_t read, size_t written, Routine model, const Variants &variants, Bind bind) {
    Case prepared{read + written, {}, &target()};
    const auto add = [&](const char *level, Routine routine) {
        prepared.forms.push_back({level, [call = bind(routine)](int64_t times) {
                                      for (; times > 0; times--) call();
                                  }});
    };
    add("model", model);
    for (const auto &variant : variants) add(variant.level, variant.run);
    return prepared;
}

std::string size_text(int32_t width, int32_t height) {
    return std::to_string(width) + 'x' + std::to_string(height);
}

NamedCase conversion(const CscKernel &kernel) {
    const auto prepare = [kernel] {
        const auto picture = std::make_shared<Picture>(kernel, FROM_W, FROM_H);
        const auto bind = [picture](tavu_fn_csc_t routine) {
            return [picture, routine] { picture->convert(routine); };
        };
        size_t written = 0;
        for (const int bytes : kernel.dst_bytes) written += size_t(bytes) * FROM_W * FROM_H;
        const size_t read = size_t(kernel.src_planes) * FROM_W * FROM_H;
        Case prepared = make_case(read, written, kernel.model, kernel.variants, bind);
        prepared.target = &picture->out;
        return prepared;
    };
    return {std::string("csc_") + kernel.name, size_text(FROM_W, FROM_H), prepare};
}

NamedCase combined(const CscKernel &kernel) {
    const auto bind = [](tavu_fn_csc_t routine, int bytes, int32_t code) {
        return [=] {
            constexpr int32_t PLANE = FROM_W * FROM_H;
            constexpr int32_t SRC_STRIDE[4] = {FROM_W, FROM_W, FROM_W, FROM_W};
            const int32_t dst_stride[4] = {TO_W * bytes};
            uint8_t *const src[4] = {source(), source() + PLANE, source() + 2 * PLANE,
                                     source() + 3 * PLANE};
            uint8_t *const dst[4] = {target().data()};
            routine(src, FROM_W, FROM_H, SRC_STRIDE, 13, dst, TO_W, TO_H, dst_stride, code);
        };
    };
    const auto prepare = [kernel, bind] {
        const int bytes = kernel.dst_bytes[0];
        return make_case(size_t(kernel.src_planes) * FROM_W * FROM_H, size_t(bytes) * TO_W * TO_H,
                         kernel.model, kernel.variants, [&](tavu_fn_csc_t routine) {
                             return bind(routine, bytes, kernel.codes[0]);
                         });
    };
    return {std::string("csc_rsz_") + kernel.name,
            size_text(FROM_W, FROM_H) + " to " + size_text(TO_W, TO_H), prepare};
}

// Of a resize kernel's two routines, Variant by Variant.
template <class Routine>
std::vector<Variant<Routine>> routines(const ResizeKernel &kernel, Routine ResizeVariant::*which) {
    std::vector<Variant<Routine>> all;
    for (const ResizeVariant &variant : kernel.variants)
        all.push_back({variant.level, variant.*which});
    return all;
}

NamedCase whole_resize(const ResizeKernel &kernel) {
    const auto prepare = [kernel] {
        int32_t x, y;
        bilinear_rsz_step_size(FROM_W, FROM_H, TO_W, TO_H, &x, &y);
        const int32_t src_line = FROM_W * kernel.src_bytes / kernel.line_unit;
        const int32_t dst_line = TO_W * kernel.dst_bytes / kernel.line_unit;
        const auto bind = [=](tavu_irsz_full_t *full) {
            return [=] { full(source(), src_line, TO_W, TO_H, dst_line, target().data(), x, y); };
        };
        return make_case(size_t(kernel.src_bytes) * FROM_W * FROM_H,
                         size_t(kernel.dst_bytes) * TO_W * TO_H, kernel.model.full,
                         routines(kernel, &ResizeVariant::full), bind);
    };
    return {std::string("resize_full_") + kernel.name,
            size_text(FROM_W, FROM_H) + " to " + size_text(TO_W, TO_H), prepare};
}

NamedCase line_resize(const ResizeKernel &kernel) {
    const auto prepare = [kernel] {
        int32_t x, y;
        bilinear_rsz_step_size(FROM_W, FROM_H, TO_W, TO_H, &x, &y);
        const size_t row = size_t(kernel.src_bytes) * FROM_W;
        const auto bind = [=](tavu_irsz_line_t *line) {
            return [=] {
                const uint8_t *const rows[] = {source(), source() + row};
                const int32_t step = x >> 3, shift = x & 7;
                line(rows, tavu_irsz_tbl_rsz_weight + 12, TO_W, shift, 1 << shift, step,
                     target().data());
            };
        };
        return make_case(2 * row, size_t(kernel.dst_bytes) * TO_W, kernel.model.line,
                         routines(kernel, &ResizeVariant::line), bind);
    };
    return {std::string("resize_line_") + kernel.name,
            std::to_string(FROM_W) + " to " + std::to_string(TO_W), prepare};
}

// Adds kernels of blocks: call(routine, width, height) returns a nullary call, `read` and `written`
// are bytes per sample.
template <class Kernel, class Call>
void add_blocks(std::vector<NamedCase> &cases, const std::vector<Kernel> &kernels, size_t read,
                size_t written, Call call) {
    for (const Kernel &kernel : kernels) {
        const auto prepare = [=] {
            const size_t samples = size_t(kernel.width) * size_t(kernel.height);
            return make_case(
                read * samples, written * samples, kernel.model, kernel.variants,
                [&](const auto &routine) { return call(routine, kernel.width, kernel.height); });
        };
        cases.push_back({kernel.name, size_text(kernel.width, kernel.height), prepare});
    }
}

// Where blocks and their results are: known before the clock runs.
struct Blocks {
    const uint8_t *a = source(), *b = source() + 64;  // in one row of noise
    uint8_t *out = target().data();
    int16_t *residual = static_cast<int16_t *>(static_cast<void *>(out));
    int32_t *result = static_cast<int32_t *>(static_cast<void *>(out));
    int16_t samples[16];

    Blocks() {
        for (int i = 0; i < 16; i++) samples[i] = static_cast<int16_t>(a[i] - b[i]);
    }
};

void add_metrics(std::vector<NamedCase> &cases) {
    const Blocks at;
    add_blocks(cases, block_kernels(), 2, 0, [at](auto *metric, int32_t, int32_t) {
        return [=] { *at.result = metric(at.a, at.b, STRIDE, STRIDE); };
    });
    add_blocks(cases, area_kernels(), 2, 0, [at](auto *metric, int32_t w, int32_t h) {
        return [=] { *at.result = metric(w, h, at.a, at.b, STRIDE, STRIDE); };
    });
    add_blocks(cases, early_skip_kernels(), 2, 0, [at](auto *metric, int32_t w, int32_t h) {
        return [=] { *at.result = metric(w, h, at.a, at.b, STRIDE, STRIDE, INT_MAX); };
    });
    add_blocks(cases, diff_block_kernels(), 2, 2, [at](auto *diff, int32_t w, int32_t) {
        return [=] { diff(at.a, at.b, STRIDE, STRIDE, w, at.residual); };
    });
    add_blocks(cases, diff_area_kernels(), 2, 2, [at](auto *diff, int32_t w, int32_t h) {
        return [=] { diff(w, h, at.a, at.b, STRIDE, STRIDE, w, at.residual); };
    });
    add_blocks(cases, hadamard_kernels(), 2, 0, [at](auto *hadamard, int32_t, int32_t) {
        return [=] { *at.result = hadamard(at.samples); };
    });
    add_blocks(cases, fill_kernels(), 0, 1,
               [at](const Fill &fill, int32_t w, int32_t) { return [=] { fill(at.out, w); }; });
}

}  // namespace

std::vector<NamedCase> kernel_cases() {
    std::vector<NamedCase> cases;
    for (const CscKernel &kernel : csc_kernels()) cases.push_back(conversion(kernel));
    for (const CscKernel &kernel : csc_rsz_kernels()) cases.push_back(combined(kernel));
    for (const ResizeKernel &kernel : resize_kernels()) cases.push_back(whole_resize(kernel));
    for (const ResizeKernel &kernel : resize_kernels()) cases.push_back(line_resize(kernel));
    add_metrics(cases);
    return cases;
}

const Form *find_wrong_form(const Case &prepared) {
    const auto result_of = [&](const Form &form) {
        std::fill(prepared.target->begin(), prepared.target->end(), uint8_t{0});
        form.run(1);
        return *prepared.target;
    };
    const Bytes expected = result_of(prepared.forms[0]);
    for (const Form &form : prepared.forms)
        if (result_of(form) != expected) return &form;
    return nullptr;
}
