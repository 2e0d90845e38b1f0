// The document: tiered lookup, ID counters, insertion at the rollback position,
// observers, replacing contents, parameters and the origin planes.
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/OriginPlanes.h"
#include "core/units/ExpressionParser.h"
#include "tests/core/TestObjects.h"

#include <gtest/gtest.h>

using namespace cad;
using cad::test::TestFeature;
using cad::test::thing;

namespace {

std::vector<std::string> ids(const Document& doc) {
    std::vector<std::string> out;
    for (const auto& o : doc.objects()) out.push_back(o->id);
    return out;
}

struct Recorder : DocumentObserver {
    explicit Recorder(const Document& d) : doc(d) {}
    void objectAdded(DocumentObject& o) override { log.push_back("+" + o.id); }
    void objectRemoved(DocumentObject& o) override {
        // Still in the list while observers hear of it.
        log.push_back(std::string(doc.find(o.id) ? "-" : "gone ") + o.id);
    }
    void objectChanged(DocumentObject& o) override { log.push_back("~" + o.id); }
    void documentChanged() override { log.push_back("doc"); }
    const Document& doc;
    std::vector<std::string> log;
};

} // namespace

TEST(DocumentLookup, TiersStopAtTheFirstAmbiguity) {
    Document doc;
    doc.add(thing("Body", "Body1", "Gear"));
    doc.add(thing("Body", "Body2", "gear"));
    doc.add(thing("Sketch", "Sketch1"));
    doc.add(thing("Sketch", "Sketch2", "sketch1"));

    EXPECT_EQ(doc.findByName("gear"), nullptr);
    EXPECT_EQ(doc.lookupError("gear"),
              "'gear' is the name of more than one object (Body1, Body2); use the ID.");
    EXPECT_EQ(doc.lookupError("Wheel"), "No object named 'Wheel' exists.");

    // The ID ignoring case wins before labels are looked at.
    EXPECT_EQ(doc.findByName("sketch1")->id, "Sketch1");
    EXPECT_EQ(doc.findByName("Sketch1")->id, "Sketch1");
    EXPECT_EQ(doc.findByName("BODY2")->id, "Body2");

    // A filter narrows each tier: only one sketch is labelled sketch1.
    auto sketches = [](const DocumentObject& o) { return o.typeName() == "Sketch"; };
    EXPECT_EQ(doc.findMatching("GEAR", sketches), nullptr);
    EXPECT_EQ(doc.findAs<GeometryObject>("Body1"), nullptr); // test things are not bodies
}

TEST(DocumentLookup, ReachesObjectsInsideComponents) {
    Document doc;
    doc.add(thing("Component", "Component1", "Gearbox"));
    doc.add(thing("Body", "Component1:Body2"));
    EXPECT_EQ(doc.findByName("Component1:Body2")->id, "Component1:Body2");
    EXPECT_EQ(doc.findByName("Gearbox:Body2")->id, "Component1:Body2");
    EXPECT_EQ(doc.findByName("gearbox:Body2")->id, "Component1:Body2");
    EXPECT_EQ(doc.findByName("Gearbox:"), nullptr);
    EXPECT_EQ(doc.findByName("Gearbox:Body3"), nullptr);
}

TEST(DocumentIds, CountersAndNextId) {
    Document doc;
    doc.add(thing("Sketch", "Sketch1"));
    doc.add(thing("Sketch", "sketch2"));
    EXPECT_EQ(doc.nextId("Sketch"), "Sketch3"); // Sketch2 is taken ignoring case
    EXPECT_EQ(doc.nextId("Body"), "Body1");

    doc.add(thing("Body", "Body3"));
    doc.add(thing("Body", "Body12"));
    EXPECT_EQ(doc.idCounters().at("Body"), 12);
    doc.add(thing("Body", "Body123456789")); // nine digits: no counter
    doc.add(thing("Body", "Body5"));         // never lowers a counter
    doc.add(thing("Thing", "42"));           // no prefix
    EXPECT_EQ(doc.idCounters().at("Body"), 12);
    EXPECT_EQ(doc.idCounters().count(""), 0u);
    EXPECT_EQ(doc.nextId("Body"), "Body13");

    // Counters are not reused when an object goes away.
    doc.take(doc.find("Body12")->serial);
    EXPECT_EQ(doc.nextId("Body"), "Body13");
}

