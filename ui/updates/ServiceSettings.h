// The maker's web service and addresses, fixed when the program is built
// (KORVEL_SERVICE_URL, KORVEL_WEBSITE_URL, KORVEL_SUPPORT_EMAIL), with the
// environment's KORVEL_UPDATE_URL in place of the service address when set.
#pragma once

#include <QString>

namespace cad::ui {

// KORVEL_UPDATE_URL when set and non-empty, else the build's service address;
// without a trailing "/". Empty when the build has none: then nothing is sent.
QString serviceBaseUrl();
// The maker's web site, e.g. "https://korvelstudio.com".
QString websiteUrl();
// The support e-mail address, e.g. "support@korvelstudio.com".
QString supportEmail();

// What the update checker and the report sender say when there is no service address.
inline constexpr const char* kNoServiceText = "This build can't reach the Korvel Studio server.";

} // namespace cad::ui
