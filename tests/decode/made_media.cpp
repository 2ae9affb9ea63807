#include "made_media.h"

#include <QFile>
#include <QPainter>
#include <QProcess>
#include <gtest/gtest.h>

namespace cratewell::test {

using namespace Qt::StringLiterals;

QString MadeMedia::image(const QString &name, const QImage &image)
{
    EXPECT_TRUE(image.save(path(name))) << name.toStdString();
    return path(name);
}

QString MadeMedia::bytes(const QString &name, const QByteArray &content)
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    EXPECT_EQ(file.write(content), content.size());
    return path(name);
}

QString MadeMedia::run(const QString &program, const QString &name, const QString &input,
                       QStringList arguments)
{
    for (QString &argument : arguments) {
        if (argument == u"IN"_s)
            argument = input;
        else if (argument == u"OUT"_s)
            argument = path(name);
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
    return path(name);
}

QString MadeMedia::ffmpeg(const QString &name, const QString &input, const QStringList &arguments)
{
    return run(u"ffmpeg"_s, name, input,
               QStringList{u"-v"_s, u"error"_s, u"-nostdin"_s, u"-y"_s} + arguments + QStringList{u"OUT"_s});
}

QString MadeMedia::vips(const QString &name, const QString &input, const QStringList &arguments)
{
    return run(u"vips"_s, name, input, arguments);
}

QString MadeMedia::heif(const QString &name, const QString &input)
{
    return run(u"heif-enc"_s, name, input, {u"-L"_s, u"-p"_s, u"chroma=444"_s, u"IN"_s, u"-o"_s, u"OUT"_s});
}

QString MadeMedia::grayRamp(const QString &name, const QStringList &encoder)
{
    const QString picture =
        u"color=black:s=64x64:r=25:d=10,format=yuv420p,geq=lum='16+N*219/255':cb=128:cr=128"_s;
    const QStringList usual{u"-c:v"_s, u"libx264"_s, u"-qp"_s, u"4"_s, u"-g"_s, u"250"_s, u"-bf"_s, u"3"_s};
    return ffmpeg(name, {}, QStringList{u"-f"_s, u"lavfi"_s, u"-i"_s, picture} + usual + encoder);
}

QByteArray MadeMedia::content(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QImage fourColors(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int width = size.width() / 2, height = size.height() / 2;
    painter.fillRect(0, 0, width, height, Qt::red);
    painter.fillRect(width, 0, width, height, Qt::green);
    painter.fillRect(0, height, width, height, Qt::blue);
    painter.fillRect(width, height, width, height, Qt::yellow);
    return image;
}

} // namespace cratewell::test
