#include "ui/importing/import_controller.h"

#include "platform/defaults.h"
#include "ui/grid/folder_choice_model.h"
#include "ui/shell/asset_actions.h"
#include "ui/shell/ui_engine.h"
#include "vault/vault.h"

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

constexpr auto destinationKey = "importDestination"_L1;

} // namespace

ImportController::ImportController(Vault &vault, Defaults &defaults, AssetActions &actions)
    : m_vault(vault), m_defaults(defaults), m_actions(actions)
{
    connect(&vault, &Vault::rescanned, this, &ImportController::refresh);
    refresh();
}

ImportController *ImportController::create(QQmlEngine *engine, QJSEngine *)
{
    const UiContext &context = UiEngine::contextOf(engine);
    return new ImportController(context.vault, context.defaults, context.actions);
}

void ImportController::refresh()
{
    const Location kept = Location::fromText(m_defaults.value(destinationKey).toString());
    const Location found = m_vault.snapshot()->node(kept) ? kept : Location();
    if (found == m_destination)
        return;
    m_destination = found;
    Q_EMIT destinationChanged();
}

QString ImportController::label() const
{
    return m_destination.isEmpty() ? sortByTypeText() : m_destination.name();
}

void ImportController::choose(const Location &folder)
{
    m_defaults.setValue(destinationKey, folder.text());
    refresh();
}

std::optional<Location> ImportController::into() const
{
    return m_destination.isEmpty() ? std::nullopt : std::optional(m_destination);
}

void ImportController::chooseFiles()
{
    m_actions.chooseImports(ChooseRequest::What::Files, into());
}

void ImportController::chooseFolder()
{
    m_actions.chooseImports(ChooseRequest::What::Folders, into());
}

std::vector<Location> ImportController::outside(const QList<QUrl> &urls) const
{
    const Location root = m_vault.root().resolved();
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
        m_actions.importItems(places, into());
}

} // namespace cratewell
