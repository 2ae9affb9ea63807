#include "ui/importing/import_controller.h"

#include "platform/defaults.h"
#include "state/app_state.h"
#include "state/prefs.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

constexpr auto destinationKey = "importDestination"_L1;
constexpr int indentation = 4; // spaces per level

} // namespace

void ImportController::follow(Vault &vault, AppState &state, const Prefs &prefs, Defaults &defaults)
{
    m_vault = &vault;
    m_state = &state;
    m_prefs = &prefs;
    m_defaults = &defaults;
    connect(&vault, &Vault::rescanned, this, &ImportController::refresh);
    refresh();
}

void ImportController::componentComplete()
{
    const UiContext &objects = uiContext(*this);
    follow(objects.vault, objects.state, objects.prefs, objects.defaults);
}

void ImportController::refresh()
{
    std::vector<Location> folders;
    QStringList choices{u"Sort by type automatically"_s};
    for (const FolderChoice &choice : m_vault->flatFolders()) {
        folders.push_back(choice.url);
        choices.append(QString(indentation * choice.depth, u' ') + choice.url.name());
    }
    if (m_choices.isEmpty() || folders != m_folders) {
        m_folders = std::move(folders);
        m_choices = choices;
        Q_EMIT choicesChanged();
    }
    findCurrent();
}

void ImportController::findCurrent()
{
    const Location kept = Location::fromText(m_defaults->value(destinationKey).toString());
    const auto found = std::ranges::find(m_folders, kept);
    m_current = found == m_folders.end() ? 0 : 1 + int(found - m_folders.begin());
    Q_EMIT currentChanged();
}

QString ImportController::label() const
{
    return m_choices.value(m_current).trimmed();
}

void ImportController::choose(int index)
{
    if (index < 0 || index >= m_choices.size())
        return;
    m_defaults->setValue(destinationKey, index == 0 ? QString() : m_folders[size_t(index) - 1].text());
    findCurrent();
}

std::optional<Location> ImportController::destination() const
{
    return m_current == 0 ? std::nullopt : std::optional(m_folders[size_t(m_current) - 1]);
}

void ImportController::chooseFiles()
{
    m_state->importPanel(ChooseRequest::What::Files, destination());
}

void ImportController::chooseFolder()
{
    m_state->importPanel(ChooseRequest::What::Folders, destination());
}

std::vector<Location> ImportController::outside(const QList<QUrl> &urls) const
{
    const Location root = m_vault->root().resolved();
    std::vector<Location> places;
    for (const QUrl &url : urls) {
        const Location place = Location::fromUrl(url);
        const Location real = place.resolved();
        if (!place.isEmpty() && real != root && !real.isInside(root))
            places.push_back(place);
    }
    return places;
}

bool ImportController::takes(const QList<QUrl> &urls) const
{
    return !outside(urls).empty();
}

void ImportController::take(const QList<QUrl> &urls)
{
    if (const std::vector<Location> places = outside(urls); !places.empty())
        m_vault->importItems(places, destination(),
                             m_prefs->importMove() ? ImportMode::Move : ImportMode::Copy);
}

} // namespace cratewell
