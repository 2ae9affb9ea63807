#pragma once

#include "platform/file_chooser.h"

#include <utility>

namespace cratewell {

// Keeps the question until a test answers it.
class FakeFileChooser final : public FileChooser
{
public:
    void choose(const ChooseRequest &request, Done done) override
    {
        m_requests += request;
        m_waiting += std::move(done);
    }

    // Answers the oldest open question; nothing chosen means canceled. False when none is open.
    bool answer(const QList<Location> &chosen)
    {
        if (m_waiting.isEmpty())
            return false;
        const Done done = m_waiting.takeFirst();
        done(chosen);
        return true;
    }
    const QList<ChooseRequest> &requests() const { return m_requests; }

private:
    QList<ChooseRequest> m_requests;
    QList<Done> m_waiting;
};

} // namespace cratewell
