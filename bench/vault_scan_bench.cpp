// vault_scan_bench ROOT: times scans of the vault at ROOT and questions to its snapshot, in turn with `find`
// reading the same info. Prints a JSON list of rows {name, ours, peer, unit}; without a peer that is null.
// Puts one file into SFX for a moment. With --first before ROOT: the info of one first scan, in one line.

#include "vault/vault_scan.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace cratewell;
using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 9;

double milliseconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double medianMilliseconds(const std::function<void()> &work)
{
    std::vector<double> times(rounds);
    std::ranges::generate(times, [&] { return milliseconds(work); });
    return median(times);
}

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "vault_scan_bench: %s\n", what);
    std::exit(2);
}

void runFind(const char *root)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<const char *> arguments{"find", root, "-type", "f", "-printf", "%s %B@ %p\n", nullptr};
    pid_t child = 0;
    int status = -1;
    if (posix_spawnp(&child, "find", &actions, nullptr, const_cast<char **>(arguments.data()), environ) !=
            0 ||
        waitpid(child, &status, 0) != child || status != 0)
        fail("find does not run");
    posix_spawn_file_actions_destroy(&actions);
}

double residentMegabytes()
{
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    statm >> pages >> pages;
    return double(pages) * double(sysconf(_SC_PAGESIZE)) / 1e6;
}

double mostResidentMegabytes()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) * 1024 / 1e6;
}

QJsonObject row(const QString &name, double ours, const QJsonValue &peer, const QString &unit)
{
    return {{u"name"_s, name}, {u"ours"_s, ours}, {u"peer"_s, peer}, {u"unit"_s, unit}};
}

using Snapshot = std::shared_ptr<const VaultSnapshot>;

// The whole way from a snapshot to the next, as the program goes it.
Snapshot scan(const Location &root, const Snapshot &before)
{
    return VaultScan::compare(before, VaultScan::run(root, before).snapshot).after;
}

struct FirstScan
{
    double milliseconds = 0;
    double megabytes = 0;
    double mostMegabytes = 0;
};

void printFirstScan(const Location &root)
{
    const double before = residentMegabytes();
    Snapshot snapshot;
    const double time = milliseconds([&] { snapshot = scan(root, nullptr); });
    malloc_trim(0);
    std::printf("%f %f %f\n", time, residentMegabytes() - before, mostResidentMegabytes() - before);
}

// In a process of its own: a scan is the first one only once.
FirstScan scanFirst(const char *program, const Location &root)
{
    QProcess process;
    process.start(QString::fromLocal8Bit(program), {u"--first"_s, root.text()});
    process.waitForFinished();
    FirstScan info;
    if (std::sscanf(process.readAllStandardOutput().constData(), "%lf %lf %lf", &info.milliseconds,
                    &info.megabytes, &info.mostMegabytes) != 3)
        fail("the first scan gave no numbers");
    return info;
}

QJsonArray firstScans(const char *program, const Location &root)
{
    std::vector<double> ours;
    std::vector<double> peer;
    FirstScan info;
    for (int i = 0; i < rounds; ++i) {
        peer.push_back(milliseconds([&] { runFind(root.c_str()); }));
        info = scanFirst(program, root);
        ours.push_back(info.milliseconds);
    }
    return {row(u"first scan"_s, median(ours), median(peer), u"ms"_s),
            row(u"memory of the snapshot"_s, info.megabytes, {}, u"MB"_s),
            row(u"most memory while scanning"_s, info.mostMegabytes, {}, u"MB"_s)};
}

QJsonArray laterScans(const Location &root)
{
    const std::filesystem::path file = root.child("SFX"_ba).child("bench probe.wav"_ba).bytes().toStdString();
    std::vector<double> unchanged;
    std::vector<double> added;
    std::vector<double> first;
    Snapshot snapshot = scan(root, nullptr);
    for (int i = 0; i < rounds; ++i) {
        unchanged.push_back(milliseconds([&] { snapshot = scan(root, snapshot); }));
        std::ofstream(file) << "x";
        added.push_back(milliseconds([&] { snapshot = scan(root, snapshot); }));
        std::filesystem::remove(file);
        first.push_back(milliseconds([&] { snapshot = scan(root, nullptr); }));
        malloc_trim(0);
    }
    return {row(u"scan after one file was added"_s, median(added), median(first), u"ms"_s),
            row(u"scan when nothing changed"_s, median(unchanged), median(first), u"ms"_s)};
}

QJsonArray questions(const Location &root)
{
    const Snapshot snapshot = scan(root, nullptr);
    double slowest = 0;
    QString slowestNeedle;
    for (const QString &needle :
         {u"a"_s, u"e"_s, u"o"_s, u" "_s, u"_"_s, u"0"_s, u"oo"_s, u"00"_s, u"whoosh"_s, u"a b"_s,
          u"not there"_s, u"film leak"_s, u"st"_s, u"au"_s, u"1234"_s, u"\u00e9"_s}) {
        const double time = medianMilliseconds([&] { snapshot->matching(needle); });
        if (time > slowest) {
            slowest = time;
            slowestNeedle = needle;
        }
    }
    AssetIndex found = 0;
    const double finding = medianMilliseconds([&] {
        for (AssetIndex i = 0; i < snapshot->size(); ++i)
            found += snapshot->find(snapshot->asset(i).url) == i;
    });
    if (found != rounds * snapshot->size())
        fail("an asset was not found");
    return {row(u"slowest search ('"_s + slowestNeedle + u"')"_s, slowest, {}, u"ms"_s),
            row(u"finding every asset"_s, finding, {}, u"ms"_s)};
}

} // namespace

int main(int argc, char **argv)
{
    const bool first = argc == 3 && qstrcmp(argv[1], "--first") == 0;
    const Location root = argc == 2 || first ? Location::fromBytes(argv[argc - 1]) : Location();
    if (root.isEmpty())
        fail("usage: vault_scan_bench [--first] ROOT");
    if (first) {
        printFirstScan(root);
        return 0;
    }
    QJsonArray rows;
    for (const QJsonArray &some : {firstScans(argv[0], root), laterScans(root), questions(root)}) {
        for (const QJsonValue &one : some)
            rows.append(one);
    }
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}
