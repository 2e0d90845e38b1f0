// Sketch text through the commands: add_text's options, defaults and refusals, saving
// and opening every option, editing a text, the position as a solver point, what the sketch
// operations do with text, text_to_outlines, and fonts from the person's own folder.
#include "TextTestSupport.h"

#include "core/ProjectFile.h"
#include "geometry/GeometryTypes.h"
#include "sketch/SketchJson.h"
#include "sketch/text/FontLibrary.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

using namespace cad;
using namespace cad::testing;

namespace {

using TextCommands = TextModel;

TEST_F(TextCommands, EveryOptionIsReadAndSurvivesSavingAndOpening) {
    ok("add_circle", {{"sketch", "Sketch1"}, {"cx", 0}, {"cy", 0}, {"radius", 30}});
    EXPECT_EQ(
        ok("add_text", {{"sketch", "Sketch1"}, {"text", "Ab\ncd é"},  {"font", "Liberation Serif"},
                        {"height", "12pt"},    {"x", "1 cm"},         {"y", -4},
                        {"angle", 30},         {"align", "justify"},  {"valign", "middle"},
                        {"bold", true},        {"italic", true},      {"size_is", "font_size"},
                        {"line_spacing", 150}, {"tracking", 40},      {"kerning", false},
                        {"width_scale", 90},   {"height_scale", 110}, {"baseline_shift", 0.5},
                        {"char_rotation", 5},  {"vertical", true},    {"all_caps", true},
                        {"path", "Circle1"},   {"path_offset", 4},    {"path_flip", true},
                        {"size_unit", "pt"},   {"construction", true}}),
        "Added Text1 to Sketch1.");
    const SketchText t = textOf("Text1");
    EXPECT_NEAR(t.height, 4.2333, 1e-4);
    EXPECT_DOUBLE_EQ(t.height, 12 * 25.4 / 72);
    EXPECT_EQ(t.position, (Point2{10, -4}));
    EXPECT_EQ(t.align, TextAlign::Justify);
    EXPECT_EQ(t.valign, TextVAlign::Middle);
    EXPECT_EQ(t.sizeIs, TextSizeIs::FontSize);
    EXPECT_TRUE(t.bold && t.italic && t.vertical && t.allCaps && !t.kerning && t.pathFlip);
    EXPECT_EQ(t.sizeUnit, "pt");
    EXPECT_EQ(t.text, "Ab\ncd é");

    // Stored under their own names, and every one comes back from the project file.
    const nlohmann::ordered_json record = entityToJson(*sketch().findEntity("Text1"));
    EXPECT_EQ(record["kind"], "text");
    EXPECT_EQ(record["sizeIs"], "font_size");
    EXPECT_EQ(record["lineSpacing"], 150);
    ObjectTypes types;
    registerSketchTypes(types);
    registerGeometryTypes(types);
    Result<Bytes> bytes = projectBytes(document, "Korvel Studio test", types);
    ASSERT_TRUE(bytes.ok()) << bytes.error();
    Result<std::unique_ptr<Document>> reopened = readProjectBytes(*bytes, "text.kv3", types);
    ASSERT_TRUE(reopened.ok()) << reopened.error();
    const auto* again = (*reopened)->findAs<SketchObject>("Sketch1");
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(std::get<SketchText>(again->findEntity("Text1")->geometry), t);

    // A record with only the words and a place takes every default; bad values are refused.
    auto read = [](const char* text) { return entityFromJson(nlohmann::json::parse(text)); };
    Result<SketchEntity> bare = read(R"({"id":"Text4","kind":"text","text":"x","position":[1,2]})");
    ASSERT_TRUE(bare.ok()) << bare.error();
    EXPECT_EQ(std::get<SketchText>(bare->geometry).font, "Arial");
    EXPECT_EQ(read(R"({"id":"T","kind":"text","text":"x","position":[1,2],"align":"up"})").error(),
              "T: \"align\" isn't a known choice");
    EXPECT_EQ(read(R"({"id":"T","kind":"text","text":" ","position":[1,2]})").error(),
              "T: The text is empty.");
}

TEST_F(TextCommands, DefaultsAndRefusals) {
    // Defaults: Arial, 5 mm cap height at the origin, the document's unit.
    ok("add_text", {{"sketch", "Sketch1"}, {"text", "K"}});
    const SketchText& plain = textOf("Text1");
    EXPECT_EQ(plain.font, "Arial");
    EXPECT_EQ(plain.height, 5);
    EXPECT_EQ(plain.sizeUnit, "mm");
    EXPECT_EQ(plain.lineSpacing, 120);

    const std::vector<std::pair<std::vector<std::pair<const char*, Arg>>, std::string>> refusals{
        {{{"text", "   "}}, "The text is empty."},
        {{{"text", "A"}, {"height", "twelve points"}},
         "add_text: 'height' must be a size like 12pt or 5mm."},
        {{{"text", "A"}, {"height", 0}}, "The text height must be greater than zero."},
        {{{"text", "A"}, {"line_spacing", 0}},
         "add_text: 'line_spacing' must be greater than zero (120 is normal)."},
        {{{"text", "A"}, {"width_scale", -5}},
         "add_text: scales must be greater than zero (100 is normal)."},
        {{{"text", "A"}, {"size_unit", "px"}},
         "add_text: 'size_unit' must be pt, mm, cm, m, in or ft."},
        {{{"text", "A"}, {"align", "middle"}},
         "add_text: 'align' must be one of left, center, right, justify."},
        {{{"text", "A"}, {"font", "Korvel Nowhere Serif"}},
         "The font 'Korvel Nowhere Serif' isn't installed."},
        {{{"text", "A"}, {"path", "Line7"}},
         "'Line7' isn't a curve of this sketch to put text on."},
        {{{"height", 3}}, "add_text: missing string argument 'text'."},
    };
    for (const auto& [arguments, expected] : refusals) {
        CommandRecord record("add_text");
        record.set("sketch", std::string("Sketch1"));
        for (const auto& [key, arg] : arguments) record.set(key, arg.value);
        EXPECT_EQ(stack.execute(record).message, expected);
    }
    EXPECT_EQ(sketch().entities.size(), 1u); // nothing refused was added
}

TEST_F(TextCommands, EditChangesOnlyWhatIsGivenAndRefusesWhatCantBeLaidOut) {
    ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", 0}, {"x2", 50}, {"y2", 0}});
    ok("add_text", {{"sketch", "Sketch1"}, {"text", "Plate"}, {"x", 2}, {"y", 3}});
    auto edit = [&](Args more) {
        CommandRecord record("edit_sketch_entity");
        record.set("sketch", std::string("Sketch1"));
        record.set("entity", std::string("Text1"));
        for (const auto& [key, arg] : more) record.set(key, arg.value);
        return stack.execute(record).message;
    };
    EXPECT_EQ(edit({{"height", "10pt"}, {"font", "Liberation Mono"}, {"all_caps", true}}),
              "Changed Text1.");
    EXPECT_NEAR(textOf("Text1").height, 10 * 25.4 / 72, 1e-12);
    EXPECT_EQ(textOf("Text1").position, (Point2{2, 3}));
    EXPECT_EQ(textOf("Text1").font, "Liberation Mono");

    EXPECT_EQ(edit({{"font", "Korvel Nowhere Mono"}}),
              "The font 'Korvel Nowhere Mono' isn't installed.");
    EXPECT_EQ(edit({{"path", "Text1"}}), "'Text1' isn't a curve of this sketch to put text on.");
    EXPECT_EQ(edit({{"radius", 4}}), "edit_sketch_entity: nothing to change.");
    EXPECT_EQ(edit({{"text", "\n\n"}}), "The text is empty.");
    EXPECT_EQ(textOf("Text1").font, "Liberation Mono"); // refusals leave it as it was

    EXPECT_EQ(edit({{"path", "Line1"}, {"path_offset", 5}}), "Changed Text1.");
    EXPECT_GT(boxOf(outlines("Text1")).xmin, 5); // along the line, from 5 mm on
    stack.undo();
    EXPECT_EQ(textOf("Text1").path, "");
}

TEST_F(TextCommands, ThePositionIsAPointForConstraintsAndOperations) {
    ok("add_text", {{"sketch", "Sketch1"}, {"text", "Tag"}, {"x", 4}, {"y", 4}});
    ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0}, {"y1", -10}, {"x2", 0}, {"y2", 10}});
    ok("add_constraint",
       {{"sketch", "Sketch1"}, {"type", "coincident"}, {"a", "Text1.position"}, {"b", "Origin"}});
    EXPECT_NEAR(textOf("Text1").position.x, 0, 1e-7);
    EXPECT_NEAR(textOf("Text1").position.y, 0, 1e-7);
    EXPECT_NEAR(boxOf(outlines("Text1")).xmin, 0, 1.0); // the letters came along

    EXPECT_EQ(
        run("mirror", {{"sketch", "Sketch1"}, {"entities", "Text1"}, {"line", "Line1"}}).message,
        "Text can't be mirrored (its letters would read backwards): convert it to outlines "
        "first.");
    EXPECT_EQ(
        run("offset", {{"sketch", "Sketch1"}, {"entities", "Text1"}, {"distance", 1}}).message,
        "Offset works on lines, circles, arcs, rectangles, polygons and slots (not Texts "
        "yet).");
    EXPECT_EQ(run("text_to_outlines", {{"sketch", "Sketch1"}, {"entity", "Line1"}}).message,
              "'Line1' isn't text.");
}

