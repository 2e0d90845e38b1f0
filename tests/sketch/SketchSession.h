// A document with the sketch commands registered, driven through the command stack
// exactly as the window and agents drive it.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "sketch/SketchCommands.h"
#include "sketch/SketchEntity.h"
#include "sketch/SketchObject.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace cad::test {

class SketchSession : public ::testing::Test {
protected:
    // A command argument as tests write it: "text", 10, 2.5 or true.
    struct Arg {
        Value value;
        Arg(const char* text) : value(std::string(text)) {}
        Arg(double number) : value(number) {}
        Arg(int number) : value(static_cast<std::int64_t>(number)) {}
        Arg(bool flag) : value(flag) {}
    };
    using Args = std::initializer_list<std::pair<const char*, Arg>>;

    SketchSession() { registerSketchCommands(registry); }

    // The command on Sketch1 with these arguments.
    static CommandRecord on(const char* command, Args arguments = {}) {
        CommandRecord record(command);
        record.set("sketch", "Sketch1");
        for (const auto& [key, arg] : arguments) record.set(key, arg.value);
        return record;
    }

    CommandResult run(const CommandRecord& record) { return stack.execute(record); }
    // Runs a command that must succeed and returns its message.
    std::string ok(const CommandRecord& record) {
        CommandResult r = run(record);
        EXPECT_TRUE(r.ok) << record.toCall() << " -> " << r.message;
        return r.message;
    }
    // Runs a command that must fail and returns the error.
    std::string error(const CommandRecord& record) {
        CommandResult r = run(record);
        EXPECT_FALSE(r.ok) << record.toCall() << " unexpectedly gave: " << r.message;
        return r.message;
    }

    SketchObject& sketch(const std::string& id = "Sketch1") {
        auto* s = dynamic_cast<SketchObject*>(document.find(id));
        if (!s) throw std::runtime_error("no sketch " + id);
        return *s;
    }
    const SketchEntity& entity(const std::string& id, const std::string& sketchId = "Sketch1") {
        const SketchEntity* e = sketch(sketchId).findEntity(id);
        if (!e) throw std::runtime_error("no entity " + id);
        return *e;
    }
    template <typename Kind> const Kind& geometry(const std::string& id) {
        return std::get<Kind>(entity(id).geometry);
    }

    // "Sketch1" on XY, made through create_sketch.
    void newSketch() { ok(CommandRecord("create_sketch").set("plane", "XY")); }
    void line(double x1, double y1, double x2, double y2) {
        ok(on("add_line", {{"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}}));
    }
    static CommandRecord constraint(const std::string& type, const std::string& a,
                                    const std::string& b = {}) {
        CommandRecord r("add_constraint");
        r.set("sketch", "Sketch1").set("type", type.c_str()).set("a", a.c_str());
        if (!b.empty()) r.set("b", b.c_str());
        return r;
    }

    // Everything a failed command must leave as it was, exactly: entity IDs and
    // values, and constraint IDs, values and references.
    std::string snapshot(const std::string& id = "Sketch1") {
        std::string out;
        for (const SketchEntity& e : sketch(id).entities) {
            out += e.id + (e.construction ? "*" : "") + ":";
            for (double v : entityParameters(e)) out += formatShortest(v) + ",";
            out += ";";
        }
        for (const SketchConstraint& c : sketch(id).constraints) {
            out += c.id + "=" + formatShortest(c.value) + ";";
            for (const SketchRef& ref : c.refs) out += ref.text() + ",";
        }
        return out;
    }

    Document document;
    CommandRegistry registry;
    CommandStack stack{document, registry};
};

} // namespace cad::test