TEST(DocumentList, SerialsAndComponents) {
    Document doc;
    auto* a = doc.add(thing("Body", "Body1"));
    auto* b = doc.add(thing("Body", "Body2"));
    EXPECT_EQ(a->serial, 1u);
    EXPECT_EQ(b->serial, 2u);

    auto reloaded = thing("Body", "Body3");
    reloaded->serial = 10;
    doc.add(std::move(reloaded));
    EXPECT_EQ(doc.nextSerial(), 11u);
    auto clash = thing("Body", "Body4");
    clash->serial = 10; // taken: a fresh serial is given
    EXPECT_EQ(doc.add(std::move(clash))->serial, 11u);

    doc.setActiveComponent("Component1");
    EXPECT_EQ(doc.add(thing("Sketch", "Sketch1"))->component, "Component1");
    EXPECT_EQ(doc.add(thing("Connection", "Connection1"))->component, "");
    auto moved = thing("Sketch", "Sketch2");
    moved->serial = 50; // an object being reloaded keeps its component
    EXPECT_EQ(doc.add(std::move(moved))->component, "");
}

TEST(DocumentHistory, NewWorkGoesInAtTheRollbackPosition) {
    Document doc;
    doc.add(thing("Sketch", "Sketch1"));
    doc.add(std::make_unique<TestFeature>("Extrude2"));
    doc.add(thing("Sketch", "Sketch3"));
    doc.add(std::make_unique<TestFeature>("Extrude4"));
    doc.add(thing("Note", "Note1"));
    doc.setRollback("Extrude2");

    doc.add(thing("Sketch", "Sketch5"));
    EXPECT_EQ(ids(doc), (std::vector<std::string>{"Sketch1", "Sketch5", "Extrude2", "Sketch3",
                                                  "Extrude4", "Note1"}));
    EXPECT_TRUE(doc.isRolledBack(*doc.find("Sketch3")));
    EXPECT_FALSE(doc.isRolledBack(*doc.find("Sketch5")));
    EXPECT_FALSE(doc.isRolledBack(*doc.find("Note1"))); // not a history step
    EXPECT_FALSE(doc.isActive(*dynamic_cast<FeatureObject*>(doc.find("Extrude4"))));

    // Moving keeps the rollback position.
    doc.moveObject(doc.find("Sketch5")->serial, 99);
    EXPECT_EQ(doc.rollback(), "Extrude2");
    EXPECT_EQ(doc.objects().back()->id, "Sketch5");

    // Deleting the rollback object moves the position to the next step after it.
    doc.take(doc.find("Extrude2")->serial);
    EXPECT_EQ(doc.rollback(), "Sketch3");
    doc.take(doc.find("Sketch3")->serial);
    EXPECT_EQ(doc.rollback(), "Extrude4");
    doc.take(doc.find("Sketch5")->serial);
    doc.take(doc.find("Extrude4")->serial); // only Note1 after it: not a step
    EXPECT_EQ(doc.rollback(), "");
    doc.add(thing("Sketch", "Sketch6"));
    EXPECT_EQ(doc.objects().back()->id, "Sketch6");
}

TEST(DocumentHistory, StepsUsersAndBodyDependencies) {
    Document doc;
    doc.add(thing("Sketch", "Sketch1"));
    doc.add(thing("Plane", "Plane1"));
    auto* extrude = doc.add(
        std::make_unique<TestFeature>("Extrude1", std::vector<std::string>{"Sketch1", "Body1"}));
    auto pattern = std::make_unique<TestFeature>("Pattern1", std::vector<std::string>{"Plane1"});
    pattern->alone = false;
    doc.add(std::move(pattern));
    auto body = std::make_unique<GeometryObject>();
    body->id = "Body1";
    body->features = {"Extrude1", "Pattern1"};
    auto* b = doc.add(std::move(body));
    auto user = thing("Section", "Section1");
    user->uses = {"Body1", "Sketch1"};
    doc.add(std::move(user));

    EXPECT_EQ(doc.bodyOfFeature("Pattern1"), b);
    EXPECT_EQ(doc.bodyOfFeature("Sketch1"), nullptr);
    EXPECT_EQ(doc.dependenciesOf(*b), (std::vector<std::string>{"Sketch1", "Plane1"}));
    EXPECT_TRUE(doc.dependenciesOf(*extrude).empty());
    EXPECT_EQ(doc.users("Sketch1"), (std::vector<std::string>{"Extrude1", "Section1"}));
    EXPECT_EQ(doc.users("Body1"), (std::vector<std::string>{"Extrude1", "Section1"}));

    EXPECT_TRUE(doc.isHistoryStep(*doc.find("Sketch1")));
    EXPECT_TRUE(doc.isHistoryStep(*doc.find("Plane1")));
    EXPECT_TRUE(doc.isHistoryStep(*extrude));
    EXPECT_FALSE(doc.isHistoryStep(*doc.find("Pattern1")));
    EXPECT_FALSE(doc.isHistoryStep(*b)); // no base shape
    EXPECT_FALSE(doc.isHistoryStep(*doc.find("Section1")));

    // A rollback naming something that is gone rolls nothing back.
    doc.setRollback("Extrude9");
    EXPECT_FALSE(doc.isRolledBack(*extrude));
    static_cast<FeatureObject*>(extrude)->suppressed = true;
    EXPECT_FALSE(doc.isActive(*static_cast<FeatureObject*>(extrude)));
}

