// import_model: checks the path and unit, reads the file when executed, and adds
// every part as a body whose base shape is the part, faces named by direction and
// looks taken from the file. Nothing is added unless every body could be made.
#include "geometry/exchange/ImportModelCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/CommandSupport.h"
#include "geometry/Naming.h"
#include "geometry/exchange/ExchangeUnit.h"
#include "geometry/exchange/StepReader.h"
#include "geometry/exchange/StlReader.h"

#include <Standard_Failure.hxx>

#include <exception>
#include <filesystem>

namespace cad::exchange {

namespace {

std::string lowerExtension(const std::string& path) {
    return toLowerAscii(std::filesystem::path(path).extension().string());
}

bool isStep(const std::string& extension) { return extension == ".step" || extension == ".stp"; }

// Names become labels, and labels are read in references: no '/' or line breaks.
std::string labelFor(std::string name) {
    for (char& c : name) {
        if (c == '/') c = '-';
        if (c == '\n' || c == '\r') c = ' ';
    }
    return name;
}

std::unique_ptr<GeometryObject> bodyOf(const ImportedPart& part, const std::string& id) {
    auto body = std::make_unique<GeometryObject>();
    body->id = id;
    body->label = labelFor(part.name);
    body->baseShape = geometry::nameFacesByDirection(part.shape, id);
    body->shape = body->baseShape;
    body->appearance = part.colour;
    for (const auto& [face, colour] : part.faceColours) {
        const std::string name = body->baseShape.nameOf(face);
        if (!name.empty()) body->faceAppearances[name] = colour;
    }
    return body;
}

} // namespace

Result<std::vector<ImportedPart>> readModelFile(const std::string& path, units::Length unit) {
    const std::string extension = lowerExtension(path);
    if (isStep(extension)) return readStep(path);
    if (extension == ".stl") {
        Result<ImportedPart> part = readStl(path, unit);
        if (!part) return Error(part);
        return std::vector<ImportedPart>{std::move(part).value()};
    }
    return fail("import_model: a .step, .stp or .stl file, please.");
}

std::vector<ArgSpec> ImportModelCommand::arguments() {
    return {
        {"path", ArgType::String, true, "The .step, .stp or .stl file.", {}, ""},
        {"unit",
         ArgType::String,
         false,
         "STL only: what its numbers are in.",
         {"mm", "cm", "m", "in", "ft"},
         ""},
    };
}

Result<std::unique_ptr<Command>> ImportModelCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<ImportModelCommand> command(new ImportModelCommand(record));
    const auto* path = std::get_if<std::string>(record.find("path"));
    if (!path || trimmed(*path).empty()) return fail(record.name + ": give the file's 'path'.");
    command->path_ = *path;
    const std::string extension = lowerExtension(command->path_);
    if (!isStep(extension) && extension != ".stl")
        return fail(record.name + ": a .step, .stp or .stl file, please.");
    if (const Value* unit = record.find("unit")) {
        const auto* text = std::get_if<std::string>(unit);
        std::optional<units::Length> length = text ? exchangeUnit(*text) : std::nullopt;
        if (!length) return fail(record.name + ": 'unit' must be mm, cm, m, in or ft.");
        command->unit_ = *length;
    }
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult ImportModelCommand::execute(Document& document) {
    if (!added_.empty() && added_.front().undone) { // redo: the same bodies where they were
        for (Added& added : added_)
            added.serial = document.add(std::move(added.undone), added.index)->serial;
        for (Added& added : added_)
            if (DocumentObject* body = document.findBySerial(added.serial))
                document.notifyChanged(*body);
    } else {
        Result<std::vector<ImportedPart>> parts = readModelFile(path_, unit_);
        if (!parts) return CommandResult::failure(parts.error());

        std::vector<std::unique_ptr<GeometryObject>> bodies;
        try {
            const std::vector<std::string> ids = document.nextIds("Body", parts->size());
            for (std::size_t i = 0; i < parts->size(); ++i)
                bodies.push_back(bodyOf((*parts)[i], ids[i]));
        } catch (const Standard_Failure&) {
            return CommandResult::failure("The geometry kernel could not name the imported faces.");
        } catch (const std::exception&) {
            return CommandResult::failure("The geometry kernel could not name the imported faces.");
        }

        added_.clear();
        std::vector<GeometryObject*> placed;
        for (auto& body : bodies) {
            auto* added = static_cast<GeometryObject*>(document.add(std::move(body)));
            added_.push_back({added->serial, nullptr, 0});
            placed.push_back(added);
        }
        for (GeometryObject* body : placed) {
            (void)document.rebuildBody(*body);
            document.notifyChanged(*body);
        }
    }
    const std::size_t n = added_.size();
    return CommandResult::success("Imported " + std::to_string(n) + (n == 1 ? " body." : " bodies."));
}

void ImportModelCommand::undo(Document& document) {
    for (auto it = added_.rbegin(); it != added_.rend(); ++it) {
        Document::Taken taken = document.take(it->serial);
        it->undone = std::move(taken.object);
        it->index = taken.index;
    }
}

} // namespace cad::exchange
