// The update service's answer to "what is the latest release": one JSON object
// with the release's version, texts, and the installer's address, hash and size.
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

namespace cad::ui {

struct ReleaseRecord {
    QString version; // "version": compared with the running version
    QString label;   // "label": display label
    QString date;    // "date": release date, as the service writes it
    QString notes;   // "notes": shown in the update panel
    QString sha256;  // "sha256": the installer's SHA-256, hexadecimal
    qint64 size = 0; // "size": installer size in bytes; 0 when unknown (or absent)
    QUrl url;        // "url": where the installer is downloaded from
};

// Reads the answer. nullopt unless it is a JSON object holding every key above as a
// string ("size" a whole number of at least 0, or absent), with "version" a release
// version and "url" an http or https address (a relative one is taken against base).
std::optional<ReleaseRecord> parseReleaseRecord(const QByteArray& body, const QUrl& base = {});

} // namespace cad::ui
