#include "app/file_system.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace talvex::app {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

// The checks read and make files with the standard library, not with the code under test.
std::optional<std::string> contentsOf(const std::string& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return std::nullopt;
    }
    std::ifstream input(path, std::ios::binary);
    std::ostringstream text;
    text << input.rdbuf();
    return std::move(text).str();
}

void makeFile(const std::string& path, const std::string& text) {
    std::ofstream output(path, std::ios::binary | std::ios::trunc);
    output << text;
    ASSERT_TRUE(output.good()) << path;
}

// Names of everything directly in the folder, hidden ones too.
std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

class FileSystemTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "talvex-files-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr) << pattern;
        m_root = pattern;
        // Open to everyone, so a test that drops its privileges can still reach its folders.
        fs::permissions(m_root, fs::perms::owner_all | fs::perms::group_read |
                                    fs::perms::group_exec | fs::perms::others_read |
                                    fs::perms::others_exec);
    }

    void TearDown() override {
        if (m_root.empty()) {
            return;
        }
        // Folders a test locked would keep their files from being removed.
        std::error_code error;
        for (auto walk = fs::recursive_directory_iterator(m_root, error);
             !error && walk != fs::recursive_directory_iterator(); walk.increment(error)) {
            if (walk->is_directory(error)) {
                fs::permissions(walk->path(), fs::perms::owner_all, fs::perm_options::add, error);
            }
        }
        fs::remove_all(m_root, error);
        EXPECT_FALSE(fs::exists(m_root)) << m_root;
    }

    [[nodiscard]] std::string path(const std::string& name) const { return m_root + "/" + name; }

    std::string m_root;
    LocalFileSystem m_files;
};

TEST_F(FileSystemTest, WritesUtf8TextAndReadsItBack) {
    const std::string text = "3d6 ± 1\r\n5 € • ≤ 10\n🎲 d20";
    const std::string target = path("list.txt");
    ASSERT_TRUE(m_files.writeTextAtomically(target, text));
    EXPECT_EQ(contentsOf(target), text);
    EXPECT_EQ(m_files.readText(target), text);
}

TEST_F(FileSystemTest, WritesEveryByteValueAndReadsItBack) {
    std::string bytes;
    for (int round = 0; round < 3; ++round) {
        for (int value = 0; value < 256; ++value) {
            bytes.push_back(static_cast<char>(value));
        }
    }
    const std::string target = path("bytes.rtf");
    ASSERT_TRUE(m_files.writeTextAtomically(target, bytes));
    EXPECT_EQ(contentsOf(target), bytes);
    EXPECT_EQ(m_files.readText(target), bytes);
}

TEST_F(FileSystemTest, WritesEmptyText) {
    const std::string target = path("empty.txt");
    ASSERT_TRUE(m_files.writeTextAtomically(target, ""));
    EXPECT_EQ(contentsOf(target), std::string());
    EXPECT_EQ(m_files.readText(target), std::string());
}

TEST_F(FileSystemTest, OverwritesWithShorterTextAndLeavesOnlyTheTarget) {
    const std::string target = path("list.txt");
    makeFile(target, std::string(5000, 'x'));
    ASSERT_TRUE(m_files.writeTextAtomically(target, "2d6"));
    ASSERT_TRUE(m_files.writeTextAtomically(target, "1d20"));
    EXPECT_EQ(contentsOf(target), "1d20"s);
    EXPECT_EQ(namesIn(m_root), std::set<std::string>{"list.txt"});
}

TEST_F(FileSystemTest, WritesThroughARelativePath) {
    const fs::path before = fs::current_path();
    fs::current_path(m_root);
    const bool written = m_files.writeTextAtomically("here.txt", "3d6");
    fs::current_path(before);
    EXPECT_TRUE(written);
    EXPECT_EQ(contentsOf(path("here.txt")), "3d6"s);
}

