#pragma once

#include <optional>
#include <string>
#include <vector>

namespace talvex::app {

// The file operations the application needs. Paths are plain UTF-8 texts.
class FileSystem {
  public:
    virtual ~FileSystem() = default;

    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;
    [[nodiscard]] virtual bool isDirectory(const std::string& path) const = 0;
    // Creates the folder with any missing parents; true when it exists afterwards.
    virtual bool createDirectories(const std::string& path) = 0;
    // Removes the file or the folder with everything in it; true when nothing is left.
    virtual bool removeAll(const std::string& path) = 0;
    // Removes one file (never a folder); true when it was there and is gone.
    virtual bool removeFile(const std::string& path) = 0;
    // Every file (not folder) in the folder and, at any depth, its subfolders, as full paths,
    // sorted; none when the folder cannot be read.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> filesUnder(
        const std::string& folder) const = 0;
    [[nodiscard]] virtual std::optional<std::string> readText(const std::string& path) const = 0;
    // Writes through a temporary file renamed into place, so a reader never sees half a file.
    virtual bool writeTextAtomically(const std::string& path, const std::string& text) = 0;
};

// The machine's own file system.
class LocalFileSystem final : public FileSystem {
  public:
    [[nodiscard]] bool exists(const std::string& path) const override;
    [[nodiscard]] bool isDirectory(const std::string& path) const override;
    bool createDirectories(const std::string& path) override;
    bool removeAll(const std::string& path) override;
    bool removeFile(const std::string& path) override;
    [[nodiscard]] std::optional<std::vector<std::string>> filesUnder(
        const std::string& folder) const override;
    [[nodiscard]] std::optional<std::string> readText(const std::string& path) const override;
    bool writeTextAtomically(const std::string& path, const std::string& text) override;
};

// `folder` joined with `name` by one slash.
[[nodiscard]] std::string joinPath(const std::string& folder, const std::string& name);

}  // namespace talvex::app
