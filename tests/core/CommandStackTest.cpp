// The command stack: execution, events, groups, undo and redo, name rewriting.
#include "core/CommandStack.h"
#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "tests/core/TestObjects.h"

#include <gtest/gtest.h>

using namespace cad;

namespace {

// Adds an object of a given type word; remembers the ID it made so redo makes it again.
class AddThingCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        ArgReader args(record_);
        std::string type = *args.string("type", "Thing");
        Result<double> size = args.length("size", 0);
        if (!size) return CommandResult::failure(size.error());
        std::string id = *args.string("id", doc.nextId(type));
        auto* added = doc.add(test::thing(type, id));
        serial_ = added->serial;
        record_.set("id", id);
        if (*size != 0) record_.set("size", *size);
        return CommandResult::success("Created " + id + ".");
    }
    void undo(Document& doc) override { doc.take(serial_); }

private:
    std::uint64_t serial_ = 0;
};

// Labels an existing object; fails when it is not there.
class LabelCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        std::string name = *ArgReader(record_).object("object");
        DocumentObject* object = doc.findByName(name);
        if (!object) return CommandResult::failure(doc.lookupError(name));
        id_ = object->id;
        previous_ = object->label;
        object->label = *ArgReader(record_).string("label", "");
        return CommandResult::success();
    }
    void undo(Document& doc) override { doc.find(id_)->label = previous_; }

private:
    std::string id_, previous_;
};

struct Fixture : ::testing::Test {
    Fixture() {
        registry.add("add_thing", "Adds a thing.",
                     {{"type", ArgType::String, false, "Type word.", {}, ""},
                      {"size", ArgType::Length, false, "A length.", {}, ""}},
                     [this](const CommandRecord& r) -> Result<std::unique_ptr<Command>> {
                         ArgReader args(r);
                         if (auto ok = args.allowDeclared(registry.find(r.name)->arguments); !ok)
                             return Error(ok);
                         return std::unique_ptr<Command>(std::make_unique<AddThingCommand>(r));
                     });
        registry.add("label", "Labels an object.",
                     {{"object", ArgType::String, true, "Object.", {}, "object"},
                      {"label", ArgType::String, false, "Label.", {}, ""}},
                     [](const CommandRecord& r) -> Result<std::unique_ptr<Command>> {
                         if (auto name = ArgReader(r).object("object"); !name) return Error(name);
                         return std::unique_ptr<Command>(std::make_unique<LabelCommand>(r));
                     });
        stack.addListener([this](const CommandEvent& e) { events.push_back(e); });
    }

    std::vector<std::string> eventLog() const {
        static const char* kinds[] = {"Executed", "Undone", "Redone", "Failed"};
        std::vector<std::string> out;
        for (const auto& e : events)
            out.push_back(std::string(kinds[e.kind]) + " " + e.record.toCall());
        return out;
    }

    Document doc;
    CommandRegistry registry;
    CommandStack stack{doc, registry};
    std::vector<CommandEvent> events;
};

CommandRecord addThing(std::string type) {
    return CommandRecord("add_thing").set("type", type.c_str());
}

} // namespace

TEST_F(Fixture, ExecuteUndoRedoRoundTrip) {
    CommandResult r = stack.execute(addThing("Body"));
    EXPECT_TRUE(r.ok);
    EXPECT_EQ(r.message, "Created Body1.");
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].kind, CommandEvent::Executed);
    EXPECT_EQ(events[0].message, "Created Body1.");
    EXPECT_EQ(stack.undoRecord()->toCall(), "add_thing(type=\"Body\", id=\"Body1\")");

    EXPECT_TRUE(stack.undo());
    EXPECT_EQ(doc.find("Body1"), nullptr);
    EXPECT_FALSE(stack.undo());
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_NE(doc.find("Body1"), nullptr);
    EXPECT_EQ(stack.redo().message, "Nothing to redo.");
    EXPECT_EQ(eventLog(),
              (std::vector<std::string>{"Executed add_thing(type=\"Body\", id=\"Body1\")",
                                        "Undone add_thing(type=\"Body\", id=\"Body1\")",
                                        "Redone add_thing(type=\"Body\", id=\"Body1\")"}));
}

