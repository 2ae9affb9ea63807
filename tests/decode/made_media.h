#pragma once

#include <QByteArray>
#include <QDir>
#include <QImage>
#include <QString>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace cratewell::test {

// A temporary folder of real media, made by the command-line tools of FFmpeg, libvips and libheif. Every
// function gives the path of the file it made; a tool that fails is a failure of the test.
class MadeMedia
{
public:
    QString path(const QString &name) const { return QDir(m_folder.path()).filePath(name); }

    QString image(const QString &name, const QImage &image);
    QString bytes(const QString &name, const QByteArray &content);
    // Arguments stand between single blanks; "IN" and "OUT" at the start of one are the paths.
    QString ffmpeg(const QString &name, const QString &input, const QString &arguments);
    QString vips(const QString &name, const QString &input, const QString &arguments);
    QString heif(const QString &name, const QString &input);
    // A short H.264 film whose frame at second t is gray of 25 t levels, ten seconds at 25 frames.
    QString grayRamp(const QString &name, const QString &encoder = {});

    // The bytes of a made file.
    static QByteArray content(const QString &path);

private:
    QString run(const QString &program, const QString &name, const QString &input, const QString &arguments);

    QTemporaryDir m_folder;
};

QImage filled(QSize size, const QColor &color, QImage::Format format = QImage::Format_RGB32);
// Four even quarters: red and green above blue and yellow.
QImage fourColors(QSize size);
// A color on the left; on the right nothing, with green hidden under it.
QImage halfClear(QSize size, QRgb left);

// Compares each channel.
testing::AssertionResult isNear(QRgb found, QRgb expected, int tolerance);

} // namespace cratewell::test
