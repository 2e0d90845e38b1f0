// The update and report panels on Qt's offscreen platform, each driven by the real
// checker or sender against a server on 127.0.0.1.
#include "TestServer.h"

#include "ui/updates/ReportPanel.h"
#include "ui/updates/ReportSender.h"
#include "ui/updates/UpdateChecker.h"
#include "ui/updates/UpdatePanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cad::ui;
using namespace cad::test;

TEST(UpdatePanel, FollowsTheCheckersStates) {
    TestServer server;
    ASSERT_TRUE(server.listen());
    QTemporaryDir dir;
    const QByteArray installer = appImageBytes();
    server.route("/files/k.AppImage", {200, installer, {}, false});
    server.route("/api/releases/latest", {200, {}, {}, true}); // answers later
    UpdateChecker checker(server.baseUrl(), "0.9.5", dir.filePath("updates"));
    checker.setTransferTimeout(300);
    QStringList launched;
    checker.setLauncher([&](const QString& path) { return launched.append(path), true; });
    UpdatePanel panel(checker);
    panel.show();

    const auto status = [&] { return panel.findChild<QLabel*>("updateStatus")->text(); };
    auto* primary = panel.findChild<QPushButton*>("primaryButton");
    auto* notes = panel.findChild<QPlainTextEdit*>("updateNotes");
    EXPECT_EQ(panel.objectName(), "updateDialog");
    EXPECT_EQ(panel.findChild<QLabel*>("panelTitle")->text(), "Software Update");
    EXPECT_EQ(panel.findChild<QPushButton*>("secondaryButton")->text(), "Close");

    checker.check(true);
    EXPECT_EQ(status(), "Checking for updates...");
    EXPECT_FALSE(primary->isVisible());
    ASSERT_TRUE(waitUntil([&] { return checker.state() == UpdateChecker::State::Error; }));
    EXPECT_EQ(status(), checker.lastError());
    EXPECT_EQ(primary->text(), "Check Again");

    const QJsonObject record{{"version", "1.2.0"},
                             {"label", "1.2"},
                             {"date", "2024-05-01"},
                             {"notes", "Faster fillets."},
                             {"sha256", QString(sha256Hex(installer))},
                             {"url", server.baseUrl() + "/files/k.AppImage"}};
    server.route("/api/releases/latest", {200, QJsonDocument(record).toJson(), {}, false});
    primary->click();
    ASSERT_TRUE(waitUntil([&] { return checker.state() == UpdateChecker::State::Newer; }));
    EXPECT_EQ(status(), "Korvel Studio 1.2.0 is available. You have 0.9.5.");
    EXPECT_TRUE(notes->isVisible());
    EXPECT_EQ(notes->toPlainText(), "Faster fillets.");
    EXPECT_EQ(primary->text(), "Download and Install");

    primary->click();
    EXPECT_TRUE(status().startsWith("Downloading Korvel Studio 1.2.0... "));
    EXPECT_FALSE(primary->isVisible());
    ASSERT_TRUE(waitUntil([&] { return checker.state() == UpdateChecker::State::Ready; }));
    EXPECT_EQ(primary->text(), "Install Now");
    primary->click();
    EXPECT_EQ(launched.size(), 1);
}

namespace {

struct ReportPanelTest : ::testing::Test {
    void SetUp() override {
        ASSERT_TRUE(server.listen());
        server.route("/api/report", {200, R"({"reference":"KS-7"})", {}, false});
        sender = std::make_unique<ReportSender>(server.baseUrl(), dir.filePath("pending"));
        ReportPanel::Sources sources;
        sources.viewPicture = [] { return QByteArray("\x89PNG fake", 9); };
        sources.commandLog = [] { return QStringLiteral("box(10, 20, 30)"); };
        sources.model = [this]() -> cad::Result<QByteArray> {
            if (!modelError.isEmpty()) return cad::fail(modelError.toStdString());
            return model;
        };
        sources.modelFileName = QStringLiteral("bracket.kv3");
        panel = std::make_unique<ReportPanel>(*sender, "0.9.5", sources);
        panel->show();
    }
    template <typename T> T* field(const char* name) { return panel->findChild<T*>(name); }
    QString message() { return field<QLabel>("panelMessage")->text(); }
    bool messageIsError() { return field<QLabel>("panelMessage")->property("error").toBool(); }

