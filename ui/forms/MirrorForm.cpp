// The Mirror form's rows and commands. Several bodies make one mirror_body each, in
// one step to undo; the last is the one tried live while the form is open.
#include "ui/forms/MirrorForm.h"

#include "core/Document.h"
#include "geometry/param/FeatureArgument.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"

namespace cad::ui {

namespace {

using Pick = FeatureArgument::Pick;

const QString kWhat = QStringLiteral("what");
const QString kFeatures = QStringLiteral("features");
const QString kBodies = QStringLiteral("bodies");
const QString kPlane = QStringLiteral("plane");

bool mirrorsBodies(const FeatureForm& f) { return f.text(kWhat) == kBodies; }

CommandRecord mirrorBody(const std::string& source, const std::string& plane) {
    CommandRecord record("mirror_body");
    record.set("source", source);
    record.set("plane", plane);
    return record;
}

} // namespace

FormDefinition mirrorForm(const Document& document, const std::vector<std::string>& selection) {
    bool bodies = false;
    for (const std::string& reference : selection) {
        Result<TakenReference> body = takeReference(document, reference, Pick::Bodies, {});
        if (body && body->asIs) bodies = true;
    }
    const auto start = fillFromSelection(
        document,
        {{kPlane, Pick::Planes, false},
         {bodies ? kBodies : kFeatures, bodies ? Pick::Bodies : Pick::Features, true}},
        selection);

    FormDefinition form;
    form.icon = QStringLiteral("mirror3d");
    form.title = QStringLiteral("Mirror");
    form.setup = [&document, bodies, start](FeatureForm& f) {
        f.addSegmented(
            kWhat, {}, {},
            {{kFeatures, QStringLiteral("Features"), QStringLiteral("Click a face a feature made")},
             {kBodies, QStringLiteral("Bodies"),
              QStringLiteral("Each becomes a mirrored body of its own")}},
            bodies ? kBodies : kFeatures);
        f.addPick(kFeatures, QStringLiteral("Features"),
                  QStringLiteral("The features to mirror; click a face each made"),
                  pickRuleFor(document, Pick::Features, QStringLiteral("features"), true, true,
                              QStringLiteral("Pick the features to mirror.")));
        f.showWhen(kFeatures, kWhat, {kFeatures});
        f.addPick(kBodies, QStringLiteral("Bodies"),
                  QStringLiteral("The bodies to mirror; click again to drop one"),
                  pickRuleFor(document, Pick::Bodies, QStringLiteral("bodies"), true, true,
                              QStringLiteral("Pick the bodies to mirror.")));
        f.showWhen(kBodies, kWhat, {kBodies});
        f.addPick(kPlane, QStringLiteral("Plane"),
                  QStringLiteral("XY, XZ, YZ, a reference plane or a flat face"),
                  pickRuleFor(document, Pick::Planes | Pick::Faces, QStringLiteral("plane"), false,
                              true, QStringLiteral("Pick the mirror plane.")));
        for (const auto& [key, references] : start) f.setReferences(key, references);
    };
    form.build = [](FeatureForm& f) -> Result<CommandRecord> {
        const std::string plane = joinReferences(f.references(kPlane));
        if (mirrorsBodies(f)) {
            const std::vector<std::string>& sources = f.references(kBodies);
            if (sources.empty()) return fail("Pick the bodies to mirror.");
            return mirrorBody(sources.back(), plane);
        }
        CommandRecord record("mirror_features");
        record.set("features", joinReferences(f.references(kFeatures)));
        record.set("plane", plane);
        return record;
    };
    form.before = [](FeatureForm& f) -> Result<std::vector<CommandRecord>> {
        std::vector<CommandRecord> first;
        if (!mirrorsBodies(f)) return first;
        const std::vector<std::string>& sources = f.references(kBodies);
        const std::string plane = joinReferences(f.references(kPlane));
        for (std::size_t i = 0; i + 1 < sources.size(); ++i)
            first.push_back(mirrorBody(sources[i], plane));
        return first;
    };
    form.session = [](FeatureForm&) { return std::optional(FormSession::Handle{}); };
    return form;
}

} // namespace cad::ui
