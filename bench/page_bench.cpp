// page_bench HOME: the whole program, without a screen, on the vault in HOME/Movies/Cratewell Vault, in a
// window that shows a page of it. Times from the first frame of the window to the frame in which every card
// in view has its picture: once with an empty cache of previews, then after restarts. Prints a JSON list of
// rows {name, ours, peer, unit}. Empties the cache first.

#include "app/application.h"
#include "state/prefs.h"
#include "ui/thumbnail/thumbnail_item.h"
#include "without_screen.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace cratewell;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int restarts = 7;
constexpr auto patience = 120s;
constexpr auto writingTime = 3s; // of the cache, behind the pictures
constexpr int cardsOfAPage = 60;

[[noreturn]] void giveUp(const char *what)
{
    std::fprintf(stderr, "page_bench: %s\n", what);
    std::exit(2);
}

void settle(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

// Pictures in view, and those of them that are there.
struct Cards
{
    int inView = 0;
    int shown = 0;
};

void count(const QQuickItem &item, Cards &cards)
{
    const auto *picture = qobject_cast<const ThumbnailItem *>(&item);
    if (picture && picture->isActive() && picture->isVisible() && !picture->url().isEmpty()) {
        ++cards.inView;
        cards.shown += picture->isShown() ? 1 : 0;
    }
    for (const QQuickItem *child : item.childItems())
        count(*child, cards);
}

bool showsAPage(const QQuickWindow &window)
{
    Cards cards;
    count(*window.contentItem(), cards);
    return cards.inView >= cardsOfAPage && cards.shown == cards.inView;
}

// Milliseconds from the first frame to the first with a whole page of pictures.
double timePage(const SystemPaths &paths, std::chrono::milliseconds after)
{
    Application program(paths, Services::native(paths));
    program.prefs().setCardSize(140);
    if (!program.launch())
        giveUp("the window could not be loaded");
    QQuickWindow &window = *program.window();
    window.resize(2200, 1500);

    QElapsedTimer sinceFirstFrame;
    double elapsed = -1;
    QEventLoop loop;
    const auto look = [&] {
        if (!sinceFirstFrame.isValid())
            sinceFirstFrame.start();
        else if (showsAPage(window))
            loop.quit();
    };
    QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, [&] {
        elapsed = sinceFirstFrame.isValid() ? double(sinceFirstFrame.nsecsElapsed()) / 1e6 : 0;
        look();
    });
    QTimer::singleShot(patience, &loop, [] { giveUp("the pictures did not come"); });
    loop.exec();
    settle(after);
    return elapsed;
}

} // namespace

int main(int argc, char **argv)
{
    const WithoutScreen application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2)
        giveUp("usage: page_bench HOME");
    SystemPaths paths = SystemPaths::below(Location::fromText(arguments.at(1)));
    paths.workerProgram = SystemPaths::standard().workerProgram;
    QDir(paths.cacheHome.text()).removeRecursively();

    const double first = timePage(paths, writingTime);
    std::vector<double> later;
    later.reserve(restarts);
    for (int i = 0; i < restarts; ++i)
        later.push_back(timePage(paths, 100ms));
    std::ranges::sort(later);
    const auto row = [](const QString &name, double value) {
        return QJsonObject{
            {u"name"_s, name}, {u"ours"_s, value}, {u"peer"_s, QJsonValue()}, {u"unit"_s, u"ms"_s}};
    };
    const QJsonArray rows{
        row(u"page of 60 videos in the window, never seen"_s, first),
        row(u"page of 60 videos in the window, after a restart"_s, later[later.size() / 2])};
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}
