// Texts the main window builds from its state: tooltips, title, save-as names.
#include "ui/widgets/WindowTexts.h"

#include <QFileInfo>

namespace cad::ui {

namespace {
const QString kProjectSuffix = QStringLiteral("kv3");
}

QString actionTooltip(const QString& label, const QString& shortcutText,
                      const QString& description) {
    QString text = QStringLiteral("<b>%1</b>").arg(label);
    if (!shortcutText.isEmpty())
        text +=
            QStringLiteral("&nbsp;&nbsp;<span style='color:#a0978c'>%1</span>").arg(shortcutText);
    if (!description.isEmpty())
        text += QStringLiteral("<br><span style='color:#a0978c'>%1</span>").arg(description);
    return text;
}

QString saveAsFileName(const QString& chosen) {
    if (QFileInfo(chosen).suffix().compare(kProjectSuffix, Qt::CaseInsensitive) == 0) return chosen;
    return chosen + QLatin1Char('.') + kProjectSuffix;
}

QString documentDisplayName(const QString& documentPath) {
    if (documentPath.isEmpty()) return QStringLiteral("Untitled");
    return QFileInfo(documentPath).completeBaseName();
}

QString windowTitleText(const QString& documentPath, bool modified) {
    return QStringLiteral("Korvel Studio \u2014 %1%2")
        .arg(documentDisplayName(documentPath), modified ? QStringLiteral(" \u2022") : QString());
}

} // namespace cad::ui
