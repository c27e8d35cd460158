#include <cinttypes>
#include <cstdio>
#include <iostream>
#include <optional>

#include "commands.h"
#include "decode.h"
#include "heat_map.h"
#include "metrics.h"
#include "pack.h"
#include "picture.h"
#include "plane.h"
#include "progress.h"
#include "report.h"

namespace {

/** Runs a step that concerns one file; its errors name that file. */
template <class Step>
auto about(const std::string &path, Step step) {
    try {
        return step();
    } catch (const std::runtime_error &error) {
        throw WholeError(path + ": " + error.what());
    }
}

/** One of the two inputs. */
struct Clip {
    explicit Clip(const std::string &file) : path(file) {}

    const AVFrame *next() {
        return about(path, [this] { return frames.next(); });
    }
    void throw_faults() const {
        about(path, [this] { media.throw_faults(); });
    }

    std::string path;
    Media media = about(path, [this] { return Media(path); });
    FrameReader frames = about(path, [this] { return FrameReader(media, media.best_video()); });
};

std::string size_text(const AVFrame &frame) {
    return std::to_string(frame.width) + "x" + std::to_string(frame.height);
}

/** Whether luma can be compared unchanged; otherwise both frames are converted as for a sheet. */
bool comparable(const AVFrame &a, const AVFrame &b) {
    return has_luma_plane(a) && has_luma_plane(b) && is_full_range(a) == is_full_range(b);
}

ImagePtr luma_of(const AVFrame &frame, bool unchanged) {
    ImagePtr luma = make_luma(frame.width, frame.height);
    const Plane to = plane_of(*luma, 0);
    if (unchanged) {
        copy_plane({frame.data[0], frame.width, frame.height, frame.linesize[0]}, to);
    } else {
        copy_plane(plane_of(*to_full_range_420(frame), 0), to);
    }
    return luma;
}

struct Row {
    double seconds;
    Difference difference;
};

/** The differences of all frames so far, and the first frame with the highest SATD. */
struct Comparison {
    void add(const AVFrame &a, const AVFrame &b, double seconds) {
        const bool unchanged = comparable(a, b);
        Difference now = compare_luma(*luma_of(a, unchanged), *luma_of(b, unchanged));
        if (!worst || now.satd > worst_satd) {
            worst.reset(av_frame_clone(&a));
            worst_satd = now.satd;
            worst_blocks = std::move(now.blocks);
        }
        now.blocks.clear();
        rows.push_back({seconds, now});
    }

    Difference total() const {
        Difference sum;
        for (const Row &row : rows) {
            sum.sad += row.difference.sad;
            sum.ssd += row.difference.ssd;
            sum.satd += row.difference.satd;
            sum.mse += row.difference.mse / static_cast<double>(rows.size());
        }
        return sum;
    }

    std::vector<Row> rows;
    FramePtr worst;
    int64_t worst_satd = 0;
    std::vector<int32_t> worst_blocks;
};

/** The reason why the next two frames cannot be compared; empty if they can. */
std::string mismatch(const Clip &a, const AVFrame *in_a, const Clip &b, const AVFrame *in_b) {
    if (!in_a || !in_b) {
        const Clip &ended = in_a ? b : a, &longer = in_a ? a : b;
        return ended.path + ": ends after " + std::to_string(ended.frames.index() + 1) +
               " frames, " + longer.path + " has more";
    }
    if (in_a->width == in_b->width && in_a->height == in_b->height) return "";
    return a.path + ": pictures of " + size_text(*in_a) + ", but " + b.path + " has " +
           size_text(*in_b);
}

/** Compares frames up to the first mismatch; returns its reason, empty if there is none. */
std::string compare_frames(Clip &a, Clip &b, bool quiet, Comparison &comparison) {
    Progress progress("frames", quiet);
    const AVFrame *in_a = a.next(), *in_b = b.next();
    for (; in_a || in_b; in_a = a.next(), in_b = b.next()) {
        if (std::string why = mismatch(a, in_a, b, in_b); !why.empty()) return why;
        comparison.add(*in_a, *in_b, a.frames.seconds());
        progress.step(a.media.progress());
    }
    return "";
}

void print_line(const char *head, const Difference &sum) {
    char line[160];
    std::snprintf(line, sizeof line, "%s %12" PRId64 " %14" PRId64 " %7.2f %12" PRId64 "\n", head,
                  sum.sad, sum.ssd, psnr(sum.mse), sum.satd);
    std::cout << line;
}

void print_text(const Comparison &comparison) {
    std::cout << " frame         time          SAD            SSD    PSNR         SATD\n";
    int64_t index = 0;
    for (const Row &row : comparison.rows) {
        char head[64];
        std::snprintf(head, sizeof head, "%6" PRId64 " %12.6f", index++, row.seconds);
        print_line(head, row.difference);
    }
    print_line("total              ", comparison.total());
}

Json sums_json(const Difference &sum) {
    // An infinite PSNR becomes null.
    return {{"sad", sum.sad}, {"ssd", sum.ssd}, {"psnr", psnr(sum.mse)}, {"satd", sum.satd}};
}

Json comparison_json(const Clip &a, const Clip &b, const Comparison &comparison) {
    Json frames = Json::array();
    for (const Row &row : comparison.rows) {
        Json frame = {{"index", frames.size()}, {"time", row.seconds}};
        frame.update(sums_json(row.difference));
        frames.push_back(std::move(frame));
    }
    Json total = {{"frames", frames.size()}};
    total.update(sums_json(comparison.total()));
    return {{"a", a.path}, {"b", b.path}, {"frames", frames}, {"total", total}};
}

void save_heat_map(OutputFile &file, const Comparison &comparison) {
    const AVFrame &frame = *comparison.worst;
    write_heat_map(
        file, pack(read_planes(frame), *find_layout(TAVU_CS_RGB888), frame.width, frame.height),
        frame.width, frame.height, comparison.worst_blocks);
}

}  // namespace

void compare(const CommonOptions &common, const CompareOptions &options) {
    Clip a(common.input), b(options.other);
    std::optional<OutputFile> heat_map;
    if (!options.heat_map.empty())
        heat_map.emplace(options.heat_map,
                         std::initializer_list<FileId>{a.media.id(), b.media.id()});
    Comparison comparison;
    const std::string stop = compare_frames(a, b, common.quiet, comparison);
    if (!comparison.rows.empty() && common.json) print_json(comparison_json(a, b, comparison));
    if (!comparison.rows.empty() && common.has_text(options.heat_map)) print_text(comparison);
    a.throw_faults();
    b.throw_faults();
    if (!stop.empty()) throw WholeError(stop);
    if (comparison.rows.empty()) throw std::runtime_error("no frames to compare");
    if (heat_map) save_heat_map(*heat_map, comparison);
}
