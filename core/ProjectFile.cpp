// Saving and opening project files. Saving writes "<path>.saving" and renames it
// over the target, so the target is always the old file or the complete new one.
#include "core/ProjectFile.h"

#include "core/DocumentJson.h"
#include "core/JsonLayout.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace cad {

namespace {

constexpr const char* kFormat = "ostrovancad-project";
constexpr int kFormatVersion = 1;

bool writeFile(const std::string& path, const Bytes& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return false;
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    ok = std::fflush(file) == 0 && ok;
    ok = fsync(fileno(file)) == 0 && ok;
    return std::fclose(file) == 0 && ok;
}

// A file marked read-only is never replaced, even by a user who could.
bool markedReadOnly(const std::string& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return false;
    return access(path.c_str(), W_OK) != 0 || (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

Result<nlohmann::json> parseEntry(const ArchiveReader& archive, const char* name) {
    Result<Bytes> bytes = archive.read(name);
    if (!bytes) return Error(bytes);
    nlohmann::json json = nlohmann::json::parse(*bytes, nullptr, false);
    if (json.is_discarded()) return fail(std::string(name) + " is not valid JSON");
    return json;
}

Result<void> checkManifest(const nlohmann::json& manifest) {
    auto format = manifest.is_object() ? manifest.find("format") : manifest.end();
    if (!manifest.is_object() || format == manifest.end() || *format != kFormat)
        return fail("not a project file");
    auto version = manifest.find("formatVersion");
    if (version == manifest.end() || !version->is_number_integer() ||
        version->get<std::int64_t>() < 1)
        return fail("unknown format version");
    std::int64_t n = version->get<std::int64_t>();
    if (n > kFormatVersion)
        return fail("saved by a newer version (format " + std::to_string(n) +
                    "); this build reads format " + std::to_string(kFormatVersion) + " and older");
    return {};
}

} // namespace

Result<Bytes> projectBytes(const Document& document, const std::string& generator,
                           const ObjectTypes& types) {
    SideFiles sideFiles;
    std::string documentText = layoutJson(writeDocumentJson(document, sideFiles, types));
    nlohmann::ordered_json manifest = nlohmann::ordered_json::object();
    manifest["format"] = kFormat;
    manifest["formatVersion"] = kFormatVersion;
    if (!generator.empty()) manifest["generator"] = generator;

    std::vector<ArchiveEntry> entries;
    entries.push_back({"manifest.json", layoutJson(manifest), 6});
    entries.push_back({"document.json", std::move(documentText), 6});
    for (auto& [name, bytes] : sideFiles) // in the order of their names
        entries.push_back({name, std::move(bytes), name.rfind("scans/", 0) == 0 ? 1 : 6});
    return writeArchive(entries);
}

SaveSteps SaveSteps::real() {
    return {writeFile, [](const std::string& from, const std::string& to) {
                std::error_code ec;
                std::filesystem::rename(from, to, ec);
                return !ec;
            }};
}

Result<void> writeProject(const Document& document, const std::string& path,
                          const std::string& generator, const ObjectTypes& types,
                          const SaveSteps& steps) {
    Result<Bytes> bytes = projectBytes(document, generator, types);
    if (!bytes) return Error(bytes);
    // Renaming succeeds over a read-only file here, so refuse it before writing.
    if (markedReadOnly(path)) return fail("Could not replace " + path + ".");
    const std::string temporary = path + ".saving";
    std::error_code ec;
    if (!steps.write(temporary, *bytes)) {
        std::filesystem::remove(temporary, ec);
        return fail("Could not write " + temporary + ".");
    }
    if (!steps.replace(temporary, path)) {
        std::filesystem::remove(temporary, ec);
        return fail("Could not replace " + path + ".");
    }
    return {};
}

Result<std::unique_ptr<Document>> readProjectBytes(Bytes bytes, const std::string& path,
                                                   const ObjectTypes& types) {
    Result<std::unique_ptr<ArchiveReader>> archive = ArchiveReader::open(std::move(bytes));
    if (!archive) return fail(path + " is not a project file (or is damaged).");
    auto damaged = [&](const std::string& problem) {
        return fail(path + " is damaged: " + problem);
    };

    Result<nlohmann::json> manifest = parseEntry(**archive, "manifest.json");
    if (!manifest) return damaged(manifest.error());
    if (Result<void> ok = checkManifest(*manifest); !ok) return damaged(ok.error());
    Result<nlohmann::json> documentJson = parseEntry(**archive, "document.json");
    if (!documentJson) return damaged(documentJson.error());

    auto document = std::make_unique<Document>();
    if (Result<void> ok = readDocumentRecords(*documentJson, **archive, types, *document); !ok)
        return damaged(ok.error());
    if (Result<void> ok = computeReadDocument(*documentJson, *document); !ok)
        return fail(path + " has invalid geometry: " + ok.error());
    return document;
}

Result<std::unique_ptr<Document>> readProject(const std::string& path, const ObjectTypes& types) {
    const Error cannotOpen{"Could not open " + path + "."};
    // A folder opens as a stream here, and its first read then throws.
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return cannotOpen;
    std::ifstream in(path, std::ios::binary);
    if (!in) return cannotOpen;
    Bytes bytes;
    try { // a failed read throws, whatever the stream's exception mask
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    } catch (const std::ios_base::failure&) {
        return cannotOpen;
    }
    if (in.bad()) return cannotOpen;
    return readProjectBytes(std::move(bytes), path, types);
}

} // namespace cad
