// A fresh folder under the system's temporary folder for one test, removed
// afterwards.
#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace cad::testing {

class TempFolder {
public:
    TempFolder() {
        std::random_device seed;
        path_ = std::filesystem::temp_directory_path() /
                ("korvel-test-" + std::to_string(seed()) + std::to_string(seed()));
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace cad::testing