TEST_F(TextCommands, TextToOutlinesLeavesClosedChainsOfLinesAndSplines) {
    ok("add_text", {{"sketch", "Sketch1"}, {"text", "HOLA"}, {"height", 8}, {"x", -3}});
    const std::vector<Contour> contours = outlines("Text1");
    double textArea = 0;
    for (const Contour& c : contours) textArea += signedArea(c);
    Result<geometry::Profile> before =
        geometry::buildSketchRegions(gp_Ax3(), geometry::sketchEdges(sketch()), false);
    ASSERT_TRUE(before.ok());

    const std::string message =
        ok("text_to_outlines", {{"sketch", "Sketch1"}, {"entity", "Text1"}});
    const std::vector<SketchEntity>& entities = sketch().entities;
    EXPECT_EQ(message, "Converted Text1 to " + std::to_string(entities.size()) + " curves.");
    EXPECT_EQ(sketch().findEntity("Text1"), nullptr);
    std::size_t lines = 0, splines = 0;
    for (const SketchEntity& e : entities) {
        lines += e.kind() == EntityKind::Line;
        splines += e.kind() == EntityKind::Spline;
    }
    EXPECT_EQ(lines + splines, entities.size());
    EXPECT_GE(lines, 12u);  // H alone is twelve straight sides
    EXPECT_GE(splines, 2u); // the O's two rings

    // Every curve end is joined to another's by a coincidence, so each contour is a
    // closed chain (closed splines need none); the solver holds them together.
    std::map<std::string, int> joins;
    for (const SketchConstraint& c : sketch().constraints) {
        ASSERT_EQ(c.type, ConstraintType::Coincident);
        for (const SketchRef& ref : c.refs) ++joins[ref.text()];
    }
    for (const SketchEntity& e : entities) {
        if (const auto* s = std::get_if<SketchSpline>(&e.geometry); s && s->closed) continue;
        const std::string last =
            e.kind() == EntityKind::Line
                ? "end"
                : "point" + std::to_string(std::get<SketchSpline>(e.geometry).points.size() - 1);
        EXPECT_EQ(joins[e.id + "." + (e.kind() == EntityKind::Line ? "start" : "point0")], 1)
            << e.id;
        EXPECT_EQ(joins[e.id + "." + last], 1) << e.id;
    }

    // The same regions as the text made, of the same area.
    Result<geometry::Profile> after =
        geometry::buildSketchRegions(gp_Ax3(), geometry::sketchEdges(sketch()), false);
    ASSERT_TRUE(after.ok()) << after.error();
    EXPECT_EQ(after->faces.size(), before->faces.size());
    double area = 0;
    for (const TopoDS_Face& f : after->faces) area += faceArea(f);
    EXPECT_NEAR(area, std::fabs(textArea), 2e-3 * std::fabs(textArea));

    stack.undo();
    EXPECT_NE(sketch().findEntity("Text1"), nullptr);
    EXPECT_TRUE(sketch().constraints.empty());
}

