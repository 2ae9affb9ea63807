#include "window/app_fixture.h"

#include "state/prefs.h"
#include "ui/dragging/drag_data.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>

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
        QCoreApplication::sendEvent(&m_window, &leave);
    }
    Q_DISABLE_COPY_MOVE(Hover)

    // Whether a drop would be taken there.
    bool moveTo(QPoint at)
    {
        send<QDragEnterEvent>(at);
        return send<QDragMoveEvent>(at);
    }
    bool drop(QPoint at) { return moveTo(at) && send<QDropEvent>(at); }

private:
    template<typename Event> bool send(QPoint at)
    {
        Event event(at, Qt::CopyAction, m_data.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_window, &event);
        return event.isAccepted();
    }

    QQuickWindow &m_window;
    std::unique_ptr<QMimeData> m_data;
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
};

TEST_F(WindowDrops, HoveringSaysWhatADropOnAFolderWouldDo)
{
    const QStringList labels{u"Move"_s, u"Copy"_s, u"Copy, sorted by type"_s, u"Move and copy"_s};
    struct
    {
        std::unique_ptr<QMimeData> data;
        QString folder;
        QString label; // empty when the drop is not taken
    } cases[] = {
        {dragData(ours), u"Whooshes"_s, labels[0]},
        {files({door}), u"Hits"_s, labels[1]},
        {files({door}), u"Flashes"_s, labels[2]},
        {files({ours[0], door}), u"Whooshes"_s, labels[3]},
        {dragData(ours), u"Hits"_s, {}},
    };
    for (auto &row : cases) {
        Hover hover(window, std::move(row.data));
        EXPECT_EQ(hover.moveTo(folder(row.folder)), !row.label.isEmpty()) << row.label.toStdString();
        for (const QString &label : labels)
            EXPECT_EQ(controls.find(Text, label) != nullptr, label == row.label) << label.toStdString();
    }
}

TEST_F(WindowDrops, AFolderOpensUnderADragThatWaitsMovesWhatIsOursAndCopiesTheRest)
{
    Hover hover(window, files({ours[0], door}));
    ASSERT_TRUE(hover.moveTo(folder(u"Whooshes"_s)));
    ASSERT_TRUE(controls.shows(Folder, u"Soft"_s));
    ASSERT_TRUE(hover.drop(folder(u"Soft"_s)));
    EXPECT_TRUE(arrives(u"SFX/Whooshes/Soft/Hit 1.wav"_s));
    EXPECT_TRUE(arrives(u"SFX/Whooshes/Soft/Door.wav"_s));
    EXPECT_FALSE(QFile::exists(ours[0].text()));
    EXPECT_TRUE(QFile::exists(door.text()));
}

TEST_F(WindowDrops, TheGridCopiesAndTheImportPageMovesWhatComesFromOutside)
{
    app.program().prefs().setImportMove(true);
    {
        Hover hover(window, files({door, ours[0]}));
        ASSERT_TRUE(hover.moveTo(grid()));
        EXPECT_TRUE(controls.shows(Text, u"Copy, sorted by type"_s));
        ASSERT_TRUE(hover.drop(grid()));
    }
    EXPECT_TRUE(arrives(u"SFX/Door.wav"_s));
    EXPECT_TRUE(QFile::exists(door.text())) << "copied all the same";
    EXPECT_TRUE(QFile::exists(ours[0].text())) << "what is in the vault already stays";
    EXPECT_FALSE(Hover(window, dragData(ours)).moveTo(grid()));

    state.setScope(Scope::of(Scope::Kind::Importer));
    const QString invitation = u"Drop files or folders here"_s;
    ASSERT_TRUE(controls.shows(Text, invitation));
    const QPoint zone = controls.middle(Text, invitation);
    EXPECT_FALSE(Hover(window, files(ours)).moveTo(zone));
    Hover hover(window, files({app.path(u"../Outside/Low"_s)}));
    ASSERT_TRUE(hover.moveTo(zone));
    ASSERT_TRUE(controls.shows(Text, u"Release to import"_s));
    ASSERT_TRUE(hover.drop(zone));
    EXPECT_TRUE(arrives(u"SFX/Low/Thud.wav"_s));
    EXPECT_TRUE(controls.shows(Card, u"Thud"_s));
    EXPECT_FALSE(app.exists(u"../Outside/Low/Thud.wav"_s)) << "moved, as the page says";
}

} // namespace cratewell::test
