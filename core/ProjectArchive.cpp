// Zip archives in memory over libzip.
#include "core/ProjectArchive.h"

#include <zip.h>

#include <cstdio>

namespace cad {

namespace {

struct ZipCloser {
    void operator()(zip_t* z) const {
        if (z) zip_discard(z);
    }
};
struct SourceFree {
    void operator()(zip_source_t* s) const {
        if (s) zip_source_free(s);
    }
};

} // namespace

Result<Bytes> writeArchive(const std::vector<ArchiveEntry>& entries) {
    zip_error_t error;
    zip_error_init(&error);
    std::unique_ptr<zip_source_t, SourceFree> memory(
        zip_source_buffer_create(nullptr, 0, 0, &error));
    if (!memory) return fail("Could not start the project archive.");
    std::unique_ptr<zip_t, ZipCloser> zip(zip_open_from_source(memory.get(), ZIP_TRUNCATE, &error));
    zip_error_fini(&error);
    if (!zip) return fail("Could not start the project archive.");
    zip_source_keep(memory.get()); // the bytes are read back after closing

    const Error writeFailed{"Could not write the project archive."};
    for (const ArchiveEntry& entry : entries) {
        zip_source_t* data =
            zip_source_buffer(zip.get(), entry.bytes.data(), entry.bytes.size(), 0);
        if (!data) return writeFailed;
        zip_int64_t index = zip_file_add(zip.get(), entry.name.c_str(), data, ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            zip_source_free(data);
            return writeFailed;
        }
        if (zip_set_file_compression(zip.get(), static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE,
                                     static_cast<zip_uint32_t>(entry.level)) != 0)
            return writeFailed;
    }
    if (zip_close(zip.get()) != 0) return writeFailed;
    zip.release(); // closed

    if (zip_source_open(memory.get()) != 0) return writeFailed;
    Bytes bytes;
    if (zip_source_seek(memory.get(), 0, SEEK_END) == 0) {
        zip_int64_t size = zip_source_tell(memory.get());
        if (size >= 0 && zip_source_seek(memory.get(), 0, SEEK_SET) == 0) {
            bytes.resize(static_cast<std::size_t>(size));
            zip_int64_t got = zip_source_read(memory.get(), bytes.data(), bytes.size());
            if (got != size) bytes.clear();
        }
    }
    zip_source_close(memory.get());
    if (bytes.empty()) return writeFailed;
    return bytes;
}

struct ArchiveReader::Impl {
    Bytes bytes; // libzip reads from these; they outlive the archive handle
    zip_t* zip = nullptr;
    ~Impl() {
        if (zip) zip_discard(zip);
    }
};

ArchiveReader::ArchiveReader(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
ArchiveReader::~ArchiveReader() = default;

Result<std::unique_ptr<ArchiveReader>> ArchiveReader::open(Bytes bytes) {
    auto impl = std::make_unique<Impl>();
    impl->bytes = std::move(bytes);
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source =
        zip_source_buffer_create(impl->bytes.data(), impl->bytes.size(), 0, &error);
    if (source) {
        impl->zip = zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error);
        if (!impl->zip) zip_source_free(source);
    }
    zip_error_fini(&error);
    if (!impl->zip) return fail("not a zip archive");
    return std::unique_ptr<ArchiveReader>(new ArchiveReader(std::move(impl)));
}

bool ArchiveReader::has(std::string_view name) const {
    return zip_name_locate(impl_->zip, std::string(name).c_str(), 0) >= 0;
}

Result<Bytes> ArchiveReader::read(std::string_view name) const {
    const std::string entry(name);
    zip_int64_t index = zip_name_locate(impl_->zip, entry.c_str(), 0);
    if (index < 0) return fail(entry + " is damaged");
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(impl_->zip, static_cast<zip_uint64_t>(index), 0, &stat) != 0 ||
        ((stat.valid & ZIP_STAT_SIZE) && stat.size > kMaxEntryBytes))
        return fail(entry + " is too large or unreadable");
    zip_file_t* file = zip_fopen_index(impl_->zip, static_cast<zip_uint64_t>(index), 0);
    if (!file) return fail(entry + " is damaged");

    // Grow with what really comes out, so a header that lies about the size
    // allocates nothing it does not deliver.
    Bytes bytes;
    char chunk[65536];
    for (;;) {
        zip_int64_t got = zip_fread(file, chunk, sizeof chunk);
        if (got < 0) {
            zip_fclose(file);
            return fail(entry + " is damaged");
        }
        if (got == 0) break;
        if (bytes.size() + static_cast<std::size_t>(got) > kMaxEntryBytes) {
            zip_fclose(file);
            return fail(entry + " is too large or unreadable");
        }
        bytes.append(chunk, static_cast<std::size_t>(got));
    }
    zip_fclose(file);
    return bytes;
}

} // namespace cad
