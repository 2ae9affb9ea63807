#include "window/app_fixture.h"

#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "ui/dragging/drag_data.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QQuickWindow>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// A drag over the window as the platform reports it.
class Hover
{
public:
    Hover(QQuickWindow &window, std::unique_ptr<QMimeData> data) : m_window(window), m_data(std::move(data))
    {
    }
    ~Hover()
    {
        QDragLeaveEvent leave;
        if (m_inside)
            QCoreApplication::sendEvent(&m_window, &leave);
    }
    Q_DISABLE_COPY_MOVE(Hover)

    // Whether a drop would be taken there.
    bool moveTo(QPoint at)
    {
        if (!std::exchange(m_inside, true))
            send<QDragEnterEvent>(at);
        return send<QDragMoveEvent>(at);
    }
    bool drop(QPoint at)
    {
        moveTo(at);
        m_inside = false;
        return send<QDropEvent>(at);
    }

private:
    template<typename Event> bool send(QPoint at)
    {
        Event event(at, Qt::CopyAction, m_data.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_window, &event);
        return event.isAccepted();
    }

    QQuickWindow &m_window;
    std::unique_ptr<QMimeData> m_data;
    bool m_inside = false;
};

// As another program offers them.
std::unique_ptr<QMimeData> files(const std::vector<Location> &items)
{
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> urls;
    for (const Location &item : items)
        urls += QUrl::fromEncoded(item.uri());
    data->setUrls(urls);
    return data;
}

} // namespace

class WindowDrops : public WindowTest
{
protected:
    QPoint folder(const QString &name) const { return controls.middle(Folder, name); }
    QPoint grid() const { return controls.middle(QAccessible::List, u"Assets"_s); }

    const std::vector<Location> ours{app.path(u"SFX/Hits/Hit 1.wav"_s), app.path(u"SFX/Hits/Hit 2.wav"_s)};
    const Location door = app.path(u"../Outside/Door.wav"_s);
    const Location low = app.path(u"../Outside/Low"_s);
};

TEST_F(WindowDrops, HoveringSaysWhatADropOnAFolderWouldDo)
{
    struct
    {
        const char *what;
        std::unique_ptr<QMimeData> data;
        const char *folder;
        const char *label; // null when the drop is not taken
    } cases[] = {
        {"our own drag", dragData(ours), "Whooshes", "Move"},
        {"from a file manager that shows the vault", files(ours), "Whooshes", "Move"},
        {"from outside", files({door}), "Hits", "Copy"},
        {"from outside, to another type's folder", files({door}), "Flashes", "Copy, sorted by type"},
        {"both", files({ours[0], door}), "Whooshes", "Move and copy"},
        {"what is there already", dragData(ours), "Hits", nullptr},
    };
    for (auto &row : cases) {
        Hover hover(window, std::move(row.data));
        EXPECT_EQ(hover.moveTo(folder(QString::fromLatin1(row.folder))), row.label != nullptr) << row.what;
        for (const char *label : {"Move", "Copy", "Copy, sorted by type", "Move and copy"})
            EXPECT_EQ(controls.find(Text, QString::fromLatin1(label)) != nullptr,
                      row.label && !qstrcmp(row.label, label))
                << row.what;
    }
    EXPECT_EQ(controls.find(Text, u"Copy"_s), nullptr) << "a drag that has left leaves nothing behind";
}

TEST_F(WindowDrops, AFolderOpensUnderADragThatWaitsMovesWhatIsOursAndCopiesTheRest)
{
    Hover hover(window, files({ours[0], ours[1], door}));
    ASSERT_TRUE(hover.moveTo(folder(u"Whooshes"_s)));
    ASSERT_TRUE(controls.shows(Folder, u"Soft"_s));
    ASSERT_TRUE(hover.drop(folder(u"Soft"_s)));
    for (const auto &name : {u"Hit 1.wav"_s, u"Hit 2.wav"_s, u"Door.wav"_s})
        EXPECT_TRUE(arrives(u"SFX/Whooshes/Soft/"_s + name)) << name.toStdString();
    EXPECT_FALSE(QFile::exists(ours[0].text()));
    EXPECT_TRUE(QFile::exists(door.text()));
}

TEST_F(WindowDrops, TheGridTakesWhatComesFromOutsideAndSaysWhereItGoes)
{
    app.program().prefs().setImportMove(true);
    const auto drops = [this](const std::vector<Location> &items, const QString &line) {
        Hover hover(window, files(items));
        return hover.moveTo(grid()) && controls.find(Text, line) && hover.drop(grid());
    };
    EXPECT_TRUE(drops({door, ours[0]}, u"Copy, sorted by type"_s));
    EXPECT_TRUE(arrives(u"SFX/Door.wav"_s));
    state.setScope(Scope::inFolder(app.path(u"SFX/Whooshes"_s)));
    EXPECT_TRUE(drops({low}, u"Copy into Whooshes"_s));
    EXPECT_TRUE(arrives(u"SFX/Whooshes/Low/Thud.wav"_s));
    EXPECT_TRUE(app.exists(u"../Outside/Door.wav"_s) && app.exists(u"../Outside/Low/Thud.wav"_s))
        << "copied all the same";
    EXPECT_TRUE(QFile::exists(ours[0].text())) << "what is in the vault already stays";
    EXPECT_FALSE(Hover(window, dragData(ours)).moveTo(grid()));
}

// The page's own place for drops.
TEST_F(WindowDrops, TheImportPageTakesOnlyWhatLiesOutside)
{
    app.program().prefs().setImportMove(true);
    state.setScope(Scope::of(Scope::Kind::Importer));
    const QString invitation = u"Drop files or folders here"_s;
    ASSERT_TRUE(controls.shows(Text, invitation));
    const QPoint zone = controls.middle(Text, invitation);
    EXPECT_FALSE(Hover(window, files(ours)).moveTo(zone));
    {
        Hover hover(window, files({door}));
        ASSERT_TRUE(hover.moveTo(zone));
        ASSERT_TRUE(controls.shows(Text, u"Release to import"_s));
        ASSERT_TRUE(hover.drop(zone));
    }
    EXPECT_TRUE(controls.shows(Card, u"Door"_s));
    EXPECT_TRUE(app.exists(u"SFX/Door.wav"_s));
    EXPECT_FALSE(app.exists(u"../Outside/Door.wav"_s)) << "moved, as the page says";
    EXPECT_TRUE(controls.shows(Text, invitation));
}

} // namespace cratewell::test
