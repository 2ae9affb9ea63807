#pragma once

#include "media/decoding/decode_pool.h"

#include <QObject>

namespace cratewell {

// The frame under overlays and LUTs: the user's picture once it is decoded, the built-in one before that and
// where it cannot be. Main thread.
class PreviewStill : public QObject
{
    Q_OBJECT
public:
    explicit PreviewStill(DecodePool &pool) : m_pool(pool) {}

    // An empty location means the built-in one.
    void setFile(const Location &file);
    QImage image();

Q_SIGNALS:
    void changed();

private:
    void take(const Location &file, const DecodeResult &result);

    DecodePool &m_pool;
    Location m_file;
    QImage m_builtIn; // drawn when first needed
    QImage m_users;
    bool m_asked = false;
    std::unique_ptr<PreviewRequest> m_request;
};

} // namespace cratewell
