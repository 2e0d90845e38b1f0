// The update checker against a real HTTP server on 127.0.0.1: the release query's
// answers, downloads that are right or wrong in each way, and the installer check
// that stands between a download and the launcher.
#include "TestServer.h"

#include "ui/updates/ServiceSettings.h"
#include "ui/updates/UpdateChecker.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cad::ui;
using namespace cad::test;
using State = UpdateChecker::State;

namespace {

const QString kDamaged = QStringLiteral(
    "The download didn't match the published installer (it may have been damaged). Try again.");

class UpdateCheckerTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(server.listen()); }

    std::unique_ptr<UpdateChecker> makeChecker(const QString& base) {
        auto checker = std::make_unique<UpdateChecker>(base, QStringLiteral("0.9.5"), folder());
        checker->setTransferTimeout(500);
        checker->setLauncher([this](const QString& path) {
            launched.append(path);
            return true;
        });
        return checker;
    }
    std::unique_ptr<UpdateChecker> makeChecker() { return makeChecker(server.baseUrl()); }

    QString folder() const { return dir.filePath(QStringLiteral("updates")); }
    QStringList filesInFolder() const { return QDir(folder()).entryList(QDir::Files); }

    QJsonObject record(const QString& version, const QString& url, const QByteArray& sha256,
                       qint64 size) {
        return {{"version", version},
                {"label", "Korvel Studio " + version},
                {"date", "2024-05-01"},
                {"notes", "Faster fillets."},
                {"sha256", QString::fromLatin1(sha256)},
                {"size", size},
                {"url", url}};
    }

    // Publishes installer at path as the latest release.
    void publish(const QByteArray& installer, const QByteArray& path,
                 const QString& version = QStringLiteral("v1.2.0"), QByteArray sha256 = {},
                 qint64 size = -1) {
        if (sha256.isEmpty()) sha256 = sha256Hex(installer);
        if (size < 0) size = installer.size();
        answerQuery(record(version, server.baseUrl() + QString::fromLatin1(path), sha256, size));
        server.route(path, {200, installer, {}, false});
    }
    void answerQuery(const QJsonObject& object) {
        server.route("/api/releases/latest", {200, QJsonDocument(object).toJson(), {}, false});
    }

    static bool settle(UpdateChecker& checker) {
        return waitUntil([&] {
            return checker.state() != State::Checking && checker.state() != State::Downloading;
        });
    }
    static void checkNow(UpdateChecker& checker, bool userInitiated = false) {
        checker.check(userInitiated);
        ASSERT_TRUE(settle(checker));
    }
    void checkAndDownload(UpdateChecker& checker) {
        checkNow(checker, true);
        ASSERT_EQ(checker.state(), State::Newer) << checker.statusText().toStdString();
        checker.download();
        ASSERT_TRUE(settle(checker));
    }

    QTemporaryDir dir;
    TestServer server;
    QStringList launched;
};

} // namespace

TEST_F(UpdateCheckerTest, ReleaseQueryAnswers) {
    auto checker = makeChecker();
    QSignalSpy failures(checker.get(), &UpdateChecker::checkFailed);

    publish(appImageBytes(), "/files/k.AppImage");
    checker->check(false);
    EXPECT_EQ(checker->statusText(), QStringLiteral("Checking for updates..."));
    ASSERT_TRUE(settle(*checker));
    EXPECT_EQ(checker->state(), State::Newer);
    EXPECT_EQ(checker->statusText(),
              QStringLiteral("Korvel Studio 1.2.0 is available. You have 0.9.5."));
    EXPECT_EQ(checker->notes(), QStringLiteral("Faster fillets."));
    EXPECT_EQ(checker->primaryButtonText(), QStringLiteral("Download and Install"));
    ASSERT_EQ(server.requests().size(), 1);
    EXPECT_EQ(server.requests()[0].path, "/api/releases/latest");
    EXPECT_EQ(server.requests()[0].headers.value("user-agent"), "KorvelStudio/0.9.5 update-check");

    for (const char* same : {"v0.9.5", "0.9.5-rc2"}) {
        answerQuery(record(QString::fromLatin1(same), "http://127.0.0.1/k.deb", "00", 0));
        checkNow(*checker);
        EXPECT_EQ(checker->state(), State::Current) << same;
        EXPECT_EQ(checker->statusText(), QStringLiteral("Korvel Studio 0.9.5 is up to date."));
        EXPECT_EQ(checker->notes(), QString());
        EXPECT_FALSE(checker->updateAvailable());
    }

    const QString notUnderstood =
        QStringLiteral("Couldn't check for updates: the server's answer wasn't understood.");
    QJsonObject missing = record("1.3", "http://127.0.0.1/k.deb", "00", 0);
    missing.remove("sha256");
    QJsonObject wrongType = record("1.3", "http://127.0.0.1/k.deb", "00", 0);
    wrongType["notes"] = QJsonArray{};
    for (const QByteArray& body :
         {QJsonDocument(missing).toJson(), QJsonDocument(wrongType).toJson(),
          QByteArray("<html>maintenance</html>")}) {
        server.route("/api/releases/latest", {200, body, {}, false});
        checkNow(*checker, true);
        EXPECT_EQ(checker->state(), State::Error);
        EXPECT_EQ(checker->statusText(), notUnderstood);
        EXPECT_EQ(checker->primaryButtonText(), QStringLiteral("Check Again"));
    }
    EXPECT_EQ(failures.size(), 3); // only the checks the user asked for announce it

    server.route("/api/releases/latest", {500, "oops", {}, false});
    checkNow(*checker);
    EXPECT_TRUE(checker->lastError().startsWith("Couldn't check for updates: "));
    EXPECT_NE(checker->lastError(), notUnderstood);

    // No published release: up to date, and the error is gone.
    server.route("/api/releases/latest", {404, "", {}, false});
    checkNow(*checker);
    EXPECT_EQ(checker->state(), State::Current);
    EXPECT_EQ(checker->lastError(), QString());
}

