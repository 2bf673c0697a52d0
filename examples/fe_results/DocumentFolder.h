#pragma once

#include <filesystem>
#include <string>

namespace fe {

/// A folder of files that appears under its name whole, or not at all.
///
/// The files are made in a folder beside it, "NAME.part-PID", which Publish renames; a folder that
/// was never published is removed with all that is in it. (A killed process leaves it under that
/// name.)
class DocumentFolder
{
public:
    /// `name` must not exist yet, or be an empty folder. An empty `name` stands for a folder among
    /// the temporary ones, which is not to be published. \throws std::runtime_error.
    explicit DocumentFolder(const std::string& name);

    DocumentFolder(const DocumentFolder&) = delete;
    DocumentFolder& operator=(const DocumentFolder&) = delete;
    ~DocumentFolder();

    /// The path of a file in the folder as it is called now.
    [[nodiscard]] std::string PathOf(const std::string& file) const;

    /// Gives the folder its name. Call it once, with no file of the folder open.
    void Publish();

private:
    std::filesystem::path mName; // empty for a temporary folder
    std::filesystem::path mPath; // where the files are; empty once there is nothing to remove
};

} // namespace fe
