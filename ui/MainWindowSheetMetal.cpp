// The SHEET METAL tab: its strip (flanges, hems, converting a body, flat patterns, the
// tools shared with SOLID) and Nest Parts, which lays the chosen bodies flat and saves
// their nest as one drawing.
#include "ui/MainWindow.h"

#include "mcp/FlatTools.h"
#include "ui/WindowPrompt.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/forms/NestForm.h"
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolStrip.h"

#include <QAction>
#include <QToolButton>

namespace cad::ui {

void MainWindow::buildSheetMetalActions() {
    buildFlatPatternActions();
    actions_.nestParts = makeWindowAction(
        QStringLiteral("nest"), QStringLiteral("Nest Parts"), QStringLiteral("nestParts"),
        QStringLiteral("Lay parts out on sheets and save them for cutting"));
    connect(actions_.nestParts, &QAction::triggered, this, &MainWindow::openNestForm);
    actions_.exportFlat = makeWindowAction(
        QStringLiteral("flat"), QStringLiteral("Export Flat"), QStringLiteral("exportFlat"),
        QStringLiteral("Save a flat part, seen square to it, for laser or CNC"));
    connect(actions_.exportFlat, &QAction::triggered, this, &MainWindow::exportFlatFromSelection);
}

ToolStrip* MainWindow::buildSheetStrip(QWidget* parent) {
    const Actions& a = actions_;
    auto* strip = new ToolStrip(QStringLiteral("sheetTools"), parent);
    strip->addGroup(new ToolGroup(QStringLiteral("sheet.create"), QStringLiteral("CREATE"),
                                  {a.sketch, a.extrude, a.sheetFlange, a.edgeFlange, a.hem,
                                   a.sheetRules, a.hole, a.referencePlane},
                                  {QStringLiteral("Sketch"), QStringLiteral("Flange"),
                                   QStringLiteral("Edge Flange"), QStringLiteral("Hole")}));
    strip->addGroup(new ToolGroup(
        QStringLiteral("sheet.modify"), QStringLiteral("MODIFY"),
        {a.patternRect, a.patternCirc, a.mirror, a.appearance, a.material, a.remove, a.parameters},
        {QStringLiteral("Rectangular Pattern"), QStringLiteral("Mirror")}));
    strip->addGroup(
        new ToolGroup(QStringLiteral("sheet.make"), QStringLiteral("MAKE"),
                      {a.editFlatPattern, a.flatPattern, a.nestParts},
                      {QStringLiteral("Edit Flat Pattern"), QStringLiteral("Export Flat Pattern"),
                       QStringLiteral("Nest Parts")}));
    strip->addGroup(new ToolGroup(QStringLiteral("sheet.inspect"), QStringLiteral("INSPECT"),
                                  {a.section}, {QStringLiteral("Section Analysis")}));
    strip->hide();
    return strip;
}

ToolStrip* MainWindow::designStrip() const {
    return sheetTab_ && sheetTab_->isChecked() ? sheetTools_ : modelingTools_;
}

void MainWindow::openNestForm() {
    if (editingSketch()) finishSketch();
    NestFormHost host;
    host.flatDrawing = [this](const std::string& body) { return flatDrawingOf(body); };
    host.askPath = [this](const QString& proposed, const QString& filter) {
        return prompt_->saveFileName(this, QStringLiteral("Save the nest"), proposed, filter);
    };
    forms_->open(nestForm(document_, std::move(host), selectedReferences()));
}

Result<drawing::Drawing> MainWindow::flatDrawingOf(const std::string& body) const {
    return mcp::flatDrawingForNesting(document_, body, {});
}

} // namespace cad::ui
