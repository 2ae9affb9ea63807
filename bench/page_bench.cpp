// page_bench HOME: the whole program, without a screen, on the vault in HOME/Movies/Cratewell Vault, in a
// window that shows a page of it. Times until the frame in which every card in view has its picture, from the
// first frame of the window and from the launch: once with an empty cache of previews, then after restarts.
// Prints a JSON list of rows {name, ours, peer, unit}. Empties the cache first.

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

// Milliseconds to the first frame with a whole page of pictures.
struct PageTime
{
    double fromFirstFrame = -1;
    double fromLaunch = -1;
};

PageTime timePage(const SystemPaths &paths, std::chrono::milliseconds after)
{
    QElapsedTimer sinceLaunch;
    sinceLaunch.start();
    Application program(paths, Services::native(paths));
    program.prefs().setCardSize(140);
    if (!program.launch())
        giveUp("the window could not be loaded");
    QQuickWindow &window = *program.window();
    window.resize(2200, 1500);

    QElapsedTimer sinceFirstFrame;
    PageTime time;
    QEventLoop loop;
    const auto look = [&] {
        if (!sinceFirstFrame.isValid())
            sinceFirstFrame.start();
        else if (showsAPage(window))
            loop.quit();
    };
    QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, [&] {
        time.fromFirstFrame = sinceFirstFrame.isValid() ? double(sinceFirstFrame.nsecsElapsed()) / 1e6 : 0;
        time.fromLaunch = double(sinceLaunch.nsecsElapsed()) / 1e6;
        look();
    });
    QTimer::singleShot(patience, &loop, [] { giveUp("the pictures did not come"); });
    loop.exec();
    settle(after);
    return time;
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

    const double first = timePage(paths, writingTime).fromFirstFrame;
    std::vector<PageTime> later;
    later.reserve(restarts);
    for (int i = 0; i < restarts; ++i)
        later.push_back(timePage(paths, 100ms));
    const auto median = [&later](double PageTime::*part) {
        std::ranges::sort(later, {}, part);
        return later[later.size() / 2].*part;
    };
    const auto row = [](const QString &name, double value) {
        return QJsonObject{
            {u"name"_s, name}, {u"ours"_s, value}, {u"peer"_s, QJsonValue()}, {u"unit"_s, u"ms"_s}};
    };
    const QJsonArray rows{
        row(u"page of 60 videos in the window, never seen"_s, first),
        row(u"page of 60 videos in the window, after a restart"_s, median(&PageTime::fromFirstFrame)),
        row(u"page of 60 videos in the window, from the launch after a restart"_s,
            median(&PageTime::fromLaunch))};
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}
