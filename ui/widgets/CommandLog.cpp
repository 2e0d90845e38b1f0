// The command log: one rich-text line per command event or window note.
#include "ui/widgets/CommandLog.h"

#include "core/Command.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QScrollBar>

namespace cad::ui {

namespace {

QString escaped(const std::string& text) { return QString::fromStdString(text).toHtmlEscaped(); }

// "Cascadia Code", else "Consolas", else the system's fixed-pitch font, else any
// family the system really draws with fixed pitch (the system's choice can be a
// "mono" family whose spacing fontconfig does not call fixed).
QFont logFont() {
    const QStringList families = QFontDatabase::families();
    for (const char* wanted : {"Cascadia Code", "Consolas"}) {
        if (families.contains(QString::fromLatin1(wanted), Qt::CaseInsensitive)) {
            QFont font(QString::fromLatin1(wanted));
            font.setStyleHint(QFont::Monospace);
            return font;
        }
    }
    const QFont system = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (QFontInfo(system).fixedPitch()) return system;
    for (const QString& family : families)
        if (QFontDatabase::isFixedPitch(family) && !QFontDatabase::isPrivateFamily(family)) {
            QFont font(family, system.pointSize());
            font.setStyleHint(QFont::Monospace);
            return font;
        }
    return system;
}

} // namespace

QString commandLogLine(const cad::CommandEvent& event) {
    const QString call = escaped(event.record.toCall());
    switch (event.kind) {
    case cad::CommandEvent::Executed:
        return QStringLiteral("<span style='color:#d08045'>&gt;</span> %1").arg(call);
    case cad::CommandEvent::Undone:
        return QStringLiteral("<span style='color:#a0978c'>undo&nbsp;&nbsp;%1</span>").arg(call);
    case cad::CommandEvent::Redone:
        return QStringLiteral("<span style='color:#a0978c'>redo&nbsp;&nbsp;%1</span>").arg(call);
    case cad::CommandEvent::Failed:
        return QStringLiteral("<span style='color:#e06a6a'>&#x2717; %1<br>&nbsp;&nbsp;%2</span>")
            .arg(call, escaped(event.message));
    }
    return call;
}

QString commandLogNote(const QString& note) {
    return QStringLiteral("<span style='color:#a0978c'>#&nbsp;%1</span>").arg(note.toHtmlEscaped());
}

CommandLog::CommandLog(QWidget* parent) : QPlainTextEdit(parent) {
    setObjectName(QStringLiteral("commandLog"));
    setReadOnly(true);
    setPlaceholderText(QStringLiteral("Commands you run appear here as API calls."));
    setFont(logFont());
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    // A long session must not grow without bound; the oldest lines go first.
    setMaximumBlockCount(5000);
}

void CommandLog::addEvent(const cad::CommandEvent& event) { appendLine(commandLogLine(event)); }

void CommandLog::addNote(const QString& note) { appendLine(commandLogNote(note)); }

void CommandLog::appendLine(const QString& html) {
    appendHtml(html);
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

} // namespace cad::ui
