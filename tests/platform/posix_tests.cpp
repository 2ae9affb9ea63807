#include "platform/internal/system_calls.h"
#include "platform/posix/file_content.h"
#include "platform/posix/replace_file.h"
#include "platform/posix/shared_memory.h"

#include "support/file_size_limit.h"
#include "vault/files/system_calls.h"

#include <QDir>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cratewell {
namespace {

using namespace Qt::StringLiterals;

template<typename T> int codeOf(const Result<T> &result)
{
    return result ? 0 : result.error().code;
}

class Posix : public testing::Test
{
protected:
    Posix()
    {
        EXPECT_TRUE(QDir(m_folder.path()).mkpath(u"folder/inner"_s));
        for (const char *name : {"file", "folder/inner/deep"})
            write(name, "content");
        EXPECT_EQ(::symlink("file", at("link").c_str()), 0);
        EXPECT_EQ(::symlink("folder", at("linked").c_str()), 0);
        EXPECT_EQ(::symlink("../file", at("folder/out").c_str()), 0);
        EXPECT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    }

    Location at(QByteArrayView path) const
    {
        return Location::fromBytes(m_folder.path().toUtf8() + '/' + path.toByteArray());
    }
    void write(const char *name, QByteArrayView content)
    {
        EXPECT_TRUE(replaceAtomically(at(name), content, {.flush = Flush::No}));
    }
    QByteArray read(const char *name) const
    {
        return readBounded(at(name), 1000, Links::NoFollow).value_or("unreadable");
    }
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::Hidden);
    }

    const QTemporaryDir m_folder;
};

TEST_F(Posix, ReadsRegularFilesWithinTheLimitAndWaitsForNothingElse)
{
    using enum Links;
    const std::tuple<Location, qint64, Links, int> cases[] = {
        {at("file"), 7, NoFollow, 0},       {at("file"), 6, NoFollow, EFBIG},
        {at("link"), 7, Follow, 0},         {at("link"), 7, NoFollow, ELOOP},
        {at("linked"), 7, Follow, EISDIR},  {at("pipe"), 7, Follow, EINVAL},
        {at("missing"), 7, Follow, ENOENT}, {Location::fromBytes("/dev/zero"), 7, Follow, EINVAL},
        {at("file/x"), 7, Follow, ENOTDIR},
    };
    for (const auto &[file, limit, links, code] : cases) {
        const Result<QByteArray> bytes = readBounded(file, limit, links);
        EXPECT_EQ(codeOf(bytes), code) << file.c_str();
        EXPECT_EQ(bytes.value_or("content"), "content") << file.c_str();
        EXPECT_TRUE(bytes || bytes.error().message.startsWith(file.name() + u": "_s)) << file.c_str();
    }
}

TEST_F(Posix, ReplacesPrivatelyAndNeverThroughALink)
{
    const mode_t before = ::umask(0);
    write("link", "mine");
    ASSERT_TRUE(replaceAtomically(at("shared"), "ours", {.flush = Flush::Yes, .mode = 0640}));
    ::umask(before);
    EXPECT_EQ(read("file"), "content");
    EXPECT_EQ(read("link"), "mine");
    EXPECT_EQ(statusAt(AT_FDCWD, at("link").c_str(), Links::NoFollow)->mode, mode_t(S_IFREG | 0600));
    EXPECT_EQ(statusAt(AT_FDCWD, at("shared").c_str(), Links::NoFollow)->mode, mode_t(S_IFREG | 0640));
}

TEST_F(Posix, LeavesTheOldFileAndNoTemporaryOneWhenItCannotReplace)
{
    const QStringList before = names();
    for (const Flush flush : {Flush::Yes, Flush::No}) {
        {
            const test::FileSizeLimit limit(1000);
            EXPECT_EQ(codeOf(replaceAtomically(at("file"), QByteArray(5000, 'x'), {.flush = flush})), EFBIG);
        }
        EXPECT_EQ(codeOf(replaceAtomically(at("folder"), "x", {.flush = flush})), EISDIR);
        EXPECT_EQ(codeOf(replaceAtomically(at("missing/file"), "x", {.flush = flush})), ENOENT);
    }
    EXPECT_EQ(read("file"), "content");
    EXPECT_EQ(names(), before);
}