// A font only the person's own folder has: Liberation Sans under another family name,
// with its file extension in capitals.
TEST(UserFonts, FilesInTheFolderAreRegisteredWhateverTheExtensionsCase) {
    auto source = text::loadFont("Liberation Sans", false, false);
    ASSERT_TRUE(source.ok()) << source.error();
    std::ifstream in((*source)->file(), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_FALSE(bytes.empty());
    // Rename the family in the name table, in both its single-byte and UTF-16 spellings.
    const std::string from = "Liberation Sans", to = "Korvel Testsans";
    auto wide = [](const std::string& s) {
        std::string w;
        for (char c : s) w += std::string{'\0', c};
        return w;
    };
    int renamed = 0;
    for (const auto& [a, b] : {std::pair{from, to}, std::pair{wide(from), wide(to)}})
        for (std::size_t at = bytes.find(a); at != std::string::npos; at = bytes.find(a, at + 1))
            bytes.replace(at, a.size(), b), ++renamed;
    ASSERT_GT(renamed, 0);

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("korvel-fonts-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder / "more");
    std::ofstream(folder / "more" / "KorvelTestsans.TTF", std::ios::binary) << bytes;
    std::ofstream(folder / "readme.txt") << "not a font";

    EXPECT_FALSE(text::loadFont("Korvel Testsans", false, false).ok());
    EXPECT_GE(text::registerFontFolder(folder), 1);
    // Missing before, found now.
    auto font = text::loadFont("Korvel Testsans", false, false);
    std::filesystem::remove_all(folder);
    ASSERT_TRUE(font.ok()) << font.error();
    EXPECT_EQ((*font)->installed(), "Korvel Testsans");
}

} // namespace
