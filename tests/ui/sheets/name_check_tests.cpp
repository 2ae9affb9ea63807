#include "ui/sheets/name_check.h"

#include "support/small_library.h"
#include "ui/sheets/name_forms.h"

#include <gtest/gtest.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

TEST(NameProblem, IsSaidForWhatNoFileCanBeCalled)
{
    for (const QString &name :
         {u"  \n\t "_s, u"."_s, u" .. "_s, QString(256, u'a'), QString(128, u'ä'), u"a"_s + QChar(0)})
        EXPECT_NE(nameProblem(name), QString()) << name.toStdString();
    for (const QString &name : {u"..."_s, u".hidden"_s, u"a/b"_s, u" "_s + QString(255, u'a') + u" "_s})
        EXPECT_EQ(nameProblem(name), QString()) << name.toStdString();
}

TEST(ExtensionWarning, IsGivenOnlyForAnotherExtension)
{
    const Location clip = Location::fromText(u"/v/Overlays/clip.final.mov"_s);
    const QString lost = u"Without “.mov” the file no longer shows up in your vault."_s;
    for (const auto &[typed, warning] : {std::pair<QString, QString>{u" shot.MOV "_s, {}},
                                         {u"shot.mp4"_s, u"The extension changes from “.mov” to “.mp4”."_s},
                                         {u"clip.final"_s, lost},
                                         {u".mov"_s, lost},
                                         {u" "_s, {}}})
        EXPECT_EQ(extensionWarning(clip, typed), warning) << typed.toStdString();
}

TEST(NameForms, SayWhereAFolderGoesAndWhatIsRenamed)
{
    test::SmallLibrary library;
    library.write(u"SFX/Hits v1.2/boom.wav"_s);
    ASSERT_TRUE(library.scan());
    const NameForms forms(library.state, library.vault);
    EXPECT_EQ(forms.newFolderExplanation(), u"Inside the vault"_s);
    library.state.requestNewFolder(library.path(u"SFX"_s));
    EXPECT_EQ(forms.newFolderExplanation(), u"Inside SFX"_s);
    library.state.selectAll();
    library.state.newFolderFromSelection();
    EXPECT_EQ(forms.newFolderExplanation(), u"1 items will move into it, inside Hits v1.2"_s);

    library.state.setRenameTarget(library.path(u"SFX/Hits v1.2"_s));
    const RenameQuestion rename = forms.renameQuestion();
    EXPECT_EQ(rename.title() + u'|' + rename.name().left(rename.selectionLength()),
              u"Rename Folder|Hits v1.2"_s);
    EXPECT_EQ(rename.warning(u"other"_s), QString());
}

} // namespace
} // namespace cratewell
