// Zip archives built and read entirely in memory: a project file is assembled as
// bytes and written with one write, and read back from one read.
#pragma once

#include "core/Result.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

using Bytes = std::string; // raw bytes; std::string keeps them contiguous and cheap to move

// Entries a writer adds besides the JSON texts, by entry name ("shapes/Body1.brep").
using SideFiles = std::map<std::string, Bytes>;

struct ArchiveEntry {
    std::string name;
    Bytes bytes;
    int level = 6; // deflate level
};

// The whole archive as bytes, entries in the order given.
Result<Bytes> writeArchive(const std::vector<ArchiveEntry>& entries);

// A zip archive opened over bytes in memory. Entry names are only ever looked up,
// never turned into paths.
class ArchiveReader {
public:
    // Entries larger than this are refused rather than allocated.
    static constexpr std::uint64_t kMaxEntryBytes = std::uint64_t{1} << 30;

    static Result<std::unique_ptr<ArchiveReader>> open(Bytes bytes);
    ~ArchiveReader();
    ArchiveReader(const ArchiveReader&) = delete;
    ArchiveReader& operator=(const ArchiveReader&) = delete;

    bool has(std::string_view name) const;
    // The entry's bytes; "<name> is damaged" when it is missing or cannot be
    // extracted, "<name> is too large or unreadable" when its size can't be handled.
    Result<Bytes> read(std::string_view name) const;

private:
    struct Impl;
    explicit ArchiveReader(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace cad
