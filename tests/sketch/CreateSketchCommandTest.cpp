// create_sketch: the three ways of giving a plane, names, supports, refusals, and
// undo and redo keeping the sketch's ID.
#include "SketchSession.h"

#include "core/GeometryObject.h"
#include "sketch/SketchPlaneResolver.h"

#include <cmath>
#include <optional>

using namespace cad;
using cad::test::SketchSession;

namespace {

class CreateSketch : public SketchSession {};

void expectVector(const Vec3& v, double x, double y, double z) {
    EXPECT_NEAR(v[0], x, 1e-12);
    EXPECT_NEAR(v[1], y, 1e-12);
    EXPECT_NEAR(v[2], z, 1e-12);
}

CommandRecord byPoints(double nx, double ny, double nz) {
    return CommandRecord("create_sketch")
        .set("origin_x", 0)
        .set("origin_y", 0)
        .set("origin_z", "5mm")
        .set("normal_x", nx)
        .set("normal_y", ny)
        .set("normal_z", nz);
}

// Reference planes the way the geometry layer will answer for them.
class PlaneTable : public SketchPlaneResolver {
public:
    Result<PlaneFrame> planeOf(const Document&, std::string_view reference) const override {
        if (reference == "Plane1") return plane;
        return fail("no plane");
    }
    PlaneFrame plane{{0, 0, 10}, {0, 0, 1}, {1, 0, 0}};
};

// Installs a resolver for one test and always takes it away again.
struct InstalledResolver {
    explicit InstalledResolver(std::shared_ptr<const SketchPlaneResolver> resolver) {
        installSketchPlaneResolver(std::move(resolver));
    }
    ~InstalledResolver() { installSketchPlaneResolver(nullptr); }
};

} // namespace

TEST_F(CreateSketch, OnAnOriginPlane) {
    EXPECT_EQ(ok(CommandRecord("create_sketch").set("plane", "XZ")), "Created Sketch1.");
    expectVector(sketch().normal, 0, -1, 0);
    expectVector(sketch().xDirection, 1, 0, 0);
    EXPECT_TRUE(sketch().support.empty());
    Vec3 p = sketch().toModel({2, 3}); // sketch y is +Z on XZ
    expectVector(p, 2, 0, 3);

    EXPECT_EQ(ok(CommandRecord("create_sketch").set("on", "YZ").set("name", "Side")),
              "Created Sketch2.");
    EXPECT_EQ(sketch("Sketch2").label, "Side");
    EXPECT_EQ(sketch("Sketch2").support, "YZ");
    EXPECT_TRUE(sketch("Sketch2").dependencies().empty());
    expectVector(sketch("Sketch2").normal, 1, 0, 0);
    EXPECT_EQ(error(CommandRecord("create_sketch").set("plane", "XY").set("name", "side")),
              "An object named 'side' already exists.");
}

TEST_F(CreateSketch, ByOriginNormalAndXDirection) {
    ok(byPoints(0, 0, 2).set("x_dir_x", 1).set("x_dir_y", 1).set("x_dir_z", 3));
    expectVector(sketch().origin, 0, 0, 5);
    expectVector(sketch().normal, 0, 0, 1);
    // Only the part square to the normal counts.
    expectVector(sketch().xDirection, std::sqrt(0.5), std::sqrt(0.5), 0);

    // Without an x direction the axes are OpenCASCADE's: unit and square to the normal.
    ok(byPoints(1, 2, 2));
    const SketchObject& s = sketch("Sketch2");
    const Vec3& x = s.xDirection;
    EXPECT_NEAR(x[0] * x[0] + x[1] * x[1] + x[2] * x[2], 1, 1e-12);
    EXPECT_NEAR(x[0] * 1 + x[1] * 2 + x[2] * 2, 0, 1e-12);
}

