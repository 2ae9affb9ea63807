#pragma once

#include "platform/mac/command_line_tools.h"
#include "platform/workspace.h"

namespace cratewell {

// The Finder, through `open`.
class FinderWorkspace final : public Workspace
{
public:
    explicit FinderWorkspace(const Location &toolsFolder = CommandLineTools::systemFolder())
        : m_tools(toolsFolder)
    {
    }

    void reveal(const QList<Location> &items) override;
    void open(const Location &folder) override;

private:
    CommandLineTools m_tools;
};

} // namespace cratewell
