#pragma once

#include "media/decoding/decode_request.h"

namespace cratewell {

// What each preview of a file is. The request is also its name in the cache on disk, so that whoever changes
// a number here has new previews made.
inline constexpr int thumbnailSide = 640; // pixels, at most

DecodeRequest videoThumbnail(const Location &file);
DecodeRequest stillThumbnail(const Location &file);
// `fraction` of the duration, 0 to 1.
DecodeRequest scrubFrame(const Location &file, double fraction);
DecodeRequest waveformPeaks(const Location &file);
DecodeRequest fileInfo(const Location &file);
// As large as a preview is ever shown.
DecodeRequest largeStill(const Location &file);
DecodeRequest singleFrame(const Location &file, double fraction, int maxSide);

// Tells a request from all others for the same file.
QByteArray markerOf(const DecodeRequest &request);

} // namespace cratewell
