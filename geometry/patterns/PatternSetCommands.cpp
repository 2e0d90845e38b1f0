// Making and changing pattern sets of bodies. A copy that can't be made fails the
// command and leaves the document as it was; undo and redo put back the same
// objects with the same IDs.
#include "geometry/patterns/PatternSetCommands.h"

#include "core/GeometryObject.h"
#include "core/HistorySupport.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/PatternCopies.h"
#include "geometry/patterns/PatternKinds.h"
#include "geometry/patterns/PatternLayout.h"
#include "geometry/patterns/PatternSetObject.h"

#include <algorithm>
#include <map>

namespace cad {

using geometry::splitReferenceList;

namespace {

using Kind = FeatureArgument::Kind;

FeatureArgument bodiesArgument() {
    return {"Bodies", "The bodies, separated by ';'.", "bodies", Kind::References, true, {}, {},
            ""};
}

FeatureArgument setArgument() {
    return {
        "Pattern", "The pattern, e.g. \"PatternSet1\".", "pattern_set", Kind::Text, true, {}, {},
        ""};
}

Result<nlohmann::json> readValues(const CommandRecord& record, FeatureArguments table) {
    std::vector<std::string> accepted;
    for (const FeatureArgument& argument : table) accepted.push_back(argument.key);
    return readFeatureValues(record, table, accepted, true);
}

PatternSetObject* setBySerial(const Document& document, std::uint64_t serial) {
    return dynamic_cast<PatternSetObject*>(document.findBySerial(serial));
}

} // namespace

// ---------------------------------------------------------------- pattern_bodies

std::vector<ArgSpec> PatternCopiesCommand::arguments() {
    FeatureArguments table = bodyPatternKeys();
    table.insert(table.begin(), bodiesArgument());
    return toArgSpecs(table);
}

Result<std::unique_ptr<Command>> PatternCopiesCommand::create(const CommandRecord& record) {
    FeatureArguments table = layoutReadTable();
    table.insert(table.begin(), bodiesArgument());
    Result<nlohmann::json> values = readValues(record, table);
    if (!values) return Error(values);
    if (Result<void> ok = checkPatternWord(record, *values, true); !ok) return Error(ok);
    std::unique_ptr<PatternCopiesCommand> command(new PatternCopiesCommand(record));
    command->values_ = std::move(values).value();
    return std::unique_ptr<Command>(std::move(command));
}

std::string PatternCopiesCommand::done(const Document& document) const {
    const PatternSetObject* set = setBySerial(document, setSerial_);
    if (!set) return {};
    const std::size_t n = splitReferenceList(parameterText(set->parameters, "bodies")).size();
    const auto kind = geometry::parsePatternKind(parameterText(set->parameters, "pattern"));
    return "Made " + set->id + ", a " +
           geometry::patternKindTitle(kind.value_or(geometry::PatternKind::Rectangular)) +
           " Pattern of " + std::to_string(n) + (n == 1 ? " body." : " bodies.");
}

CommandResult PatternCopiesCommand::execute(Document& document) {
    if (undone_.empty()) return firstRun(document);
    putBack(document, undone_);
    PatternSetObject* set = setBySerial(document, setSerial_);
    if (!set) return CommandResult::failure("The pattern can't be made again.");
    const std::string failure = rebuildCopies(document, *set);
    return CommandResult::success(withFailure(done(document), failure));
}

CommandResult PatternCopiesCommand::firstRun(Document& document) {
    std::vector<std::string> sources;
    for (const std::string& name : splitReferenceList(parameterText(values_, "bodies"))) {
        auto* body = document.findAs<GeometryObject>(name);
        if (!body) return CommandResult::failure("'" + name + "' isn't a body.");
        if (std::find(sources.begin(), sources.end(), body->id) == sources.end())
            sources.push_back(body->id);
    }
    if (sources.empty()) return CommandResult::failure("Pick the bodies to pattern.");

    nlohmann::json layout = nlohmann::json::object();
    for (const FeatureArgument& argument : layoutReadTable())
        if (!argument.fallback.is_null()) layout[argument.key] = argument.fallback;
    storeLayoutValues(document, record_, values_, layout);
    std::string list;
    for (const std::string& id : sources) list += (list.empty() ? "" : "; ") + id;
    layout["bodies"] = list;
    Result<std::vector<int>> numbers = copyNumbers(document, layout);
    if (!numbers) return CommandResult::failure(numbers.error());

    const std::map<std::string, int> counters = document.idCounters();
    auto made = std::make_unique<PatternSetObject>();
    made->id = document.nextId("PatternSet");
    made->parameters = layout;
    auto* set = static_cast<PatternSetObject*>(document.add(std::move(made)));
    setSerial_ = set->serial;
    added_ = {set->serial};
    for (const std::string& source : sources)
        for (int number : *numbers)
            set->copies.push_back(addCopy(document, *set, source, number, added_).id);

    std::string own;
    const std::string failure = rebuildCopies(document, *set, &own);
    if (!own.empty()) {
        takeOut(document, added_, undone_);
        undone_.clear();
        added_.clear();
        document.setIdCounters(counters);
        return CommandResult::failure(own);
    }
    return CommandResult::success(withFailure(done(document), failure));
}

void PatternCopiesCommand::undo(Document& document) { takeOut(document, added_, undone_); }

// ---------------------------------------------------------------- edit_pattern

std::vector<ArgSpec> EditPatternCommand::arguments() {
    FeatureArguments table = bodyPatternKeys();
    table.insert(table.begin(), setArgument());
    return toArgSpecs(table);
}

Result<std::unique_ptr<Command>> EditPatternCommand::create(const CommandRecord& record) {
    FeatureArguments table = layoutReadTable();
    table.insert(table.begin(), setArgument());
    Result<nlohmann::json> values = readValues(record, table);
    if (!values) return Error(values);
    if (Result<void> ok = checkPatternWord(record, *values, false); !ok) return Error(ok);
    std::unique_ptr<EditPatternCommand> command(new EditPatternCommand(record));
    command->setName_ = (*values)["pattern_set"].get<std::string>();
    values->erase("pattern_set");
    if (values->empty()) return fail(record.name + ": nothing to change.");
    command->values_ = std::move(values).value();
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult EditPatternCommand::execute(Document& document) {
    if (!done_) return firstRun(document);
    const std::string failure = apply(document, true);
    const PatternSetObject* set = setBySerial(document, setSerial_);
    return CommandResult::success(
        withFailure("Changed " + (set ? set->id : setName_) + ".", failure));
}

CommandResult EditPatternCommand::firstRun(Document& document) {
    auto* set = document.findAs<PatternSetObject>(setName_);
    if (!set) return CommandResult::failure("edit_pattern: no pattern named '" + setName_ + "'.");
    nlohmann::json layout = set->parameters;
    storeLayoutValues(document, record_, values_, layout);
    Result<std::vector<int>> numbers = copyNumbers(document, layout);
    if (!numbers) return CommandResult::failure(numbers.error());
    const std::vector<std::string> sources = splitReferenceList(parameterText(layout, "bodies"));

    setSerial_ = set->serial;
    setBefore_ = set->parameters;
    setAfter_ = layout;
    copiesBefore_ = set->copies;
    // Copies the new layout still has change their values; the others go.
    std::map<std::pair<std::string, int>, std::string> kept;
    for (const std::string& id : set->copies) {
        auto* body = dynamic_cast<GeometryObject*>(document.find(id));
        ParamFeature* feature = body ? copyFeature(document, *body) : nullptr;
        if (!feature) continue;
        const std::string source = parameterText(feature->parameters, "bodies");
        const int number = static_cast<int>(parameterNumber(feature->parameters, "copy", 0));
        const bool wanted = std::find(sources.begin(), sources.end(), source) != sources.end() &&
                            std::find(numbers->begin(), numbers->end(), number) != numbers->end();
        if (wanted && !kept.count({source, number})) {
            kept[{source, number}] = body->id;
            changes_.push_back({feature->serial, feature->parameters,
                                copyParameters(layout, source, set->id, number)});
            continue;
        }
        removed_.push_back(body->serial);
        for (const std::string& f : body->features)
            if (const DocumentObject* o = document.find(f)) removed_.push_back(o->serial);
    }

    const std::map<std::string, int> counters = document.idCounters();
    for (const ValueChange& change : changes_)
        static_cast<ParamFeature*>(document.findBySerial(change.serial))->parameters = change.after;
    takeOut(document, removed_, removedTaken_);
    set->parameters = layout;
    for (const std::string& source : sources) {
        for (int number : *numbers) {
            auto found = kept.find({source, number});
            copiesAfter_.push_back(found != kept.end()
                                       ? found->second
                                       : addCopy(document, *set, source, number, added_).id);
        }
    }
    set->copies = copiesAfter_;

    std::string own;
    const std::string failure = rebuildCopies(document, *set, &own);
    if (!own.empty()) {
        apply(document, false);
        addedTaken_.clear();
        added_.clear();
        document.setIdCounters(counters);
        return CommandResult::failure(own);
    }
    done_ = true;
    return CommandResult::success(withFailure("Changed " + set->id + ".", failure));
}

std::string EditPatternCommand::apply(Document& document, bool forward) {
    PatternSetObject* set = setBySerial(document, setSerial_);
    if (!set) return {};
    if (forward) {
        takeOut(document, removed_, removedTaken_);
        putBack(document, addedTaken_);
    } else {
        takeOut(document, added_, addedTaken_);
        putBack(document, removedTaken_);
    }
    for (const ValueChange& change : changes_)
        if (auto* feature = dynamic_cast<ParamFeature*>(document.findBySerial(change.serial)))
            feature->parameters = forward ? change.after : change.before;
    set->parameters = forward ? setAfter_ : setBefore_;
    set->copies = forward ? copiesAfter_ : copiesBefore_;
    return rebuildCopies(document, *set);
}

void EditPatternCommand::undo(Document& document) { apply(document, false); }

} // namespace cad
