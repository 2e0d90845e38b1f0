// Reading and writing the footprint library folder. Every change goes through one
// file at a time, and a refused change leaves the folder as it was.
#include "sketch/footprints/FootprintLibrary.h"

#include "core/ReplaceFile.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace cad {

namespace fs = std::filesystem;

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

bool isFootprintFile(const fs::path& path) {
    const std::string file = path.filename().string();
    const std::string_view ending = kFootprintEnding;
    return file.size() > ending.size() &&
           std::string_view(file).substr(file.size() - ending.size()) == ending;
}

bool onAxes(const SketchRef& ref) {
    return ref.entity == "Origin" || ref.entity == "XAxis" || ref.entity == "YAxis";
}

} // namespace

fs::path footprintFolder() {
    if (std::string dir = environment("KORVEL_DATA_DIR"); !dir.empty())
        return fs::path(dir) / "footprints";
    if (std::string dir = environment("LOCALAPPDATA"); !dir.empty())
        return fs::path(dir) / "KorvelStudio" / "footprints";
    if (std::string home = environment("HOME"); !home.empty())
        return fs::path(home) / ".local" / "share" / "KorvelStudio" / "footprints";
    return fs::path("footprints");
}

Result<Footprint> readFootprintFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::error_code ec;
    if (!in || fs::is_directory(path, ec)) return fail("Couldn't read " + path);
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.bad()) return fail("Couldn't read " + path);
    const nlohmann::json record = nlohmann::json::parse(text, nullptr, false);
    if (record.is_discarded()) return fail(path + " isn't a Korvel Studio footprint.");
    return footprintFromJson(record, path);
}

std::string FootprintLibrary::pathFor(std::string_view name) const {
    return (folder_ / footprintFileName(name)).string();
}

std::vector<StoredFootprint> FootprintLibrary::list() const {
    std::vector<StoredFootprint> found;
    std::error_code ec;
    for (fs::directory_iterator it(folder_, ec), end; !ec && it != end; it.increment(ec)) {
        if (!isFootprintFile(it->path())) continue;
        const std::string path = it->path().string();
        if (Result<Footprint> footprint = readFootprintFile(path))
            found.push_back({path, std::move(footprint).value()});
    }
    std::sort(found.begin(), found.end(), [](const StoredFootprint& a, const StoredFootprint& b) {
        return a.footprint.name != b.footprint.name ? a.footprint.name < b.footprint.name
                                                    : a.path < b.path;
    });
    return found;
}

Result<StoredFootprint> FootprintLibrary::find(std::string_view name) const {
    const std::string own = pathFor(name);
    std::error_code ec;
    if (fs::exists(own, ec)) {
        Result<Footprint> footprint = readFootprintFile(own);
        if (!footprint) return Error(footprint);
        if (footprint->name == name) return StoredFootprint{own, std::move(footprint).value()};
    }
    for (StoredFootprint& stored : list())
        if (stored.footprint.name == name) return std::move(stored);
    return fail("There's no footprint named '" + std::string(name) + "'.");
}

Result<std::string> FootprintLibrary::save(const Footprint& footprint, bool replace) const {
    if (footprint.name.empty()) return fail("A footprint needs a name.");
    if (footprint.entities.empty()) return fail("There's nothing to save: the sketch is empty.");
    const std::string path = pathFor(footprint.name);
    // What the save would overwrite: the footprint of that name, or another one whose
    // name comes to the same file name.
    std::optional<std::string> earlier;
    std::error_code ec;
    if (Result<StoredFootprint> same = find(footprint.name); same) {
        if (!replace) return fail("A footprint named '" + footprint.name + "' already exists.");
        if (same->path != path) earlier = same->path;
    } else if (fs::exists(path, ec)) {
        // A file that isn't a footprint of this name is only overwritten on request.
        Result<Footprint> other = readFootprintFile(path);
        if (!replace)
            return other ? fail("A footprint named '" + other->name + "' already exists.")
                         : Error(other);
    }

    fs::create_directories(folder_, ec);
    if (ec || !fs::is_directory(folder_, ec)) return fail("Couldn't write " + path);
    const std::string text = footprintToJson(footprint).dump(2) + "\n";
    Result<void> written = replaceFile(path, [&](const std::string& temporary) {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        out.close();
        return out.good();
    });
    if (!written) return Error(written);
    if (earlier) fs::remove(*earlier, ec);
    return "Saved the footprint '" + footprint.name + "'.";
}

Result<std::string> FootprintLibrary::remove(std::string_view name) const {
    Result<StoredFootprint> found = find(name);
    if (!found) return Error(found);
    std::error_code ec;
    if (!fs::remove(found->path, ec) || ec) return fail("Couldn't remove " + found->path + ".");
    return std::string("Removed the footprint.");
}

Result<Footprint> footprintFromSketch(const std::vector<SketchEntity>& entities,
                                      const std::vector<SketchConstraint>& constraints,
                                      std::string name, std::string description,
                                      const std::vector<std::string>& only) {
    if (name.empty()) return fail("A footprint needs a name.");
    Footprint footprint{std::move(name), std::move(description), {}, {}};
    for (const SketchEntity& e : entities) {
        const bool chosen = only.empty() || std::find(only.begin(), only.end(), e.id) != only.end();
        if (chosen) footprint.entities.push_back(e);
    }
    for (const std::string& id : only)
        if (!findEntity(entities, id)) return fail("No entity named '" + id + "'.");
    if (footprint.entities.empty()) return fail("There's nothing to save: the sketch is empty.");
    for (const SketchConstraint& c : constraints) {
        const bool inside = std::all_of(c.refs.begin(), c.refs.end(), [&](const SketchRef& ref) {
            return onAxes(ref) || findEntity(footprint.entities, ref.entity);
        });
        if (inside) footprint.constraints.push_back(c);
    }
    return footprint;
}

} // namespace cad
