// Versions, the release answer, the service settings and the issue report's checks:
// the pure rules the checker and the panels stand on.
#include "ui/updates/IssueReport.h"
#include "ui/updates/ReleaseRecord.h"
#include "ui/updates/ReleaseVersion.h"
#include "ui/updates/ServiceSettings.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace cad::ui;

namespace {

int compare(const char* a, const char* b) {
    const auto x = parseReleaseVersion(QString::fromLatin1(a));
    const auto y = parseReleaseVersion(QString::fromLatin1(b));
    EXPECT_TRUE(x && y) << a << " / " << b;
    return x && y ? compareReleaseVersions(*x, *y) : 99;
}

QJsonObject goodRecord() {
    return QJsonObject{{"version", "v1.2.0"},
                       {"label", "Korvel Studio 1.2"},
                       {"date", "2024-05-01"},
                       {"notes", "Faster fillets."},
                       {"sha256", "ab12"},
                       {"size", 1234},
                       {"url", "https://example.invalid/KorvelStudio-1.2.0.deb"}};
}

QByteArray json(const QJsonObject& object) { return QJsonDocument(object).toJson(); }

} // namespace

TEST(ReleaseVersion, ParsesNumbersSuffixAndTrailingNumber) {
    const auto version = parseReleaseVersion(QStringLiteral("  V1.20.3-beta4 "));
    ASSERT_TRUE(version);
    EXPECT_EQ(version->numbers, (QList<quint64>{1, 20, 3}));
    EXPECT_EQ(version->suffix, QStringLiteral("-beta4"));
    EXPECT_EQ(version->suffixNumber, 4u);
    for (const char* bad : {"", "v", "beta", "-1.0", "99999999999999999999999.1"})
        EXPECT_FALSE(parseReleaseVersion(QString::fromLatin1(bad))) << bad;
}

TEST(ReleaseVersion, OrdersReleasesAndPreReleases) {
    EXPECT_EQ(compare("1.2", "1.2.0"), 0);
    EXPECT_EQ(compare("v1.0", "1.0"), 0);
    EXPECT_GT(compare("1.10", "1.9"), 0);
    EXPECT_LT(compare("0.9.5", "1.0"), 0);
    EXPECT_GT(compare("1.0", "1.0-rc3"), 0);
    EXPECT_LT(compare("1.0-beta2", "1.0-beta10"), 0);
    EXPECT_LT(compare("1.0-beta", "1.0-beta1"), 0);
    EXPECT_LT(compare("1.0-alpha1", "1.0-beta1"), 0);
    EXPECT_GT(compare("1.0.1-rc1", "1.0"), 0);
}

TEST(ReleaseRecord, ReadsAGoodAnswer) {
    const auto record = parseReleaseRecord(json(goodRecord()));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->version, QStringLiteral("v1.2.0"));
    EXPECT_EQ(record->notes, QStringLiteral("Faster fillets."));
    EXPECT_EQ(record->size, 1234);
    EXPECT_EQ(record->url.fileName(), QStringLiteral("KorvelStudio-1.2.0.deb"));

    QJsonObject noSize = goodRecord();
    noSize.remove("size");
    noSize["url"] = "/files/k.AppImage";
    const auto relative = parseReleaseRecord(json(noSize), QUrl("http://127.0.0.1:9/api/x"));
    ASSERT_TRUE(relative);
    EXPECT_EQ(relative->size, 0);
    EXPECT_EQ(relative->url, QUrl("http://127.0.0.1:9/files/k.AppImage"));
}

TEST(ReleaseRecord, RefusesAnythingNotQuiteRight) {
    for (const char* key : {"version", "label", "date", "notes", "sha256", "url"}) {
        QJsonObject missing = goodRecord();
        missing.remove(key);
        EXPECT_FALSE(parseReleaseRecord(json(missing))) << "missing " << key;
        QJsonObject wrongType = goodRecord();
        wrongType[key] = 12;
        EXPECT_FALSE(parseReleaseRecord(json(wrongType))) << "number for " << key;
    }
    for (const QJsonValue& size : {QJsonValue("1234"), QJsonValue(-1), QJsonValue(1.5)}) {
        QJsonObject record = goodRecord();
        record["size"] = size;
        EXPECT_FALSE(parseReleaseRecord(json(record)));
    }
    QJsonObject badVersion = goodRecord();
    badVersion["version"] = "latest";
    EXPECT_FALSE(parseReleaseRecord(json(badVersion)));
    QJsonObject ftp = goodRecord();
    ftp["url"] = "ftp://example.invalid/k.deb";
    EXPECT_FALSE(parseReleaseRecord(json(ftp)));
    EXPECT_FALSE(parseReleaseRecord("<html>not json</html>"));
    EXPECT_FALSE(parseReleaseRecord(QJsonDocument(QJsonArray{goodRecord()}).toJson()));
}

TEST(ServiceSettings, EnvironmentReplacesTheBuildsAddress) {
    qputenv("KORVEL_UPDATE_URL", "http://127.0.0.1:8/service/");
    EXPECT_EQ(serviceBaseUrl(), QStringLiteral("http://127.0.0.1:8/service"));
    qputenv("KORVEL_UPDATE_URL", "  ");
    const QString built = serviceBaseUrl();
    qunsetenv("KORVEL_UPDATE_URL");
    EXPECT_EQ(serviceBaseUrl(), built);
    EXPECT_FALSE(websiteUrl().isEmpty());
    EXPECT_TRUE(supportEmail().contains('@'));
}

TEST(IssueReport, ProblemsComeInTheirOrder) {
    IssueReportDraft draft;
    draft.email = QStringLiteral("not an address");
    EXPECT_EQ(reportProblem(draft), QStringLiteral("Give it a title."));
    draft.title = QStringLiteral("Crash on fillet");
    EXPECT_EQ(reportProblem(draft), QStringLiteral("Describe what happened or what you'd like."));
    draft.description = QStringLiteral("It crashed.");
    const QString badEmail =
        QStringLiteral("That email address doesn't look right. Fix it, or leave it empty.");
    for (const char* email : {"not an address", "me@localhost", "a@b@c.d", "me @x.org"}) {
        draft.email = QString::fromLatin1(email);
        EXPECT_EQ(reportProblem(draft), badEmail) << email;
    }
    draft.email = QStringLiteral("me@example.org");
    EXPECT_EQ(reportProblem(draft), QString());
    draft.attachments.append({"model.kv3", "application/octet-stream",
                              QByteArray(static_cast<int>(kMaxModelBytes) + 1, 'x')});
    EXPECT_EQ(reportProblem(draft),
              QStringLiteral("The model is over 20 MB, too big to attach. Untick it, or send it "
                             "to %1.")
                  .arg(supportEmail()));
}
