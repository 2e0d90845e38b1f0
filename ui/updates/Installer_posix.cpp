// Debian packages and AppImages: naming, the check before running, and starting.
#include "ui/updates/Installer.h"

#include "ui/updates/ServiceSettings.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace cad::ui {

namespace {

bool isDebName(const QString& name) {
    return name.endsWith(QLatin1String(".deb"), Qt::CaseInsensitive);
}

bool isAppImageName(const QString& name) {
    return name.endsWith(QLatin1String(".AppImage"), Qt::CaseInsensitive);
}

QString notValidText() {
    return QStringLiteral("The downloaded installer isn't validly signed, so it wasn't run. "
                          "Download it again, or get it from %1.")
        .arg(websiteUrl());
}

QString notPublisherText() {
    return QStringLiteral("The downloaded installer isn't signed by %1, so it wasn't run.")
        .arg(QLatin1String(kPublisher));
}

// The Maintainer field of a Debian package, or nothing when dpkg-deb can't read it.
std::optional<QString> debMaintainer(const QString& path) {
    QProcess dpkg;
    dpkg.setProcessChannelMode(QProcess::SeparateChannels);
    dpkg.start(
        QStringLiteral("dpkg-deb"),
        {QStringLiteral("-f"), QFileInfo(path).absoluteFilePath(), QStringLiteral("Maintainer")});
    if (!dpkg.waitForFinished(15000)) {
        dpkg.kill();
        dpkg.waitForFinished(1000);
        return std::nullopt;
    }
    if (dpkg.exitStatus() != QProcess::NormalExit || dpkg.exitCode() != 0) return std::nullopt;
    return QString::fromUtf8(dpkg.readAllStandardOutput()).trimmed();
}

} // namespace

QString installerFileName(const QUrl& address, const QString& version) {
    const QString name = address.fileName();
    if (!name.startsWith(QLatin1Char('.')) && (isDebName(name) || isAppImageName(name)))
        return name;
    return QStringLiteral("KorvelStudio-v%1-x86_64.AppImage").arg(version);
}

QString checkInstaller(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return notValidText();
    const QByteArray head = file.read(24);
    file.close();

    const QString name = QFileInfo(path).fileName();
    if (isDebName(name)) {
        // An ar archive whose first member is "debian-binary".
        if (!head.startsWith("!<arch>\n") || head.mid(8, 13) != "debian-binary")
            return notValidText();
        const std::optional<QString> maintainer = debMaintainer(path);
        if (!maintainer) return notValidText();
        // "Ostrovan LLC <packages@...>": the name before the address must be the publisher's.
        const QString who = maintainer->section(QLatin1Char('<'), 0, 0).trimmed();
        if (who != QLatin1String(kPublisher)) return notPublisherText();
        return {};
    }
    if (isAppImageName(name)) {
        if (!head.startsWith("\x7f"
                             "ELF") ||
            head.mid(8, 2) != "AI")
            return notValidText();
        return {};
    }
    return notValidText();
}

bool startInstaller(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (isDebName(absolute)) return QProcess::startDetached(QStringLiteral("xdg-open"), {absolute});
    QFile file(absolute);
    if (!file.setPermissions(file.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeUser))
        return false;
    return QProcess::startDetached(absolute, {});
}

} // namespace cad::ui
