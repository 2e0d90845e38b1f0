// How document objects appear in the panels: the browser folder each belongs in,
// its row text and icon, and the problem to show when it does not compute.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>
#include <QStringList>
#include <Qt>

#include <string_view>

namespace cad {
class Document;
class DocumentObject;
} // namespace cad

namespace cad::ui {

// Data every object row carries.
inline constexpr int kIdRole = Qt::UserRole;         // QString: the object's ID
inline constexpr int kSerialRole = Qt::UserRole + 1; // quint64: the serial, 0 for other rows
inline constexpr int kNameRole = Qt::UserRole + 2;   // QString: what the rename editor starts with

// Rows of objects that fail are drawn in this red; hidden or unbuilt ones dimmed.
inline const QColor kProblemColour{0xe0, 0x6a, 0x6a};
inline const QColor kDimColour{0x76, 0x6d, 0x62};

inline QString fromStd(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The browser's folders, in the order it lists them.
const QStringList& browserFolders();
// The folder an object's row goes in; empty for a feature, whose row sits under its body.
QString browserFolderOf(const DocumentObject& object);
// "Sketch1", "Flange", or "Component · Gearbox" for the kinds with a prefix.
QString rowText(const DocumentObject& object);
QIcon objectIcon(const DocumentObject& object);
// Why the object did not compute: a feature's own error, or for a body its failing
// feature's ("Extrude2: ..."); empty when it computed.
QString objectProblem(const Document& document, const DocumentObject& object);

} // namespace cad::ui
