// A sketch session on a plain widget over a real document, the whole command registry
// and the undo stack, seen through a flat view of 10 pixels per millimetre with the
// sketch origin at pixel (400, 300). Tests drive it as the 3D view does.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/units/NameLookup.h"
#include "mcp/AllCommands.h"
#include "sketch/SketchObject.h"
#include "ui/sketch/InlineFields.h"
#include "ui/sketch/SketchSession.h"
#include "ui/widgets/LengthEdit.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace cad::test {

class SessionFixture : public ::testing::Test {
protected:
    SessionFixture() {
        mcp::registerAllCommands(registry);
        units::installDefaultResolver(
            [this](std::string_view name) { return document.parameterLookup()(name); },
            [this] { return document.lengthUnit(); });
        execute(CommandRecord("create_sketch").set("plane", "XY"));
        host.resize(800, 600);
        host.show();
        QApplication::setActiveWindow(&host); // so the value fields can take the focus
        session = std::make_unique<ui::SketchSession>(
            &host, std::make_unique<ui::AffineSketchView>(QPointF(400, 300), 10));
        session->setDocument(&document);
        session->setCommandRunner([this](const CommandRecord& record) {
            records.push_back(record);
            if (refuse) return false;
            const CommandResult result = stack.execute(record);
            if (!result.ok) errors.push_back(result.message);
            return result.ok;
        });
        session->setGroupHooks([this] { stack.beginGroup(); }, [this] { stack.endGroup(); });
        session->begin("Sketch1");
    }
    ~SessionFixture() override {
        session.reset();
        units::installDefaultResolver({}, {});
    }

    // A command run directly, as an agent would, followed by the window's refresh.
    void execute(const CommandRecord& record) {
        const CommandResult result = stack.execute(record);
        ASSERT_TRUE(result.ok) << record.toCall() << ": " << result.message;
        if (session) session->refresh();
    }
    void line(double x1, double y1, double x2, double y2) {
        execute(CommandRecord("add_line")
                    .set("sketch", "Sketch1")
                    .set("x1", x1)
                    .set("y1", y1)
                    .set("x2", x2)
                    .set("y2", y2));
    }

    static QPointF px(double x, double y) { return {400 + 10 * x, 300 - 10 * y}; }
    void move(double x, double y) { session->mouseMove(px(x, y), Qt::NoModifier); }
    void click(double x, double y, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        session->mouseMove(px(x, y), modifiers);
        session->mousePress(px(x, y), modifiers);
        session->mouseRelease(px(x, y), modifiers);
    }
    bool key(int key, const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        return session->keyPress(&event);
    }
    // Types into the view as a person does: the first digit opens the value card, the
    // rest goes into the field that took it.
    void type(const QString& text) {
        key(Qt::Key_0 + text[0].digitValue(), text.left(1));
        QTest::keyClicks(field(), text.mid(1));
    }
    ui::LengthEdit* field(const char* key = nullptr) const {
        auto* card = host.findChild<ui::InlineFields*>("dimensionBar");
        if (!card) return nullptr;
        if (key) return card->field(key);
        return card->findChild<ui::LengthEdit*>();
    }

    const SketchObject& sketch() const {
        return *dynamic_cast<const SketchObject*>(document.find("Sketch1"));
    }
    int count(ConstraintType type) const {
        int n = 0;
        for (const SketchConstraint& c : sketch().constraints) n += c.type == type;
        return n;
    }
    const SketchConstraint* constraint(ConstraintType type) const {
        for (const SketchConstraint& c : sketch().constraints)
            if (c.type == type) return &c;
        return nullptr;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const CommandRecord& r : records) out.push_back(r.name);
        return out;
    }

    QWidget host;
    Document document;
    CommandRegistry registry;
    CommandStack stack{document, registry};
    std::unique_ptr<ui::SketchSession> session;
    std::vector<CommandRecord> records;
    std::vector<std::string> errors;
    bool refuse = false;
};

} // namespace cad::test