TEST_F(FileSystemTest, WritingOverAFolderFailsAndLeavesIt) {
    const std::string full = path("full.txt");
    const std::string empty = path("empty.txt");
    ASSERT_TRUE(fs::create_directory(full));
    ASSERT_TRUE(fs::create_directory(empty));
    makeFile(full + "/inside", "kept");
    EXPECT_FALSE(m_files.writeTextAtomically(full, "3d6"));
    EXPECT_FALSE(m_files.writeTextAtomically(empty, "3d6"));
    EXPECT_TRUE(fs::is_directory(full));
    EXPECT_TRUE(fs::is_directory(empty));
    EXPECT_EQ(contentsOf(full + "/inside"), "kept"s);
    EXPECT_EQ(namesIn(m_root), (std::set<std::string>{"empty.txt", "full.txt"}));
}

TEST_F(FileSystemTest, WritingIntoAMissingFolderFails) {
    EXPECT_FALSE(m_files.writeTextAtomically(path("missing/list.txt"), "3d6"));
    EXPECT_FALSE(fs::exists(path("missing")));
}

TEST_F(FileSystemTest, WritingToAPathWithoutANameFails) {
    EXPECT_FALSE(m_files.writeTextAtomically(m_root + "/", "3d6"));
    EXPECT_FALSE(m_files.writeTextAtomically("", "3d6"));
    EXPECT_TRUE(namesIn(m_root).empty());
}

