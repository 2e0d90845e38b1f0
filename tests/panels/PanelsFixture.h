// A document with every command registered and a command stack, handed to the
// panels the way the window hands them over: a runner that executes through the
// stack (and notes each record), group hooks on the stack, and a delete callback.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "mcp/AllCommands.h"
#include "ui/panels/PanelHooks.h"

#include <QCoreApplication>
#include <QSettings>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cad::ui::testing {

class PanelsFixture : public ::testing::Test {
protected:
    PanelsFixture() : stack(document, registry) { mcp::registerAllCommands(registry); }
    void SetUp() override { QSettings().clear(); }
    void TearDown() override { QSettings().clear(); }

    PanelHooks hooks() {
        return {[this](const CommandRecord& record) {
                    ran.push_back(record);
                    return stack.execute(record).ok;
                },
                [this] { stack.beginGroup(); }, [this] { stack.endGroup(); },
                [this](const std::vector<std::string>& ids) { deleted.push_back(ids); }};
    }

    // Runs a command the test itself needs; it must succeed.
    void ok(const CommandRecord& record) {
        const CommandResult result = stack.execute(record);
        ASSERT_TRUE(result.ok) << record.toCall() << ": " << result.message;
    }
    void box() { ok(CommandRecord("create_box").set("width", 2).set("depth", 2).set("height", 2)); }
    // Sketch1 with a rectangle, extruded into Body1 by Extrude1.
    void plate() {
        ok(CommandRecord("create_sketch").set("plane", "XY"));
        ok(CommandRecord("add_rectangle")
               .set("sketch", "Sketch1")
               .set("x1", 0)
               .set("y1", 0)
               .set("x2", 10)
               .set("y2", 5));
        ok(CommandRecord("extrude").set("sketch", "Sketch1").set("distance", 2));
    }
    // Lets the panels apply what they noted.
    static void settle() { QCoreApplication::processEvents(); }

    Document document;
    CommandRegistry registry;
    CommandStack stack;
    std::vector<CommandRecord> ran;                // what the panels ran
    std::vector<std::vector<std::string>> deleted; // what they asked the window to delete
};

} // namespace cad::ui::testing
