#include <cinttypes>
#include <cstdio>
#include <iostream>

#include "commands.h"
#include "decode.h"
#include "picture.h"

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

}  // namespace

void digest(const std::string &input) {
    Media media(input);
    FrameReader frames(media, media.best_video());
    std::cout << "# index,time,size,md5\n";
    while (const AVFrame *frame = frames.next()) {
        const ImagePtr image = copy_frame(*frame);
        char head[96];
        std::snprintf(head, sizeof head, "%" PRId64 ",%.6f,%dx%d,", frames.index(),
                      frames.seconds(), frame->width, frame->height);
        std::cout << head << digest_text(*image) << '\n';
    }
    media.throw_faults();
}