TEST_F(FileSystemTest, AFailedWriteLeavesTheOldFileWholeAndNoTemporary) {
    const std::string target = path("list.txt");
    const std::string old = "3d6\n2d10\n";
    makeFile(target, old);
    // In a child, whose files may not grow past 4 KiB: the new text then fails part way with
    // EFBIG. The exit status says whether the write reported success.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit cap{4096, 4096};
        if (::setrlimit(RLIMIT_FSIZE, &cap) != 0) {
            ::_exit(2);
        }
        LocalFileSystem files;
        ::_exit(files.writeTextAtomically(target, std::string(64 * 1024, 'n')) ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1: the write succeeded, 2: no cap";
    EXPECT_EQ(contentsOf(target), old);
    EXPECT_EQ(namesIn(m_root), std::set<std::string>{"list.txt"});
}

TEST_F(FileSystemTest, ReadingAMissingFileOrAFolderIsNone) {
    ASSERT_TRUE(fs::create_directory(path("folder")));
    EXPECT_EQ(m_files.readText(path("missing.txt")), std::nullopt);
    EXPECT_EQ(m_files.readText(path("folder")), std::nullopt);
}

TEST_F(FileSystemTest, CreatesDirectoriesWithTheirParents) {
    const std::string deep = path("a/b/c");
    EXPECT_TRUE(m_files.createDirectories(deep));
    EXPECT_TRUE(fs::is_directory(deep));
    EXPECT_TRUE(m_files.isDirectory(deep));
    // Already there is fine.
    EXPECT_TRUE(m_files.createDirectories(deep));
    // A file in the way is not.
    makeFile(path("file"), "x");
    EXPECT_FALSE(m_files.createDirectories(path("file/below")));
    EXPECT_FALSE(m_files.createDirectories(path("file")));
}

TEST_F(FileSystemTest, FilesUnderFindsFilesAtAnyDepthSortedAndSkipsFolders) {
    ASSERT_TRUE(fs::create_directories(path("b/deeper/deepest")));
    ASSERT_TRUE(fs::create_directories(path("a")));
    ASSERT_TRUE(fs::create_directories(path("empty")));
    makeFile(path("z.txt"), "1");
    makeFile(path("b/deeper/c.txt"), "2");
    makeFile(path("a/y.rtf"), "3");
    makeFile(path(".hidden"), "4");
    makeFile(path("b/a.txt"), "5");
    const std::vector<std::string> expected = {path(".hidden"), path("a/y.rtf"), path("b/a.txt"),
                                               path("b/deeper/c.txt"), path("z.txt")};
    EXPECT_EQ(m_files.filesUnder(m_root), expected);
}

TEST_F(FileSystemTest, FilesUnderAnEmptyFolderIsEmpty) {
    EXPECT_EQ(m_files.filesUnder(m_root), std::vector<std::string>());
}

TEST_F(FileSystemTest, FilesUnderAMissingFolderOrAFileIsNone) {
    makeFile(path("file.txt"), "x");
    EXPECT_EQ(m_files.filesUnder(path("missing")), std::nullopt);
    EXPECT_EQ(m_files.filesUnder(path("file.txt")), std::nullopt);
}

TEST_F(FileSystemTest, RemovesAFile) {
    makeFile(path("list.txt"), "3d6");
    EXPECT_TRUE(m_files.removeFile(path("list.txt")));
    EXPECT_FALSE(fs::exists(path("list.txt")));
}

TEST_F(FileSystemTest, RemovingAMissingFileFails) {
    EXPECT_FALSE(m_files.removeFile(path("missing.txt")));
}

TEST_F(FileSystemTest, RemovingAFolderFailsAndLeavesIt) {
    // An empty folder is the one a careless removal would take.
    ASSERT_TRUE(fs::create_directory(path("empty")));
    ASSERT_TRUE(fs::create_directory(path("full")));
    makeFile(path("full/list.txt"), "3d6");
    EXPECT_FALSE(m_files.removeFile(path("empty")));
    EXPECT_FALSE(m_files.removeFile(path("full")));
    EXPECT_TRUE(fs::is_directory(path("empty")));
    EXPECT_EQ(contentsOf(path("full/list.txt")), "3d6"s);
}

// What a user without rights to a folder must not get away with, one bit each.
enum LockedOutcome : int {
    kWroteNewFile = 1 << 0,
    kOverwroteFile = 1 << 1,
    kRemovedFile = 1 << 2,
    kCouldNotReadFile = 1 << 3,
    kCouldNotWriteElsewhere = 1 << 4,
    kListedUnreadableFolder = 1 << 5,
    kCouldNotListLockedFolder = 1 << 6,
    kKeptPrivileges = 1 << 7,
};

std::vector<std::string> describe(int outcome) {
    const std::pair<int, const char*> meanings[] = {
        {kWroteNewFile, "wrote a new file into the read-only folder"},
        {kOverwroteFile, "overwrote the file in the read-only folder"},
        {kRemovedFile, "removed the file from the read-only folder"},
        {kCouldNotReadFile, "could not read the file in the read-only folder"},
        {kCouldNotWriteElsewhere, "could not write into a folder open to all"},
        {kListedUnreadableFolder, "listed a folder it may not read"},
        {kCouldNotListLockedFolder, "did not list the read-only folder as it is"},
        {kKeptPrivileges, "could not give up root"},
    };
    std::vector<std::string> found;
    for (const auto& [bit, meaning] : meanings) {
        if ((outcome & bit) != 0) {
            found.emplace_back(meaning);
        }
    }
    if ((outcome & ~0xFF) != 0) {
        found.emplace_back("ended abnormally: " + std::to_string(outcome));
    }
    return found;
}

// Runs `checks` in a child that has given up root for "nobody", whose exit status carries the
// outcome; root may write anywhere, so only without its privileges do permissions show.
int runAsNobody(const std::function<int()>& checks) {
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        const bool dropped = ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 &&
                             ::setuid(kNobody) == 0 && ::setuid(0) != 0;
        ::_exit(dropped ? checks() : kKeptPrivileges);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        return 1 << 8;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : (1 << 9) | status;
}

TEST_F(FileSystemTest, AReadOnlyFolderRefusesWritesAndRemovals) {
    const std::string locked = path("locked");
    const std::string writable = path("writable");
    const std::string sealed = path("sealed");
    const std::string kept = locked + "/kept.txt";
    for (const std::string& folder : {locked, writable, sealed}) {
        ASSERT_TRUE(fs::create_directory(folder));
    }
    makeFile(kept, "3d6");
    makeFile(sealed + "/hidden.txt", "2d6");
    fs::permissions(locked, static_cast<fs::perms>(0555));
    fs::permissions(writable, fs::perms::all);
    fs::permissions(sealed, fs::perms::none);

    const auto checks = [&] {
        LocalFileSystem files;
        int outcome = 0;
        if (files.writeTextAtomically(locked + "/new.txt", "1d4")) {
            outcome |= kWroteNewFile;
        }
        if (files.writeTextAtomically(kept, "1d4")) {
            outcome |= kOverwroteFile;
        }
        if (files.removeFile(kept)) {
            outcome |= kRemovedFile;
        }
        if (files.readText(kept) != "3d6") {
            outcome |= kCouldNotReadFile;
        }
        if (!files.writeTextAtomically(writable + "/new.txt", "1d4")) {
            outcome |= kCouldNotWriteElsewhere;
        }
        if (files.filesUnder(sealed).has_value()) {
            outcome |= kListedUnreadableFolder;
        }
        if (files.filesUnder(locked) != std::vector<std::string>{kept}) {
            outcome |= kCouldNotListLockedFolder;
        }
        return outcome;
    };
    const int outcome = ::geteuid() == 0 ? runAsNobody(checks) : checks();
    EXPECT_EQ(outcome, 0) << ::testing::PrintToString(describe(outcome));

    EXPECT_EQ(contentsOf(kept), "3d6"s);
    EXPECT_EQ(namesIn(locked), std::set<std::string>{"kept.txt"});
    EXPECT_EQ(namesIn(writable), std::set<std::string>{"new.txt"});
}

// A text of about `size` bytes whose every line names it, so no mixture or prefix of two such
// texts equals either.
std::string numberedLines(const std::string& label, std::size_t size) {
    std::string text;
    for (int line = 0; text.size() < size; ++line) {
        text += label + " line " + std::to_string(line) + " of a list that must arrive whole\n";
    }
    return text;
}

// Counters a killed writer leaves behind for the parent to read.
struct WriterCounts {
    std::atomic<long> written;
    std::atomic<long> failed;
};

TEST_F(FileSystemTest, AWriterKilledAtAnyMomentLeavesTheOldTextOrTheNew) {
    constexpr int kIterations = 500;
    const std::string name = "rolls.txt";
    const std::string target = path(name);
    const std::string first = numberedLines("first", 200 * 1024);
    const std::string second = numberedLines("second", 300 * 1024);

    void* shared = ::mmap(nullptr, sizeof(WriterCounts), PROT_READ | PROT_WRITE,
                          MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto* counts = new (shared) WriterCounts{};

    std::mt19937 random(20261123);
    std::uniform_int_distribution<int> pause(0, 3000);
    long written = 0;
    int sawFirst = 0;
    int sawSecond = 0;
    int sawNothing = 0;
    for (int iteration = 0; iteration < kIterations; ++iteration) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            LocalFileSystem files;
            for (int turn = iteration;; ++turn) {
                if (files.writeTextAtomically(target, turn % 2 == 0 ? first : second)) {
                    ++counts->written;
                } else {
                    ++counts->failed;
                }
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
        written = counts->written.load();

        const std::optional<std::string> found = contentsOf(target);
        if (!found) {
            // Only before the first write has been renamed into place.
            ASSERT_EQ(written, 0) << "iteration " << iteration;
            ++sawNothing;
        } else if (*found == first) {
            ++sawFirst;
        } else if (*found == second) {
            ++sawSecond;
        } else {
            FAIL() << "iteration " << iteration << " left " << found->size() << " bytes";
        }
        // The killed writer may leave its temporary; nothing else may appear, and nothing else
        // may pass for a list.
        const std::string temporary = "." + name + ".partial-" + std::to_string(child);
        for (const std::string& entry : namesIn(m_root)) {
            if (entry == name) {
                continue;
            }
            EXPECT_NE(fs::path(entry).extension(), ".txt") << entry;
            ASSERT_EQ(entry, temporary) << "iteration " << iteration;
            fs::remove(path(entry));
        }
    }
    const long failed = counts->failed.load();
    ::munmap(shared, sizeof(WriterCounts));

    EXPECT_EQ(failed, 0);
    // Kills that all came before any write finished would have shown nothing.
    EXPECT_GT(written, 0);
    EXPECT_GT(sawFirst + sawSecond, 0);
    RecordProperty("first", sawFirst);
    RecordProperty("second", sawSecond);
    RecordProperty("nothing", sawNothing);
}

}  // namespace
}  // namespace talvex::app
