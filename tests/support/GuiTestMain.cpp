// The main of every window test: a QApplication, and a home of its own so that no
// test reads or writes the developer's settings, data folder or agent socket.
#include <QApplication>
#include <QByteArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QTemporaryDir home;
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, (home.path() + "/" + variable).toUtf8());
    qputenv("KORVEL_MCP_PIPE", (home.path() + "/agent.sock").toUtf8());
    qunsetenv("KORVEL_DATA_DIR");
    QApplication application(argc, argv);
    QApplication::setOrganizationName("KorvelStudio");
    QApplication::setApplicationName("KorvelStudio");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
