#include "made_media.h"

#include <QFile>
#include <QPainter>
#include <QProcess>

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
                       const QString &arguments)
{
    QStringList words = arguments.split(u' ');
    for (QString &word : words) {
        if (word == u"IN"_s)
            word = input;
        else if (word.startsWith(u"OUT"_s))
            word.replace(0, 3, path(name));
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, words);
    EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
    EXPECT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
    return path(name);
}

QString MadeMedia::ffmpeg(const QString &name, const QString &input, const QString &arguments)
{
    return run(u"ffmpeg"_s, name, input, u"-v error -nostdin -y "_s + arguments + u" OUT"_s);
}

QString MadeMedia::vips(const QString &name, const QString &input, const QString &arguments)
{
    return run(u"vips"_s, name, input, arguments);
}

QString MadeMedia::heif(const QString &name, const QString &input)
{
    return run(u"heif-enc"_s, name, input, u"-L -p chroma=444 IN -o OUT"_s);
}

QString MadeMedia::grayRamp(const QString &name, const QString &encoder)
{
    return ffmpeg(name, {},
                  u"-f lavfi -i color=black:s=64x64:r=25:d=10,format=yuv420p,geq=lum='16+N*219/255':cb=128:"
                  "cr=128 -c:v libx264 -qp 4 -g 250 -bf 3"_s +
                      encoder);
}

QByteArray MadeMedia::content(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QImage filled(QSize size, const QColor &color, QImage::Format format)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

QImage fourColors(QSize size)
{
    QImage image = filled(size, Qt::yellow);
    QPainter painter(&image);
    const int width = size.width() / 2, height = size.height() / 2;
    painter.fillRect(0, 0, width, height, Qt::red);
    painter.fillRect(width, 0, width, height, Qt::green);
    painter.fillRect(0, height, width, height, Qt::blue);
    return image;
}

QImage halfClear(QSize size, QRgb left)
{
    QImage image = filled(size, QColor(0, 255, 0, 0), QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
        std::fill_n(reinterpret_cast<QRgb *>(image.scanLine(y)), size.width() / 2, left);
    return image;
}

testing::AssertionResult isNear(QRgb found, QRgb expected, int tolerance)
{
    for (const int shift : {0, 8, 16, 24}) {
        if (std::abs(int(found >> shift & 255) - int(expected >> shift & 255)) > tolerance)
            return testing::AssertionFailure() << std::hex << found << " is not near " << expected;
    }
    return testing::AssertionSuccess();
}

} // namespace cratewell::test
