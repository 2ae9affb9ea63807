#pragma once

#include "vault/asset.h"
#include "vault/vault_picture.h"

#include <QImage>
#include <QObject>
#include <memory>

namespace cratewell {

class Prefs;
class Vault;
struct SystemPaths;

// A card's wish for a picture. While it lives, the picture is made; dropping it before the work has started
// takes the work off the list.
class PreviewRequest
{
public:
    virtual ~PreviewRequest() = default;
};

// Loads and keeps everything costly that is drawn for an asset. Main thread; accessors never block on
// decoding, which happens in worker processes, newest wish first, at most one job per file. Ends exactly once
// a job: with a picture, or remembered as failed for that version of the file. Pictures over the memory
// budget are let go without a word, the one shown longest ago first (a card on screen holds its own copy).
class Media : public QObject
{
    Q_OBJECT
public:
    Media(Vault &vault, Prefs &prefs, const SystemPaths &paths);
    ~Media() override;

    enum class State { Missing, Ready, Failed };

    // Grid thumbnails of video and image assets: largest side at most 640, upright, straight or premultiplied
    // ARGB, null while Missing or Failed. Other kinds have none (Failed at once).
    QImage thumbnail(const Asset &asset) const;
    State thumbnailState(const Asset &asset) const;
    // Null when nothing needs to be done.
    [[nodiscard]] std::unique_ptr<PreviewRequest> requestThumbnail(const Asset &asset);

    // The frame under overlays and LUTs: the user's, or the built-in sunset (1600 x 900). Never null.
    QImage still() const;

Q_SIGNALS:
    // State or picture of this file changed.
    void thumbnailChanged(const cratewell::Location &url);
    void stillChanged();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// "9.9s" below ten seconds, "1:15" from there on, "0:00" for what is no duration.
QString timeString(double seconds);

} // namespace cratewell
