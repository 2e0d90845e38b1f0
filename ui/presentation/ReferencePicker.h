// The tool a form or command uses when the user must click geometry: it turns the
// thing under the cursor into the reference texts the commands take (faces,
// edges and vertices by persistent name, sketch entities, regions, origin items),
// previews it while hovering and tells its owner what was picked.
#pragma once

#include "rendering/ViewportTool.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {
class Document;
}
namespace cad::rendering {
class Viewport;
}

namespace cad::ui {

class DocumentPresenter;

// What a pick request accepts; combine with |.
enum PickKind : std::uint32_t {
    PickFace = 1u << 0,
    PickEdge = 1u << 1,
    PickVertex = 1u << 2,
    PickSketchEntity = 1u << 3,
    PickRegion = 1u << 4,
    PickPlane = 1u << 5,
    PickAxis = 1u << 6,
    PickScanTriangle = 1u << 7,
    PickAnything = 0xffu,
};

struct PickCandidate {
    std::string objectId; // empty for origin items
    PickKind kind = PickFace;
    std::string reference;
    double depth = 0; // along the eye ray, nearest first
};

// The label a person reads for a reference: "X axis", "XY plane", "Origin",
// "Outer region", "Body1/Extrude1.end" -> "Body1/Extrude1.end" tidied.
QString referenceLabel(const Document& document, const std::string& reference);
// The group a click takes: a sketch line or arc with the chain connected to it end
// to end, a body edge with its tangent chain; anything else alone.
std::vector<std::string> expandReference(const Document& document, const std::string& reference);

class ReferencePicker : public QObject, public rendering::ViewportTool {
    Q_OBJECT
public:
    ReferencePicker(rendering::Viewport& viewport, DocumentPresenter& presenter);
    ~ReferencePicker() override;

    void setDocument(Document* document);
    // Makes the picker the view's tool; picks go to `picked`.
    void activate(std::uint32_t acceptedKinds,
                  std::function<void(const std::vector<std::string>&)> picked);
    void deactivate();
    bool isActive() const;

    // The candidates under a widget point, nearest first, of the accepted kinds.
    std::vector<PickCandidate> candidatesAt(QPointF position) const;
    const QString& hintText() const;
    // The model point the last press hit on the candidate it took; none before the
    // first press, or when the press took nothing.
    std::optional<std::array<double, 3>> lastPressPoint() const;

    bool mousePress(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void mouseMove(QPointF position, Qt::KeyboardModifiers modifiers) override;
    void leave() override;
    bool keyPress(QKeyEvent* event) override;

signals:
    void hintChanged(const QString& text);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace cad::ui
