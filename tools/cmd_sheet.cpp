#include <algorithm>
#include <cmath>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <utility>

#include "commands.h"
#include "contact_sheet.h"
#include "decode.h"
#include "label.h"
#include "limits.h"
#include "names.h"
#include "picture.h"
#include "progress.h"
#include "report.h"
#include "thumbnail.h"

namespace {

/** Height of a picture shown `width` wide; `turned` if frames are rotated by 90 degrees. */
int picture_height(const AVFrame &frame, AVRational pixel_aspect, bool turned, int width) {
    constexpr double MAX_HEIGHT = 65535;
    const double ratio = frame.width * av_q2d(pixel_aspect) / frame.height;
    const double height = std::round(turned ? width * ratio : width / ratio);
    if (height > MAX_HEIGHT)
        throw std::runtime_error("pictures of " + std::to_string(frame.width) + "x" +
                                 std::to_string(frame.height) + " are too narrow for a sheet");
    check_pixels(width, static_cast<int64_t>(height));
    return std::max(1, static_cast<int>(height));
}

/** Puts the selected frames of a stream on a sheet; the first one sets the picture height. */
class SheetMaker {
  public:
    SheetMaker(Media &media, const AVStream &stream, const SheetOptions &options)
        : media_(media), stream_(stream), options_(options), turns_(Media::quarter_turns(stream)) {}

    void take(const AVFrame &frame, int64_t index, double seconds) {
        if (options_.every > 0 && index % options_.every != 0) return;
        if (!sheet_) start(frame);
        int width = sheet_->picture_width(), height = sheet_->picture_height();
        if (turns_ % 2 != 0) std::swap(width, height);
        const ImagePtr picture = make_thumbnail(*to_full_range_420(frame), width, height);
        sheet_->add(*turn(*picture, turns_), time_text(seconds));
        times_.push_back(seconds);
    }

    const ContactSheet &sheet() const {
        if (!sheet_) throw std::runtime_error("no frames to show");
        return *sheet_;
    }
    const std::vector<double> &times() const { return times_; }

  private:
    void start(const AVFrame &frame) {
        sheet_.emplace(options_.columns, options_.width,
                       picture_height(frame, media_.pixel_aspect(stream_, frame), turns_ % 2 != 0,
                                      options_.width));
    }

    Media &media_;
    const AVStream &stream_;
    const SheetOptions &options_;
    int turns_;
    std::optional<ContactSheet> sheet_;
    std::vector<double> times_;
};

void report(const CommonOptions &common, const SheetOptions &options, const SheetMaker &maker) {
    const ContactSheet &sheet = maker.sheet();
    if (common.has_text(options.output))
        std::cout << printable(options.output) << ": " << maker.times().size() << " pictures, "
                  << sheet.width() << 'x' << sheet.height() << '\n';
    if (common.json)
        print_json({{"file", common.input},
                    {"output", options.output},
                    {"width", sheet.width()},
                    {"height", sheet.height()},
                    {"times", maker.times()}});
}

}  // namespace

void sheet(const CommonOptions &common, const SheetOptions &options) {
    Media media(common.input);
    const AVStream &stream = media.best_video();
    FrameReader frames(media, stream, options.every > 0 ? Pick::ALL : Pick::KEY_FRAMES);
    OutputFile file(options.output, {media.id()});
    SheetMaker maker(media, stream, options);
    {
        Progress progress("frames", common.quiet);
        while (const AVFrame *frame = frames.next()) {
            maker.take(*frame, frames.index(), frames.seconds());
            progress.step(media.progress());
        }
    }
    media.throw_faults();
    maker.sheet().save(file);
    report(common, options, maker);
}