TEST_F(Fixture, FailuresAreSentencesAndChangeNothing) {
    stack.execute(addThing("Body"));
    stack.undo();
    CommandResult unknown = stack.execute(CommandRecord("extrude"));
    EXPECT_FALSE(unknown.ok);
    EXPECT_EQ(unknown.message, "Unknown command 'extrude'.");

    CommandResult extra = stack.execute(addThing("Body").set("colour", "red"));
    EXPECT_EQ(extra.message, "add_thing: unknown argument 'colour'. Expected one of: type, size.");
    CommandResult bad = stack.execute(addThing("Body").set("size", "2in * 3in"));
    EXPECT_EQ(bad.message,
              "add_thing: 'size': Multiplying two lengths gives an area, not a length.");
    EXPECT_EQ(events.back().kind, CommandEvent::Failed);
    EXPECT_TRUE(doc.objects().empty());
    // A failed command keeps the redo stack.
    EXPECT_TRUE(stack.canRedo());
    EXPECT_EQ(stack.undoCount(), 0u);
}

TEST_F(Fixture, ArgumentsSeeTheDocumentsParametersAndUnit) {
    doc.setParameters({{"w", "1in", units::Length::Millimeters, true, ""}});
    doc.setLengthUnit(units::Length::Inches);
    ASSERT_TRUE(stack.execute(addThing("Body").set("size", "w + 1")).ok);
    EXPECT_DOUBLE_EQ(std::get<double>(*stack.undoRecord()->find("size")), 50.8);
    // Without names a bare number stays in millimetres.
    ASSERT_TRUE(stack.execute(addThing("Body").set("size", "10 + 2mm")).ok);
    EXPECT_DOUBLE_EQ(std::get<double>(*stack.undoRecord()->find("size")), 12);
}

TEST_F(Fixture, GroupsUndoAndRedoAsOneStep) {
    stack.execute(addThing("Sketch"));
    stack.beginGroup();
    stack.execute(addThing("Body"));
    stack.beginGroup(); // nested groups join the outer one
    stack.execute(addThing("Body"));
    stack.endGroup();
    stack.execute(addThing("Body"));
    stack.endGroup();
    EXPECT_EQ(stack.undoCount(), 2u);

    events.clear();
    EXPECT_TRUE(stack.undo());
    EXPECT_EQ(doc.objects().size(), 1u);
    EXPECT_EQ(eventLog(),
              (std::vector<std::string>{"Undone add_thing(type=\"Body\", id=\"Body3\")",
                                        "Undone add_thing(type=\"Body\", id=\"Body2\")",
                                        "Undone add_thing(type=\"Body\", id=\"Body1\")"}));
    events.clear();
    EXPECT_TRUE(stack.redo().ok);
    EXPECT_EQ(eventLog(),
              (std::vector<std::string>{"Redone add_thing(type=\"Body\", id=\"Body1\")",
                                        "Redone add_thing(type=\"Body\", id=\"Body2\")",
                                        "Redone add_thing(type=\"Body\", id=\"Body3\")"}));
    EXPECT_EQ(doc.objects().size(), 4u);

    // After the group has closed, the next command is a step of its own;
    // a new command after an undo empties the redo stack.
    stack.undo();
    stack.execute(addThing("Plane"));
    EXPECT_FALSE(stack.canRedo());
    EXPECT_EQ(stack.undoCount(), 2u);
}

TEST_F(Fixture, PositionComesBackOnlyWithTheSameStep) {
    EXPECT_EQ(stack.position(), 0u);
    stack.execute(addThing("Body"));
    const auto saved = stack.position();
    stack.execute(addThing("Body"));
    EXPECT_NE(stack.position(), saved);
    stack.undo();
    EXPECT_EQ(stack.position(), saved); // undo back to the save: unmodified again
    stack.undo();
    stack.redo();
    EXPECT_EQ(stack.position(), saved);
    // A different step at the same depth is a different state.
    stack.undo();
    stack.execute(addThing("Plane"));
    EXPECT_EQ(stack.undoCount(), 1u);
    EXPECT_NE(stack.position(), saved);
}

