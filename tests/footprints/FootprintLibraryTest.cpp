// The footprint library on disk: where it lives, file names, saving with and without
// replace, skipping and refusing files that aren't footprints, and removing.
#include "FootprintTestSupport.h"

#include <filesystem>
#include <fstream>

namespace cad::test {

namespace {

void writeText(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

class FootprintLibraryTest : public FootprintSession {
protected:
    // Sketch1 with two holes 20 apart about the origin, a line off to the side and
    // four constraints, one of them on the line alone.
    void holes() {
        newSketch();
        ok(on("add_circle", {{"cx", -10}, {"cy", 0}, {"radius", 1.5}}));
        ok(on("add_circle", {{"cx", 10}, {"cy", 0}, {"radius", 1.5}}));
        line(0, 20, 5, 20);
        ok(constraint("equal", "Circle1", "Circle2"));
        ok(constraint("horizontal", "Circle1.center", "Origin"));
        ok(constraint("horizontal", "Line1"));
        ok(dimension("distance", "Circle1.center", "Circle2.center", 20));
    }
};

} // namespace

TEST(FootprintFolder, FollowsTheDataFolderVariablesInOrder) {
    ScopedEnvironment data("KORVEL_DATA_DIR", "/data/korvel");
    ScopedEnvironment local("LOCALAPPDATA", "/local");
    ScopedEnvironment home("HOME", "/home/u");
    EXPECT_EQ(footprintFolder(), std::filesystem::path("/data/korvel/footprints"));
    setenv("KORVEL_DATA_DIR", "", 1); // empty counts as not set
    EXPECT_EQ(footprintFolder(), std::filesystem::path("/local/KorvelStudio/footprints"));
    unsetenv("LOCALAPPDATA");
    EXPECT_EQ(footprintFolder(),
              std::filesystem::path("/home/u/.local/share/KorvelStudio/footprints"));
    unsetenv("HOME");
    EXPECT_EQ(footprintFolder(), std::filesystem::path("footprints"));
}

TEST_F(FootprintLibraryTest, NamesBecomeSafeFileNamesAndAreFoundAgain) {
    EXPECT_EQ(footprintFileName("M3/M4 \"mount\""), "M3_M4 _mount_.footprint.json");
    EXPECT_EQ(footprintFileName("a<b>c:d\\e|f?g*h\ti\x01j"), "a_b_c_d_e_f_g_h_i_j.footprint.json");
    EXPECT_EQ(footprintFileName("Ø 3 — Schalter"), "Ø 3 — Schalter.footprint.json");

    holes();
    EXPECT_EQ(saveSketch("M3/M4 \"mount\""), "Saved the footprint 'M3/M4 \"mount\"'.");
    EXPECT_TRUE(
        std::filesystem::exists(data.path() / "footprints" / "M3_M4 _mount_.footprint.json"));
    Result<StoredFootprint> found = library.find("M3/M4 \"mount\"");
    ASSERT_TRUE(found) << found.error();
    EXPECT_EQ(found->footprint.name, "M3/M4 \"mount\"");
    EXPECT_EQ(footprintContents(found->footprint), "2 Circle, 1 Line");
    EXPECT_EQ(found->footprint.constraints.size(), 4u);
    // The records are the project file's: the entities come back as they were.
    EXPECT_EQ(std::get<SketchCircle>(found->footprint.entities[1].geometry).center.x, 10);
    EXPECT_EQ(library.find("M3_M4 _mount_").error(), "There's no footprint named 'M3_M4 _mount_'.");
}

TEST_F(FootprintLibraryTest, SavingTheSameNameAgainNeedsReplace) {
    holes();
    EXPECT_EQ(saveSketch("Holes", false, "first"), "Saved the footprint 'Holes'.");
    EXPECT_EQ(saveSketch("Holes", false, "second"), "A footprint named 'Holes' already exists.");
    EXPECT_EQ(library.find("Holes")->footprint.description, "first");
    EXPECT_EQ(saveSketch("Holes", true, "second"), "Saved the footprint 'Holes'.");
    EXPECT_EQ(library.find("Holes")->footprint.description, "second");
    EXPECT_EQ(library.list().size(), 1u);

    // Another name that comes to the same file name is not overwritten unasked.
    EXPECT_EQ(saveSketch("Holes", false), "A footprint named 'Holes' already exists.");
    EXPECT_EQ(saveSketch("Ho/les"), "Saved the footprint 'Ho/les'.");
    EXPECT_EQ(saveSketch("Ho:les"), "A footprint named 'Ho/les' already exists.");

    EXPECT_EQ(saveSketch(""), "A footprint needs a name.");
    EXPECT_EQ(library.save(Footprint{"Nothing", "", {}, {}}, false).error(),
              "There's nothing to save: the sketch is empty.");
}

TEST_F(FootprintLibraryTest, OnlyChosenEntitiesAndTheConstraintsAmongThemAreSaved) {
    holes();
    Result<Footprint> chosen = footprintFromSketch(sketch().entities, sketch().constraints, "Two",
                                                   "", {"Circle1", "Circle2"});
    ASSERT_TRUE(chosen) << chosen.error();
    EXPECT_EQ(footprintContents(*chosen), "2 Circle");
    // The line's horizontal stays behind; the one on the origin comes along.
    ASSERT_EQ(chosen->constraints.size(), 3u);
    EXPECT_EQ(chosen->constraints[1].refs[1].entity, "Origin");
    EXPECT_EQ(
        footprintFromSketch(sketch().entities, sketch().constraints, "X", "", {"Circle9"}).error(),
        "No entity named 'Circle9'.");
}

TEST_F(FootprintLibraryTest, FilesThatArentFootprintsAreSkippedAndRefusedByName) {
    holes();
    ASSERT_EQ(saveSketch("Holes"), "Saved the footprint 'Holes'.");
    const std::filesystem::path folder = data.path() / "footprints";
    writeText(folder / "Other.footprint.json", R"({"format": "korvel-toolpath", "name": "Other"})");
    writeText(folder / "Broken.footprint.json", "{ not json");
    writeText(folder / "notes.json", R"({"format": "korvel-footprint", "name": "Notes"})");
    writeText(folder / "Twice.footprint.json",
              R"({"format": "korvel-footprint", "version": 1, "name": "Twice", "entities": [
                  {"id": "Point1", "kind": "point", "position": [0, 0]},
                  {"id": "Point1", "kind": "point", "position": [1, 0]}]})");

    std::vector<StoredFootprint> listed = library.list();
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].footprint.name, "Holes");

    const std::string other = (folder / "Other.footprint.json").string();
    EXPECT_EQ(library.find("Other").error(), other + " isn't a Korvel Studio footprint.");
    EXPECT_EQ(library.find("Twice").error(), "footprint: duplicate entity \"Point1\"");
    EXPECT_EQ(readFootprintFile((folder / "Missing.footprint.json").string()).error(),
              "Couldn't read " + (folder / "Missing.footprint.json").string());
    // Nor is a file that isn't a footprint overwritten without replace.
    EXPECT_EQ(saveSketch("Other"), other + " isn't a Korvel Studio footprint.");

    EXPECT_EQ(*library.remove("Holes"), "Removed the footprint.");
    EXPECT_EQ(library.remove("Holes").error(), "There's no footprint named 'Holes'.");
    EXPECT_TRUE(library.list().empty());
}

} // namespace cad::test
