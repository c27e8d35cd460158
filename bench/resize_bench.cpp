// Resizing, alone and with conversion: the model, every variant of the processor, and the best
// peers at their bilinear quality, on the same planes.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "picture.h"
#include "require.h"
#include "rows.h"

#if TAVU_HAVE_LIBYUV
#include <libyuv.h>
#include <libyuv/scale_rgb.h>
#endif
#if TAVU_HAVE_SWSCALE
extern "C" {
#include <libswscale/swscale.h>
}
#endif
#if TAVU_HAVE_OPENCV
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

struct Size {
    const char *name;
    int w, h;
};
constexpr Size P270{"270p", 480, 270}, P360{"360p", 640, 360}, P540{"540p", 960, 540},
    P720{"720p", 1280, 720}, P1080{"1080p", 1920, 1080};

struct Case {
    Size from, to;
    std::string name() const { return std::string(from.name) + '_' + to.name; }
};

constexpr size_t LARGEST = 1920 * 1080 * 4;

// The source, packed or planar; every row uses the same memory.
uint8_t *source() {
    static std::vector<uint8_t> bytes = noise(LARGEST);
    return bytes.data();
}

std::vector<uint8_t> &target() {
    static std::vector<uint8_t> bytes(LARGEST);
    return bytes;
}

using Call = std::function<void()>;

struct Side {
    std::string who;
    Call call;
    bool exact;  // ours: equal to the model
};

void add_row(const std::string &row, const Call &model, const std::vector<Side> &sides) {
    std::vector<uint8_t> expected, found;
    const auto result_of = [](const Call &call) {
        std::fill(target().begin(), target().end(), 0);
        call();
        return target();
    };
    expected = result_of(model);
    const auto bytes = static_cast<double>(expected.size());
    add_side(row, "tavu-model", model);
    for (const Side &side : sides) {
        found = result_of(side.call);
        double sum = 0;
        for (size_t i = 0; i < found.size(); i++) sum += std::abs(expected[i] - found[i]);
        require(sum == 0 || !side.exact, row);
        const std::string note = " (mean difference " + std::to_string(sum / bytes).substr(0, 4);
        add_side(row, sum > 0 ? side.who + note + ")" : side.who, side.call);
    }
}

std::string our_side(const char *level) {
    return level == std::string("exported") ? "tavu" : std::string("tavu-") + level;
}

#if TAVU_HAVE_LIBYUV

void yuv_resize(int bytes, const uint8_t *src, Size from, uint8_t *dst, Size to) {
    if (bytes == 1) {
        libyuv::ScalePlane(src, from.w, from.w, from.h, dst, to.w, to.w, to.h,
                           libyuv::kFilterBilinear);
    } else if (bytes == 3) {
        libyuv::RGBScale(src, 3 * from.w, from.w, from.h, dst, 3 * to.w, to.w, to.h,
                         libyuv::kFilterBilinear);
    } else {
        libyuv::ARGBScale(src, 4 * from.w, from.w, from.h, dst, 4 * to.w, to.w, to.h,
                          libyuv::kFilterBilinear);
    }
}

// Converts three planes of equal size to packed pixels.
void yuv_convert(bool yuv, int bytes, const uint8_t *src, Size s, uint8_t *dst) {
    const uint8_t *p0 = src, *p1 = src + s.w * s.h, *p2 = src + 2 * s.w * s.h;
    if (yuv && bytes == 3) {
        libyuv::I444ToRGB24Matrix(p0, s.w, p2, s.w, p1, s.w, dst, 3 * s.w,
                                  &libyuv::kYvuJPEGConstants, s.w, s.h);
    } else if (yuv) {
        libyuv::J444ToABGR(p0, s.w, p1, s.w, p2, s.w, dst, 4 * s.w, s.w, s.h);
    } else if (bytes == 3) {
        libyuv::MergeRGBPlane(p0, s.w, p1, s.w, p2, s.w, dst, 3 * s.w, s.w, s.h);
    } else {
        libyuv::MergeARGBPlane(p2, s.w, p1, s.w, p0, s.w, nullptr, 0, dst, 4 * s.w, s.w, s.h);
    }
}

uint8_t *intermediate() {
    static std::vector<uint8_t> bytes(LARGEST);
    return bytes.data();
}

void add_libyuv(std::vector<Side> &sides, const Case &c, int bytes) {
    sides.push_back(
        {"libyuv", [=] { yuv_resize(bytes, source(), c.from, target().data(), c.to); }, false});
}

void add_libyuv_combined(std::vector<Side> &sides, const Case &c, bool yuv, int bytes) {
    const auto resize_first = [=] {
        for (int p = 0; p < 3; p++) {
            yuv_resize(1, source() + p * c.from.w * c.from.h, c.from,
                       intermediate() + p * c.to.w * c.to.h, c.to);
        }
        yuv_convert(yuv, bytes, intermediate(), c.to, target().data());
    };
    const auto convert_first = [=] {
        yuv_convert(yuv, bytes, source(), c.from, intermediate());
        yuv_resize(bytes, intermediate(), c.from, target().data(), c.to);
    };
    sides.push_back({"libyuv, resize and convert", resize_first, false});
    sides.push_back({"libyuv, convert and resize", convert_first, false});
}

#else

void add_libyuv(std::vector<Side> &, const Case &, int) {}
void add_libyuv_combined(std::vector<Side> &, const Case &, bool, int) {}

#endif

#if TAVU_HAVE_SWSCALE

