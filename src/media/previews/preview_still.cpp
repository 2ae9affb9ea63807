#include "media/previews/preview_still.h"

#include "media/previews/preview_formats.h"
#include "media/previews/sunset_still.h"

namespace cratewell {

PreviewStill::PreviewStill(DecodePool &pool, RequestOrder &order) : m_pool(pool), m_order(order)
{
    m_nextAttempt.setSingleShot(true);
    connect(&m_nextAttempt, &QTimer::timeout, this, &PreviewStill::request);
}

void PreviewStill::setFile(const Location &file)
{
    m_file = file;
    m_users = {};
    m_requested = false;
    m_pause = firstPause;
    m_nextAttempt.stop();
    m_request.reset();
    Q_EMIT changed();
}

QImage PreviewStill::image()
{
    if (!m_requested && !m_file.isEmpty()) {
        m_requested = true;
        request();
    }
    if (!m_users.isNull())
        return m_users;
    if (m_builtIn.isNull())
        m_builtIn = sunsetStill({1600, 900});
    return m_builtIn;
}

void PreviewStill::request()
{
    m_request = m_pool.submit(
        {.key = m_file.bytes() + QByteArrayLiteral("/still"),
         .request = largeStill(m_file),
         .place = m_order.next(),
         .finished = [this, file = m_file](const DecodeResult &result) { take(file, result); }});
}

// The setting may have changed while the picture was made.
void PreviewStill::take(const Location &file, const DecodeResult &result)
{
    constexpr std::chrono::milliseconds longestPause = std::chrono::minutes(1);
    if (file != m_file)
        return;
    if (result) {
        m_users = result->image;
        Q_EMIT changed();
    } else if (result.error().mayPass()) {
        m_nextAttempt.start(m_pause);
        m_pause = std::min(2 * m_pause, longestPause);
    }
}

} // namespace cratewell
