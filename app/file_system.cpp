#include "app/file_system.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace talvex::app {

namespace fs = std::filesystem;

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
    const fs::path target = fs::u8path(path);
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(target, error)) &&
        !fs::is_symlink(fs::symlink_status(target, error))) {
        return false;
    }
    return fs::remove(target, error) && !error;
}

std::optional<std::vector<std::string>> LocalFileSystem::filesUnder(
    const std::string& folder) const {
    std::error_code error;
    fs::recursive_directory_iterator walk(fs::u8path(folder),
                                          fs::directory_options::skip_permission_denied, error);
    if (error) {
        return std::nullopt;
    }
    std::vector<std::string> found;
    for (const fs::recursive_directory_iterator end; walk != end; walk.increment(error)) {
        if (error) {
            break;
        }
        std::error_code statusError;
        if (walk->is_regular_file(statusError)) {
            found.push_back(walk->path().string());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<std::string> LocalFileSystem::readText(const std::string& path) const {
    std::ifstream input(fs::u8path(path), std::ios::binary);
    if (!input) {
        return std::nullopt;
    }
    std::string text((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
    if (input.bad()) {
        return std::nullopt;
    }
    return text;
}

bool LocalFileSystem::writeTextAtomically(const std::string& path, const std::string& text) {
    const fs::path target = fs::u8path(path);
    fs::path temporary = target;
    temporary += ".partial";
    {
        std::ofstream output(temporary, std::ios::binary | std::ios::trunc);
        if (!output) {
            return false;
        }
        output.write(text.data(), static_cast<std::streamsize>(text.size()));
        output.flush();
        if (!output) {
            std::error_code ignored;
            fs::remove(temporary, ignored);
            return false;
        }
    }
    std::error_code error;
    fs::rename(temporary, target, error);
    if (error) {
        fs::remove(temporary, error);
        return false;
    }
    return true;
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) {
        return name;
    }
    return folder.back() == '/' ? folder + name : folder + "/" + name;
}

}  // namespace talvex::app
