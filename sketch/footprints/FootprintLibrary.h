// The per-user footprint library: a folder of ".footprint.json" files that every
// project shares. Listing, finding, saving and removing answer with sentences.
#pragma once

#include "core/Result.h"
#include "sketch/footprints/Footprint.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

// "footprints" in the per-user data folder: KORVEL_DATA_DIR when set and not empty,
// else LOCALAPPDATA/KorvelStudio, else HOME/.local/share/KorvelStudio; with none of
// them set, "footprints" relative to the working folder.
std::filesystem::path footprintFolder();

struct StoredFootprint {
    std::string path;
    Footprint footprint;
};

// The footprint in one file: "Couldn't read <path>" when it can't be opened,
// "<path> isn't a Korvel Studio footprint." for anything else.
Result<Footprint> readFootprintFile(const std::string& path);

class FootprintLibrary {
public:
    explicit FootprintLibrary(std::filesystem::path folder = footprintFolder())
        : folder_(std::move(folder)) {}

    const std::filesystem::path& folder() const { return folder_; }
    std::string pathFor(std::string_view name) const;

    // Every readable footprint, by name; unreadable files and other formats are skipped.
    std::vector<StoredFootprint> list() const;
    // The footprint whose name is `name`: its own file first (so a broken file
    // under that name says what is wrong with it), then every other file.
    Result<StoredFootprint> find(std::string_view name) const;
    // Writes through a temporary file, so a failed save leaves the old file.
    // "Saved the footprint '<name>'."
    Result<std::string> save(const Footprint& footprint, bool replace) const;
    // "Removed the footprint."
    Result<std::string> remove(std::string_view name) const;

private:
    std::filesystem::path folder_;
};

// A footprint of a sketch's entities (all of them when `only` is empty), with the
// constraints whose references all lie among those entities or on the origin and axes.
Result<Footprint> footprintFromSketch(const std::vector<SketchEntity>& entities,
                                      const std::vector<SketchConstraint>& constraints,
                                      std::string name, std::string description,
                                      const std::vector<std::string>& only = {});

} // namespace cad
