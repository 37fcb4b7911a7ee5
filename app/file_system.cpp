#include "app/file_system.h"

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
