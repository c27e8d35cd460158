#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "commands.h"
#include "contact_sheet.h"
#include "decode.h"
#include "label.h"
#include "picture.h"
#include "progress.h"
#include "thumbnail.h"

namespace {

int picture_height(const AVFrame &frame, AVRational pixel_aspect, int width) {
    constexpr double MAX_HEIGHT = 65535;
    const double height = std::round(width * (static_cast<double>(frame.height) / frame.width) /
                                     av_q2d(pixel_aspect));
    if (height > MAX_HEIGHT)
        throw std::runtime_error("pictures of " + std::to_string(frame.width) + "x" +
                                 std::to_string(frame.height) + " are too narrow for a sheet");
    return std::max(1, static_cast<int>(height));
}

/** Puts the wanted frames of a stream on a sheet that is as high as the first one demands. */
class SheetMaker {
  public:
    SheetMaker(Media &media, const AVStream &stream, const SheetOptions &options)
        : media_(media), stream_(stream), options_(options) {}

    void take(const AVFrame &frame, int64_t index, double seconds) {
        if (options_.every > 0 && index % options_.every != 0) return;
        if (!sheet_)
            sheet_.emplace(
                options_.columns, options_.width,
                picture_height(frame, media_.pixel_aspect(stream_, frame), options_.width));
        const ImagePtr picture = make_thumbnail(*to_full_range_420(frame), sheet_->picture_width(),
                                                sheet_->picture_height());
        sheet_->add(*picture, time_text(seconds));
    }

    const ContactSheet &sheet() const {
        if (!sheet_) throw std::runtime_error("no frame to show");
        return *sheet_;
    }

  private:
    Media &media_;
    const AVStream &stream_;
    const SheetOptions &options_;
    std::optional<ContactSheet> sheet_;
};

}  // namespace

void sheet(const SheetOptions &options) {
    Media media(options.input);
    const AVStream &stream = media.best_video();
    FrameReader frames(media, stream, options.every > 0 ? Pick::ALL : Pick::KEY_FRAMES);
    SheetMaker maker(media, stream, options);
    {
        Progress progress;
        while (const AVFrame *frame = frames.next()) {
            progress.show(media.progress());
            maker.take(*frame, frames.index(), frames.seconds());
        }
    }
    media.throw_faults();
    maker.sheet().save(options.output);
}