// Contexts are never freed.
void add_swscale(std::vector<Side> &sides, const Case &c, AVPixelFormat from, int planes,
                 AVPixelFormat to, int bytes) {
    for (const auto &[flags, who] :
         {std::pair(SWS_FAST_BILINEAR, "swscale fast"), std::pair(SWS_BILINEAR, "swscale")}) {
        SwsContext *context = sws_getContext(c.from.w, c.from.h, from, c.to.w, c.to.h, to, flags,
                                             nullptr, nullptr, nullptr);
        const int line = c.from.w * (planes == 1 ? bytes : 1), plane = c.from.w * c.from.h;
        const auto call = [=] {
            const uint8_t *src[4] = {source(), source() + plane, source() + 2 * plane};
            const int src_stride[4] = {line, line, line}, dst_stride[4] = {c.to.w * bytes};
            uint8_t *const dst[4] = {target().data()};
            sws_scale(context, src, src_stride, 0, c.from.h, dst, dst_stride);
        };
        if (context != nullptr) sides.push_back({who, call, false});
    }
}

void add_swscale(std::vector<Side> &sides, const Case &c, int bytes) {
    const AVPixelFormat format = bytes == 1   ? AV_PIX_FMT_GRAY8
                                 : bytes == 3 ? AV_PIX_FMT_RGB24
                                              : AV_PIX_FMT_RGBA;
    add_swscale(sides, c, format, 1, format, bytes);
}

void add_swscale_combined(std::vector<Side> &sides, const Case &c, bool yuv, int bytes) {
    // The order of the R, G, B planes differs from swscale's; the work is the same.
    add_swscale(sides, c, yuv ? AV_PIX_FMT_YUVJ444P : AV_PIX_FMT_GBRP, 3,
                bytes == 3 ? AV_PIX_FMT_RGB24 : AV_PIX_FMT_RGBA, bytes);
}

#else

void add_swscale(std::vector<Side> &, const Case &, int) {}
void add_swscale_combined(std::vector<Side> &, const Case &, bool, int) {}

#endif

#if TAVU_HAVE_OPENCV

void add_opencv(std::vector<Side> &sides, const Case &c, int bytes) {
    cv::setNumThreads(1);
    const auto call = [=] {
        const cv::Mat src(c.from.h, c.from.w, CV_8UC(bytes), source());
        cv::Mat dst(c.to.h, c.to.w, CV_8UC(bytes), target().data());
        cv::resize(src, dst, dst.size(), 0, 0, cv::INTER_LINEAR);
    };
    sides.push_back({"opencv", call, false});
}

#else

void add_opencv(std::vector<Side> &, const Case &, int) {}

#endif

void add_packed(const ResizeKernel &kernel, const std::vector<Case> &cases) {
    for (const Case &c : cases) {
        const auto call = [&](tavu_irsz_full_t *full) -> Call {
            int32_t x, y;
            bilinear_rsz_step_size(c.from.w, c.from.h, c.to.w, c.to.h, &x, &y);
            const int bytes = kernel.src_bytes;
            return [=] {
                full(source(), c.from.w * bytes, c.to.w, c.to.h, c.to.w * bytes, target().data(), x,
                     y);
            };
        };
        std::vector<Side> sides;
        for (const ResizeVariant &v : kernel.variants) {
            sides.push_back({our_side(v.level), call(v.full), true});
        }
        add_libyuv(sides, c, kernel.src_bytes);
        add_swscale(sides, c, kernel.src_bytes);
        add_opencv(sides, c, kernel.src_bytes);
        add_row("resize_" + std::string(kernel.name) + '/' + c.name(), call(kernel.model.full),
                sides);
    }
}

void add_combined(const CscKernel &kernel, bool yuv, const std::vector<Case> &cases) {
    for (const Case &c : cases) {
        const int bytes = kernel.dst_bytes[0];
        PicturePlanes planes(kernel, 400, c.from.w, c.from.h, c.to.w, c.to.h);
        planes.set_sources(0, PlaneAllocator{source()});
        planes.set_targets(0, PlaneAllocator{target().data()});
        const auto call = [&](tavu_fn_csc_t routine) -> Call {
            return [=] { planes.convert(routine); };
        };
        std::vector<Side> sides;
        for (const CscVariant &v : kernel.variants) {
            sides.push_back({our_side(v.level), call(v.run), true});
        }
        add_libyuv_combined(sides, c, yuv, bytes);
        add_swscale_combined(sides, c, yuv, bytes);
        add_row("resize_" + std::string(kernel.name) + '/' + c.name(), call(kernel.model), sides);
    }
}

}  // namespace

void add_resize_rows() {
    for (const ResizeKernel &kernel : resize_kernels()) {
        const std::string name = kernel.name;
        if (name == "1byte") {
            add_packed(kernel, {{P1080, P540}, {P720, P1080}, {P1080, P270}, {P1080, P720}});
        } else if (name == "3bytes" || name == "4bytes") {
            add_packed(kernel, {{P1080, P720}, {P360, P540}});
        }
    }
    for (const CscKernel &kernel : csc_rsz_kernels()) {
        const std::string name = kernel.name;
        if (name == "yuv444_to_rgb888") add_combined(kernel, true, {{P1080, P720}});
        if (name == "yuv444_to_rgba8888") {
            add_combined(kernel, true, {{P1080, P540}, {P360, P540}});
        }
        if (name == "r8g8b8_to_rgb888" || name == "r8g8b8_to_rgba8888") {
            add_combined(kernel, false, {{P1080, P720}});
        }
    }
}
