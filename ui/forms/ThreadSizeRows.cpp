// The standard and size rows: one choice row per standard, filled from the thread
// table in its own order (ISO coarse before fine).
#include "ui/forms/ThreadSizeRows.h"

#include "geometry/holes/ThreadSizes.h"
#include "ui/forms/FeatureForm.h"

#include <array>

namespace cad::ui {

namespace {

struct Standard {
    const char* value;     // the standard row's value
    const char* name;      // ThreadSize::standard
    const char* key;       // the size row
    const char* firstSize; // where its list starts
};

constexpr std::array<Standard, 3> kStandards{{
    {"iso", "ISO metric", "size_iso", "M6"},
    {"unc", "UNC", "size_unc", "1/4-20 UNC"},
    {"unf", "UNF", "size_unf", "1/4-28 UNF"},
}};

const Standard* standardNamed(const QString& value) {
    for (const Standard& standard : kStandards)
        if (value == QLatin1String(standard.value)) return &standard;
    return nullptr;
}

} // namespace

void addThreadSizeRows(FeatureForm& form, const FieldChoice& other, const QString& size,
                       const QString& tooltip) {
    const ThreadSize* start = size.isEmpty() ? nullptr : findThreadSize(size.toStdString());
    std::vector<FieldChoice> standards{other};
    QString standardValue = other.value;
    for (const Standard& standard : kStandards) {
        standards.push_back(
            {QString::fromLatin1(standard.value), QString::fromLatin1(standard.name), {}});
        if (start && start->standard == standard.name)
            standardValue = QString::fromLatin1(standard.value);
    }
    form.addChoice(QStringLiteral("standard"), QStringLiteral("Size by"), tooltip, standards,
                   standardValue);
    for (const Standard& standard : kStandards) {
        std::vector<FieldChoice> sizes;
        for (const ThreadSize& record : threadSizes())
            if (record.standard == standard.name) {
                const QString name = QString::fromStdString(record.name);
                sizes.push_back({name, name, {}});
            }
        const QString first = start && start->standard == standard.name
                                  ? QString::fromStdString(start->name)
                                  : QString::fromLatin1(standard.firstSize);
        const QString key = QString::fromLatin1(standard.key);
        form.addChoice(key, QStringLiteral("Size"), tooltip, sizes, first);
        form.showWhen(key, QStringLiteral("standard"), {QString::fromLatin1(standard.value)});
    }
}

QString chosenThreadSize(const FeatureForm& form) {
    const Standard* standard = standardNamed(form.text(QStringLiteral("standard")));
    return standard ? form.text(QString::fromLatin1(standard->key)) : QString();
}

} // namespace cad::ui
