#pragma once

#include <functional>

#include "media.h"

enum class Pick { ALL, KEY_FRAMES };

/**
 * Decodes a video stream to its end and passes on each frame, for Pick::KEY_FRAMES those alone.
 * Packets that cannot be decoded are noted as faults of `media`.
 */
void decode_video(Media &media, const AVStream &stream, Pick pick,
                  const std::function<void(const AVFrame &)> &use);