    TestServer server;
    QTemporaryDir dir;
    std::unique_ptr<ReportSender> sender;
    std::unique_ptr<ReportPanel> panel;
    QByteArray model = "PK model";
    QString modelError;
};

} // namespace

TEST_F(ReportPanelTest, FieldsAndTheOrderOfTheirChecks) {
    EXPECT_EQ(panel->objectName(), "reportDialog");
    EXPECT_EQ(panel->windowTitle(), "Report an Issue");
    auto* kind = field<QComboBox>("reportKind");
    ASSERT_EQ(kind->count(), 3);
    EXPECT_EQ(kind->currentData().toString(), "bug");
    EXPECT_EQ(kind->itemText(1), "Feature request");
    EXPECT_EQ(kind->itemData(2).toString(), "question");
    EXPECT_EQ(field<QLineEdit>("reportTitle")->placeholderText(),
              "Fillet fails on the inside edge of a pocket");
    EXPECT_EQ(field<QCheckBox>("reportModel")->text(), "Attach the current model (bracket.kv3)");
    panel->setModelFileName({});
    EXPECT_EQ(field<QCheckBox>("reportModel")->text(), "Attach the current model");

    auto* send = field<QPushButton>("primaryButton");
    field<QLineEdit>("reportEmail")->setText("me@localhost");
    send->click();
    EXPECT_EQ(message(), "Give it a title.");
    EXPECT_TRUE(messageIsError());
    field<QLineEdit>("reportTitle")->setText("Fillet fails");
    send->click();
    EXPECT_EQ(message(), "Describe what happened or what you'd like.");
    field<QPlainTextEdit>("reportDescription")->setPlainText("On the pocket's inside edge.");
    send->click();
    EXPECT_EQ(message(), "That email address doesn't look right. Fix it, or leave it empty.");
    field<QLineEdit>("reportEmail")->setText("me@example.org");
    field<QCheckBox>("reportModel")->setChecked(true);
    modelError = QStringLiteral("The model couldn't be written.");
    send->click();
    EXPECT_EQ(message(), modelError);
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(ReportPanelTest, SendsWithAttachmentsAndStartsEmptyAfterwards) {
    field<QComboBox>("reportKind")->setCurrentIndex(1);
    field<QLineEdit>("reportTitle")->setText("Inch input");
    field<QPlainTextEdit>("reportDescription")->setPlainText("Let me type 1/4\".");
    for (const char* box : {"reportScreenshot", "reportLog", "reportModel"})
        field<QCheckBox>(box)->setChecked(true);
    field<QPushButton>("primaryButton")->click();
    EXPECT_EQ(message(), "Sending...");
    EXPECT_FALSE(field<QPushButton>("primaryButton")->isEnabled());
    EXPECT_FALSE(field<QPushButton>("secondaryButton")->isEnabled());
    panel->reject(); // refused while sending
    EXPECT_TRUE(panel->isVisible());

    ASSERT_TRUE(waitUntil([&] { return !panel->isSending(); }));
    EXPECT_EQ(message(), "Thanks, your report was sent. Its reference is KS-7.");
    EXPECT_FALSE(messageIsError());
    EXPECT_EQ(field<QPushButton>("primaryButton")->text(), "Close");
    ASSERT_EQ(server.requests().size(), 1);
    const QJsonObject report = QJsonDocument::fromJson(server.requests()[0].body).object();
    EXPECT_EQ(report["type"].toString(), "feature");
    EXPECT_EQ(report["version"].toString(), "0.9.5");
    EXPECT_TRUE(report["system"].toString().contains(QSysInfo::currentCpuArchitecture()));
    QStringList names;
    for (const QJsonValue attachment : report["attachments"].toArray())
        names.append(attachment["name"].toString());
    EXPECT_EQ(names, (QStringList{"view.png", "command-log.txt", "model.kv3"}));
    const QJsonValue log = report["attachments"].toArray().at(1);
    EXPECT_EQ(QByteArray::fromBase64(log["data"].toString().toLatin1()), "box(10, 20, 30)");

    field<QPushButton>("primaryButton")->click();
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(field<QLineEdit>("reportTitle")->text(), QString());
    EXPECT_EQ(field<QPushButton>("primaryButton")->text(), "Send");
}
