// Named parameters: the name rules, who uses a parameter, renaming through every
// expression, and re-evaluating every value that follows an expression.
#pragma once

#include "core/Result.h"

#include <any>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;
class DocumentObject;
class CommandRegistry;

// The values of the objects a parameter change reached, as they were before it:
// each object's snapshot is taken the first time the change is about to touch it,
// so a refusal or an undo puts back those objects alone and rebuilds only what
// uses them.
class ValueSnapshots {
public:
    bool has(const DocumentObject& object) const;
    // Keeps `snapshot` (the object's valuesSnapshot()) unless one is kept already;
    // `valuesChange` says that its values, not only its expressions' text, change.
    void keep(const DocumentObject& object, std::any snapshot, bool valuesChange);
    // The changed values have reached the bodies and everything that uses them.
    void markApplied() { applied_ = true; }
    // Puts every kept snapshot back; when the changes had been applied, brings what
    // uses the changed values up to date again.
    void restore(Document& document) const;

private:
    struct Entry {
        std::uint64_t serial = 0;
        std::any values;
        bool valuesChange = false;
    };
    std::vector<Entry> entries_;
    bool applied_ = false;
};

Result<void> validateParameterName(std::string_view name);
// The parameters (by name) and values ("Extrude1.distance") whose expressions use `name`.
std::vector<std::string> parameterUsers(const Document& document, std::string_view name);
// Rewrites every expression that uses `from`; each object it rewrites is first kept
// in `before` when given.
void renameParameterEverywhere(Document& document, std::string_view from, std::string_view to,
                               ValueSnapshots* before = nullptr);
// Evaluates every expression-driven value and writes the results back (sketches
// whose dimensions changed solve again), then rebuilds and recomputes what uses
// the values that changed; returns the problems. With `before`, each object is kept
// there before it changes, and a run with problems leaves the rebuild out: the
// caller puts the values back from `before` instead.
std::vector<std::string> recomputeExpressions(Document& document, ValueSnapshots* before = nullptr);

void registerParameterCommands(CommandRegistry& registry);

} // namespace cad
