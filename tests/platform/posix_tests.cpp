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
#include <sys/mman.h>
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
    void SetUp() override
    {
        write("file", "content");
        ASSERT_EQ(::symlink("file", at("link").c_str()), 0);
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"folder/inner"_s));
        ASSERT_EQ(::symlink("folder", at("linked").c_str()), 0);
        ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
        write("folder/inner/deep", "deep content");
        m_names = names();
    }

    Location at(QByteArrayView path) const
    {
        return Location::fromBytes(m_folder.path().toUtf8() + '/' + path.toByteArray());
    }
    void write(const char *name, QByteArrayView content)
    {
        ASSERT_TRUE(replaceAtomically(at(name), content, {.flush = Flush::No}));
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
    QStringList m_names;
};

TEST_F(Posix, ReadsRegularFilesWithinTheLimitAndWaitsForNothingElse)
{
    const struct
    {
        Location file;
        qint64 limit;
        Links links;
        int code;
    } cases[] = {{at("file"), 7, Links::NoFollow, 0},
                 {at("file"), 6, Links::NoFollow, EFBIG},
                 {at("link"), 7, Links::Follow, 0},
                 {at("link"), 7, Links::NoFollow, ELOOP},
                 {at("linked"), 7, Links::Follow, EISDIR},
                 {at("folder"), 7, Links::Follow, EISDIR},
                 {at("pipe"), 7, Links::Follow, EINVAL},
                 {Location::fromBytes("/dev/zero"), 7, Links::Follow, EINVAL},
                 {at("missing"), 7, Links::Follow, ENOENT},
                 {at("file/below"), 7, Links::Follow, ENOTDIR}};
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
    write("new", "mine");
    ASSERT_TRUE(replaceAtomically(at("shared"), "ours", {.flush = Flush::Yes, .mode = 0640}));
    ::umask(before);
    EXPECT_EQ(read("file"), "content");
    EXPECT_EQ(read("link"), "mine");
    for (const auto &[name, mode] : {std::pair{"link", 0600}, {"new", 0600}, {"shared", 0640}})
        EXPECT_EQ(statusAt(AT_FDCWD, at(name).c_str(), Links::NoFollow)->mode, mode_t(S_IFREG | mode))
            << name;

    const Result<FileDescriptor> folder = openFile(at("folder"), O_RDONLY | O_DIRECTORY);
    ASSERT_TRUE(folder);
    ASSERT_TRUE(replaceAtomically(folder->number(), "inside", "bytes", {}));
    EXPECT_EQ(read("folder/inside"), "bytes");
}

TEST_F(Posix, LeavesTheOldFileAndNoTemporaryOneWhenItCannotReplace)
{
    for (const Flush flush : {Flush::Yes, Flush::No}) {
        {
            const test::FileSizeLimit limit(1000);
            EXPECT_EQ(codeOf(replaceAtomically(at("file"), QByteArray(5000, 'x'), {.flush = flush})), EFBIG);
        }
        EXPECT_EQ(codeOf(replaceAtomically(at("folder"), "x", {.flush = flush})), EISDIR);
        EXPECT_EQ(codeOf(replaceAtomically(at("missing/file"), "x", {.flush = flush})), ENOENT);
        EXPECT_EQ(codeOf(replaceAtomically(at("file/below"), "x", {.flush = flush})), ENOTDIR);
    }
    EXPECT_EQ(read("file"), "content");
    EXPECT_EQ(names(), m_names);
}

TEST_F(Posix, FlushesTheBytesBeforeTheRenameAndTheNameAfterIt)
{
    // What is flushed and what a reader finds then.
    using Flushed = std::vector<std::pair<bool, QByteArray>>;
    const Flushed all = {{false, "content"}, {true, "new"}};
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
        EXPECT_EQ(names(), m_names);
    }
    EXPECT_EQ(replace(Flush::No, 0), Flushed());
}

TEST_F(Posix, DescriptorsAreClosedByTheirOneOwner)
{
    FileDescriptor first = *openFile(at("file"), O_RDONLY);
    const int numbers[] = {first.number(), openFile(at("file"), O_RDONLY)->number()};
    FileDescriptor second = *openFile(at("link"), O_RDONLY);
    EXPECT_EQ(second.number(), numbers[1]) << "free again";
    second = std::move(first);
    EXPECT_EQ(second.number(), numbers[0]);
    EXPECT_EQ(::fcntl(numbers[1], F_GETFD), -1);
    EXPECT_TRUE(second.close());
    EXPECT_EQ(::fcntl(numbers[0], F_GETFD), -1);
}

