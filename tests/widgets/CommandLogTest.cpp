// The command log: the exact line of each event kind, notes, and the widget itself.
#include "ui/widgets/CommandLog.h"

#include "core/Command.h"

#include <QScrollBar>

#include <gtest/gtest.h>

namespace {

using cad::CommandEvent;
using cad::ui::CommandLog;
using cad::ui::commandLogLine;
using cad::ui::commandLogNote;

cad::CommandRecord lineRecord() {
    cad::CommandRecord record("add_line");
    record.set("sketch", "Sketch<1>").set("x1", 0).set("y1", 2.5);
    return record;
}

// The call as it appears inside the HTML: quotes and angle brackets escaped.
const QString kCall = QStringLiteral("add_line(sketch=&quot;Sketch&lt;1&gt;&quot;, x1=0, y1=2.5)");

TEST(CommandLog, EachEventKindWritesItsLine) {
    const struct {
        CommandEvent::Kind kind;
        const char* message;
        QString expected;
    } cases[] = {
        {CommandEvent::Executed, "Added Line1.",
         QStringLiteral("<span style='color:#d08045'>&gt;</span> ") + kCall},
        {CommandEvent::Undone, "",
         QStringLiteral("<span style='color:#a0978c'>undo&nbsp;&nbsp;") + kCall +
             QStringLiteral("</span>")},
        {CommandEvent::Redone, "",
         QStringLiteral("<span style='color:#a0978c'>redo&nbsp;&nbsp;") + kCall +
             QStringLiteral("</span>")},
        {CommandEvent::Failed, "add_line: 'x1' must be a length & not \"text\".",
         QStringLiteral("<span style='color:#e06a6a'>&#x2717; ") + kCall +
             QStringLiteral("<br>&nbsp;&nbsp;add_line: 'x1' must be a length &amp; not "
                            "&quot;text&quot;.</span>")},
    };
    for (const auto& c : cases) {
        const CommandEvent event{c.kind, lineRecord(), c.message};
        EXPECT_EQ(commandLogLine(event), c.expected) << int(c.kind);
    }
}

TEST(CommandLog, NotesAreMutedHashLines) {
    EXPECT_EQ(commandLogNote(QStringLiteral("Opened /tmp/a&b.kv3")),
              QStringLiteral("<span style='color:#a0978c'>#&nbsp;Opened /tmp/a&amp;b.kv3</span>"));
}

TEST(CommandLog, WidgetShowsLinesInOrder) {
    CommandLog log;
    EXPECT_EQ(log.objectName(), QStringLiteral("commandLog"));
    EXPECT_TRUE(log.isReadOnly());
    EXPECT_EQ(log.placeholderText(), QStringLiteral("Commands you run appear here as API calls."));
    EXPECT_TRUE(QFontInfo(log.font()).fixedPitch());

    log.addNote(QStringLiteral("New document"));
    log.addEvent({CommandEvent::Executed, lineRecord(), "Added Line1."});
    log.addEvent({CommandEvent::Undone, lineRecord(), ""});
    const QStringList lines = log.toPlainText().split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 3);
    // As plain text the non-breaking spaces read as ordinary ones.
    EXPECT_EQ(lines[0], QStringLiteral("# New document"));
    EXPECT_EQ(lines[1], QStringLiteral("> add_line(sketch=\"Sketch<1>\", x1=0, y1=2.5)"));
    EXPECT_EQ(lines[2], QStringLiteral("undo  add_line(sketch=\"Sketch<1>\", x1=0, y1=2.5)"));
}

TEST(CommandLog, StaysScrolledToTheNewestLine) {
    CommandLog log;
    log.resize(300, 120);
    log.show();
    for (int i = 0; i < 200; ++i) log.addNote(QStringLiteral("note %1").arg(i));
    QScrollBar* bar = log.verticalScrollBar();
    EXPECT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
}

} // namespace
