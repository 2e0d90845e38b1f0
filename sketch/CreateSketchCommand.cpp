// create_sketch: reading the three ways of giving a plane, and making the sketch.
#include "sketch/CreateSketchCommand.h"

#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchPlaneResolver.h"

#include <gp_Ax3.hxx>
#include <gp_Dir.hxx>
#include <gp_Pnt.hxx>

#include <array>
#include <cmath>

namespace cad {

namespace {

constexpr const char* kOneWay =
    "create_sketch: give either 'plane' or origin_x/y/z and normal_x/y/z.";

double norm(const Vec3& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }
double dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Result<Vec3> readVector(const ArgReader& reader, const std::array<const char*, 3>& keys,
                        bool asLengths) {
    Vec3 v{0, 0, 0};
    for (std::size_t i = 0; i < 3; ++i) {
        Result<double> value =
            asLengths ? reader.length(keys[i], 0.0) : reader.number(keys[i], 0.0);
        if (!value) return Error(value);
        v[i] = *value;
    }
    return v;
}

// The plane through the origin with this normal; the x axis is OpenCASCADE's choice
// unless one is given, and then its part square to the normal.
Result<PlaneFrame> planeFrom(const Vec3& origin, const Vec3& normal,
                             const std::optional<Vec3>& xDir) {
    const double n = norm(normal);
    if (!(n > 1e-7)) return fail("create_sketch: the plane normal must not be zero.");
    const Vec3 unit{normal[0] / n, normal[1] / n, normal[2] / n};
    PlaneFrame frame;
    frame.origin = origin;
    frame.normal = unit;
    if (!xDir) {
        gp_Ax3 axes(gp_Pnt(origin[0], origin[1], origin[2]), gp_Dir(unit[0], unit[1], unit[2]));
        const gp_Dir& x = axes.XDirection();
        frame.xDirection = {x.X(), x.Y(), x.Z()};
        return frame;
    }
    const Vec3& x = *xDir;
    const double length = norm(x);
    const double along = dot(x, unit);
    const Vec3 square{x[0] - along * unit[0], x[1] - along * unit[1], x[2] - along * unit[2]};
    const double squareLength = norm(square);
    if (!(length > 1e-7) || !(squareLength > 1e-9 * length))
        return fail("create_sketch: x_dir must be non-zero and not parallel to the normal.");
    frame.xDirection = {square[0] / squareLength, square[1] / squareLength,
                        square[2] / squareLength};
    return frame;
}

bool nameTaken(const Document& document, const std::string& name) {
    for (const auto& object : document.objects())
        if (equalsIgnoringCase(object->id, name) || equalsIgnoringCase(object->label, name))
            return true;
    return false;
}

// The reference with its object named by ID: "Base/Extrude1.end" becomes
// "Body1/Extrude1.end"; origin planes stay as they are.
std::string supportById(const Document& document, std::string_view reference) {
    std::string_view text = trimmed(reference);
    if (parseOriginPlane(text)) return std::string(text);
    const std::size_t slash = text.find('/');
    const DocumentObject* object = document.findByName(trimmed(text.substr(0, slash)));
    if (!object) return std::string(text);
    return object->id + (slash == std::string_view::npos ? "" : std::string(text.substr(slash)));
}

} // namespace

std::vector<ArgSpec> CreateSketchCommand::arguments() {
    using T = ArgType;
    return {
        {"plane", T::String, false, "An origin plane.", {"XY", "XZ", "YZ"}, ""},
        {"origin_x", T::Length, false, "Plane origin.", {}, ""},
        {"origin_y", T::Length, false, "Plane origin.", {}, ""},
        {"origin_z", T::Length, false, "Plane origin.", {}, ""},
        {"normal_x", T::Number, false, "Plane normal.", {}, ""},
        {"normal_y", T::Number, false, "Plane normal.", {}, ""},
        {"normal_z", T::Number, false, "Plane normal.", {}, ""},
        {"x_dir_x", T::Number, false, "Sketch x axis (optional).", {}, ""},
        {"x_dir_y", T::Number, false, "Sketch x axis (optional).", {}, ""},
        {"x_dir_z", T::Number, false, "Sketch x axis (optional).", {}, ""},
        {"support", T::String, false, "The body a face sketch sits on.", {}, "body"},
        {"on",
         T::String,
         false,
         "Instead of plane/origin/normal: a reference plane (\"Plane1\", which the sketch then "
         "follows), a flat face (\"Body1/Extrude1.end\") or an origin plane.",
         {},
         ""},
        {"name", T::String, false, "Sketch name (default SketchN).", {}, ""},
    };
}

Result<std::unique_ptr<Command>> CreateSketchCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (auto ok = reader.allowDeclared(arguments()); !ok) return Error(ok);

