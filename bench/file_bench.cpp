// file_bench FOLDER: the whole program, without a screen, in a home of its own at FOLDER. Times its work on
// files, in turn with `cp` doing the same there. Prints a JSON list of rows {name, ours, peer, unit},
// medians. Takes everything away again.

#include "app/application.h"
#include "hold_meter.h"
#include "state/app_state.h"
#include "vault/vault.h"
#include "without_screen.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QQuickWindow>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace cratewell;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr int rounds = 9;
constexpr int largeRounds = 5;
constexpr int smallFiles = 2000;
constexpr size_t smallSize = 100 << 10;
constexpr qint64 largeSize = qint64{2} << 30;
constexpr int trashedFiles = 5000;

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "file_bench: %s\n", what);
    std::exit(2);
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

QJsonObject row(const QString &name, double ours, const QJsonValue &peer, const QString &unit = u"ms"_s)
{
    return {{u"name"_s, name}, {u"ours"_s, ours}, {u"peer"_s, peer}, {u"unit"_s, unit}};
}

Location locationOf(const fs::path &path)
{
    return Location::fromBytes(path.c_str());
}

void writeFile(const fs::path &file, qint64 size)
{
    std::vector<char> block(1 << 20);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = char(i * 7 + i / 251);
    std::ofstream stream(file, std::ios::binary);
    for (qint64 left = size; left > 0; left -= qint64(block.size()))
        stream.write(block.data(), std::min<qint64>(left, qint64(block.size())));
}

class Bench
{
public:
    explicit Bench(const fs::path &folder) : m_folder(folder)
    {
        fs::create_directories(folder / "in");
        if (!m_program.launch())
            fail("the window could not be loaded");
        settle();
    }
    ~Bench() { fs::remove_all(m_folder); }

    QJsonObject manySmallFiles();
    QJsonObject oneLargeFile();
    QJsonArray trash();

private:
    // Until the operation says that it is done.
    double timed(const std::function<void()> &start)
    {
        QEventLoop loop;
        const auto connection = QObject::connect(&m_vault, &Vault::toast, &loop, &QEventLoop::quit);
        QElapsedTimer timer;
        timer.start();
        start();
        loop.exec();
        QObject::disconnect(connection);
        return double(timer.nsecsElapsed()) / 1e6;
    }
    double imported(const fs::path &source)
    {
        return timed([&] { m_vault.importItems({locationOf(source)}, {}, ImportMode::Copy); });
    }
    double copied(const QStringList &options, const fs::path &source, const fs::path &target)
    {
        QElapsedTimer timer;
        timer.start();
        if (QProcess::execute(u"cp"_s, options + QStringList{QString::fromStdString(source),
                                                             QString::fromStdString(target)}) != 0)
            fail("cp does not run");
        return double(timer.nsecsElapsed()) / 1e6;
    }
    // What one side wrote shall not burden the other. Put aside, not deleted: ext4 searches past every inode
    // that was freed in the last seconds when it makes a file.
    void clear()
    {
        settle();
        const fs::path aside = m_folder / "aside" / std::to_string(++m_cleared);
        fs::create_directories(aside);
        for (const char *name : {"small", "large.mov"}) {
            for (const fs::path &made : {m_root / "Overlays" / name, m_folder / "copy" / name}) {
                if (fs::exists(made))
                    fs::rename(made, aside / name);
            }
        }
        fs::remove(aside / "large.mov");
        fs::create_directories(m_folder / "copy");
        ::sync();
    }
    void settle()
    {
        QEventLoop loop;
        QTimer::singleShot(400, &loop, &QEventLoop::quit);
        loop.exec();
    }

    const fs::path m_folder;
    const SystemPaths m_paths = SystemPaths::below(locationOf(m_folder));
    Application m_program{m_paths, Services::native(m_paths)};
    Vault &m_vault = m_program.vault();
    const fs::path m_root = m_vault.root().c_str();
    int m_cleared = 0;
};

QJsonObject Bench::manySmallFiles()
{
    const fs::path source = m_folder / "in/small";
    fs::create_directories(source);
    for (int i = 0; i < smallFiles; ++i)
        writeFile(source / (std::to_string(i) + ".mov"), smallSize);
    std::vector<double> ours;
    std::vector<double> peer;
    for (int i = 0; i < rounds; ++i) {
        clear();
        ours.push_back(imported(source));
        clear();
        peer.push_back(copied({u"-r"_s}, source, m_folder / "copy/small"));
    }
    clear();
    return row(u"import of 2,000 files of 100 KiB"_s, median(ours), median(peer));
}

QJsonObject Bench::oneLargeFile()
{
    const fs::path source = m_folder / "in/large.mov";
    writeFile(source, largeSize);
    std::vector<double> ours;
    std::vector<double> peer;
    for (int i = 0; i < largeRounds; ++i) {
        clear();
        ours.push_back(imported(source));
        clear();
        peer.push_back(copied({u"--reflink=auto"_s}, source, m_folder / "copy/large.mov"));
    }
    clear();
    fs::remove(source);
    return row(u"import of one file of 2 GiB"_s, median(ours), median(peer));
}

QJsonArray Bench::trash()
{
    std::vector<double> times;
    std::vector<double> holds;
    for (int i = 0; i < largeRounds; ++i) {
        std::vector<Location> items;
        for (int file = 0; file < trashedFiles; ++file) {
            const fs::path path = m_root / "SFX/Hits" / (std::to_string(file) + ".wav");
            writeFile(path, 16);
            items.push_back(locationOf(path));
        }
        m_vault.rescan();
        settle();
        {
            m_program.state().selectAll();
            const HoldMeter meter(*m_program.window());
            times.push_back(timed([&] { m_vault.moveToTrash(items); }));
            settle();
            holds.push_back(meter.longestMilliseconds());
        }
        QEventLoop loop;
        QObject::connect(&m_vault, &Vault::trashItemsChanged, &loop, &QEventLoop::quit);
        m_vault.deleteForever(m_vault.trashItems());
        loop.exec();
    }
    return {row(u"trashing 5,000 assets"_s, median(times), {}),
            row(u"main thread held by trashing 5,000 assets"_s, median(holds), {})};
}

} // namespace

int main(int argc, char **argv)
{
    const WithoutScreen application(argc, argv);
    if (argc != 2)
        fail("usage: file_bench FOLDER");
    fs::remove_all(argv[1]);
    Bench bench(argv[1]);
    QJsonArray rows{bench.manySmallFiles(), bench.oneLargeFile()};
    for (const auto &one : bench.trash())
        rows.append(one);
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}
