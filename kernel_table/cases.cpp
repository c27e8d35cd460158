#include "cases.h"

#include <algorithm>
#include <array>
#include <climits>
#include <memory>

#include "block_call.h"
#include "picture.h"

namespace {

constexpr int32_t FROM_W = 1920, FROM_H = 1080, TO_W = 1280, TO_H = 720, STRIDE = 192;
constexpr size_t LARGEST = size_t{4} * FROM_W * FROM_H;

std::vector<uint8_t> &target() {
    static std::vector<uint8_t> bytes(LARGEST);
    return bytes;
}

uint8_t *source() {
    static std::vector<uint8_t> bytes = noise(LARGEST);
    return bytes.data();
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

NamedCase conversion(const std::string &prefix, const CscKernel &kernel) {
    const auto prepare = [kernel] {
        const auto picture = std::make_shared<Picture>(kernel, FROM_W, FROM_H, TO_W, TO_H);
        const size_t read = size_t(kernel.src_planes) * FROM_W * FROM_H;
        size_t written = 0;
        for (const int bytes : kernel.dst_bytes) {
            written += size_t(bytes) * size_t(picture->dst_w) * size_t(picture->dst_h);
        }
        const auto bind = [picture](tavu_fn_csc_t routine) {
            return [picture, routine] { picture->convert(routine); };
        };
        Case prepared = make_case(read, written, kernel.model, kernel.variants, bind);
        prepared.target = &picture->out;
        return prepared;
    };
    const std::string from = size_text(FROM_W, FROM_H);
    return {prefix + kernel.name, kernel.resizes ? from + " to " + size_text(TO_W, TO_H) : from,
            prepare};
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

// Adds kernels of blocks: bind(routine, width, height) returns a nullary call, `read` and `written`
// are bytes per sample.
template <class Kernel, class Bind>
void add_blocks(std::vector<NamedCase> &cases, const std::vector<Kernel> &kernels, size_t read,
                size_t written, Bind bind) {
    for (const Kernel &kernel : kernels) {
        const auto prepare = [=] {
            const size_t samples = size_t(kernel.width) * size_t(kernel.height);
            return make_case(
                read * samples, written * samples, kernel.model, kernel.variants,
                [&](const auto &routine) { return bind(routine, kernel.width, kernel.height); });
        };
        cases.push_back({kernel.name, size_text(kernel.width, kernel.height), prepare});
    }
}

// Addresses of the target are known before the clock runs.
void add_metrics(std::vector<NamedCase> &cases) {
    uint8_t *const out = target().data();
    auto *const residual = static_cast<int16_t *>(static_cast<void *>(out));
    auto *const result = static_cast<int32_t *>(static_cast<void *>(out));
    const auto call_of = [=](int32_t w, int32_t h) {  // two blocks in one row of noise
        return BlockCall{source(), source() + 64, STRIDE, STRIDE, w, h, INT_MAX, w, residual};
    };
    const auto metric = [=](auto *routine, int32_t w, int32_t h) {
        return [=, call = call_of(w, h)] { *result = call.run(routine); };
    };
    const auto diff = [=](auto *routine, int32_t w, int32_t h) {
        return [=, call = call_of(w, h)] { call.run(routine); };
    };
    add_blocks(cases, block_kernels(), 2, 0, metric);
    add_blocks(cases, area_kernels(), 2, 0, metric);
    add_blocks(cases, early_skip_kernels(), 2, 0, metric);
    add_blocks(cases, diff_block_kernels(), 2, 2, diff);
    add_blocks(cases, diff_area_kernels(), 2, 2, diff);
    std::array<int16_t, 16> samples;
    for (size_t i = 0; i < 16; i++)
        samples[i] = static_cast<int16_t>(source()[i] - source()[64 + i]);
    add_blocks(cases, hadamard_kernels(), 2, 0, [=](auto *hadamard, int32_t, int32_t) {
        return [=] { *result = hadamard(samples.data()); };
    });
    add_blocks(cases, fill_kernels(), 0, 1,
               [=](const Fill &fill, int32_t w, int32_t) { return [=] { fill(out, w); }; });
}

}  // namespace

std::vector<NamedCase> kernel_cases() {
    std::vector<NamedCase> cases;
    for (const CscKernel &kernel : csc_kernels()) {
        cases.push_back(conversion("csc_", kernel));
    }
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        cases.push_back(conversion("csc_rsz_", kernel));
    }
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
    const std::vector<uint8_t> expected = result_of(prepared.forms[0]);
    for (const Form &form : prepared.forms)
        if (result_of(form) != expected) return &form;
    return nullptr;
}
