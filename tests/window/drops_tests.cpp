#include "window/app_fixture.h"

#include "state/app_state.h"
#include "state/prefs.h"
#include "support/wait.h"
#include "ui/dragging/drag_data.h"
#include "vault/vault.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

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
        if (m_inside) {
            QDragLeaveEvent leave;
            QCoreApplication::sendEvent(&m_window, &leave);
        }
    }

    // Whether a drop would be taken there.
    bool moveTo(QPoint at)
    {
        if (!m_inside) {
            QDragEnterEvent enter(at, Qt::CopyAction, m_data.get(), Qt::LeftButton, {});
            QCoreApplication::sendEvent(&m_window, &enter);
            m_inside = true;
        }
        QDragMoveEvent move(at, Qt::CopyAction, m_data.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_window, &move);
        return move.isAccepted();
    }
    bool drop(QPoint at)
    {
        moveTo(at);
        m_inside = false;
        QDropEvent drop(at, Qt::CopyAction, m_data.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&m_window, &drop);
        return drop.isAccepted();
    }

private:
    QQuickWindow &m_window;
    std::unique_ptr<QMimeData> m_data;
    bool m_inside = false;
};

class WindowDrops : public testing::Test
{
protected:
    AppFixture app{[](const QString &vault) {
        for (int i = 1; i <= 3; ++i)
            writeSound(vault + u"/SFX/Hits/Hit %1.wav"_s.arg(i));
        writeSound(vault + u"/SFX/Whooshes/Soft/Rush.wav"_s);
        writePicture(vault + u"/Overlays/Flashes/White.png"_s, Qt::white);
    }};
    AppState &state = app.program().state();
    QQuickWindow &window = app.window();
    const Controls controls{window};

    void SetUp() override
    {
        ASSERT_TRUE(app.makesRoom());
        state.setSort(AssetOrder::Name);
        ASSERT_TRUE(app.showsCards({u"Hit 1"_s, u"Hit 2"_s, u"Hit 3"_s, u"Rush"_s, u"White"_s}));
    }
    void TearDown() override { EXPECT_EQ(AppFixture::qmlWarnings(), ""); }

    QPoint middle(QAccessible::Role role, const QString &name) const
    {
        const QAccessibleInterface *control = controls.find(role, name);
        EXPECT_TRUE(control) << name.toStdString();
        return control ? control->rect().center() - window.position() : QPoint();
    }
    QPoint folder(const QString &name) const { return middle(QAccessible::TreeItem, name); }
    QPoint grid() const { return middle(QAccessible::List, u"Assets"_s); }
    Location inVault(const QString &name) const
    {
        return Location::fromText(app.vaultFolder() + u'/' + name);
    }
    Location outside(const QString &name) const
    {
        const QString path = app.home() + u"/Desktop/"_s + name;
        writeSound(path);
        return Location::fromText(path);
    }
    bool onDisk(const QString &name) const { return QFileInfo::exists(app.vaultFolder() + u'/' + name); }
    // As another program offers them.
    static std::unique_ptr<QMimeData> files(const std::vector<Location> &items)
    {
        auto data = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const Location &item : items)
            urls += QUrl::fromEncoded(item.uri());
        data->setUrls(urls);
        return data;
    }
    bool says(const QString &text) const { return controls.find(QAccessible::StaticText, text) != nullptr; }
};

} // namespace

TEST_F(WindowDrops, HoveringSaysWhatADropOnAFolderWouldDo)
{
    const std::vector ours{inVault(u"SFX/Hits/Hit 1.wav"_s), inVault(u"SFX/Hits/Hit 2.wav"_s)};
    const std::vector mixed{ours[0], outside(u"Door.wav"_s)};
    struct
    {
        const char *what;
        std::unique_ptr<QMimeData> data;
        const char *folder;
        const char *label; // null when the drop is not taken
    } cases[] = {
        {"our own drag", dragData(ours), "Whooshes", "Move"},
        {"from a file manager that shows the vault", files(ours), "Whooshes", "Move"},
        {"from outside", files({mixed[1]}), "Hits", "Copy"},
        {"from outside, to another type's folder", files({mixed[1]}), "Flashes", "Copy, sorted by type"},
        {"both", files(mixed), "Whooshes", "Move and copy"},
        {"what is there already", dragData(ours), "Hits", nullptr},
        {"what the category does not take", dragData(ours), "Flashes", nullptr},
        {"a folder into its own", files({inVault(u"SFX/Whooshes"_s)}), "Whooshes", nullptr},
        {"nothing that is an asset", files({Location::fromText(app.home() + u"/a.txt"_s)}), "Hits", nullptr},
    };
    for (auto &row : cases) {
        Hover hover(window, std::move(row.data));
        EXPECT_EQ(hover.moveTo(folder(QString::fromLatin1(row.folder))), row.label != nullptr) << row.what;
        for (const char *label : {"Move", "Copy", "Copy, sorted by type", "Move and copy"})
            EXPECT_EQ(says(QString::fromLatin1(label)), row.label && !qstrcmp(row.label, label)) << row.what;
    }
    EXPECT_FALSE(says(u"Copy"_s)) << "a drag that has left leaves nothing behind";
}

