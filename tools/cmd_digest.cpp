#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "decode.h"
#include "picture.h"
#include "progress.h"
#include "report.h"

namespace {

std::string digest_text(const tavu_imgb_t &image) {
    uint8_t digest[16];
    tavu_md5_imgb(&image, digest);
    std::string text;
    for (const uint8_t byte : digest) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02x", byte);
        text += hex;
    }
    return text;
}

void print_row(const FrameReader &frames, const tavu_imgb_t &image, const std::string &md5) {
    char head[96];
    std::snprintf(head, sizeof head, "%" PRId64 ",%.6f,%dx%d,", frames.index(), frames.seconds(),
                  image.w, image.h);
    std::cout << head << md5 << '\n';
}

}  // namespace

void digest(const CommonOptions &common) {
    Media media(common.input);
    FrameReader frames(media, media.best_video());
    Json rows = Json::array();
    const bool has_text = common.has_text();
    if (has_text) std::cout << "# index,time,size,md5\n";
    {
        // Rows on the terminal already show the progress.
        Progress progress("frames", common.quiet || (has_text && isatty(STDOUT_FILENO)));
        while (const AVFrame *frame = frames.next()) {
            const ImagePtr image = copy_frame(*frame);
            const std::string md5 = digest_text(*image);
            if (has_text) print_row(frames, *image, md5);
            if (common.json)
                rows.push_back({{"index", frames.index()},
                                {"time", frames.seconds()},
                                {"width", image->w},
                                {"height", image->h},
                                {"md5", md5}});
            progress.step(media.progress());
        }
    }
    if (common.json) print_json({{"file", common.input}, {"frames", rows}});
    media.throw_faults();
}
