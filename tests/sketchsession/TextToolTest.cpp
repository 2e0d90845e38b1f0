// Sketch text by hand: the Text tool's click opens the panel, the panel's rows make
// add_text (run here, so the command checks them), an edit carries only what changed,
// and a double-click on text opens it again.
#include "SessionFixture.h"

#include "ui/sketch/TextPanel.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>

using namespace cad;
using cad::test::SessionFixture;

namespace {

using TextTool = SessionFixture;

TEST_F(TextTool, PanelMakesAddTextWithWhatDiffersFromTheDefaults) {
    ui::TextPanel panel;
    panel.startNew("Sketch1", {3, 4});
    EXPECT_FALSE(panel.primaryButton()->isEnabled());
    EXPECT_EQ(panel.primaryButton()->toolTip(), QStringLiteral("The text is empty."));
    panel.entry()->setPlainText(QStringLiteral("   \n"));
    EXPECT_FALSE(panel.record().ok());

    panel.entry()->setPlainText(QStringLiteral("KORVEL\nStudio"));
    EXPECT_TRUE(panel.primaryButton()->isEnabled());
    EXPECT_EQ(panel.record()->toCall(), "add_text(sketch=\"Sketch1\", text=\"KORVEL\nStudio\", "
                                        "font=\"Arial\", height=\"5 mm\", x=3, y=4)");
    panel.height()->setText(QStringLiteral("12pt"));
    panel.alignButton(QStringLiteral("center"))->click();
    panel.bold()->click();
    EXPECT_EQ(panel.record()->toCall(),
              "add_text(sketch=\"Sketch1\", text=\"KORVEL\nStudio\", font=\"Arial\", "
              "height=\"12pt\", x=3, y=4, size_unit=\"pt\", align=\"center\", bold=true)");
    execute(*panel.record());
    EXPECT_EQ(std::get<SketchText>(sketch().entities.at(0).geometry).align, TextAlign::Center);

    // Ctrl+Enter in the words adds; a plain Enter starts a line.
    QSignalSpy accepted(&panel, &ui::TextPanel::accepted);
    QTest::keyClick(panel.entry(), Qt::Key_Return);
    EXPECT_EQ(accepted.size(), 0);
    QTest::keyClick(panel.entry(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(accepted.size(), 1);
}

TEST_F(TextTool, EditCarriesOnlyWhatChanged) {
    ui::TextPanel panel;
    panel.startEdit("Sketch1", "Text1",
                    {{"text", QStringLiteral("Hi")}, {"font", QStringLiteral("Arial")},
                     {"height", QStringLiteral("5 mm")}, {"angle", QStringLiteral("0")},
                     {"align", QStringLiteral("left")}, {"italic", QStringLiteral("true")}});
    EXPECT_EQ(panel.primaryButton()->text(), QStringLiteral("Apply"));
    EXPECT_TRUE(panel.italic()->isChecked());
    EXPECT_FALSE(panel.primaryButton()->isEnabled()); // nothing changed yet
    panel.angle()->setText(QStringLiteral("15"));
    panel.italic()->click();
    EXPECT_EQ(panel.record()->toCall(), "edit_sketch_entity(sketch=\"Sketch1\", entity=\"Text1\", "
                                        "angle=15, italic=false)");
    panel.angle()->setText(QStringLiteral("15 +"));
    EXPECT_FALSE(panel.primaryButton()->isEnabled());
}

TEST_F(TextTool, ClickAsksForTextWhereADrawingClickWouldLand) {
    line(0, 0, 10, 0);
    session->setTool(ui::SketchSession::Text);
    EXPECT_EQ(session->status().toStdString(),
              "Text · click where it goes (double-click text to edit it)");
    QSignalSpy placed(session.get(), &ui::SketchSession::textPlacementRequested);
    click(10.3, 0.2); // onto the line's end
    click(4.4, 7.6);  // the grid
    ASSERT_EQ(placed.size(), 2);
    EXPECT_EQ(placed[0].at(0).toPointF(), QPointF(10, 0));
    EXPECT_EQ(placed[1].at(0).toPointF(), QPointF(4, 8));
    EXPECT_TRUE(records.empty());
}

TEST_F(TextTool, AddedTextIsPickedByItsStrokesAndEditedFromItsValues) {
    ui::TextPanel panel;
    panel.startNew("Sketch1", {0, 0});
    panel.entry()->setPlainText(QStringLiteral("HI"));
    panel.height()->setText(QStringLiteral("12pt"));
    panel.italic()->click();
    execute(*panel.record()); // the command takes what the panel makes
    ASSERT_EQ(sketch().entities.size(), 1u);
    const SketchEntity& text = sketch().entities[0];
    ASSERT_EQ(text.kind(), EntityKind::Text);

    // A double-click on one of its strokes asks for it to be edited.
    const std::vector<ui::CurvePiece> strokes = ui::entityPieces(text, 0, 0.01);
    ASSERT_FALSE(strokes.empty());
    const Point2 on = strokes.front().points.front();
    QSignalSpy edit(session.get(), &ui::SketchSession::editTextRequested);
    session->mouseDoubleClick(px(on.x, on.y), Qt::NoModifier);
    ASSERT_EQ(edit.size(), 1);
    EXPECT_EQ(edit[0].at(0).toString(), QStringLiteral("Text1"));

    const auto values = ui::textPanelValues(text, units::Length::Millimeters);
    EXPECT_EQ(values.at("height"), QStringLiteral("12pt")); // shown in the unit it was given in
    EXPECT_EQ(values.at("italic"), QStringLiteral("true"));
    panel.startEdit("Sketch1", text.id, values);
    EXPECT_FALSE(panel.primaryButton()->isEnabled());
    panel.entry()->setPlainText(QStringLiteral("HO"));
    EXPECT_EQ(panel.record()->toCall(),
              "edit_sketch_entity(sketch=\"Sketch1\", entity=\"Text1\", text=\"HO\")");
    execute(*panel.record());
    EXPECT_EQ(std::get<SketchText>(sketch().entities[0].geometry).text, "HO");
}

} // namespace
