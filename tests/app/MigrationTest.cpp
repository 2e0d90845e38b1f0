// Carrying over OstrovanCAD's data, in the temporary home the test main gives us:
// its data folder below XDG_DATA_HOME, its settings below XDG_CONFIG_HOME.
#include "app/Migration.h"

#include "ui/DataPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cad::app;

namespace {

const char* const markerText = "OstrovanCAD's data was copied here when Korvel Studio first ran.\n";

void writeFile(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

QSettings nativeSettings(const char* name) {
    return QSettings(QSettings::NativeFormat, QSettings::UserScope, name, name);
}

struct RecordingPrompt : MessagePrompt {
    QString title, text, informative;
    int shown = 0;
    void information(QWidget*, const QString& t, const QString& x, const QString& i) override {
        title = t;
        text = x;
        informative = i;
        ++shown;
    }
    void warning(QWidget*, const QString&, const QString&) override { ++shown; }
};

class Migration : public ::testing::Test {
protected:
    void SetUp() override {
        qunsetenv("KORVEL_DATA_DIR");
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        oldFolder = data + "/OstrovanCAD";
        newFolder = data + "/KorvelStudio";
        QDir(oldFolder).removeRecursively();
        QDir(newFolder).removeRecursively();
        for (const char* name : {"KorvelStudio", "OstrovanCAD"}) {
            QSettings settings(QSettings::NativeFormat, QSettings::UserScope, name, name);
            settings.clear();
            settings.sync();
        }
    }
    void TearDown() override { qunsetenv("KORVEL_DATA_DIR"); }

    QString oldFolder, newFolder;
};

} // namespace

TEST_F(Migration, CopiesTheFormerFilesButNeitherOverwritesNorTakesWhatStaysBehind) {
    writeFile(oldFolder + "/footprints/M3.footprint.json", "old footprint");
    writeFile(oldFolder + "/tools/mills/flat.json", "old tools");
    writeFile(oldFolder + "/.hidden/inner.txt", "hidden");
    writeFile(oldFolder + "/settings.ini", "old settings");
    for (const char* left :
         {"Recovery/a/autosave.kv3", "CRASHES/x.txt", "updates/setup.bin", "ScreenShots/shot.png"})
        writeFile(oldFolder + "/" + left, "left behind");
    writeFile(newFolder + "/settings.ini", "new settings");

    EXPECT_TRUE(migrateFormerData());
    EXPECT_EQ(readFile(newFolder + "/footprints/M3.footprint.json"), "old footprint");
    EXPECT_EQ(readFile(newFolder + "/tools/mills/flat.json"), "old tools");
    EXPECT_EQ(readFile(newFolder + "/.hidden/inner.txt"), "hidden");
    EXPECT_EQ(readFile(newFolder + "/settings.ini"), "new settings");
    for (const char* left : {"Recovery", "recovery", "CRASHES", "updates", "ScreenShots"})
        EXPECT_FALSE(QFileInfo::exists(newFolder + "/" + left)) << left;
    EXPECT_EQ(readFile(newFolder + "/carried-over-from-ostrovancad"), markerText);
    EXPECT_EQ(readFile(oldFolder + "/settings.ini"), "old settings");
}

TEST_F(Migration, MarkerIsWrittenEvenWhenNothingIsCopied) {
    writeFile(oldFolder + "/recovery/session/autosave.kv3", "left behind");
    EXPECT_FALSE(migrateFormerData());
    EXPECT_EQ(readFile(newFolder + "/carried-over-from-ostrovancad"), markerText);
    EXPECT_FALSE(QFileInfo::exists(newFolder + "/recovery"));
}

TEST_F(Migration, NoFormerFolderMeansNoMarker) {
    EXPECT_FALSE(migrateFormerData());
    EXPECT_FALSE(QFileInfo::exists(newFolder + "/carried-over-from-ostrovancad"));
    EXPECT_TRUE(nativeSettings("KorvelStudio").value("rebrand/settingsCarriedOver").toBool());
}

TEST_F(Migration, SettingsComeAcrossWithoutReplacingExistingKeys) {
    {
        QSettings former = nativeSettings("OstrovanCAD");
        former.setValue("prefs/unit", "in");
        former.setValue("recentFiles", QStringList{"/home/a/bracket.osv", "/home/a/plate.osv"});
        former.setValue("view/origin", false);
    }
    nativeSettings("KorvelStudio").setValue("prefs/unit", "mm");

    EXPECT_TRUE(migrateFormerData());
    const QSettings settings = nativeSettings("KorvelStudio");
    EXPECT_EQ(settings.value("prefs/unit").toString(), "mm");
    EXPECT_EQ(settings.value("recentFiles").toStringList(),
              (QStringList{"/home/a/bracket.osv", "/home/a/plate.osv"}));
    EXPECT_EQ(settings.value("view/origin").toBool(), false);
    EXPECT_TRUE(settings.value("rebrand/settingsCarriedOver").toBool());
}

TEST_F(Migration, SecondStartCopiesNothingAndShowsNoNotice) {
    writeFile(oldFolder + "/footprints/a.json", "a");
    nativeSettings("OstrovanCAD").setValue("measure/decimals", 3);
    ASSERT_TRUE(migrateFormerData());

    writeFile(oldFolder + "/footprints/b.json", "b");
    nativeSettings("OstrovanCAD").setValue("flat/format", "svg");
    EXPECT_FALSE(migrateFormerData());
    EXPECT_FALSE(QFileInfo::exists(newFolder + "/footprints/b.json"));
    EXPECT_FALSE(nativeSettings("KorvelStudio").contains("flat/format"));
}

TEST_F(Migration, ChosenDataFolderTouchesNothing) {
    QTemporaryDir chosen;
    qputenv("KORVEL_DATA_DIR", chosen.path().toUtf8());
    writeFile(oldFolder + "/footprints/a.json", "a");
    nativeSettings("OstrovanCAD").setValue("measure/decimals", 3);

    EXPECT_EQ(cad::ui::dataDirectory(), chosen.path());
    EXPECT_FALSE(migrateFormerData());
    EXPECT_TRUE(
        QDir(chosen.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_FALSE(QFileInfo::exists(newFolder));
    const QSettings settings = nativeSettings("KorvelStudio");
    EXPECT_FALSE(settings.contains("measure/decimals"));
    EXPECT_FALSE(settings.contains("rebrand/settingsCarriedOver"));
}

TEST_F(Migration, CopyTreeNeverReplacesAFile) {
    QTemporaryDir folder;
    const QString source = folder.filePath("source.txt");
    writeFile(source, "fresh");
    EXPECT_EQ(copyTreeNoOverwrite(source, folder.filePath("a/b/c/copy.txt")), 1);
    EXPECT_EQ(readFile(folder.filePath("a/b/c/copy.txt")), "fresh");
    writeFile(folder.filePath("taken.txt"), "mine");
    EXPECT_EQ(copyTreeNoOverwrite(source, folder.filePath("taken.txt")), 0);
    EXPECT_EQ(readFile(folder.filePath("taken.txt")), "mine");
    EXPECT_EQ(copyTreeNoOverwrite(folder.filePath("nothing-here"), folder.filePath("x")), 0);

    writeFile(folder.filePath("tree/one.txt"), "1");
    writeFile(folder.filePath("tree/sub/.two"), "2");
    writeFile(folder.filePath("copy/one.txt"), "kept");
    EXPECT_EQ(copyTreeNoOverwrite(folder.filePath("tree"), folder.filePath("copy")), 1);
    EXPECT_EQ(readFile(folder.filePath("copy/one.txt")), "kept");
    EXPECT_EQ(readFile(folder.filePath("copy/sub/.two")), "2");
}

TEST(RenameNotice, SaysWhatChangedOnce) {
    RecordingPrompt prompt;
    showRenameNotice(nullptr, prompt);
    EXPECT_EQ(prompt.shown, 1);
    EXPECT_EQ(prompt.title, "OstrovanCAD is now Korvel Studio");
    EXPECT_EQ(prompt.text,
              "OstrovanCAD is now Korvel Studio: the same software, with a new name and look.");
    const QStringList paragraphs = prompt.informative.split("\n\n");
    ASSERT_EQ(paragraphs.size(), 2);
    EXPECT_EQ(paragraphs[1], "Projects now save as .kv3 files. Your .osv files open as before.");
}