TEST(DocumentObservers, HearChangesAndSurviveReplacement) {
    Document doc;
    Recorder rec(doc);
    doc.addObserver(&rec);
    doc.addObserver(&rec); // no duplicates
    doc.add(thing("Sketch", "Sketch1"));
    doc.add(thing("Body", "Body1"));
    doc.take(doc.find("Sketch1")->serial);
    doc.setLengthUnit(units::Length::Inches);
    doc.setLengthUnit(units::Length::Inches); // unchanged: no event
    doc.setActiveComponent("");               // unchanged: no event
    EXPECT_EQ(rec.log, (std::vector<std::string>{"+Sketch1", "+Body1", "-Sketch1", "doc"}));

    Document loaded;
    auto b = thing("Body", "Body7");
    b->serial = 7;
    loaded.add(std::move(b));
    loaded.add(thing("Sketch", "Sketch2"));
    loaded.setParameters({{"w", "10", units::Length::Millimeters, false, ""}});
    loaded.setRollback("Sketch2");

    rec.log.clear();
    doc.replaceWith(std::move(loaded));
    EXPECT_EQ(rec.log, (std::vector<std::string>{"-Body1", "doc", "+Body7", "+Sketch2"}));
    EXPECT_EQ(ids(doc), (std::vector<std::string>{"Body7", "Sketch2"}));
    EXPECT_EQ(doc.find("Body7")->serial, 7u);
    EXPECT_EQ(doc.find("Sketch2")->serial, 8u); // kept serial 8 from its own document
    EXPECT_EQ(doc.rollback(), "Sketch2");
    EXPECT_EQ(doc.lengthUnit(), units::Length::Millimeters);
    EXPECT_EQ(doc.parameters().size(), 1u);
    EXPECT_TRUE(loaded.objects().empty());
    EXPECT_TRUE(loaded.idCounters().empty());
    EXPECT_EQ(loaded.rollback(), "");

    doc.removeObserver(&rec);
    doc.add(thing("Sketch", "Sketch3"));
    EXPECT_EQ(rec.log.size(), 4u);
}

TEST(DocumentParameters, LookupEvaluatesAndRefusesCycles) {
    Document doc;
    doc.setParameters({{"width", "6in", units::Length::Millimeters, true, ""},
                       {"half", "width / 2", units::Length::Millimeters, true, ""},
                       {"a", "b + 1", units::Length::Millimeters, false, ""},
                       {"b", "a", units::Length::Millimeters, false, ""},
                       {"margin", "0.25", units::Length::Inches, false, ""},
                       {"c", "missing * 2", units::Length::Millimeters, false, ""}});
    units::NameLookup lookup = doc.parameterLookup();
    Result<units::Quantity> half = lookup("half");
    ASSERT_TRUE(half.ok()) << half.error();
    EXPECT_DOUBLE_EQ(half->value, 76.2);
    EXPECT_TRUE(half->isLength);
    EXPECT_EQ(lookup("b").error(), "b: a: 'b' depends on itself (through the parameters it uses).");
    EXPECT_EQ(lookup("c").error(), "c: There's no parameter 'missing'.");
    EXPECT_EQ(lookup("nope").error(), "There's no parameter 'nope'.");
    // A failed evaluation leaves nothing behind: the same lookup works again.
    EXPECT_DOUBLE_EQ(lookup("width")->value, 152.4);

    units::ScopedParameterLookup scope(lookup, units::Length::Inches);
    Result<double> mm = units::evaluateLength("margin + 1mm", units::Length::Inches);
    ASSERT_TRUE(mm.ok()) << mm.error();
    EXPECT_DOUBLE_EQ(*mm, 6.35 + 1); // a plain parameter meeting a length is in the field's unit
}

TEST(OriginPlanes, AreRightHandedWithTheAgreedAxes) {
    auto xz = originPlaneFrame(OriginPlane::XZ);
    EXPECT_EQ(xz.normal, (Vec3{0, -1, 0}));
    EXPECT_EQ(xz.yDirection(), (Vec3{0, 0, 1}));
    auto yz = originPlaneFrame(OriginPlane::YZ);
    EXPECT_EQ(yz.xDirection, (Vec3{0, 1, 0}));
    EXPECT_EQ(yz.yDirection(), (Vec3{0, 0, 1}));
    EXPECT_EQ(originPlaneFrame(OriginPlane::XY).yDirection(), (Vec3{0, 1, 0}));

    EXPECT_EQ(parseOriginPlane("xy"), OriginPlane::XY);
    EXPECT_EQ(parseOriginPlane("XZPlane"), OriginPlane::XZ);
    EXPECT_EQ(parseOriginPlane("yzplane"), OriginPlane::YZ);
    EXPECT_EQ(parseOriginPlane("XYZ"), std::nullopt);
    EXPECT_EQ(parseOriginPlane("XYPlan"), std::nullopt);
}