TEST_F(Fixture, RedoThatFailsHalfwayPutsEverythingBack) {
    doc.add(test::thing("Body", "Body9", "Marker"));
    stack.beginGroup();
    stack.execute(addThing("Sketch"));
    stack.execute(CommandRecord("label").set("object", "Marker").set("label", "Seen"));
    stack.endGroup();
    stack.undo();
    EXPECT_EQ(doc.find("Body9")->label, "Marker");

    doc.take(doc.find("Body9")->serial); // the document changes underneath
    events.clear();
    CommandResult r = stack.redo();
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.message, "No object named 'Body9' exists.");
    EXPECT_EQ(eventLog(),
              (std::vector<std::string>{"Failed label(object=\"Body9\", label=\"Seen\")"}));
    EXPECT_TRUE(doc.objects().empty());
    EXPECT_TRUE(stack.canRedo());
    EXPECT_FALSE(stack.canUndo());
}

TEST_F(Fixture, NamesBecomeIdsBeforeTheCommandIsMade) {
    auto gear = std::make_unique<GeometryObject>();
    gear->id = "Body2";
    gear->label = "Gear";
    doc.add(std::move(gear));
    doc.add(test::thing("Sketch", "Sketch1", "Gear")); // same label, not a body

    registry.add("paint", "Paints a body.",
                 {{"body", ArgType::String, true, "", {}, "body"},
                  {"sketch", ArgType::String, false, "", {}, "sketch"},
                  {"note", ArgType::String, false, "", {}, ""}},
                 [](const CommandRecord&) { return Result<std::unique_ptr<Command>>(fail("no")); });
    CommandRecord r("paint");
    r.set("body", "gear").set("sketch", "GEAR").set("note", "Gear");
    CommandRecord canonical = registry.canonicalize(r, doc);
    EXPECT_EQ(canonical.toCall(), "paint(body=\"Body2\", sketch=\"Sketch1\", note=\"Gear\")");

    // Any object: the label is ambiguous, so the name stays and the command reports it.
    ASSERT_TRUE(stack.execute(CommandRecord("label").set("object", "gear").set("label", "x")).ok ==
                false);
    EXPECT_EQ(events.back().record.toCall(), "label(object=\"gear\", label=\"x\")");
    EXPECT_EQ(events.back().message,
              "'gear' is the name of more than one object (Body2, Sketch1); use the ID.");
    ASSERT_TRUE(stack.execute(CommandRecord("label").set("object", "body2").set("label", "x")).ok);
    EXPECT_EQ(stack.undoRecord()->toCall(), "label(object=\"Body2\", label=\"x\")");
}

TEST_F(Fixture, TrialRunsStayOutOfTheHistoryAndGiveWayToRealCommands) {
    stack.execute(addThing("Body"));
    events.clear();

    // A trial is applied, unannounced and unrecorded, until withdrawn.
    EXPECT_TRUE(stack.tryOut(CommandRecord("label").set("object", "Body1").set("label", "Plate")).ok);
    EXPECT_EQ(doc.find("Body1")->label, "Plate");
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(stack.undoCount(), 1u);
    EXPECT_TRUE(stack.withdrawTrial());
    EXPECT_EQ(doc.find("Body1")->label, "");
    EXPECT_FALSE(stack.withdrawTrial());

    // A failed trial leaves nothing applied.
    EXPECT_FALSE(stack.tryOut(CommandRecord("label").set("object", "Nope")).ok);
    EXPECT_FALSE(stack.hasTrial());

    // Undo, and any real command, first take the trial back: the history never runs
    // on top of it.
    stack.tryOut(CommandRecord("label").set("object", "Body1").set("label", "Plate"));
    stack.execute(addThing("Body"));
    EXPECT_EQ(doc.find("Body1")->label, "");
    EXPECT_FALSE(stack.hasTrial());
    stack.tryOut(CommandRecord("label").set("object", "Body2").set("label", "Lid"));
    EXPECT_TRUE(stack.undo());
    EXPECT_EQ(doc.find("Body2"), nullptr);
    EXPECT_EQ(doc.find("Body1")->label, "");
}
