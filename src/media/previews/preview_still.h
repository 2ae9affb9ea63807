#pragma once

#include "media/decoding/decode_pool.h"

#include <QObject>
#include <QTimer>
#include <chrono>

namespace cratewell {

// The frame under overlays and LUTs: the user's picture once it is decoded, the built-in one before that and
// where it cannot be. What fails through no fault of the picture is tried again, at growing intervals. Main
// thread.
class PreviewStill : public QObject
{
    Q_OBJECT
public:
    PreviewStill(DecodePool &pool, RequestOrder &order);

    // An empty location means the built-in one.
    void setFile(const Location &file);
    QImage image();

Q_SIGNALS:
    void changed();

private:
    void request();
    void take(const Location &file, const DecodeResult &result);

    static constexpr std::chrono::milliseconds firstPause = std::chrono::seconds(1);

    DecodePool &m_pool;
    RequestOrder &m_order;
    Location m_file;
    QImage m_builtIn; // drawn when first needed
    QImage m_users;
    bool m_requested = false;
    std::chrono::milliseconds m_pause = firstPause; // before the next attempt
    QTimer m_nextAttempt;
    std::unique_ptr<PreviewRequest> m_request;
};

} // namespace cratewell
