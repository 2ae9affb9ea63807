#include "window/app_fixture.h"

#include "state/app_state.h"
#include "support/wait.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

namespace {

// What can be seen of `item` and below and has lost its end.
QStringList cutTexts(const QQuickItem &item)
{
    if (!item.isVisible())
        return {};
    QStringList texts;
    const bool isText = item.inherits("QQuickText") && !item.property("text").toString().isEmpty();
    if (isText && (item.property("truncated").toBool() ||
                   item.property("contentWidth").toReal() > std::ceil(item.width())))
        texts << item.property("text").toString();
    for (const QQuickItem *child : item.childItems())
        texts += cutTexts(*child);
    return texts;
}

} // namespace

TEST(Texts, AreWholeInAWindowOfTheDefaultSize)
{
    AppFixture app([](const QString &vault) {
        writeSound(vault + u"/SFX/Hits/Boom.wav"_s);
        writeSound(vault + u"/SFX/Hits/Hit.wav"_s);
    });
    ASSERT_TRUE(app.showsCards({u"Boom"_s, u"Hit"_s}));
    ASSERT_EQ(app.window().size(), QSize(1320, 840));
    AppState &state = app.program().state();
    const auto whole = [&] { return cutTexts(*app.window().contentItem()).isEmpty(); };
    for (const auto kind : {Scope::Kind::All, Scope::Kind::Favorites, Scope::Kind::Recent,
                            Scope::Kind::Importer, Scope::Kind::Trash}) {
        for (const bool inspector : {true, false}) {
            state.setShowInspector(inspector);
            state.setScope(Scope::of(kind));
            EXPECT_TRUE(waitUntil(whole)) << state.scopeTitle().toStdString() << ": "
                                          << cutTexts(*app.window().contentItem()).join(u'|').toStdString();
        }
    }
    state.setScope(Scope::all());
    state.setShowInspector(true);
    state.selectAll();
    EXPECT_TRUE(waitUntil([&] {
        return app.controls().find(QAccessible::StaticText, u"2 selected"_s) != nullptr && whole();
    })) << cutTexts(*app.window().contentItem()).join(u'|').toStdString();
    EXPECT_EQ(AppFixture::qmlWarnings(), "");
}

} // namespace cratewell::test
