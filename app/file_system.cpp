#include "app/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace talvex::app {

namespace fs = std::filesystem;

namespace {

// Read and write for everyone the umask lets through, as for any new file.
constexpr mode_t kNewFileMode = 0666;

// Goes on after short writes and interruptions until every byte is written.
bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Makes a rename in the folder durable.
bool syncFolder(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    // File systems that cannot sync a folder say EINVAL; there is nothing more to do on them.
    const bool synced = ::fsync(descriptor) == 0 || errno == EINVAL;
    ::close(descriptor);
    return synced;
}

}  // namespace

bool LocalFileSystem::exists(const std::string& path) const {
    std::error_code error;
    return fs::exists(fs::u8path(path), error);
}

bool LocalFileSystem::isDirectory(const std::string& path) const {
    std::error_code error;
    return fs::is_directory(fs::u8path(path), error);
}

bool LocalFileSystem::createDirectories(const std::string& path) {
    std::error_code error;
    fs::create_directories(fs::u8path(path), error);
    return isDirectory(path);
}

bool LocalFileSystem::removeAll(const std::string& path) {
    std::error_code error;
    fs::remove_all(fs::u8path(path), error);
    return !error && !exists(path);
}

bool LocalFileSystem::removeFile(const std::string& path) {
    // unlink never takes a folder, and nothing can become one between a check and the removal.
    return ::unlink(path.c_str()) == 0;
}

std::optional<std::vector<std::string>> LocalFileSystem::filesUnder(
    const std::string& folder) const {
    const fs::path root = fs::u8path(folder);
    std::error_code error;
    // Skipping unreadable folders would turn an unreadable root into an empty one, so the root is
    // opened once without that leniency; below it, an unreadable subfolder only hides its files.
    const fs::directory_iterator top(root, error);
    if (error) {
        return std::nullopt;
    }
    fs::recursive_directory_iterator walk(root, fs::directory_options::skip_permission_denied,
                                          error);
    std::vector<std::string> found;
    for (const fs::recursive_directory_iterator end; !error && walk != end; walk.increment(error)) {
        std::error_code statusError;
        if (walk->is_regular_file(statusError)) {
            found.push_back(walk->path().string());
        }
    }
    // A walk cut short would pass for a folder with fewer files.
    if (error) {
        return std::nullopt;
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<std::string> LocalFileSystem::readText(const std::string& path) const {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return std::nullopt;
    }
    std::string text;
    std::array<char, 1 << 16> buffer{};
    for (;;) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got == 0) {
            break;
        }
        if (got < 0 && errno != EINTR) {
            // A folder opens but cannot be read (EISDIR).
            ::close(descriptor);
            return std::nullopt;
        }
        if (got > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
    }
    ::close(descriptor);
    return text;
}

bool LocalFileSystem::writeTextAtomically(const std::string& path, const std::string& text) {
    const std::size_t slash = path.rfind('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::string name = path.substr(nameStart);
    if (name.empty() || name == "." || name == "..") {
        return false;
    }
    // In the same folder, so the rename stays on one file system; hidden, and with an extension
    // that is never a list's or a log's, so nothing reading the folder takes it for one.
    const std::string temporary =
        path.substr(0, nameStart) + "." + name + ".partial-" + std::to_string(::getpid());
    // One left by a killed process that had the same id is only in the way.
    ::unlink(temporary.c_str());
    const int descriptor =
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
    if (descriptor < 0) {
        return false;
    }
    const bool written = writeAll(descriptor, text) && ::fsync(descriptor) == 0;
    const bool closed = ::close(descriptor) == 0;
    if (!written || !closed || ::rename(temporary.c_str(), path.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    // The new text is in place by now; false from here says only that the rename might not
    // survive a crash.
    return syncFolder(slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash));
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) {
        return name;
    }
    return folder.back() == '/' ? folder + name : folder + "/" + name;
}

}  // namespace talvex::app