TEST_F(WindowDrops, AFolderOpensUnderADragThatWaits)
{
    Hover hover(window, dragData({inVault(u"SFX/Hits/Hit 1.wav"_s)}));
    ASSERT_TRUE(hover.moveTo(folder(u"Whooshes"_s)));
    EXPECT_TRUE(waitUntil([this] { return controls.find(QAccessible::TreeItem, u"Soft"_s); }));
    EXPECT_TRUE(hover.moveTo(folder(u"Soft"_s)));
}

TEST_F(WindowDrops, TheGridFramesWhatComesFromOutsideAndSaysWhereItGoes)
{
    const auto hovers = [this](std::unique_ptr<QMimeData> data, const QString &line) {
        Hover hover(window, std::move(data));
        return hover.moveTo(grid()) && says(line);
    };
    EXPECT_TRUE(hovers(files({outside(u"Door.wav"_s)}), u"Copy, sorted by type"_s));
    state.setScope(Scope::inFolder(inVault(u"SFX/Whooshes"_s)));
    EXPECT_TRUE(hovers(files({outside(u"Door.wav"_s)}), u"Copy into Whooshes"_s));
    EXPECT_FALSE(Hover(window, dragData({inVault(u"SFX/Hits/Hit 1.wav"_s)})).moveTo(grid()));
    EXPECT_FALSE(says(u"Copy into Whooshes"_s));
}

TEST_F(WindowDrops, ThreeCardsMoveToTheFolderTheyAreDroppedOn)
{
    Hover hover(window, dragData({inVault(u"SFX/Hits/Hit 1.wav"_s), inVault(u"SFX/Hits/Hit 2.wav"_s),
                                  inVault(u"SFX/Hits/Hit 3.wav"_s)}));
    ASSERT_TRUE(hover.drop(folder(u"Whooshes"_s)));
    EXPECT_TRUE(
        waitUntil([this] { return state.visibleAssets().row(inVault(u"SFX/Whooshes/Hit 3.wav"_s)) >= 0; }));
    for (const auto name : {"Hit 1.wav"_L1, "Hit 2.wav"_L1, "Hit 3.wav"_L1}) {
        EXPECT_TRUE(onDisk(u"SFX/Whooshes/"_s + name)) << name.data();
        EXPECT_FALSE(onDisk(u"SFX/Hits/"_s + name)) << name.data();
    }
}

TEST_F(WindowDrops, DropsFromOutsideAreCopiedEvenWhenImportsMove)
{
    app.program().prefs().setImportMove(true);
    const Location door = outside(u"Door.wav"_s);
    ASSERT_TRUE(Hover(window, files({door, inVault(u"SFX/Hits/Hit 1.wav"_s)})).drop(grid()));
    EXPECT_TRUE(waitUntil([this] { return onDisk(u"SFX/Door.wav"_s); }));

    const Location pack = Location::fromText(app.home() + u"/Desktop/Pack"_s);
    writeSound(pack.text() + u"/Low/Thud.wav"_s);
    state.setScope(Scope::inFolder(inVault(u"SFX/Whooshes"_s)));
    ASSERT_TRUE(Hover(window, files({pack})).drop(grid()));
    EXPECT_TRUE(waitUntil([this] { return onDisk(u"SFX/Whooshes/Pack/Low/Thud.wav"_s); }));

    EXPECT_TRUE(QFileInfo::exists(door.text()) && QFileInfo::exists(pack.text() + u"/Low/Thud.wav"_s));
    EXPECT_TRUE(onDisk(u"SFX/Hits/Hit 1.wav"_s)) << "what is in the vault already stays";
}

TEST_F(WindowDrops, AMixedDropMovesWhatIsOursAndCopiesTheRest)
{
    const Location door = outside(u"Door.wav"_s);
    ASSERT_TRUE(Hover(window, files({door, inVault(u"SFX/Hits/Hit 1.wav"_s)})).drop(folder(u"Whooshes"_s)));
    EXPECT_TRUE(waitUntil(
        [this] { return onDisk(u"SFX/Whooshes/Door.wav"_s) && onDisk(u"SFX/Whooshes/Hit 1.wav"_s); }));
    EXPECT_TRUE(QFileInfo::exists(door.text()));
    EXPECT_FALSE(onDisk(u"SFX/Hits/Hit 1.wav"_s));
}

} // namespace cratewell::test
