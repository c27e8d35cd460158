#include <algorithm>
#include <filesystem>

#include "commands.h"
#include "decode.h"
#include "pack.h"
#include "png_file.h"
#include "progress.h"
#include "replacing_file.h"

namespace {

Media open(const ConvertOptions &options) {
    if (!options.raw_size) return Media(options.input);
    const RawVideo raw{
        std::to_string(options.raw_size->width) + "x" + std::to_string(options.raw_size->height),
        options.raw->raw_format, options.limited};
    return Media(options.input, &raw);
}

Planes read_frame(const ConvertOptions &options) {
    Media media = open(options);
    FrameReader frames(media, media.best_video());
    const AVFrame *frame = nullptr;
    Progress progress;
    do {
        frame = frames.next();
        progress.show(media.progress());
    } while (frame && frames.index() < options.frame);
    media.throw_faults();
    if (!frame)
        throw std::runtime_error("no frame " + std::to_string(options.frame) +
                                 ", counted from 0; the file has " +
                                 std::to_string(frames.index() + 1));
    return read_planes(*frame);
}

void write_file(const std::string &path, const std::string &head,
                const std::vector<uint8_t> &bytes) {
    ReplacingFile file(path);
    file.write(head.data(), head.size());
    file.write(bytes.data(), bytes.size());
    file.commit();
}

std::string extension(const std::string &path) {
    std::string text = std::filesystem::path(path).extension();
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return text;
}

}  // namespace

void convert(const ConvertOptions &options) {
    const PixelLayout &to = *options.to;
    const std::string kind = extension(options.output);
    if ((kind == ".png" && !png_takes(to.cs)) || (kind == ".ppm" && to.cs != TAVU_CS_RGB888))
        throw UsageError(options.output + ": " + to.name + " does not fit into a " + kind +
                         " file; give another extension for raw bytes");
    Planes planes = read_frame(options);
    const Size own{planes.image->w, planes.image->h}, size = options.resize.value_or(own);
    const bool resizing = size.width != own.width || size.height != own.height;
    if (resizing && !options.one_pass) planes = resize(planes, size.width, size.height);
    const std::vector<uint8_t> pixels = pack(planes, to, size.width, size.height);
    const std::string numbers = std::to_string(size.width) + " " + std::to_string(size.height);
    if (kind == ".png") {
        write_png(options.output, to.cs, pixels.data(), size.width, size.height,
                  static_cast<size_t>(to.bytes) * size.width);
    } else {
        write_file(options.output, kind == ".ppm" ? "P6\n" + numbers + "\n255\n" : "", pixels);
    }
}
