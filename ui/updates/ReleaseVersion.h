// Release versions as the update service writes them ("v1.2.0", "1.3-beta2"): read
// into numbers and a suffix, and ordered so a release outranks its pre-releases.
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace cad::ui {

struct ReleaseVersion {
    QList<quint64> numbers;   // the dotted part, "1.2.0" -> 1, 2, 0
    QString suffix;           // what follows it ("-beta2"); empty for a release
    quint64 suffixNumber = 0; // the suffix's trailing number; 0 when it has none
};

// Trims the text and drops a leading "v" or "V"; nullopt when it does not start with
// a number, or a number is too large to hold.
std::optional<ReleaseVersion> parseReleaseVersion(const QString& text);

// Negative when a is older than b, 0 when they rank the same, positive when newer.
// Numbers compare element by element (a missing one counts 0, so 1.2 equals 1.2.0);
// with equal numbers a release ranks above any pre-release; two suffixes compare
// by their trailing numbers (beta2 before beta10), then by their text (alpha1
// before beta1).
int compareReleaseVersions(const ReleaseVersion& a, const ReleaseVersion& b);

} // namespace cad::ui
