#include <algorithm>
#include <filesystem>
#include <iostream>

#include "commands.h"
#include "decode.h"
#include "pack.h"
#include "png_file.h"
#include "progress.h"
#include "report.h"

namespace {

Media open(const std::string &input, const ConvertOptions &options) {
    if (!options.raw_size) return Media(input);
    const RawVideo raw{
        std::to_string(options.raw_size->width) + "x" + std::to_string(options.raw_size->height),
        options.raw->raw_format, options.limited};
    return Media(input, &raw);
}

Planes read_frame(const CommonOptions &common, const ConvertOptions &options) {
    Media media = open(common.input, options);
    FrameReader frames(media, media.best_video());
    const AVFrame *frame = nullptr;
    Progress progress("frames", common.quiet);
    do {
        frame = frames.next();
        progress.step(media.progress());
    } while (frame && frames.index() < options.frame);
    media.throw_faults();
    if (!frame)
        throw std::runtime_error("no frame " + std::to_string(options.frame) +
                                 ", counted from 0; the file has " +
                                 std::to_string(frames.index() + 1));
    return read_planes(*frame);
}

std::string extension(const std::string &path) {
    std::string text = std::filesystem::path(path).extension();
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return text;
}

/** Refuses what a picture file of this extension cannot hold. */
void check(const std::string &kind, const ConvertOptions &options) {
    const PixelLayout &to = *options.to;
    if ((kind == ".png" && !png_takes(to.cs)) || (kind == ".ppm" && to.cs != TAVU_CS_RGB888))
        throw UsageError(options.output + ": " + to.name + " does not fit into a " + kind +
                         " file; give another extension for raw bytes");
}

void write(OutputFile &file, const std::string &kind, const PixelLayout &layout,
           const std::vector<uint8_t> &pixels, Size size) {
    if (kind == ".png")
        return write_png(file, layout.cs, pixels.data(), size.width, size.height,
                         static_cast<size_t>(layout.bytes) * size.width);
    const std::string head =
        "P6\n" + std::to_string(size.width) + " " + std::to_string(size.height) + "\n255\n";
    if (kind == ".ppm") file.write(head.data(), head.size());
    file.write(pixels.data(), pixels.size());
    file.commit();
}

void report(const CommonOptions &common, const ConvertOptions &options, Size size) {
    if (common.talks(options.output))
        std::cout << options.output << ": " << size.width << 'x' << size.height << ' '
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
    OutputFile file(options.output);
    Planes planes = read_frame(common, options);
    const Size own{planes.image->w, planes.image->h}, size = options.resize.value_or(own);
    const bool resizing = size.width != own.width || size.height != own.height;
    if (resizing && !options.one_pass) planes = resize(planes, size.width, size.height);
    write(file, kind, *options.to, pack(planes, *options.to, size.width, size.height), size);
    report(common, options, size);
}
