#include "media/previews/preview_still.h"

#include "media/previews/sunset_still.h"

namespace cratewell {

void PreviewStill::setFile(const Location &file)
{
    m_file = file;
    m_users = {};
    m_asked = false;
    m_request.reset();
    Q_EMIT changed();
}

QImage PreviewStill::image()
{
    if (!m_asked && !m_file.isEmpty()) {
        m_asked = true;
        constexpr int maxSide = 2560; // as large as a preview is ever shown
        m_request = m_pool.submit(
            {.key = m_file.bytes() + QByteArrayLiteral("/still"),
             .request = {.file = m_file, .kind = worker::JobKind::StillImage, .maxSide = maxSide},
             .finished = [this, file = m_file](const DecodeResult &result) { take(file, result); }});
    }
    if (!m_users.isNull())
        return m_users;
    if (m_builtIn.isNull())
        m_builtIn = sunsetStill({1600, 900});
    return m_builtIn;
}

// The setting may have changed while the picture was made.
void PreviewStill::take(const Location &file, const DecodeResult &result)
{
    if (file != m_file || !result)
        return;
    m_users = std::get<DecodedPicture>(*result).image;
    Q_EMIT changed();
}

} // namespace cratewell
