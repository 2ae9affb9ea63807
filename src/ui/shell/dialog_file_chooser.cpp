#include "ui/shell/dialog_file_chooser.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QUrl>
#include <QWindow>
#include <memory>

using namespace Qt::StringLiterals;

namespace cratewell {

namespace {

// What a dialog says it was left with; files and folders come in different properties.
QList<Location> chosenIn(const QObject &dialog)
{
    QList<QUrl> urls = dialog.property("selectedFiles").value<QList<QUrl>>();
    if (urls.isEmpty())
        urls.append(dialog.property("selectedFolder").toUrl());
    QList<Location> chosen;
    for (const QUrl &url : urls) {
        if (const Location place = Location::fromUrl(url); !place.isEmpty())
            chosen.append(place);
    }
    return chosen;
}

// Takes a dialog's one answer and ends it.
class Question : public QObject
{
    Q_OBJECT
public:
    Question(FileChooser::Done done, QObject *parent) : QObject(parent), m_done(std::move(done)) {}

    void setDialog(QObject *dialog)
    {
        m_dialog = dialog;
        dialog->setParent(this);
        connect(dialog, SIGNAL(accepted()), this, SLOT(accept()), Qt::QueuedConnection);
        connect(dialog, SIGNAL(rejected()), this, SLOT(reject()), Qt::QueuedConnection);
    }

public Q_SLOTS:
    void accept() { answer(chosenIn(*m_dialog)); }
    void reject() { answer({}); }

private:
    void answer(const QList<Location> &chosen)
    {
        deleteLater();
        if (m_done)
            std::exchange(m_done, {})(chosen);
    }

    FileChooser::Done m_done;
    QObject *m_dialog = nullptr;
};

// The toolkit's dialogs end the program where this module of theirs is missing.
bool canShowDialogs(QQmlEngine &engine)
{
    QQmlComponent probe(&engine);
    probe.setData("import Qt.labs.folderlistmodel\nFolderListModel {}", QUrl());
    return probe.isReady();
}

QString fileFor(ChooseRequest::What what)
{
    const QString name = what == ChooseRequest::What::Folders ? u"FolderQuestion"_s : u"FileQuestion"_s;
    return u"qrc:/qt-project.org/imports/Cratewell/%1.qml"_s.arg(name);
}

} // namespace

DialogFileChooser::DialogFileChooser(QQmlEngine &engine) : m_engine(&engine) {}

void DialogFileChooser::choose(const ChooseRequest &request, Done done)
{
    auto *question = new Question(std::move(done), m_engine);
    QVariantMap properties{{u"title"_s, request.title}, {u"acceptLabel"_s, request.acceptLabel}};
    if (request.what != ChooseRequest::What::Folders) {
        properties.insert(u"several"_s, request.several);
        properties.insert(u"imagesOnly"_s, request.what == ChooseRequest::What::Images);
    }
    QQmlComponent component(m_engine, QUrl(fileFor(request.what)));
    QObject *dialog = canShowDialogs(*m_engine) ? component.createWithInitialProperties(properties) : nullptr;
    if (!dialog) {
        qWarning("The file dialog cannot be shown. %s", qPrintable(component.errorString()));
        QMetaObject::invokeMethod(question, &Question::reject, Qt::QueuedConnection);
        return;
    }
    question->setDialog(dialog);
    dialog->setProperty("parentWindow", QVariant::fromValue(QGuiApplication::focusWindow()));
    QMetaObject::invokeMethod(dialog, "open");
}

} // namespace cratewell

#include "dialog_file_chooser.moc"
