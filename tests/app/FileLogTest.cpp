// File logging from KORVEL_LOG: the line format, through the real message handler, and
// a log file that cannot be opened changing nothing.
#include "app/FileLog.h"

#include <QFile>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

Q_LOGGING_CATEGORY(viewportLog, "korvel.viewport")
Q_LOGGING_CATEGORY(otherLog, "other.module")

using namespace cad::app;

namespace {

QStringList readLines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

} // namespace

TEST(FileLog, LineHasTimeCategoryAndText) {
    EXPECT_EQ(logLine(QTime(12, 34, 56, 789), "korvel.viewport", "first frame"),
              "12:34:56.789 korvel.viewport: first frame");
    EXPECT_EQ(logLine(QTime(7, 5, 3, 9), nullptr, "no category"),
              "07:05:03.009 default: no category");
    EXPECT_EQ(logLine(QTime(0, 0, 0), "", ""), "00:00:00.000 default: ");
}

TEST(FileLog, WritesEveryMessageAsItComesAndSwitchesOnDebug) {
    QLoggingCategory::setFilterRules("korvel.*.debug=false");
    ASSERT_FALSE(viewportLog().isDebugEnabled());

    QTemporaryDir folder;
    const QString path = folder.filePath("korvel.log");
    ASSERT_TRUE(startFileLogging(path));
    EXPECT_TRUE(viewportLog().isDebugEnabled());
    qCDebug(viewportLog) << "frame took" << 12 << "ms";
    qInfo("plain message");
    qCWarning(otherLog, "careful");
    // Flushed per line: the file is complete before logging stops.
    const QStringList lines = readLines(path);
    stopFileLogging();

    ASSERT_EQ(lines.size(), 3) << lines.join('\n').toStdString();
    const QRegularExpression form(R"(^\d\d:\d\d:\d\d\.\d\d\d (\S+): (.*)$)");
    const struct {
        const char* category;
        const char* text;
    } expected[] = {{"korvel.viewport", "frame took 12 ms"},
                    {"default", "plain message"},
                    {"other.module", "careful"}};
    for (int i = 0; i < 3; ++i) {
        const QRegularExpressionMatch match = form.match(lines[i]);
        ASSERT_TRUE(match.hasMatch()) << lines[i].toStdString();
        EXPECT_EQ(match.captured(1), expected[i].category);
        EXPECT_EQ(match.captured(2), expected[i].text);
    }
}

TEST(FileLog, UnopenableFileLeavesLoggingAsItWas) {
    QLoggingCategory::setFilterRules("korvel.*.debug=false");
    QTemporaryDir folder;
    const QString path = folder.filePath("missing/folder/korvel.log");
    EXPECT_FALSE(startFileLogging(path));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_FALSE(viewportLog().isDebugEnabled());
    EXPECT_FALSE(startFileLogging(QString()));
    QLoggingCategory::setFilterRules(QString());
}
