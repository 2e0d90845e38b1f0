// The fatal-signal handler, in forked children that really crash: the report names
// the signal and carries a backtrace, and the child still dies of that signal.
#include "app/CrashHandler.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace cad::app;
namespace fs = std::filesystem;

namespace {

struct TempFolder {
    fs::path path;
    TempFolder() {
        std::string pattern = (fs::temp_directory_path() / "korvel-crash-XXXXXX").string();
        path = ::mkdtemp(pattern.data());
    }
    ~TempFolder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

// The fault itself is the point, so the sanitizer build must not stop the child first.
[[gnu::no_sanitize("null")]] void writeThroughNull() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}
void raiseSegv() { std::raise(SIGSEGV); }
void raiseFpe() { std::raise(SIGFPE); }
void raiseBus() { std::raise(SIGBUS); }
void callAbort() { std::abort(); }

// Forks a child in a crash folder of its own, at UTC+05:45 so that the file name shows
// whether the local time was used; returns how the child ended.
int crashInChild(const fs::path& state, void (*crash)()) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        ::setenv("XDG_STATE_HOME", state.c_str(), 1);
        ::setenv("TZ", "<+0545>-05:45", 1);
        ::tzset();
        installCrashHandler();
        crash();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

std::string nameAt(std::time_t utc) {
    const CivilTime t = civilTimeFromSeconds(static_cast<long long>(utc) + 5 * 3600 + 45 * 60);
    char name[64];
    std::snprintf(name, sizeof name, "korvel-%04d%02d%02d-%02d%02d%02d.txt", t.year, t.month, t.day,
                  t.hour, t.minute, t.second);
    return name;
}

} // namespace

TEST(CrashHandler, ReportNamesTheSignalAndTheChildDiesOfIt) {
    const struct {
        const char* what;
        void (*crash)();
        int signal;
        const char* name;
    } cases[] = {
        {"null write", writeThroughNull, SIGSEGV, "SIGSEGV"},
        {"raised SIGSEGV", raiseSegv, SIGSEGV, "SIGSEGV"},
        {"raised SIGFPE", raiseFpe, SIGFPE, "SIGFPE"},
        {"raised SIGBUS", raiseBus, SIGBUS, "SIGBUS"},
        {"abort", callAbort, SIGABRT, "SIGABRT"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        TempFolder state;
        const std::time_t before = std::time(nullptr);
        const int status = crashInChild(state.path, c.crash);
        const std::time_t after = std::time(nullptr);
        ASSERT_TRUE(WIFSIGNALED(status)) << "status " << status;
        EXPECT_EQ(WTERMSIG(status), c.signal);

        std::vector<fs::path> reports;
        for (const auto& entry : fs::directory_iterator(state.path / "KorvelStudio" / "crashes"))
            reports.push_back(entry.path());
        ASSERT_EQ(reports.size(), 1u);
        const std::string name = reports[0].filename().string();
        bool timely = false;
        for (std::time_t t = before; t <= after; ++t) timely = timely || name == nameAt(t);
        EXPECT_TRUE(timely) << name << " not in local time between " << nameAt(before) << " and "
                            << nameAt(after);

        std::ifstream file(reports[0]);
        std::stringstream text;
        text << file.rdbuf();
        const std::string report = text.str();
        EXPECT_NE(report.find(std::string(c.name) + " "), std::string::npos) << report;
        EXPECT_NE(report.find("number " + std::to_string(c.signal) + "."), std::string::npos)
            << report;
        const std::size_t backtrace = report.find("backtrace:\n");
        ASSERT_NE(backtrace, std::string::npos) << report;
        EXPECT_GT(report.size(), backtrace + 20) << "no frames: " << report;
    }
}

TEST(CrashHandler, CivilTimeMatchesTheCLibrary) {
    const long long samples[] = {0LL,          59LL,         86399LL,      86400LL,
                                 951782400LL,  951868800LL,  978307199LL,  1709164800LL,
                                 4107542399LL, 4107542400LL, 1795000000LL, 253402300799LL};
    for (const long long seconds : samples) {
        const std::time_t t = static_cast<std::time_t>(seconds);
        std::tm expected{};
        ASSERT_TRUE(::gmtime_r(&t, &expected));
        const CivilTime got = civilTimeFromSeconds(seconds);
        EXPECT_EQ(got.year, expected.tm_year + 1900) << seconds;
        EXPECT_EQ(got.month, expected.tm_mon + 1) << seconds;
        EXPECT_EQ(got.day, expected.tm_mday) << seconds;
        EXPECT_EQ(got.hour, expected.tm_hour) << seconds;
        EXPECT_EQ(got.minute, expected.tm_min) << seconds;
        EXPECT_EQ(got.second, expected.tm_sec) << seconds;
    }
}

TEST(CrashHandler, ReportPathIsFormattedOnlyWhenItFits) {
    const CivilTime t{2026, 3, 7, 9, 5, 1};
    char path[64];
    ASSERT_TRUE(formatCrashReportPath(path, sizeof path, "/tmp/c", t));
    EXPECT_STREQ(path, "/tmp/c/korvel-20260307-090501.txt");
    char tight[33]; // one short of the 33 characters plus terminator
    EXPECT_FALSE(formatCrashReportPath(tight, sizeof tight, "/tmp/c", t));
    EXPECT_STREQ(tight, "");

    // Fields wider than their padding, and negative ones, keep every digit.
    ASSERT_TRUE(formatCrashReportPath(path, sizeof path, "/c", {-2147483647 - 1, 12, 31, 0, 0, 0}));
    EXPECT_STREQ(path, "/c/korvel--21474836481231-000000.txt");
    ASSERT_TRUE(formatCrashReportPath(path, sizeof path, "/c", {12345, 1, 2, 3, 4, -5}));
    EXPECT_STREQ(path, "/c/korvel-123450102-0304-05.txt");
}
