#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace cratewell::test {

// A temporary folder of real media, made by the command-line tools of FFmpeg, libvips and libheif. Every
// function gives the path of the file it made; a tool that fails is a failure of the test.
class MadeMedia
{
public:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QString image(const QString &name, const QImage &image);
    QString bytes(const QString &name, const QByteArray &content);
    // "IN" and "OUT" among the arguments stand for the paths.
    QString ffmpeg(const QString &name, const QString &input, const QStringList &arguments);
    QString vips(const QString &name, const QString &input, const QStringList &arguments);
    QString heif(const QString &name, const QString &input);
    // A short H.264 film whose frame at second t is gray of 25 t levels, ten seconds at 25 frames.
    QString grayRamp(const QString &name, const QStringList &encoder = {});

    // The bytes of a made file.
    static QByteArray content(const QString &path);

private:
    QString run(const QString &program, const QString &name, const QString &input, QStringList arguments);

    QTemporaryDir m_folder;
};

// Four even quarters: red and green above blue and yellow.
QImage fourColors(QSize size);

} // namespace cratewell::test
