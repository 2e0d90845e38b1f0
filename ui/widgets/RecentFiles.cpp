// The recent-projects list and the "Open Recent" menu built from it.
#include "ui/widgets/RecentFiles.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

namespace cad::ui {

QStringList withRecentFile(QStringList list, const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    list.removeIf(
        [&](const QString& entry) { return entry.compare(absolute, Qt::CaseInsensitive) == 0; });
    list.prepend(absolute);
    while (list.size() > kMaxRecentFiles) list.removeLast();
    return list;
}

QString recentMenuLabel(int oneBasedIndex, const QString& path) {
    const QFileInfo file(path);
    const QString lead =
        oneBasedIndex < 10 ? QStringLiteral("&%1  ").arg(oneBasedIndex) : QStringLiteral("    ");
    return lead + file.fileName() + QStringLiteral("   ") +
           QDir::toNativeSeparators(file.absolutePath());
}

void fillRecentMenu(QMenu* menu, const QStringList& files, std::function<void(QString)> open,
                    std::function<void()> clear) {
    menu->clear();
    if (files.isEmpty()) {
        menu->addAction(QStringLiteral("No recent files"))->setEnabled(false);
        return;
    }
    for (int i = 0; i < files.size(); ++i) {
        const QString path = files[i];
        QAction* entry = menu->addAction(recentMenuLabel(i + 1, path));
        entry->setData(path);
        QObject::connect(entry, &QAction::triggered, menu, [open, path] {
            if (open) open(path);
        });
    }
    menu->addSeparator();
    QObject::connect(menu->addAction(QStringLiteral("Clear Recent")), &QAction::triggered, menu,
                     [clear] {
                         if (clear) clear();
                     });
}

} // namespace cad::ui
