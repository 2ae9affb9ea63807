#pragma once

#include "platform/file_chooser.h"

#include <functional>
#include <memory>

namespace cratewell {

// A chooser that is made when the first question is asked, because looking for it may take a while.
class LazyFileChooser final : public FileChooser
{
public:
    using Make = std::function<std::unique_ptr<FileChooser>()>;
    // `make` never gives null.
    explicit LazyFileChooser(Make make) : m_make(std::move(make)) {}

    void choose(const ChooseRequest &request, Done done) override
    {
        if (!m_chooser)
            m_chooser = m_make();
        m_chooser->choose(request, std::move(done));
    }

private:
    Make m_make;
    std::unique_ptr<FileChooser> m_chooser;
};

} // namespace cratewell
