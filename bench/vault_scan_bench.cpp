// vault_scan_bench ROOT: times scans of the vault at ROOT and questions to its picture, in turn with `find`
// reading the same facts. Prints a JSON list of rows {name, ours, peer, unit}; without a peer that is null.
// Writes one file into SFX and takes it away again.

#include "vault/vault_scan.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
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
        std::exit(2);
    posix_spawn_file_actions_destroy(&actions);
}

double residentMegabytes()
{
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    statm >> pages >> pages;
    return double(pages) * double(sysconf(_SC_PAGESIZE)) / 1e6;
}

QJsonObject row(const QString &name, double ours, QJsonValue peer, const QString &unit)
{
    return {{u"name"_s, name}, {u"ours"_s, ours}, {u"peer"_s, peer}, {u"unit"_s, unit}};
}

using Picture = std::shared_ptr<const VaultPicture>;

// The whole way from a picture to the next, as the program goes it.
Picture scan(const Location &root, const Picture &before)
{
    return VaultScan::compare(before, VaultScan::run(root, before)).after;
}

QJsonObject scanFirst(const Location &root)
{
    std::vector<double> ours;
    std::vector<double> peer;
    for (int i = 0; i < rounds; ++i) {
        Picture picture;
        peer.push_back(milliseconds([&] { runFind(root.c_str()); }));
        ours.push_back(milliseconds([&] { picture = scan(root, nullptr); }));
        picture.reset();
        malloc_trim(0);
    }
    return row(u"first scan"_s, median(ours), median(peer), u"ms"_s);
}

QJsonArray scanAgain(const Location &root)
{
    const double empty = residentMegabytes();
    Picture picture = scan(root, nullptr);
    malloc_trim(0);
    const double resident = residentMegabytes();
    const std::filesystem::path file = root.child("SFX"_ba).child("bench probe.wav"_ba).bytes().toStdString();
    std::vector<double> unchanged;
    std::vector<double> added;
    std::vector<double> first;
    double mostResident = 0;
    for (int i = 0; i < rounds; ++i) {
        unchanged.push_back(milliseconds([&] { picture = scan(root, picture); }));
        std::ofstream(file) << "x";
        Picture next;
        added.push_back(milliseconds([&] { next = scan(root, picture); }));
        mostResident = std::max(mostResident, residentMegabytes());
        picture.reset();
        std::filesystem::remove(file);
        first.push_back(milliseconds([&] { scan(root, nullptr); }));
        picture = scan(root, next);
        next.reset();
        malloc_trim(0);
    }
    return {row(u"scan after one file was added"_s, median(added), median(first), u"ms"_s),
            row(u"scan when nothing changed"_s, median(unchanged), median(first), u"ms"_s),
            row(u"memory of the picture"_s, resident - empty, {}, u"MB"_s),
            row(u"memory of two pictures during a rescan"_s, mostResident - empty, {}, u"MB"_s)};
}

QJsonArray ask(const Location &root)
{
    const Picture picture = scan(root, nullptr);
    double slowest = 0;
    QString slowestNeedle;
    for (const QString &needle :
         {u"a"_s, u"e"_s, u"o"_s, u" "_s, u"_"_s, u"0"_s, u"oo"_s, u"00"_s, u"whoosh"_s, u"a b"_s,
          u"not there"_s, u"film leak"_s, u"st"_s, u"au"_s, u"1234"_s, u"\u00e9"_s}) {
        std::vector<double> times;
        for (int i = 0; i < rounds; ++i)
            times.push_back(milliseconds([&] { picture->matching(needle); }));
        if (median(times) > slowest) {
            slowest = median(times);
            slowestNeedle = needle;
        }
    }
    const AssetIndex count = picture->size();
    size_t found = 0;
    const double finding = milliseconds([&] {
        for (AssetIndex i = 0; i < count; ++i)
            found += picture->find(picture->asset(i).url) == i;
    });
    return {row(u"slowest search ('"_s + slowestNeedle + u"')"_s, slowest, {}, u"ms"_s),
            row(u"finding every asset"_s, found == count ? finding : -1, {}, u"ms"_s)};
}

} // namespace

int main(int argc, char **argv)
{
    const Location root = argc == 2 ? Location::fromBytes(argv[1]) : Location();
    if (root.isEmpty()) {
        std::fputs("usage: vault_scan_bench ROOT\n", stderr);
        return 1;
    }
    scan(root, nullptr);
    QJsonArray rows{scanFirst(root)};
    for (const QJsonArray &more : {scanAgain(root), ask(root)}) {
        for (const QJsonValue &one : more)
            rows.append(one);
    }
    std::fputs(QJsonDocument(rows).toJson().constData(), stdout);
}
