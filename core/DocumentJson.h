// The document as the project file's JSON: settings, parameters and every object
// with its common keys and its type's own keys. Shared by saving, autosave and
// linked components.
#pragma once

#include "core/Document.h"
#include "core/ObjectTypes.h"
#include "core/ProjectArchive.h"

#include <nlohmann/json.hpp>

namespace cad {

// Builds the JSON and fills `sideFiles` with the entries it refers to.
nlohmann::ordered_json writeDocumentJson(const Document& document, SideFiles& sideFiles,
                                         const ObjectTypes& types);

// Reads the JSON into an empty document without computing anything; a failure is
// the problem as a phrase ("unknown object type \"Gizmo\"") for the caller to put
// after the file's name. Nothing is thrown, whatever the JSON holds.
Result<void> readDocumentRecords(const nlohmann::json& json, const ArchiveReader& archive,
                                 const ObjectTypes& types, Document& into);

// Computes a freshly read document: the rollback its JSON was saved with, then every
// sketch and body. A kernel failure on the way is the problem as a phrase; a
// feature that fails keeps its error, as it would in the open document.
Result<void> computeReadDocument(const nlohmann::json& json, Document& document);

// Both, for callers that need no telling apart of damaged and invalid files.
Result<void> readDocumentJson(const nlohmann::json& json, const ArchiveReader& archive,
                              const ObjectTypes& types, Document& into);

} // namespace cad
