// The Box form's rows, its create_box command and the box drawn while typing.
#include "ui/forms/BoxForm.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/Format.h"
#include "geometry/Box.h"
#include "ui/forms/FeatureForm.h"

#include <BRepBndLib.hxx>
#include <Bnd_Box.hxx>
#include <Standard_Failure.hxx>

#include <algorithm>
#include <array>

namespace cad::ui {

namespace {

struct BoxRow {
    const char* key;
    const char* label;
    const char* tooltip;
};

constexpr std::array<BoxRow, 3> kSizes{{{"width", "Width", "Size along X."},
                                        {"depth", "Depth", "Size along Y."},
                                        {"height", "Height", "Size along Z."}}};
constexpr std::array<BoxRow, 3> kCorner{{{"x", "X", "Corner position along X."},
                                         {"y", "Y", "Corner position along Y."},
                                         {"z", "Z", "Corner position along Z."}}};

} // namespace

std::optional<double> boxPlacementX(const Document& document) {
    std::optional<double> x;
    for (const auto& object : document.objects()) {
        const auto* body = dynamic_cast<const GeometryObject*>(object.get());
        if (!body || body->shape.shape().IsNull()) continue;
        Bnd_Box box;
        BRepBndLib::Add(body->shape.shape(), box);
        if (box.IsVoid()) continue;
        const double beyond = box.CornerMax().X() + 20.0;
        x = x ? std::max(*x, beyond) : beyond;
    }
    return x;
}

FormDefinition boxForm(const Document& document) {
    const units::Length unit = document.lengthUnit();
    const auto text = [unit](double millimetres) {
        return QString::fromStdString(units::formatLength(millimetres, unit, false));
    };
    const std::array<double, 6> defaults{100, 50, 25, boxPlacementX(document).value_or(0), 0, 0};

    FormDefinition form;
    form.icon = QStringLiteral("box");
    form.title = QStringLiteral("Box");
    form.setup = [text, defaults](FeatureForm& f) {
        for (std::size_t i = 0; i < kSizes.size(); ++i)
            f.addLength(QString::fromLatin1(kSizes[i].key), QString::fromLatin1(kSizes[i].label),
                        QString::fromLatin1(kSizes[i].tooltip), text(defaults[i]));
        f.addSection(QStringLiteral("corner"), QStringLiteral("Corner"));
        for (std::size_t i = 0; i < kCorner.size(); ++i)
            f.addLength(QString::fromLatin1(kCorner[i].key), QString::fromLatin1(kCorner[i].label),
                        QString::fromLatin1(kCorner[i].tooltip), text(defaults[3 + i]));
        f.addText(QStringLiteral("name"), QStringLiteral("Name"),
                  QStringLiteral("Body name (default BoxN)."), {});
    };
    form.build = [](FeatureForm& f) -> Result<CommandRecord> {
        CommandRecord record("create_box");
        for (const auto& rows : {kSizes, kCorner})
            for (const BoxRow& row : rows) {
                const QString key = QString::fromLatin1(row.key);
                if (Result<double> value = f.length(key); !value) return Error(value);
                record.set(row.key, f.text(key).toStdString());
            }
        if (const QString name = f.text(QStringLiteral("name")); !name.isEmpty())
            record.set("name", name.toStdString());
        return record;
    };
    form.preview = [](FeatureForm& f) -> Result<FormPreview> {
        std::array<double, 6> v{};
        std::size_t i = 0;
        for (const auto& rows : {kSizes, kCorner})
            for (const BoxRow& row : rows) v[i++] = f.length(QString::fromLatin1(row.key)).value();
        try {
            Result<TopoDS_Shape> box =
                geometry::makeBox(v[0], v[1], v[2], gp_Pnt(v[3], v[4], v[5]));
            if (!box) return Error(box);
            return FormPreview{*box, false};
        } catch (const Standard_Failure&) {
            return fail("The geometry kernel could not build the box.");
        }
    };
    return form;
}

} // namespace cad::ui
