// decode_bench FOLDER [PART]: previews of the media that make_decode_media.py put into FOLDER, made by real
// workers through the pool, in turn with the command-line tools that do the same work; one part of it when
// named. Prints a JSON list of rows {name, ours, peer, unit}, medians.

#include "media/decoding/decode_pool.h"
#include "media/previews/preview_formats.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace cratewell;
using namespace Qt::StringLiterals;

namespace {

constexpr int usualRounds = 7;
constexpr double cardFraction = 0.35;
constexpr double h264Seconds = 12; // cardFraction is 105 frames after the key frame, of 25 a second
constexpr double proresSeconds = 2;

[[noreturn]] void fail(const QString &what)
{
    std::fprintf(stderr, "decode_bench: %s\n", qPrintable(what));
    std::exit(2);
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double milliseconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"VIPS_CONCURRENCY"_s, u"1"_s);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        fail(program + u" fails"_s);
}

// Waits for all of them.
void decode(DecodePool &pool, const std::vector<DecodeRequest> &requests)
{
    QEventLoop loop;
    RequestOrder order;
    size_t left = requests.size();
    std::vector<std::unique_ptr<PreviewRequest>> submitted;
    submitted.reserve(requests.size());
    const auto finished = [&](const DecodeResult &result) {
        if (!result)
            fail(result.error().message);
        if (--left == 0)
            loop.quit();
    };
    for (const DecodeRequest &request : requests)
        submitted.push_back(pool.submit(
            {.key = request.file.bytes(), .request = request, .place = order.next(), .finished = finished}));
    loop.exec();
}

Location worker()
{
    return Location::fromText(QCoreApplication::applicationDirPath() + u"/cratewell-worker"_s);
}

class Bench
{
public:
    explicit Bench(const QString &folder) : m_folder(QDir(folder).absolutePath()) {}

    // One worker, which has started already.
    void add(const QString &name, const std::vector<DecodeRequest> &requests,
             const std::function<void()> &peer)
    {
        DecodePool pool(worker(), {.slots = 1});
        add(
            name, [&] { decode(pool, requests); }, peer);
    }

    void add(const QString &name, const std::function<void()> &ours, const std::function<void()> &peer,
             int rounds = usualRounds)
    {
        std::vector<double> our, peers;
        for (int round = 0; round <= rounds; ++round) {
            const double first = milliseconds(ours), second = milliseconds(peer);
            if (round == 0) // fills the disk cache
                continue;
            our.push_back(first);
            peers.push_back(second);
        }
        m_rows.append(QJsonObject{
            {u"name"_s, name}, {u"ours"_s, median(our)}, {u"peer"_s, median(peers)}, {u"unit"_s, u"ms"_s}});
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }
    Location file(const QString &name) const { return Location::fromText(path(name)); }
    QStringList names(const QString &pattern) const { return m_folder.entryList({pattern}, QDir::Files); }
    const QJsonArray &rows() const { return m_rows; }

private:
    QDir m_folder;
    QJsonArray m_rows;
};

QStringList ffmpegFrame(const QString &file, double time)
{
    return {u"-v"_s,
            u"error"_s,
            u"-nostdin"_s,
            u"-threads"_s,
            u"1"_s,
            u"-ss"_s,
            QString::number(time),
            u"-i"_s,
            file,
            u"-frames:v"_s,
            u"1"_s,
            u"-vf"_s,
            u"scale=640:-2"_s,
            u"-f"_s,
            u"null"_s,
            u"-"_s};
}

void addStills(Bench &bench)
{
    const QStringList names = bench.names(u"photograph *.jpg"_s);
    const QTemporaryDir thumbnails;
    QStringList arguments{u"--size"_s, u"640x640"_s, u"-o"_s, thumbnails.path() + u"/%s.jpg"_s};
    std::vector<DecodeRequest> requests;
    requests.reserve(size_t(names.size()));
    for (const QString &name : names) {
        arguments.append(bench.path(name));
        requests.push_back(stillThumbnail(bench.file(name)));
    }
    bench.add(u"60 photographs"_s, requests, [&] { run(u"vipsthumbnail"_s, arguments); });
}

void addFrames(Bench &bench)
{
    const auto row = [&](const QString &name, const QString &file, double seconds) {
        bench.add(name, {videoThumbnail(bench.file(file))},
                  [&] { run(u"ffmpeg"_s, ffmpegFrame(bench.path(file), cardFraction * seconds)); });
    };
    row(u"H.264 frame"_s, u"h264.mp4"_s, h264Seconds);
    row(u"ProRes 4444 frame"_s, u"prores.mov"_s, proresSeconds);
}

void addPeaks(Bench &bench)
{
    for (const QString &name : {u"sound.wav"_s, u"sound.flac"_s, u"sound.mp3"_s, u"sound.m4a"_s}) {
        bench.add(u"peaks of "_s + name, {waveformPeaks(bench.file(name))}, [&] {
            run(u"ffmpeg"_s,
                {u"-v"_s, u"error"_s, u"-nostdin"_s, u"-i"_s, bench.path(name), u"-f"_s, u"null"_s, u"-"_s});
        });
    }
}

// As many processes as cores on both sides; the workers have to be started, too.
void addPage(Bench &bench)
{
    std::vector<DecodeRequest> requests;
    QStringList commands;
    for (const QString &name : bench.names(u"film *"_s)) {
        requests.push_back(videoThumbnail(bench.file(name)));
        const double duration = name.endsWith(u".mov"_s) ? proresSeconds : h264Seconds;
        const QStringList arguments = ffmpegFrame(bench.path(name), cardFraction * duration);
        commands.append(u"ffmpeg '"_s + arguments.join(u"' '"_s) + u"'"_s);
    }
    const QString script = u"printf '%s\\n' \"$@\" | tr '\\n' '\\0' | xargs -0 -n 1 -P "_s +
                           QString::number(QThread::idealThreadCount()) + u" sh -c"_s;
    bench.add(
        u"page of 60 videos"_s,
        [&] {
            DecodePool pool(worker(), DecodePool::usualLimits());
            decode(pool, requests);
        },
        [&] {
            run(u"sh"_s, QStringList{u"-c"_s, script, u"sh"_s} + commands);
        });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc < 2)
        fail(u"usage: decode_bench FOLDER [stills|frames|peaks|page]"_s);
    const auto wanted = [part = QByteArray(argc > 2 ? argv[2] : "")](const char *name) {
        return part.isEmpty() || part == name;
    };
    Bench bench(QString::fromLocal8Bit(argv[1]));
    if (wanted("stills"))
        addStills(bench);
    if (wanted("frames"))
        addFrames(bench);
    if (wanted("peaks"))
        addPeaks(bench);
    if (wanted("page"))
        addPage(bench);
    std::fputs(QJsonDocument(bench.rows()).toJson().constData(), stdout);
}
