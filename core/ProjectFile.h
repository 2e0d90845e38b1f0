// Project files (.kv3, and the former .osv): a zip holding the manifest, the
// document JSON and side files. A save replaces the old file only when the new
// one is complete; a read builds a separate document.
#pragma once

#include "core/Document.h"
#include "core/ObjectTypes.h"
#include "core/ProjectArchive.h"
#include "core/Result.h"

#include <functional>
#include <memory>
#include <string>

namespace cad {

// The project as bytes, as it would be written to a file.
Result<Bytes> projectBytes(const Document& document, const std::string& generator,
                           const ObjectTypes& types);

// The two file steps of a save, replaceable so tests can make either one fail.
struct SaveSteps {
    std::function<bool(const std::string& path, const Bytes& bytes)> write; // whole file, flushed
    std::function<bool(const std::string& from, const std::string& to)> replace;
    static SaveSteps real();
};

Result<void> writeProject(const Document& document, const std::string& path,
                          const std::string& generator, const ObjectTypes& types,
                          const SaveSteps& steps = SaveSteps::real());

// The project from bytes; `path` only names the file in messages.
Result<std::unique_ptr<Document>> readProjectBytes(Bytes bytes, const std::string& path,
                                                   const ObjectTypes& types);
Result<std::unique_ptr<Document>> readProject(const std::string& path, const ObjectTypes& types);

} // namespace cad