TEST_F(UpdateCheckerTest, UnreachableServiceIsAnErrorAndChecksDontOverlap) {
    auto refused = makeChecker(QStringLiteral("http://127.0.0.1:%1").arg(closedPort()));
    checkNow(*refused, true);
    EXPECT_EQ(refused->state(), State::Error);
    EXPECT_TRUE(refused->lastError().startsWith("Couldn't check for updates: "));

    auto none = makeChecker(QString());
    none->check(true);
    EXPECT_EQ(none->lastError(), QString::fromLatin1(kNoServiceText));

    server.route("/api/releases/latest", {200, {}, {}, true});
    auto silent = makeChecker();
    silent->check(false);
    checkNow(*silent, true);
    EXPECT_EQ(server.requests().size(), 1);
    EXPECT_EQ(silent->lastError(),
              QStringLiteral("Couldn't check for updates: the server didn't answer in time."));
}

TEST_F(UpdateCheckerTest, VerifiedInstallerIsStartedAfterAskingToSave) {
    const QByteArray installer = appImageBytes(300000);
    // The published hash in capitals: letter case doesn't matter.
    publish(installer, "/files/Korvel-1.2.0.AppImage", "v1.2.0", sha256Hex(installer).toUpper());
    auto checker = makeChecker();
    QSignalSpy progress(checker.get(), &UpdateChecker::progressChanged);
    QSignalSpy quit(checker.get(), &UpdateChecker::quitRequested);
    checkAndDownload(*checker);
    ASSERT_EQ(checker->state(), State::Ready) << checker->statusText().toStdString();
    EXPECT_EQ(checker->statusText(),
              QStringLiteral("Korvel Studio 1.2.0 is ready to install. Korvel Studio closes while "
                             "it installs (you'll be asked to save first)."));
    EXPECT_EQ(filesInFolder(), QStringList{"Korvel-1.2.0.AppImage"});
    EXPECT_FALSE(progress.isEmpty());
    EXPECT_DOUBLE_EQ(checker->progress(), 1.0);

    // Checking again for the same release keeps the installer; no second download.
    const qsizetype requests = server.requests().size();
    checkNow(*checker);
    checker->download();
    EXPECT_EQ(checker->state(), State::Ready);
    EXPECT_EQ(server.requests().size(), requests + 1);

    checker->setAskToSave([] { return false; });
    checker->install();
    EXPECT_TRUE(launched.isEmpty());
    EXPECT_EQ(checker->state(), State::Ready);
    checker->setAskToSave([] { return true; });
    checker->install();
    EXPECT_EQ(launched, QStringList{QDir(folder()).filePath("Korvel-1.2.0.AppImage")});
    EXPECT_EQ(quit.size(), 1);
    EXPECT_EQ(checker->state(), State::Installing);
}