TEST_F(Posix, FlushesTheBytesBeforeTheRenameAndTheNameAfterIt)
{
    // What is flushed and what a reader finds then.
    using Flushed = std::vector<std::pair<bool, QByteArray>>;
    const Flushed all = {{false, "content"}, {true, "new"}};
    const QStringList before = names();
    const auto replace = [this](Flush how, size_t failing) {
        Flushed flushed;
        const test::WatchedCalls watched([&](std::string_view call, const std::string &path) {
            if (call != "fsync")
                return 0;
            flushed.emplace_back(path == at({}).c_str(), read("file"));
            return flushed.size() == failing ? EIO : 0;
        });
        const Result<void> done = replaceAtomically(at("file"), "new", {.flush = how});
        EXPECT_EQ(codeOf(done), failing > 0 ? EIO : 0);
        return flushed;
    };
    for (const size_t failing : {1, 2, 0}) {
        write("file", "content");
        EXPECT_EQ(replace(Flush::Yes, failing), failing == 1 ? Flushed{all[0]} : all);
        EXPECT_EQ(read("file"), failing == 1 ? "content" : "new");
        EXPECT_EQ(names(), before);
    }
    EXPECT_EQ(replace(Flush::No, 0), Flushed());
}

// The calls that only Linux has and what stands in for them do the same.
TEST_F(Posix, OpensBeneathAFolderThroughNoLinkEitherWay)
{
    const FileDescriptor root = *openFile(at({}), O_RDONLY | O_DIRECTORY);
    const std::tuple<const char *, int, int> cases[] = {
        {"file", O_RDONLY, 0},
        {"./folder//inner/deep", O_RDONLY, 0},
        {"folder/", O_PATH | O_DIRECTORY, 0},
        {"link", O_PATH, ELOOP},
        {"linked", O_RDONLY | O_DIRECTORY, ELOOP},
        {"linked", O_PATH | O_DIRECTORY, ELOOP},
        {"linked/inner/deep", O_RDONLY, ELOOP},
        {"folder/out", O_WRONLY | O_CREAT, ELOOP},
        {"folder/new", O_WRONLY | O_CREAT | O_EXCL, 0},
        {"file", O_WRONLY | O_CREAT | O_EXCL, EEXIST},
        {"file/", O_RDONLY, ENOTDIR},
        {"", O_RDONLY, ENOENT},
    };
    for (const auto open : {native::openBeneath, portable::openBeneath}) {
        for (const auto &[path, flags, code] : cases) {
            const Result<FileDescriptor> opened = open(root.number(), path, flags, 0600);
            EXPECT_EQ(codeOf(opened), code) << path;
            EXPECT_TRUE(!opened || ::fcntl(opened->number(), F_GETFD) == FD_CLOEXEC) << path;
        }
        EXPECT_EQ(::unlink(at("folder/new").c_str()), 0);
    }
    for (const char *outside : {"..", "folder/../file", "/etc/passwd"})
        EXPECT_EQ(codeOf(openBeneath(root.number(), outside, O_RDONLY)), EXDEV) << outside;
}

TEST_F(Posix, KnowsTheSameOfAFileEitherWay)
{
    const FileDescriptor folder = *openFile(at({}), O_RDONLY | O_DIRECTORY);
    const auto facts = [](const Result<FileStatus> &status) {
        const FileStatus s = status.value_or(FileStatus());
        return std::tuple(codeOf(status), s.mode, s.device, s.inode, s.size, s.modified, s.changed);
    };
    for (const char *name : {"file", "link", "folder", "pipe", "missing"}) {
        for (const Links links : {Links::Follow, Links::NoFollow})
            EXPECT_EQ(facts(native::statusAt(folder.number(), name, links, Freshness::Cached)),
                      facts(portable::statusAt(folder.number(), name, links, Freshness::Cached)))
                << name;
    }
    for (const int descriptor : {folder.number(), -1})
        EXPECT_EQ(facts(native::statusOf(descriptor)), facts(portable::statusOf(descriptor))) << descriptor;
    EXPECT_EQ(statusAt(folder.number(), "link", Links::Follow)->size, 7);
    EXPECT_TRUE(statusAt(folder.number(), "link", Links::NoFollow)->isLink());
}

TEST(PosixCalls, ShareMemoryEitherWay)
{
    for (const auto create : {native::createSharedMemory, portable::createSharedMemory}) {
        const Result<FileDescriptor> memory = create(4096);
        ASSERT_TRUE(memory);
        EXPECT_EQ(statusOf(memory->number())->size, 4096);
        EXPECT_EQ(::fcntl(memory->number(), F_GETFD), FD_CLOEXEC);
    }
    // A worker that shrinks what it was handed would end the program.
    EXPECT_EQ(::ftruncate(native::createSharedMemory(4096)->number(), 0), -1);
}

} // namespace
} // namespace cratewell
