// The application object's safety net: an exception escaping an event handler is
// logged every time, reported in a file once per kind, and the program runs on.
#include "app/Application.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace cad::app;

namespace {

class Throwing : public QObject {
public:
    std::string message = "the sketch went away";
    bool event(QEvent* event) override {
        if (event->type() == QEvent::User) throw std::runtime_error(message);
        if (event->type() == QEvent::User + 1) throw std::out_of_range(message);
        return QObject::event(event);
    }
};

QStringList criticalLines;
void collect(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtCriticalMsg) criticalLines.append(QString(context.category) + "|" + message);
}

class Notify : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("XDG_STATE_HOME", state.path().toUtf8());
        application = std::make_unique<Application>(argc, argv);
        criticalLines.clear();
        qInstallMessageHandler(collect);
    }
    void TearDown() override {
        qInstallMessageHandler(nullptr);
        application.reset();
    }
    QStringList reports() const {
        return QDir(state.path() + "/KorvelStudio/crashes")
            .entryList({"exception-*.txt"}, QDir::Files, QDir::Name);
    }
    QString report(const QString& file) const {
        QFile reportFile(state.path() + "/KorvelStudio/crashes/" + file);
        return reportFile.open(QIODevice::ReadOnly) ? QString::fromUtf8(reportFile.readAll())
                                                    : QString();
    }

    QTemporaryDir state;
    int argc = 1;
    char name[16] = "notify_tests";
    char* argv[2] = {name, nullptr};
    std::unique_ptr<Application> application;
};

} // namespace

TEST_F(Notify, TheSameExceptionAThousandTimesWritesOneReport) {
    Throwing receiver;
    receiver.message = "same every time";
    for (int i = 0; i < 1000; ++i) {
        QEvent event(QEvent::User);
        EXPECT_FALSE(QCoreApplication::sendEvent(&receiver, &event));
    }
    EXPECT_EQ(criticalLines.size(), 1000);
    EXPECT_EQ(criticalLines.value(0),
              "korvel.crash|Unhandled std::runtime_error in QObject (event type 1000): same every "
              "time");
    const QStringList files = reports();
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(QRegularExpression(R"(^exception-\d{8}-\d{6}\.txt$)").match(files[0]).hasMatch())
        << files[0].toStdString();
    EXPECT_EQ(report(files[0]), "Korvel Studio caught an exception that escaped an event handler.\n"
                                "type:     std::runtime_error\n"
                                "message:  same every time\n"
                                "receiver: QObject\n"
                                "event:    1000\n");
}

TEST_F(Notify, EachDistinctTypeAndMessageIsReportedOnceEvenWithinOneSecond) {
    Throwing receiver;
    receiver.message = "first";
    QEvent runtime(QEvent::User);
    QEvent range(QEvent::Type(QEvent::User + 1));
    QCoreApplication::sendEvent(&receiver, &runtime);
    QCoreApplication::sendEvent(&receiver, &range);
    receiver.message = "second";
    QCoreApplication::sendEvent(&receiver, &runtime);
    QCoreApplication::sendEvent(&receiver, &runtime);
    EXPECT_EQ(criticalLines.size(), 4);
    const QStringList files = reports();
    ASSERT_EQ(files.size(), 3) << files.join(' ').toStdString();
    QString all;
    for (const QString& file : files) all += report(file);
    EXPECT_TRUE(all.contains("type:     std::out_of_range\nmessage:  first\n"));
    EXPECT_TRUE(all.contains("type:     std::runtime_error\nmessage:  first\n"));
    EXPECT_TRUE(all.contains("type:     std::runtime_error\nmessage:  second\n"));
}

TEST_F(Notify, NullReceiverAndEventAreReportedAsUnknown) {
    ASSERT_TRUE(reportEscapedException("std::logic_error", "no receiver", "?", -1,
                                       (state.path() + "/KorvelStudio/crashes").toStdString()));
    EXPECT_EQ(criticalLines.value(0),
              "korvel.crash|Unhandled std::logic_error in ? (event type -1): no receiver");
    EXPECT_FALSE(reportEscapedException("std::logic_error", "no receiver", "?", -1,
                                        (state.path() + "/KorvelStudio/crashes").toStdString()));
}

TEST_F(Notify, EventsThatDoNotThrowAreDeliveredAsUsual) {
    Throwing receiver;
    QEvent event(QEvent::DynamicPropertyChange);
    QCoreApplication::sendEvent(&receiver, &event);
    EXPECT_TRUE(criticalLines.isEmpty());
    EXPECT_TRUE(reports().isEmpty());
}
