// Reading and ordering release versions.
#include "ui/updates/ReleaseVersion.h"

#include <QRegularExpression>

#include <algorithm>

namespace cad::ui {

std::optional<ReleaseVersion> parseReleaseVersion(const QString& text) {
    static const QRegularExpression split(QStringLiteral("^(\\d+(?:\\.\\d+)*)(.*)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression trailing(QStringLiteral("(\\d+)\\D*$"));

    QString rest = text.trimmed();
    if (rest.startsWith(QLatin1Char('v')) || rest.startsWith(QLatin1Char('V'))) rest.remove(0, 1);
    const QRegularExpressionMatch match = split.match(rest);
    if (!match.hasMatch()) return std::nullopt;

    ReleaseVersion version;
    for (const QString& part : match.captured(1).split(QLatin1Char('.'))) {
        bool ok = false;
        const quint64 number = part.toULongLong(&ok);
        if (!ok) return std::nullopt;
        version.numbers.append(number);
    }
    version.suffix = match.captured(2);
    const QRegularExpressionMatch number = trailing.match(version.suffix);
    if (number.hasMatch()) {
        bool ok = false;
        version.suffixNumber = number.captured(1).toULongLong(&ok);
        if (!ok) return std::nullopt;
    }
    return version;
}

int compareReleaseVersions(const ReleaseVersion& a, const ReleaseVersion& b) {
    const qsizetype count = std::max(a.numbers.size(), b.numbers.size());
    for (qsizetype i = 0; i < count; ++i) {
        const quint64 x = i < a.numbers.size() ? a.numbers[i] : 0;
        const quint64 y = i < b.numbers.size() ? b.numbers[i] : 0;
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.suffix.isEmpty() || b.suffix.isEmpty()) {
        if (a.suffix.isEmpty() == b.suffix.isEmpty()) return 0;
        return a.suffix.isEmpty() ? 1 : -1;
    }
    if (a.suffixNumber != b.suffixNumber) return a.suffixNumber < b.suffixNumber ? -1 : 1;
    const int byText = QString::compare(a.suffix, b.suffix, Qt::CaseInsensitive);
    return byText < 0 ? -1 : (byText > 0 ? 1 : 0);
}

} // namespace cad::ui