TEST_F(CreateSketch, Refusals) {
    const std::string oneWay =
        "create_sketch: give either 'plane' or origin_x/y/z and normal_x/y/z.";
    const std::pair<CommandRecord, std::string> cases[] = {
        {CommandRecord("create_sketch"), oneWay},
        {byPoints(0, 0, 1).set("plane", "XY"), oneWay},
        {CommandRecord("create_sketch").set("plane", "XY").set("on", "XZ"), oneWay},
        {CommandRecord("create_sketch").set("normal_z", 1), oneWay},
        {CommandRecord("create_sketch").set("plane", "AB"),
         "create_sketch: 'plane' must be \"XY\", \"XZ\" or \"YZ\"."},
        {byPoints(0, 0, 1e-8), "create_sketch: the plane normal must not be zero."},
        {byPoints(0, 0, 1).set("x_dir_z", -4),
         "create_sketch: x_dir must be non-zero and not parallel to the normal."},
        {byPoints(0, 0, 1).set("x_dir_x", 0),
         "create_sketch: x_dir must be non-zero and not parallel to the normal."},
        {CommandRecord("create_sketch").set("on", " "),
         "create_sketch: 'on' must name a reference plane or a flat face."},
        {CommandRecord("create_sketch").set("on", "Plane1"),
         "'Plane1' isn't a plane or a flat face."},
        {CommandRecord("create_sketch").set("on", "Body1/Extrude1.end"),
         "'Body1/Extrude1.end' isn't a plane or a flat face."},
        {CommandRecord("create_sketch").set("plane", "XY").set("support", "Body7"),
         "No object named 'Body7' exists."},
        {CommandRecord("create_sketch").set("plane", "XY").set("colour", "red"),
         "create_sketch: unknown argument 'colour'. Expected one of: plane, origin_x, origin_y, "
         "origin_z, normal_x, normal_y, normal_z, x_dir_x, x_dir_y, x_dir_z, support, on, name."},
    };
    for (const auto& [record, message] : cases) EXPECT_EQ(error(record), message);
    EXPECT_TRUE(document.objects().empty());
    EXPECT_FALSE(stack.canUndo());
}

TEST_F(CreateSketch, FaceSketchKeepsItsBodyAsSupport) {
    auto body = std::make_unique<GeometryObject>();
    body->id = "Body1";
    body->label = "Gear";
    document.add(std::move(body));
    ok(byPoints(0, 0, 1).set("support", "Gear"));
    EXPECT_EQ(sketch().support, "Body1"); // the registry rewrote the label to the ID
    EXPECT_EQ(sketch().dependencies(), std::vector<std::string>{"Body1"});
    EXPECT_FALSE(sketch().recompute(document));
}

TEST_F(CreateSketch, FollowsAReferencePlaneThroughTheResolver) {
    auto planes = std::make_shared<PlaneTable>();
    std::optional<InstalledResolver> installed(std::in_place, planes);
    ok(CommandRecord("create_sketch").set("on", "Plane1"));
    EXPECT_EQ(sketch().support, "Plane1");
    EXPECT_EQ(sketch().dependencies(), std::vector<std::string>{"Plane1"});
    expectVector(sketch().origin, 0, 0, 10);

    EXPECT_FALSE(sketch().recompute(document)); // nothing moved
    planes->plane = {{0, 0, 20}, {0, 1, 0}, {0, 0, 1}};
    EXPECT_TRUE(sketch().recompute(document));
    expectVector(sketch().origin, 0, 0, 20);
    expectVector(sketch().xDirection, 0, 0, 1);
    installed.reset();
    planes->plane = {{0, 0, 30}, {0, 0, 1}, {1, 0, 0}};
    EXPECT_FALSE(sketch().recompute(document)); // without a resolver the plane stays
}

TEST_F(CreateSketch, UndoAndRedoKeepTheId) {
    newSketch();
    std::uint64_t serial = sketch().serial;
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(document.objects().empty());
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_EQ(sketch().serial, serial);
    EXPECT_EQ(ok(CommandRecord("create_sketch").set("plane", "XY")), "Created Sketch2.");
}
