#pragma once

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

// A temporary folder of real media, made by the command-line tools of FFmpeg, libvips and libheif. Every
// function gives the path of the file it made; a tool that fails is a failure of the test.
class MadeMedia
{
public:
    QString path(const QString &name) const { return QDir(m_folder.path()).filePath(name); }

    QString image(const QString &name, const QImage &image)
    {
        EXPECT_TRUE(image.save(path(name))) << name.toStdString();
        return path(name);
    }
    QString bytes(const QString &name, const QByteArray &content)
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
        EXPECT_EQ(file.write(content), content.size());
        return path(name);
    }
    // Arguments stand between single blanks; "IN" and "OUT" at the start of one are the paths.
    QString run(const QString &program, const QString &name, const QString &input, const QString &arguments)
    {
        static const QRegularExpression in(u"^IN$"_s), out(u"^OUT"_s);
        QProcess process;
        process.start(program,
                      arguments.split(u' ').replaceInStrings(in, input).replaceInStrings(out, path(name)));
        EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return path(name);
    }
    QString ffmpeg(const QString &name, const QString &input, const QString &arguments)
    {
        return run(u"ffmpeg"_s, name, input, u"-v error -nostdin -y "_s + arguments + u" OUT"_s);
    }
    QString vips(const QString &name, const QString &input, const QString &arguments)
    {
        return run(u"vips"_s, name, input, arguments);
    }
    QString heif(const QString &name, const QString &input)
    {
        return run(u"heif-enc"_s, name, input, u"-L -p chroma=444 IN -o OUT"_s);
    }
    // A film whose frame at second t is gray of 25 t levels, ten seconds at 25 frames.
    QString grayRamp(const QString &name, const QString &encoder = {})
    {
        return ffmpeg(name, {},
                      u"-f lavfi -i color=black:s=64x64:r=25:d=10,format=yuv420p,geq=lum='16+N*219/255':cb="
                      "128:cr=128 -c:v libx264 -qp 4 -g 250 -bf 3"_s +
                          encoder);
    }

    // The bytes of a made file.
    static QByteArray content(const QString &path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }

private:
    QTemporaryDir m_folder;
};

inline QImage filled(QSize size, const QColor &color, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

// Four even quarters: red and green above blue and yellow.
inline QImage fourColors(QSize size)
{
    const QRgb colors[]{qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 0)};
    return QImage(reinterpret_cast<const uchar *>(colors), 2, 2, QImage::Format_RGB32).scaled(size);
}

// A color on the left; on the right nothing, with green hidden under it.
inline QImage halfClear(QSize size, QRgb left)
{
    QImage image = filled(size, QColor(0, 255, 0, 0), QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
        std::fill_n(reinterpret_cast<QRgb *>(image.scanLine(y)), size.width() / 2, left);
    return image;
}

// Compares each channel.
inline testing::AssertionResult isNear(QRgb found, QRgb expected, int tolerance)
{
    for (const int shift : {0, 8, 16, 24}) {
        if (std::abs(int(found >> shift & 255) - int(expected >> shift & 255)) > tolerance)
            return testing::AssertionFailure() << std::hex << found << " is not near " << expected;
    }
    return testing::AssertionSuccess();
}

} // namespace cratewell::test
