extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "commands.h"
#include "decode.h"
#include "names.h"
#include "pack.h"
#include "png_file.h"
#include "progress.h"
#include "report.h"

namespace {

/** Throws if a file of raw planes is too short, before it is read. */
void check_size(const std::string &input, const ConvertOptions &options) {
    std::error_code error;
    const auto found = static_cast<int64_t>(std::filesystem::file_size(input, error));
    const int picture =
        av_image_get_buffer_size(av_get_pix_fmt(options.raw->raw_format), options.raw_size->width,
                                 options.raw_size->height, 1);
    const int64_t expected = std::max(picture, 0) * (int64_t{options.frame} + 1);
    if (!error && found < expected)
        throw std::runtime_error("expected " + std::to_string(expected) + " bytes up to frame " +
                                 std::to_string(options.frame) + ", found " +
                                 std::to_string(found));
}

Media open(const std::string &input, const ConvertOptions &options) {
    if (!options.raw_size) return Media(input);
    check_size(input, options);
    const RawVideo raw{
        std::to_string(options.raw_size->width) + "x" + std::to_string(options.raw_size->height),
        options.raw->raw_format, options.limited};
    return Media(input, &raw);
}

Planes read_frame(Media &media, const CommonOptions &common, const ConvertOptions &options) {
    FrameReader frames(media, media.best_video());
    const AVFrame *frame = nullptr;
    Progress progress("frames", common.quiet);
    do {
        frame = frames.next();
        progress.step((static_cast<double>(frames.index()) + 1) / (options.frame + 1.0));
    } while (frame && frames.index() < options.frame);
    media.throw_faults();
    if (!frame)
        throw std::runtime_error("no frame " + std::to_string(options.frame) +
                                 " (counted from 0); the file has " +
                                 std::to_string(frames.index() + 1) + " frames");
    return read_planes(*frame);
}

std::string extension(const std::string &path) {
    std::string text = std::filesystem::path(path).extension();
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return text;
}

/** Refuses layouts that a picture file with this extension cannot hold. */
void check(const std::string &kind, const ConvertOptions &options) {
    const PixelLayout &to = *options.to;
    for (const char *other : {".bmp", ".gif", ".jpeg", ".jpg", ".tif", ".tiff", ".webp"})
        if (kind == other)
            throw UsageError(options.output +
                             ": expected .png, .ppm, or for raw bytes an extension "
                             "that is not a picture format's");
    if ((kind == ".png" && !png_takes(to.cs)) || (kind == ".ppm" && to.cs != TAVU_CS_RGB888))
        throw UsageError(options.output + ": a " + kind + " file cannot hold " + to.name +
                         "; use another extension for raw bytes");
}

void write(OutputFile &file, const std::string &kind, const PixelLayout &layout,
           const std::vector<uint8_t> &pixels, Size size) {
    if (kind == ".png")
        return write_png(file, layout.cs, pixels.data(), size.width, size.height,
                         static_cast<size_t>(layout.bytes) * static_cast<size_t>(size.width));
    const std::string head =
        "P6\n" + std::to_string(size.width) + " " + std::to_string(size.height) + "\n255\n";
    if (kind == ".ppm") file.write(head.data(), head.size());
    file.write(pixels.data(), pixels.size());
    file.commit();
}

void report(const CommonOptions &common, const ConvertOptions &options, Size size) {
    if (common.has_text(options.output))
        std::cout << printable(options.output) << ": " << size.width << 'x' << size.height << ' '
                  << options.to->name << '\n';
    if (common.json)
        print_json({{"file", common.input},
                    {"output", options.output},
                    {"frame", options.frame},
                    {"layout", options.to->name},
                    {"width", size.width},
                    {"height", size.height}});
}

}  // namespace

void convert(const CommonOptions &common, const ConvertOptions &options) {
    const std::string kind = extension(options.output);
    check(kind, options);
    Media media = open(common.input, options);
    OutputFile file(options.output, {media.id()});
    Planes planes = read_frame(media, common, options);
    const Size own{planes.image->w, planes.image->h}, size = options.resize.value_or(own);
    const bool resizing = size.width != own.width || size.height != own.height;
    if (resizing && !options.one_pass) planes = resize(planes, size.width, size.height);
    write(file, kind, *options.to, pack(planes, *options.to, size.width, size.height), size);
    report(common, options, size);
}