TEST_F(UpdateCheckerTest, PublishersDebianPackageAndNamelessAddress) {
    const QByteArray deb = debPackage(dir.filePath("pkg-good"), "Ostrovan LLC <x@y>");
    ASSERT_FALSE(deb.isEmpty());
    publish(deb, "/files/korvel_1.2.0_amd64.DEB");
    auto checker = makeChecker();
    checkAndDownload(*checker);
    EXPECT_EQ(checker->state(), State::Ready) << checker->statusText().toStdString();
    EXPECT_EQ(filesInFolder(), QStringList{"korvel_1.2.0_amd64.DEB"});

    // A newer release forgets the installer of the old one.
    publish(appImageBytes(), "/download?id=7", "1.3.0");
    checkNow(*checker);
    EXPECT_EQ(checker->state(), State::Newer);
    EXPECT_EQ(checker->installerPath(), QString());
    checker->download();
    ASSERT_TRUE(settle(*checker));
    EXPECT_EQ(checker->state(), State::Ready) << checker->statusText().toStdString();
    EXPECT_EQ(filesInFolder(), QStringList{"KorvelStudio-v1.3.0-x86_64.AppImage"});
}

TEST_F(UpdateCheckerTest, RefusedDownloadsNeverReachTheLauncher) {
    const QByteArray good = appImageBytes();
    const QString unsigned_ =
        QStringLiteral("The downloaded installer isn't validly signed, so it wasn't run. Download "
                       "it again, or get it from %1.")
            .arg(websiteUrl());
    struct Case {
        QByteArray installer, path, sha256;
        qint64 size;
        QString expected;
    };
    const QList<Case> cases = {
        {good, "/k.AppImage", sha256Hex("something else"), -1, kDamaged},
        {good, "/k.AppImage", {}, good.size() + 10, "The download was incomplete. Try again."},
        {debPackage(dir.filePath("pkg-other"), "Someone Else <x@y>"),
         "/k.deb",
         {},
         -1,
         "The downloaded installer isn't signed by Ostrovan LLC, so it wasn't run."},
        {"just some text, not a package", "/k.deb", {}, -1, unsigned_},
        {QByteArray("\x7f"
                    "ELF",
                    4)
             .append(500, '\1'),
         "/k.AppImage",
         {},
         -1,
         unsigned_},
    };
    for (const Case& c : cases) {
        publish(c.installer, c.path, "1.2.0", c.sha256, c.size);
        auto checker = makeChecker();
        checkAndDownload(*checker);
        EXPECT_EQ(checker->state(), State::Error) << c.path.constData();
        EXPECT_EQ(checker->lastError(), c.expected);
        EXPECT_EQ(filesInFolder(), QStringList()) << c.expected.toStdString();
        checker->install();
    }

    // A verified installer changed on disk afterwards is refused at install time.
    publish(good, "/k.AppImage", "1.2.0");
    auto checker = makeChecker();
    checkAndDownload(*checker);
    ASSERT_EQ(checker->state(), State::Ready);
    QFile file(checker->installerPath());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("tampered");
    file.close();
    checker->install();
    EXPECT_EQ(checker->lastError(), kDamaged);
    EXPECT_TRUE(launched.isEmpty());
    EXPECT_EQ(filesInFolder(), QStringList());
}

TEST_F(UpdateCheckerTest, RedirectsAreFollowedButNeverDownToPlainHttp) {
    server.route("/api/releases/latest", {302, "", {{"Location", "/api/releases/v1.2"}}, false});
    server.route(
        "/api/releases/v1.2",
        {200, QJsonDocument(record("1.2", "http://127.0.0.1/k.deb", "00", 0)).toJson(), {}, false});
    auto plain = makeChecker();
    checkNow(*plain, true);
    EXPECT_EQ(plain->state(), State::Newer) << plain->statusText().toStdString();

    const std::optional<TlsPair> tls = makeTlsPair(dir.path());
    ASSERT_TRUE(tls) << "openssl couldn't make a test certificate";
    TestServer secure;
    ASSERT_TRUE(secure.listen(0, tls->server));
    auto checker = makeChecker(secure.baseUrl());
    checker->setSslConfiguration(tls->client);
    secure.route("/api/releases/latest",
                 {200,
                  QJsonDocument(record("1.2", "https://127.0.0.1/k.deb", "00", 0)).toJson(),
                  {},
                  false});
    checkNow(*checker, true);
    ASSERT_EQ(checker->state(), State::Newer) << checker->statusText().toStdString();

    const qsizetype plainRequests = server.requests().size();
    secure.route(
        "/api/releases/latest",
        {302, "", {{"Location", server.baseUrl().toUtf8() + "/api/releases/v1.2"}}, false});
    checkNow(*checker, true);
    EXPECT_EQ(checker->state(), State::Error);
    EXPECT_TRUE(checker->lastError().startsWith("Couldn't check for updates: "));
    EXPECT_TRUE(checker->lastError().contains("redirect", Qt::CaseInsensitive));
    EXPECT_EQ(server.requests().size(), plainRequests);
}
