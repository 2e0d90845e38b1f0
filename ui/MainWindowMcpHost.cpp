// The window's agent host: files go through the window's own paths so the view,
// title and recent list follow, and the view is captured from the framebuffer.
#include "ui/MainWindowMcpHost.h"

#include "rendering/Viewport.h"
#include "ui/MainWindow.h"

#include <QBuffer>
#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QImage>

namespace cad::ui {

namespace {

const char* const kUnsavedRefusal =
    "The open document has unsaved changes. Save it first (save_project), or ask the user to "
    "save or discard them.";

} // namespace

Document& MainWindowMcpHost::document() { return window_.document(); }
CommandStack& MainWindowMcpHost::commandStack() { return window_.commandStack(); }
CommandRegistry& MainWindowMcpHost::registry() { return window_.registry(); }

Result<void> MainWindowMcpHost::newDocument() {
    if (window_.isModified()) return fail(kUnsavedRefusal);
    window_.newDocument();
    return {};
}

Result<void> MainWindowMcpHost::openProject(const std::string& path) {
    if (window_.isModified()) return fail(kUnsavedRefusal);
    if (path.empty()) return fail("Give the path of the project to open.");
    return window_.openProject(QString::fromStdString(path));
}

Result<void> MainWindowMcpHost::saveProject(const std::string& path) {
    if (path.empty()) {
        if (window_.documentPath().isEmpty())
            return fail("The document has never been saved: give a path.");
        return window_.saveProject(window_.documentPath());
    }
    return window_.saveProject(QString::fromStdString(path));
}

std::string MainWindowMcpHost::currentPath() const { return window_.documentPath().toStdString(); }

Result<std::string> MainWindowMcpHost::screenshot() {
    rendering::Viewport& view = window_.viewport();
    const QImage image = view.grabFramebuffer();
    if (image.isNull() || !view.isReady()) return fail("Couldn't capture the view.");
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) return fail("Couldn't capture the view.");
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

Result<void> MainWindowMcpHost::setView(const std::string& name) {
    if (Result<void> known = mcp::checkViewName(name); !known) return known;
    rendering::Viewport& view = window_.viewport();
    if (name == "fit")
        view.fitAll();
    else if (name == "top")
        view.setStandardView(V3d_Zpos, false);
    else if (name == "front")
        view.setStandardView(V3d_Yneg, false);
    else if (name == "right")
        view.setStandardView(V3d_Xpos, false);
    else
        view.setStandardView(V3d_XposYnegZpos, false);
    view.update();
    return {};
}

} // namespace cad::ui