    static constexpr std::array<const char*, 3> originKeys{"origin_x", "origin_y", "origin_z"};
    static constexpr std::array<const char*, 3> normalKeys{"normal_x", "normal_y", "normal_z"};
    static constexpr std::array<const char*, 3> xKeys{"x_dir_x", "x_dir_y", "x_dir_z"};
    auto count = [&](const std::array<const char*, 3>& keys) {
        int n = 0;
        for (const char* key : keys) n += reader.has(key) ? 1 : 0;
        return n;
    };
    const int origins = count(originKeys), normals = count(normalKeys), xs = count(xKeys);
    const bool byPoints = origins + normals + xs > 0;
    const int ways =
        (reader.has("on") ? 1 : 0) + (reader.has("plane") ? 1 : 0) + (byPoints ? 1 : 0);
    if (ways != 1 || (byPoints && (origins < 3 || normals < 3))) return fail(kOneWay);

    std::unique_ptr<CreateSketchCommand> command(new CreateSketchCommand(record));
    Result<std::string> name = reader.string("name", "");
    if (!name) return Error(name);
    command->name_ = *name;
    Result<std::string> support = reader.string("support", "");
    if (!support) return Error(support);
    command->support_ = *support;

    if (reader.has("on")) {
        const Value* on = record.find("on");
        const auto* text = std::get_if<std::string>(on);
        if (!text || text->find_first_not_of(' ') == std::string::npos)
            return fail("create_sketch: 'on' must name a reference plane or a flat face.");
        if (!command->support_.empty())
            return fail("create_sketch: 'support' goes with origin and normal; with 'on' the "
                        "sketch sits on what 'on' names.");
        command->on_ = *text;
        if (auto plane = parseOriginPlane(*text)) command->frame_ = originPlaneFrame(*plane);
    } else if (reader.has("plane")) {
        const auto* text = std::get_if<std::string>(record.find("plane"));
        auto plane = text ? parseOriginPlane(*text) : std::nullopt;
        if (!plane) return fail("create_sketch: 'plane' must be \"XY\", \"XZ\" or \"YZ\".");
        command->frame_ = originPlaneFrame(*plane);
    } else {
        Result<Vec3> origin = readVector(reader, originKeys, true);
        if (!origin) return Error(origin);
        Result<Vec3> normal = readVector(reader, normalKeys, false);
        if (!normal) return Error(normal);
        std::optional<Vec3> xDir;
        if (xs > 0) {
            Result<Vec3> x = readVector(reader, xKeys, false);
            if (!x) return Error(x);
            xDir = *x;
        }
        Result<PlaneFrame> frame = planeFrom(*origin, *normal, xDir);
        if (!frame) return Error(frame);
        command->frame_ = *frame;
    }
    return std::unique_ptr<Command>(std::move(command));
}

CommandResult CreateSketchCommand::execute(Document& document) {
    if (undone_) { // redo: the same sketch, with the same ID, where it was
        DocumentObject* added = document.add(std::move(undone_), index_);
        serial_ = added->serial;
        return CommandResult::success("Created " + added->id + ".");
    }
    if (!name_.empty() && nameTaken(document, name_))
        return CommandResult::failure("An object named '" + name_ + "' already exists.");

    std::string support = support_;
    if (!support.empty()) {
        DocumentObject* body = document.findAs<GeometryObject>(support);
        if (!body) {
            if (document.findByName(support))
                return CommandResult::failure("'" + support + "' isn't a body.");
            return CommandResult::failure(document.lookupError(support));
        }
        support = body->id;
    }

    PlaneFrame frame;
    if (frame_) {
        frame = *frame_;
    } else {
        const SketchPlaneResolver* resolver = sketchPlaneResolver();
        Result<PlaneFrame> resolved =
            resolver ? resolver->planeOf(document, on_) : Result<PlaneFrame>(Error{});
        if (!resolver || !resolved)
            return CommandResult::failure("'" + on_ + "' isn't a plane or a flat face.");
        frame = *resolved;
    }
    // The sketch keeps what it sits on by ID, so renaming the body or plane later
    // doesn't cut it loose.
    if (!on_.empty()) support = supportById(document, on_);

    auto sketch = std::make_unique<SketchObject>();
    sketch->id = document.nextId("Sketch");
    sketch->label = name_;
    sketch->setFrame(frame);
    sketch->support = support;
    DocumentObject* added = document.add(std::move(sketch));
    serial_ = added->serial;
    return CommandResult::success("Created " + added->id + ".");
}

void CreateSketchCommand::undo(Document& document) {
    Document::Taken taken = document.take(serial_);
    undone_ = std::move(taken.object);
    index_ = taken.index;
}

} // namespace cad
