// Reading the release answer strictly: a key missing or of the wrong type makes the
// whole answer not understood, so nothing half-read ever drives a download.
#include "ui/updates/ReleaseRecord.h"

#include "ui/updates/ReleaseVersion.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <cmath>

namespace cad::ui {

namespace {

bool readString(const QJsonObject& object, const char* key, QString& out) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (!value.isString()) return false;
    out = value.toString();
    return true;
}

} // namespace

std::optional<ReleaseRecord> parseReleaseRecord(const QByteArray& body, const QUrl& base) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) return std::nullopt;
    const QJsonObject object = document.object();

    ReleaseRecord record;
    QString url;
    if (!readString(object, "version", record.version) ||
        !readString(object, "label", record.label) || !readString(object, "date", record.date) ||
        !readString(object, "notes", record.notes) ||
        !readString(object, "sha256", record.sha256) || !readString(object, "url", url))
        return std::nullopt;
    if (!parseReleaseVersion(record.version)) return std::nullopt;

    const QJsonValue size = object.value(QLatin1String("size"));
    if (!size.isUndefined()) {
        if (!size.isDouble()) return std::nullopt;
        const double bytes = size.toDouble();
        // Whole, not negative, and exact in a double (installers are far smaller).
        if (bytes < 0 || bytes != std::floor(bytes) || bytes > 9007199254740992.0)
            return std::nullopt;
        record.size = static_cast<qint64>(bytes);
    }

    record.url = base.resolved(QUrl(url));
    const QString scheme = record.url.scheme().toLower();
    if (!record.url.isValid() ||
        (scheme != QLatin1String("http") && scheme != QLatin1String("https")))
        return std::nullopt;
    return record;
}

} // namespace cad::ui
