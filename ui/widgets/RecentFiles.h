// The recent-projects list: the pure rules that keep it (newest first, no
// duplicates, at most ten) and the "Open Recent" menu built from it.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class QMenu;

namespace cad::ui {

inline constexpr int kMaxRecentFiles = 10;

// The list with the path made absolute and put first; entries naming the same file
// (compared without regard to letter case) are dropped; at most ten remain.
QStringList withRecentFile(QStringList list, const QString& path);

// "&1  name   /folder" for entries 1 to 9, four spaces instead of the accelerator after.
QString recentMenuLabel(int oneBasedIndex, const QString& path);

// Clears the menu and fills it: one entry per file (choosing one calls open with its
// path), a separator and "Clear Recent"; a disabled "No recent files" when empty.
void fillRecentMenu(QMenu* menu, const QStringList& files, std::function<void(QString)> open,
                    std::function<void()> clear);

} // namespace cad::ui
