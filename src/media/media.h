#pragma once

#include "media/lut.h"
#include "media/media_info.h"
#include "media/preview_request.h"
#include "media/preview_state.h"
#include "media/waveform_peaks.h"
#include "vault/asset.h"

#include <QFuture>
#include <QImage>
#include <QObject>
#include <memory>
#include <optional>

namespace cratewell {

class Prefs;
class Vault;
struct SystemPaths;

// Loads and keeps everything costly that is drawn for an asset or said about it. Main thread. Accessors
// answer at once with what is there; what is missing is made while somebody holds a request for it: media is
// decoded in worker processes, LUTs are read on threads, in the order of RequestPlace, at most one job for
// each preview. Each job ends exactly once, with a preview or with a failure that is remembered for that
// version of the file.
//
// Memory stays bounded: pictures over the budget are let go without a signal, the one shown longest ago first
// (a card on screen holds its own copy). They come back from a cache on disk, which the next start finds as
// well.
class Media : public QObject
{
    Q_OBJECT
public:
    using State = PreviewState;

    Media(Vault &vault, Prefs &prefs, const SystemPaths &paths);
    ~Media() override;

    // Grid thumbnails: largest side at most 640, upright; RGB32 when opaque, else premultiplied ARGB; null
    // while Missing or Failed. Of a LUT the still graded with it. Sounds have none (Failed at once).
    QImage thumbnail(const Asset &asset) const;
    State thumbnailState(const Asset &asset) const;
    // This and the requests below are null when nothing needs to be done.
    [[nodiscard]] std::unique_ptr<PreviewRequest> requestThumbnail(const Asset &asset);

    // The frames that follow the pointer over a video, largest side at most 480: scrubFrames of them, evenly
    // over its duration. Null until they are made, or when there is none.
    static constexpr int scrubFrames = 24;
    // The frame at a fraction (0 to 1) of the duration: 0 to scrubFrames - 1.
    static int scrubBucket(double fraction);
    QImage scrubFrame(const Asset &asset, int bucket) const;
    // Comes before everything that nobody points at.
    [[nodiscard]] std::unique_ptr<PreviewRequest> requestScrubFrame(const Asset &asset, int bucket);

    // 240 peaks of a sound; nothing while they are being computed, none for one that cannot be read.
    std::optional<WaveformPeaks> waveform(const Asset &asset) const;
    [[nodiscard]] std::unique_ptr<PreviewRequest> requestWaveform(const Asset &asset);

    std::optional<LUT> lut(const Asset &asset) const;
    State lutState(const Asset &asset) const;
    [[nodiscard]] std::unique_ptr<PreviewRequest> requestLut(const Asset &asset);

    // What the header of a video, still or sound says. Comes with its thumbnail or waveform, too.
    std::optional<MediaInfo> info(const Asset &asset) const;
    State infoState(const Asset &asset) const;
    [[nodiscard]] std::unique_ptr<PreviewRequest> requestInfo(const Asset &asset);

    // One frame of a video, at most 0.98 of its duration in, that fits inside maxSide x maxSide. Null when
    // there is none; canceled when Media ends first.
    QFuture<QImage> frame(const Location &url, double fraction, int maxSide);
    // So many small frames in the middles of even parts, in order; those that cannot be had are left out.
    QFuture<QList<QImage>> filmstrip(const Location &url, int count);

    // The frame under overlays and LUTs: the user's, or the built-in sunset (1600 x 900) until that is
    // decoded and where there is none. Never null.
    QImage still() const;

Q_SIGNALS:
    // State or value of this preview changed.
    void thumbnailChanged(const cratewell::Location &url);
    void scrubFrameChanged(const cratewell::Location &url, int bucket);
    void waveformChanged(const cratewell::Location &url);
    void lutChanged(const cratewell::Location &url);
    void infoChanged(const cratewell::Location &url);
    void stillChanged();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// "9.9s" below ten seconds, "1:15" from there on, "0:00" for what is no duration.
QString timeString(double seconds);

} // namespace cratewell
