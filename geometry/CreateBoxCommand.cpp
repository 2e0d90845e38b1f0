// create_box: reads the sizes and corner, builds the box and adds it as a body
// whose base shape is the box (a body with no feature history).
#include "geometry/CreateBoxCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/Box.h"
#include "geometry/CommandSupport.h"
#include "geometry/Naming.h"

#include <Standard_Failure.hxx>

namespace cad {

std::vector<ArgSpec> CreateBoxCommand::arguments() {
    using T = ArgType;
    return {
        {"width", T::Length, true, "Size along X.", {}, ""},
        {"depth", T::Length, true, "Size along Y.", {}, ""},
        {"height", T::Length, true, "Size along Z.", {}, ""},
        {"x", T::Length, false, "Corner position (default 0).", {}, ""},
        {"y", T::Length, false, "Corner position (default 0).", {}, ""},
        {"z", T::Length, false, "Corner position (default 0).", {}, ""},
        {"name", T::Text, false, "Body name (default BoxN).", {}, ""},
    };
}

Result<std::unique_ptr<Command>> CreateBoxCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    std::unique_ptr<CreateBoxCommand> command(new CreateBoxCommand(record));
    struct Field {
        const char* name;
        double* value;
        bool required;
    };
    for (Field f : {Field{"width", &command->width_, true}, Field{"depth", &command->depth_, true},
                    Field{"height", &command->height_, true}, Field{"x", &command->x_, false},
                    Field{"y", &command->y_, false}, Field{"z", &command->z_, false}}) {
        Result<double> value = f.required ? reader.length(f.name) : reader.length(f.name, 0.0);
        if (!value) return Error(value);
        *f.value = *value;
    }
    if (reader.has("name")) {
        const auto* text = std::get_if<std::string>(record.find("name"));
        if (!text || text->empty())
            return fail("create_box: argument 'name' must be a non-empty string.");
        command->name_ = *text;
    }
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult CreateBoxCommand::execute(Document& document) {
    if (undone_) { // redo: the same body where it was
        DocumentObject* added = document.add(std::move(undone_), index_);
        serial_ = added->serial;
        return CommandResult::success("Created " + added->id + ".");
    }
    if (!name_.empty() && nameTaken(document, name_))
        return CommandResult::failure("An object named '" + name_ + "' already exists.");
    if (badObjectName(name_))
        return CommandResult::failure("Names can't contain '/' or line breaks.");

    Result<TopoDS_Shape> box = geometry::makeBox(width_, depth_, height_, gp_Pnt(x_, y_, z_));
    if (!box) return CommandResult::failure(box.error());

    auto body = std::make_unique<GeometryObject>();
    body->id = name_.empty() ? document.nextId("Box") : name_;
    try {
        body->baseShape = geometry::nameFacesByDirection(*box, body->id);
    } catch (const Standard_Failure&) {
        return CommandResult::failure("The geometry kernel could not build the box.");
    }
    body->shape = body->baseShape;
    auto* added = static_cast<GeometryObject*>(document.add(std::move(body)));
    serial_ = added->serial;
    (void)document.rebuildBody(*added);
    document.notifyChanged(*added);
    return CommandResult::success("Created " + added->id + ".");
}

void CreateBoxCommand::undo(Document& document) {
    Document::Taken taken = document.take(serial_);
    undone_ = std::move(taken.object);
    index_ = taken.index;
}

} // namespace cad
