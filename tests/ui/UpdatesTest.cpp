// The window's update checks and issue reports against a service the test runs on
// 127.0.0.1: a newer release shows the sidebar's update button and the panel; the
// Help menu's automatic checks are a setting; a report carries the current model
// as a project the reader opens.
#include "tests/ui/WindowFixture.h"

#include "core/ProjectFile.h"
#include "mcp/QueryTools.h"
#include "tests/updates/TestServer.h"
#include "ui/updates/ReportPanel.h"
#include "ui/updates/UpdateChecker.h"

#include <QCheckBox>
#include <QDialog>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

namespace cad::ui::testing {
namespace {

class UpdatesTest : public WindowTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(server.listen());
        qputenv("KORVEL_UPDATE_URL", server.baseUrl().toUtf8());
        WindowTest::SetUp();
    }
    void TearDown() override {
        WindowTest::TearDown();
        qunsetenv("KORVEL_UPDATE_URL");
    }
    QAction* action(const char* name) const {
        return window->findChild<QAction*>(QString::fromLatin1(name));
    }

    test::TestServer server;
};

TEST_F(UpdatesTest, ANewerReleaseShowsTheUpdateButtonAndThePanel) {
    auto* button = window->findChild<QPushButton*>(QStringLiteral("updateButton"));
    ASSERT_NE(button, nullptr);
    EXPECT_FALSE(button->isVisible());
    const QByteArray installer = test::appImageBytes();
    test::Answer release;
    release.body = QJsonDocument(QJsonObject{{"version", "v9.1"},
                                                 {"label", "Korvel Studio 9.1"},
                                                 {"date", "2026-11-20"},
                                                 {"notes", "Faster fillets."},
                                                 {"sha256", QString(test::sha256Hex(installer))},
                                                 {"size", installer.size()},
                                                 {"url", server.baseUrl() + "/k.AppImage"}})
                       .toJson();
    server.route("/api/releases/latest", release);

    // The Help menu's entry opens the panel and checks.
    action("checkForUpdates")->trigger();
    auto* panel = window->findChild<QDialog*>(QStringLiteral("updateDialog"));
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    ASSERT_TRUE(waitUntil([&] { return button->isVisible(); }));
    EXPECT_EQ(panel->findChild<QLabel*>(QStringLiteral("updateStatus"))->text(),
              QStringLiteral("Korvel Studio 9.1 is available. You have 0.9.5."));
    EXPECT_EQ(panel->findChild<QPlainTextEdit*>(QStringLiteral("updateNotes"))->toPlainText(),
              QStringLiteral("Faster fillets."));
}

TEST_F(UpdatesTest, AutomaticChecksAreASettingTheHelpMenuWrites) {
    QAction* automatic = action("autoUpdates");
    ASSERT_NE(automatic, nullptr);
    EXPECT_TRUE(automatic->isCheckable());
    EXPECT_TRUE(automatic->isChecked()); // on until the user turns it off
    automatic->setChecked(false);
    EXPECT_FALSE(QSettings().value(QStringLiteral("updates/autoCheck")).toBool());
    EXPECT_FALSE(window->updateChecker()->autoCheck());
    automatic->setChecked(true);
    EXPECT_TRUE(window->updateChecker()->autoCheck());
    for (const char* name : {"checkForUpdates", "releaseNotes", "reportIssueAction"})
        EXPECT_NE(action(name), nullptr) << name;
}

TEST_F(UpdatesTest, AReportCarriesTheCurrentModelAsAProjectTheReaderOpens) {
    test::Answer accepted;
    accepted.status = 201;
    accepted.body = R"({"reference":"KS-7"})";
    server.route("/api/report", accepted);
    ASSERT_TRUE(addBox().ok);
    ReportPanel& panel = window->reportPanel();
    panel.findChild<QLineEdit*>(QStringLiteral("reportTitle"))->setText(QStringLiteral("Box"));
    panel.findChild<QPlainTextEdit*>(QStringLiteral("reportDescription"))
        ->setPlainText(QStringLiteral("It is a box."));
    panel.findChild<QCheckBox*>(QStringLiteral("reportModel"))->setChecked(true);
    panel.findChild<QCheckBox*>(QStringLiteral("reportLog"))->setChecked(true);
    panel.send();
    ASSERT_TRUE(waitUntil([&] { return !panel.isSending(); }));
    EXPECT_EQ(panel.messageLabel()->text(),
              QStringLiteral("Thanks, your report was sent. Its reference is KS-7."));

    ASSERT_EQ(server.requests().size(), 1);
    const QJsonObject report = QJsonDocument::fromJson(server.requests().front().body).object();
    QByteArray model;
    QString log;
    for (const QJsonValue& attachment : report.value("attachments").toArray()) {
        const QJsonObject a = attachment.toObject();
        const QByteArray data = QByteArray::fromBase64(a.value("data").toString().toLatin1());
        if (a.value("name") == "model.kv3") model = data;
        if (a.value("name") == "command-log.txt") log = QString::fromUtf8(data);
    }
    EXPECT_TRUE(log.contains(QStringLiteral("create_box"))) << log.toStdString();
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("back.kv3"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(model);
    file.close();
    Result<std::unique_ptr<Document>> back = readProject(path.toStdString(), mcp::allObjectTypes());
    ASSERT_TRUE(back.ok()) << back.error();
    EXPECT_NE((*back)->find("Box1"), nullptr);
}

} // namespace
} // namespace cad::ui::testing
