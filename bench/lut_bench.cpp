// lut_bench FOLDER: grades a frame of 1920 x 1080 8-bit pixels and reads a .cube file, in turn with
// OpenColorIO and FFmpeg doing the same; one thread each. Its files lie in FOLDER while it runs. Prints a
// JSON list of rows {name, ours, peer, unit}, medians.

#include "media/lut.h"
#include "media/previews/sunset_still.h"

#include <OpenColorIO/OpenColorIO.h>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
#include <libavutil/pixfmt.h>
}

using namespace cratewell;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;
namespace ocio = OCIO_NAMESPACE;

namespace {

constexpr int width = 1920;
constexpr int height = 1080;
constexpr int rounds = 31;

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "lut_bench: %s\n", what);
    std::exit(2);
}

double milliseconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

// Medians of what each takes, one after the other in every round; the first round only warms up.
std::vector<double> inTurn(const std::vector<std::function<void()>> &contestants)
{
    std::vector<std::vector<double>> times(contestants.size());
    for (int round = 0; round <= rounds; ++round) {
        for (size_t i = 0; i < contestants.size(); ++i) {
            const double time = milliseconds(contestants[i]);
            if (round > 0)
                times[i].push_back(time);
        }
    }
    std::vector<double> medians;
    medians.reserve(times.size());
    for (std::vector<double> &each : times) {
        std::ranges::nth_element(each, each.begin() + rounds / 2);
        medians.push_back(each[rounds / 2]);
    }
    return medians;
}

QJsonObject row(const QString &name, double ours, double peer)
{
    return {{u"name"_s, name}, {u"ours"_s, ours}, {u"peer"_s, peer}, {u"unit"_s, u"ms"_s}};
}

// A warm look with more contrast, as a grading program would write it.
fs::path writeCube(const fs::path &folder, int size)
{
    const fs::path path = folder / (std::to_string(size) + ".cube");
    std::ofstream file(path);
    file << "TITLE \"Bench\"\nLUT_3D_SIZE " << size << '\n';
    const auto place = [=](int index) { return double(index) / (size - 1); };
    for (int index = 0; index < size * size * size; ++index) {
        const double red = place(index % size);
        const double green = place(index / size % size);
        const double blue = place(index / size / size);
        const double light = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
        const auto curve = [&](double value, double gamma) {
            const double mixed = light + 1.15 * (value - light);
            const double soft = std::pow(std::clamp(mixed, 0.0, 1.0), gamma);
            return 0.5 * soft + 0.5 * soft * soft * (3 - 2 * soft);
        };
        char line[64];
        std::snprintf(line, sizeof line, "%.6f %.6f %.6f\n", curve(red, 0.9), curve(green, 1),
                      curve(blue, 1.1));
        file << line;
    }
    return path;
}

QImage photographicPixels()
{
    QImage image = sunsetStill({width, height}).convertToFormat(QImage::Format_RGBA8888);
    std::mt19937 random(1);
    std::normal_distribution<double> grain(0, 2);
    uchar *bytes = image.bits();
    for (qsizetype i = 0; i < image.sizeInBytes(); ++i) {
        if (i % 4 != 3)
            bytes[i] = uchar(std::clamp(bytes[i] + grain(random), 0.0, 255.0));
    }
    return image;
}

QImage randomPixels()
{
    QImage image(width, height, QImage::Format_RGBA8888);
    std::mt19937 random(2);
    std::generate_n(image.bits(), image.sizeInBytes(), [&] { return uchar(random()); });
    return image;
}

class OpenColorIO
{
public:
    explicit OpenColorIO(const fs::path &cube) : m_transform(ocio::FileTransform::Create())
    {
        m_transform->setSrc(cube.c_str());
        m_transform->setInterpolation(ocio::INTERP_LINEAR);
    }
    ocio::ConstProcessorRcPtr load() const
    {
        ocio::ClearAllCaches();
        const ocio::ConfigRcPtr config = ocio::Config::CreateRaw()->createEditableCopy();
        config->setProcessorCacheFlags(ocio::PROCESSOR_CACHE_OFF);
        return config->getProcessor(m_transform);
    }
    static ocio::ConstCPUProcessorRcPtr processor(const ocio::ConstProcessorRcPtr &loaded)
    {
        return loaded->getOptimizedCPUProcessor(ocio::BIT_DEPTH_UINT8, ocio::BIT_DEPTH_UINT8,
                                                ocio::OPTIMIZATION_DEFAULT);
    }
    static ocio::PackedImageDesc describe(QImage &image)
    {
        return {image.bits(),          width, height, ocio::CHANNEL_ORDERING_RGBA,
                ocio::BIT_DEPTH_UINT8, 1,     4,      image.bytesPerLine()};
    }

private:
    ocio::FileTransformRcPtr m_transform;
};

