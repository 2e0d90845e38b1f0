// The command log: the line of each event kind, escaped, and the widget's plain text.
#include "ui/widgets/CommandLog.h"

#include "core/Command.h"

#include <QScrollBar>

#include <gtest/gtest.h>

namespace {

using cad::CommandEvent;
using cad::ui::CommandLog;
using cad::ui::commandLogLine;

cad::CommandRecord lineRecord() {
    cad::CommandRecord record("add_line");
    record.set("sketch", "Sketch<1>").set("x1", 0).set("y1", 2.5);
    return record;
}

TEST(CommandLog, FailuresAreRedAndEverythingIsEscaped) {
    const CommandEvent failed{CommandEvent::Failed, lineRecord(),
                              "add_line: 'x1' must be a length & not \"text\"."};
    EXPECT_EQ(commandLogLine(failed),
              QStringLiteral("<span style='color:#e06a6a'>&#x2717; add_line(sketch=&quot;"
                             "Sketch&lt;1&gt;&quot;, x1=0, y1=2.5)<br>&nbsp;&nbsp;add_line: 'x1' "
                             "must be a length &amp; not &quot;text&quot;.</span>"));
}

TEST(CommandLog, ShowsLinesInOrderAndStaysAtTheNewest) {
    CommandLog log;
    log.addNote(QStringLiteral("New document"));
    log.addEvent({CommandEvent::Executed, lineRecord(), "Added Line1."});
    log.addEvent({CommandEvent::Undone, lineRecord(), ""});
    log.addEvent({CommandEvent::Redone, lineRecord(), ""});
    // As plain text the non-breaking spaces read as ordinary ones.
    EXPECT_EQ(log.toPlainText().split(QLatin1Char('\n')),
              QStringList({"# New document", "> add_line(sketch=\"Sketch<1>\", x1=0, y1=2.5)",
                           "undo  add_line(sketch=\"Sketch<1>\", x1=0, y1=2.5)",
                           "redo  add_line(sketch=\"Sketch<1>\", x1=0, y1=2.5)"}));
    EXPECT_TRUE(QFontInfo(log.font()).fixedPitch());

    log.resize(300, 120);
    log.show();
    for (int i = 0; i < 200; ++i) log.addNote(QStringLiteral("note %1").arg(i));
    QScrollBar* bar = log.verticalScrollBar();
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
}

} // namespace
