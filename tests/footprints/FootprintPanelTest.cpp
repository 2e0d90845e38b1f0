// The footprint panel on Qt's offscreen platform: it lists the library, places the
// chosen footprint through place_footprint (one undo step), shows refusals, and
// removes footprints; the click tool hands over rounded sketch points.
#include "tests/panels/PanelsFixture.h"
#include "tests/support/TempFolder.h"

#include "sketch/SketchObject.h"
#include "sketch/footprints/FootprintLibrary.h"
#include "ui/panels/FootprintPanel.h"
#include "ui/sketch/FootprintTool.h"
#include "ui/sketch/SketchView.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>

namespace cad::ui::testing {

namespace {

class FootprintPanelTest : public PanelsFixture {
protected:
    FootprintPanelTest() {
        qputenv("KORVEL_DATA_DIR", QByteArray::fromStdString(data.path().string()));
        panel.setSketch("Sketch1");
    }
    ~FootprintPanelTest() override { qunsetenv("KORVEL_DATA_DIR"); }

    // A footprint of one entity saved straight into the library.
    static void store(const std::string& name, const std::string& description,
                      SketchGeometry geometry, const std::string& id) {
        SketchEntity entity;
        entity.id = id;
        entity.geometry = std::move(geometry);
        ASSERT_TRUE(FootprintLibrary().save(Footprint{name, description, {entity}, {}}, false));
    }
    const SketchObject& sketch() { return *document.findAs<SketchObject>("Sketch1"); }

    cad::testing::TempFolder data;
    FootprintPanel panel{[this](const CommandRecord& record) {
        ran.push_back(record);
        return stack.execute(record);
    }};
};

} // namespace

TEST_F(FootprintPanelTest, ListsTheLibraryAndPlacesTheChosenFootprintAsOneStep) {
    panel.refresh();
    EXPECT_EQ(panel.list()->count(), 0);
    EXPECT_FALSE(panel.placeButton()->isEnabled());
    EXPECT_FALSE(panel.message().isEmpty());

    store("Switch", "Toggle switch holes", SketchCircle{{0, 4}, 1.5}, "Circle1");
    store("Plate", "", SketchRectangle{{-5, -2}, 10, 4}, "Rectangle1");
    ok(CommandRecord("create_sketch").set("plane", "XY"));
    panel.refresh();
    ASSERT_EQ(panel.list()->count(), 2);
    EXPECT_EQ(panel.list()->item(0)->data(FootprintPanel::kNameRole).toString(), "Plate");
    EXPECT_EQ(panel.list()->item(1)->text(), "Switch\nToggle switch holes · 1 Circle");
    EXPECT_TRUE(panel.placeButton()->isEnabled());

    ASSERT_TRUE(panel.choose(QStringLiteral("Switch")));
    panel.angle()->setValue(90);
    QSignalSpy placed(&panel, &FootprintPanel::placed);
    const std::size_t steps = stack.undoCount();
    ASSERT_TRUE(panel.placeAt({5, 5}));
    EXPECT_EQ(placed.count(), 1);
    EXPECT_EQ(panel.message(), "Placed 'Switch' in Sketch1; its reference point is Point1.");
    EXPECT_FALSE(panel.messageIsError());
    EXPECT_EQ(stack.undoCount(), steps + 1);
    ASSERT_EQ(sketch().entities.size(), 2u);
    const auto& hole = std::get<SketchCircle>(sketch().entities[1].geometry);
    EXPECT_NEAR(hole.center.x, 1, 1e-9); // (0, 4) a quarter turn round is (-4, 0)
    EXPECT_NEAR(hole.center.y, 5, 1e-9);
    ASSERT_TRUE(stack.undo());
    EXPECT_TRUE(sketch().entities.empty());

    // A refusal shows as an error and changes nothing; the choice survives a refresh.
    ASSERT_TRUE(panel.choose(QStringLiteral("Plate")));
    panel.angle()->setValue(45);
    EXPECT_FALSE(panel.placeAt({0, 0}));
    EXPECT_TRUE(panel.messageIsError());
    EXPECT_TRUE(panel.message().startsWith("'Plate' has a rectangle"));
    EXPECT_TRUE(sketch().entities.empty());
    panel.refresh();
    EXPECT_EQ(panel.chosen(), "Plate");

    // Removing changes the library only: no undo step.
    const std::size_t before = stack.undoCount();
    EXPECT_TRUE(panel.removeChosen());
    EXPECT_EQ(panel.message(), "Removed the footprint.");
    ASSERT_EQ(panel.list()->count(), 1);
    EXPECT_EQ(panel.chosen(), "Switch");
    EXPECT_EQ(stack.undoCount(), before);
}

TEST(FootprintToolTest, ClicksBecomeRoundedSketchPointsAndEscGivesUp) {
    const AffineSketchView view({100, 100}, 3);
    std::vector<Point2> placed;
    int cancelled = 0;
    FootprintTool tool([&](QPointF pixel) { return view.toSketch(pixel); },
                       [&](Point2 at) { placed.push_back(at); }, [&] { ++cancelled; });
    EXPECT_TRUE(tool.mousePress({110, 90}, Qt::NoModifier));
    EXPECT_TRUE(tool.mousePress({100.01, 100.01}, Qt::NoModifier));
    ASSERT_EQ(placed.size(), 2u);
    EXPECT_EQ(placed[0], (Point2{3.33, 3.33}));
    EXPECT_EQ(placed[1], (Point2{0, 0}));
    EXPECT_FALSE(std::signbit(placed[1].y));

    FootprintTool offPlane([](QPointF) { return std::optional<Point2>(); },
                           [&](Point2 at) { placed.push_back(at); }, [] {});
    EXPECT_FALSE(offPlane.mousePress({1, 1}, Qt::NoModifier));
    EXPECT_EQ(placed.size(), 2u);

    QKeyEvent other(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    EXPECT_FALSE(tool.keyPress(&other));
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    EXPECT_TRUE(tool.keyPress(&escape));
    EXPECT_EQ(cancelled, 1);
}

} // namespace cad::ui::testing
