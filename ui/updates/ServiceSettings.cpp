// The build's service settings; the only file that sees the build's definitions.
#include "ui/updates/ServiceSettings.h"

#include <QByteArray>
#include <QtGlobal>

namespace cad::ui {

namespace {

QString withoutTrailingSlash(QString address) {
    while (address.endsWith(QLatin1Char('/'))) address.chop(1);
    return address;
}

} // namespace

QString serviceBaseUrl() {
    const QString fromEnvironment = qEnvironmentVariable("KORVEL_UPDATE_URL").trimmed();
    if (!fromEnvironment.isEmpty()) return withoutTrailingSlash(fromEnvironment);
    return withoutTrailingSlash(QStringLiteral(KORVEL_SERVICE_URL).trimmed());
}

QString websiteUrl() { return QStringLiteral(KORVEL_WEBSITE_URL); }

QString supportEmail() { return QStringLiteral(KORVEL_SUPPORT_EMAIL); }

} // namespace cad::ui