// The calls that only Linux has and what stands in for them do the same.
TEST_F(Posix, OpensBeneathAFolderThroughNoLinkEitherWay)
{
    const FileDescriptor root = *openFile(at({}), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::symlink("../file", at("folder/out").c_str()), 0);
    const struct
    {
        const char *path;
        int flags, code;
    } cases[] = {{"file", O_RDONLY, 0},
                 {"./folder//inner/deep", O_RDONLY, 0},
                 {".", O_RDONLY | O_DIRECTORY, 0},
                 {"folder/", O_PATH | O_DIRECTORY, 0},
                 {"link", O_RDONLY, ELOOP},
                 {"link", O_PATH, ELOOP},
                 {"linked", O_RDONLY | O_DIRECTORY, ELOOP},
                 {"linked", O_PATH | O_DIRECTORY, ELOOP},
                 {"linked/inner/deep", O_RDONLY, ELOOP},
                 {"folder/out", O_WRONLY | O_CREAT, ELOOP},
                 {"folder/new", O_WRONLY | O_CREAT | O_EXCL, 0},
                 {"file", O_WRONLY | O_CREAT | O_EXCL, EEXIST},
                 {"folder/missing", O_RDONLY, ENOENT},
                 {"file/below", O_RDONLY, ENOTDIR},
                 {"file/", O_RDONLY, ENOTDIR},
                 {"", O_RDONLY, ENOENT}};
    for (const auto open : {native::openBeneath, portable::openBeneath}) {
        for (const auto &[path, flags, code] : cases) {
            const Result<FileDescriptor> opened = open(root.number(), path, flags, 0600);
            EXPECT_EQ(codeOf(opened), code) << path;
            EXPECT_TRUE(!opened || ::fcntl(opened->number(), F_GETFD) == FD_CLOEXEC) << path;
        }
        EXPECT_EQ(::unlink(at("folder/new").c_str()), 0);
    }
    for (const char *outside : {"..", "folder/../file", "folder/../../x", "/etc/passwd"})
        EXPECT_EQ(codeOf(openBeneath(root.number(), outside, O_RDONLY)), EXDEV) << outside;
}

TEST_F(Posix, KnowsTheSameOfAFileEitherWay)
{
    const FileDescriptor folder = *openFile(at({}), O_RDONLY | O_DIRECTORY);
    const auto same = [](const Result<FileStatus> &a, const Result<FileStatus> &b) {
        return codeOf(a) == codeOf(b) &&
               (!a || (a->mode == b->mode && a->device == b->device && a->inode == b->inode &&
                       a->size == b->size && a->modified == b->modified && a->changed == b->changed));
    };
    for (const char *name : {"file", "link", "folder", "pipe", "missing", "file/below"}) {
        for (const Links links : {Links::Follow, Links::NoFollow})
            EXPECT_TRUE(same(native::statusAt(folder.number(), name, links, Freshness::Cached),
                             portable::statusAt(folder.number(), name, links, Freshness::Cached)))
                << name;
    }
    for (const int descriptor : {folder.number(), -1})
        EXPECT_TRUE(same(native::statusOf(descriptor), portable::statusOf(descriptor))) << descriptor;
    EXPECT_EQ(statusAt(folder.number(), "link", Links::Follow)->size, 7);
    EXPECT_TRUE(statusAt(folder.number(), "link", Links::NoFollow)->isLink());
    EXPECT_EQ(codeOf(statusOf(-1)), EBADF);
}

TEST(PosixCalls, ShareMemoryEitherWay)
{
    constexpr qint64 bytes = 1 << 20;
    for (const auto create : {native::createSharedMemory, portable::createSharedMemory}) {
        const Result<FileDescriptor> memory = create(bytes);
        ASSERT_TRUE(memory);
        EXPECT_EQ(statusOf(memory->number())->size, bytes);
        EXPECT_EQ(::fcntl(memory->number(), F_GETFD), FD_CLOEXEC);
        void *mapped = ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, memory->number(), 0);
        ASSERT_NE(mapped, MAP_FAILED);
        ASSERT_EQ(::pwrite(memory->number(), "word", 4, 100), 4);
        EXPECT_EQ(QByteArrayView(static_cast<const char *>(mapped) + 100, 4), "word");
        discardPages(memory->number(), bytes);
        ::munmap(mapped, bytes);
    }
    // A worker that shrinks what it was handed would end the program.
    const Result<FileDescriptor> sealed = native::createSharedMemory(bytes);
    EXPECT_EQ(::ftruncate(sealed->number(), 0), -1);
}

TEST(PosixCalls, CloseDescriptorsOnExecEitherWay)
{
    constexpr int number = 300;
    for (const auto closeFrom : {native::closeOnExecFrom, portable::closeOnExecFrom}) {
        for (const int copy : {number - 1, number, number + 9})
            ASSERT_EQ(::dup2(STDERR_FILENO, copy), copy);
        closeFrom(number);
        for (const int copy : {number - 1, number, number + 9}) {
            EXPECT_EQ(::fcntl(copy, F_GETFD), copy < number ? 0 : FD_CLOEXEC);
            ::close(copy);
        }
    }
}

} // namespace
} // namespace cratewell