// FFmpeg's filter alone, its frames kept from round to round.
class FilterGraph
{
public:
    explicit FilterGraph(const fs::path &cube)
    {
        m_graph->nb_threads = 1;
        char source[200];
        std::snprintf(source, sizeof source, "video_size=%dx%d:pix_fmt=%d:time_base=1/25", width, height,
                      AV_PIX_FMT_RGBA);
        AVFilterContext *filter = nullptr;
        const std::string options = "interp=trilinear:file=" + cube.string();
        check(avfilter_graph_create_filter(&m_source, avfilter_get_by_name("buffer"), nullptr, source,
                                           nullptr, m_graph));
        check(avfilter_graph_create_filter(&filter, avfilter_get_by_name("lut3d"), nullptr, options.c_str(),
                                           nullptr, m_graph));
        check(avfilter_graph_create_filter(&m_sink, avfilter_get_by_name("buffersink"), nullptr, nullptr,
                                           nullptr, m_graph));
        check(avfilter_link(m_source, 0, filter, 0));
        check(avfilter_link(filter, 0, m_sink, 0));
        check(avfilter_graph_config(m_graph, nullptr));
        if (m_graph->nb_filters != 3)
            fail("FFmpeg converts the pixels");
    }
    ~FilterGraph()
    {
        av_frame_free(&m_input);
        av_frame_free(&m_output);
        avfilter_graph_free(&m_graph);
    }
    FilterGraph(const FilterGraph &) = delete;
    FilterGraph &operator=(const FilterGraph &) = delete;

    void setInput(const QImage &image)
    {
        av_frame_free(&m_input);
        m_input = av_frame_alloc();
        m_input->format = AV_PIX_FMT_RGBA;
        m_input->width = width;
        m_input->height = height;
        check(av_frame_get_buffer(m_input, 0));
        for (int y = 0; y < height; ++y)
            std::copy_n(image.constScanLine(y), 4 * width, m_input->data[0] + y * m_input->linesize[0]);
    }
    void apply()
    {
        av_frame_unref(m_output);
        check(av_buffersrc_add_frame_flags(m_source, m_input,
                                           AV_BUFFERSRC_FLAG_KEEP_REF | AV_BUFFERSRC_FLAG_PUSH));
        check(av_buffersink_get_frame(m_sink, m_output));
    }
    QImage output() const
    {
        return {m_output->data[0], width, height, m_output->linesize[0], QImage::Format_RGBA8888};
    }

private:
    static void check(int result)
    {
        if (result < 0)
            fail("FFmpeg's filter does not work");
    }
    AVFilterGraph *m_graph = avfilter_graph_alloc();
    AVFilterContext *m_source = nullptr;
    AVFilterContext *m_sink = nullptr;
    AVFrame *m_input = nullptr;
    AVFrame *m_output = av_frame_alloc();
};

// So that nobody is measured while doing something else.
void checkEqual(const QImage &ours, const QImage &theirs)
{
    for (int y = 0; y < height; ++y) {
        const uchar *a = ours.constScanLine(y);
        const uchar *b = theirs.constScanLine(y);
        for (int i = 0; i < 4 * width; ++i) {
            if (std::abs(a[i] - b[i]) > 1)
                fail("the results differ");
        }
    }
}

void measureApply(QJsonArray &rows, const fs::path &cube)
{
    const Result<LUT> lut = LUT::read(Location::fromBytes(cube.c_str()));
    if (!lut)
        fail("the table could not be read");
    const auto processor = OpenColorIO::processor(OpenColorIO(cube).load());
    FilterGraph graph(cube);

    for (const auto &[kind, pixels] :
         {std::pair(u"photographic"_s, photographicPixels()), std::pair(u"random"_s, randomPixels())}) {
        QImage source = pixels;
        QImage ours(width, height, QImage::Format_RGBA8888);
        QImage theirs = ours.copy();
        const ocio::PackedImageDesc from = OpenColorIO::describe(source);
        ocio::PackedImageDesc to = OpenColorIO::describe(theirs);
        graph.setInput(source);
        const PixelRows<const quint8> sourceRows{source.constBits(), source.bytesPerLine(), width, height};
        const PixelRows<quint8> ourRows{ours.bits(), ours.bytesPerLine(), width, height};
        const std::vector<double> times =
            inTurn({[&] { lut->apply(sourceRows, ourRows, ChannelOrder::RGBA, AlphaKind::Straight); },
                    [&] { processor->apply(from, to); }, [&] { graph.apply(); }});
        checkEqual(ours, theirs);
        checkEqual(ours, graph.output());
        const QString what = u"LUT of %1 points on %2 pixels, beside %3"_s;
        rows.append(row(what.arg(QString::number(lut->size()), kind, u"OpenColorIO"_s), times[0], times[1]));
        rows.append(row(what.arg(QString::number(lut->size()), kind, u"FFmpeg"_s), times[0], times[2]));
    }
}

void measureRead(QJsonArray &rows, const fs::path &cube)
{
    const Location location = Location::fromBytes(cube.c_str());
    const OpenColorIO peer(cube);
    const std::vector<double> times = inTurn({[&] {
                                                  if (!LUT::read(location))
                                                      fail("the table could not be read");
                                              },
                                              [&] { peer.load(); }});
    rows.append(row(u"reading a LUT of 65 points, beside OpenColorIO"_s, times[0], times[1]));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        fail("usage: lut_bench FOLDER");
    av_log_set_level(AV_LOG_ERROR);
    const fs::path folder = argv[1];
    fs::create_directories(folder);
    QJsonArray rows;
    for (const int size : {33, 65})
        measureApply(rows, writeCube(folder, size));
    measureRead(rows, folder / "65.cube");
    fs::remove_all(folder);
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}
