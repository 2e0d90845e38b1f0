// What the body-pattern commands share: the layout keys as a command gives them,
// the copies' numbers, and adding, taking out and putting back copy bodies.
#pragma once

#include "core/CommandRecord.h"
#include "core/Document.h"
#include "core/Result.h"
#include "geometry/param/FeatureArgument.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace cad {

class GeometryObject;
class ParamFeature;
class PatternSetObject;

// The layout keys as commands read them: "pattern" is text with its own sentences.
FeatureArguments layoutReadTable();
// "<command>: give the 'pattern' ..." when required and missing, "<command>: 'pattern'
// must be ..." when it isn't one of the three words.
Result<void> checkPatternWord(const CommandRecord& record, const nlohmann::json& values,
                              bool required);
// The layout keys given (by the read table) stored into `layout`: references by ID,
// numbers with the expression they were typed as (or none).
void storeLayoutValues(const Document& document, const CommandRecord& record,
                       const nlohmann::json& given, nlohmann::json& layout);

// A pattern of bodies makes at most this many bodies: each is an object of its own.
inline constexpr std::size_t kMaxBodyCopies = 1000;

// The copy numbers (2 upwards) the layout gives its sources, or the layout's sentence.
Result<std::vector<int>> copyNumbers(const Document& document, const nlohmann::json& layout);

// The PatternBody feature that makes copy `number` of `source` in the set.
nlohmann::json copyParameters(const nlohmann::json& layout, const std::string& source,
                              const std::string& setId, int number);
// A copy body's own PatternBody feature, if it still has one.
ParamFeature* copyFeature(const Document& document, const GeometryObject& body);

// Adds the body of one copy, labelled after its source ("Bracket (2)"), with its
// feature; their serials are appended to `added` (body, then feature).
GeometryObject& addCopy(Document& document, const PatternSetObject& set, const std::string& source,
                        int number, std::vector<std::uint64_t>& added);
// Takes the objects out, last first; putBack adds them again where they were.
void takeOut(Document& document, const std::vector<std::uint64_t>& serials,
             std::vector<Document::Taken>& into);
void putBack(Document& document, std::vector<Document::Taken>& taken);

// Rebuilds every copy body of the set and tells the observers. The first failure
// of a copy's own feature goes to `ownFailure`; the result is the first body
// failure of any kind, or empty.
std::string rebuildCopies(Document& document, const PatternSetObject& set,
                          std::string* ownFailure = nullptr);

} // namespace cad
