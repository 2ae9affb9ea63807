// window_bench HOME: the whole program, without a screen, on the vault in HOME/Movies/Cratewell Vault. Times
// what the user waits for: a typed letter, the first sort by name, a file that another program adds. Prints a
// JSON list of rows {name, ours, peer, unit}, medians of several starts. Writes files into SFX and takes them
// away again.

#include "app/application.h"
#include "hold_meter.h"
#include "state/app_state.h"
#include "ui/grid/asset_list_model.h"
#include "vault/vault.h"
#include "without_screen.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>

using namespace cratewell;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int rounds = 5;
constexpr auto patience = 30s;
constexpr auto settlingTime = 700ms; // of the disk's events and the first pictures
constexpr auto keyPause = 120ms;
constexpr double coalescingDelay = 300; // milliseconds, the vault's
const QString letters = u"aos1"_s;

// One figure per round under each name, in the order of the first round.
class Figures
{
public:
    void add(const QString &name, double value)
    {
        if (!m_values.contains(name))
            m_names.append(name);
        m_values[name].push_back(value);
    }

    QJsonArray rows() const
    {
        QJsonArray rows;
        for (const QString &name : m_names) {
            std::vector<double> values = m_values.at(name);
            std::ranges::sort(values);
            rows.append(QJsonObject{{u"name"_s, name},
                                    {u"ours"_s, values[values.size() / 2]},
                                    {u"peer"_s, QJsonValue()},
                                    {u"unit"_s, u"ms"_s}});
        }
        return rows;
    }

private:
    QStringList m_names;
    std::map<QString, std::vector<double>> m_values;
};

void settle(std::chrono::milliseconds time = settlingTime)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

[[noreturn]] void giveUp(const char *what)
{
    std::fprintf(stderr, "window_bench: %s\n", what);
    std::exit(2);
}

// Runs the event loop until `signal` comes; milliseconds since the call, or since `started`.
template<typename Sender, typename Signal>
double waitFor(Sender &sender, Signal signal, const QElapsedTimer &started, const char *what)
{
    QEventLoop loop;
    double elapsed = -1;
    const auto connection = QObject::connect(&sender, signal, &loop, [&] {
        elapsed = double(started.nsecsElapsed()) / 1e6;
        loop.quit();
    });
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    loop.exec();
    QObject::disconnect(connection);
    if (elapsed < 0)
        giveUp(what);
    return elapsed;
}

QElapsedTimer now()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

QQuickItem &searchField(QQuickWindow &window)
{
    const auto items = window.findChildren<QQuickItem *>();
    const auto field = std::ranges::find_if(
        items, [](const QQuickItem *item) { return item->property("placeholderText").isValid(); });
    if (field == items.end())
        giveUp("the window has no search field");
    return **field;
}

// From the key event to the list's new rows.
double typeLetter(QQuickWindow &window, AssetListModel &model, QChar letter)
{
    double elapsed = -1;
    const QElapsedTimer started = now();
    const auto connection = QObject::connect(&model, &AssetListModel::applied, &model,
                                             [&] { elapsed = double(started.nsecsElapsed()) / 1e6; });
    QTest::keyClick(&window, letter.toLatin1());
    QObject::disconnect(connection);
    return elapsed >= 0 ? elapsed
                        : waitFor(model, &AssetListModel::applied, started, "a letter changed nothing");
}

void timeLetters(Application &program, AssetListModel &model, Figures &figures)
{
    QQuickWindow &window = *program.window();
    QQuickItem &field = searchField(window);
    field.forceActiveFocus();
    for (const auto &[order, label] : assetOrders) {
        program.state().setSort(order);
        settle();
        double slowest = 0;
        for (const QChar letter : letters) {
            slowest = std::max(slowest, typeLetter(window, model, letter));
            settle(keyPause);
            QTest::keyClick(&window, Qt::Key_Backspace);
            settle(keyPause);
        }
        figures.add(u"typed letter, sorted by "_s + QString::fromLatin1(label).toLower(), slowest);
    }
}

void timeSort(Application &program, Figures &figures)
{
    const QElapsedTimer started = now();
    program.state().setSort(AssetOrder::Name);
    program.state().visibleCount();
    figures.add(u"first sort by name"_s, double(started.nsecsElapsed()) / 1e6);
    settle();
}

void timeAddedFile(Application &program, Figures &figures)
{
    const Location file = program.vault().categoryUrl(VaultCategory::Sfx).child("bench probe.wav"_ba);
    const std::filesystem::path path = file.bytes().toStdString();
    {
        const HoldMeter meter(*program.window());
        const QElapsedTimer started = now();
        std::ofstream(path) << "x";
        const double shown =
            waitFor(program.vault(), &Vault::rescanned, started, "an added file was not noticed");
        settle();
        figures.add(u"added file, after the coalescing delay"_s, shown - coalescingDelay);
        figures.add(u"main thread held by an added file"_s, meter.longestMilliseconds());
    }
    const QElapsedTimer started = now();
    std::filesystem::remove(path);
    waitFor(program.vault(), &Vault::rescanned, started, "a removed file was not noticed");
    settle();
}

void runRound(const SystemPaths &paths, Figures &figures)
{
    Application program(paths, Services::native(paths));
    const QElapsedTimer started = now();
    if (!program.launch())
        giveUp("the window could not be loaded");
    waitFor(program.vault(), &Vault::rescanned, started, "the vault was not scanned");
    settle();
    auto *model = program.window()->findChild<AssetListModel *>();
    if (!model || model->count() == 0)
        giveUp("the window lists nothing");
    timeSort(program, figures);
    timeLetters(program, *model, figures);
    timeAddedFile(program, figures);
}

} // namespace

int main(int argc, char **argv)
{
    const WithoutScreen application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2)
        giveUp("usage: window_bench HOME");
    SystemPaths paths = SystemPaths::below(Location::fromText(arguments.at(1)));
    paths.workerProgram = SystemPaths::standard().workerProgram;
    Figures figures;
    for (int i = 0; i < rounds; ++i)
        runRound(paths, figures);
    std::fputs(QJsonDocument(figures.rows()).toJson().constData(), stdout);
}
