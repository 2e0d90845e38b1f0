// The downloaded installer on this platform: what it is called, the check it must
// pass before it may run, and how it is started.
//
// On Linux an installer is a Debian package (.deb) or an AppImage. What vouches for
// it is the published SHA-256 of the release answer, checked before this: the
// installer check then makes sure the file is what its name says (a .deb starts with
// the "!<arch>" archive header and its "debian-binary" member, an AppImage is an ELF
// program carrying the AppImage mark "AI" after the ELF magic) and that a package's
// Maintainer field, read with dpkg-deb, names the publisher "Ostrovan LLC". A .deb
// is handed to the desktop's opener (xdg-open, which offers the system's package
// installer); an AppImage is made executable and started on its own.
#pragma once

#include <QString>
#include <QUrl>

namespace cad::ui {

// The publisher an installer must name.
inline constexpr const char* kPublisher = "Ostrovan LLC";

// The address's file name when it ends in ".deb" or ".AppImage" (any letter case),
// else "KorvelStudio-v<version>-x86_64.AppImage".
QString installerFileName(const QUrl& address, const QString& version);

// Empty when the file at path may run, else the sentence saying why not.
QString checkInstaller(const QString& path);

// Starts the installer as a process of its own; false when it could not be started.
bool startInstaller(const QString& path);

} // namespace cad::ui
