// The fatal-signal handler on POSIX systems. Everything that runs after the signal
// uses only async-signal-safe calls and no heap: the folder path, the time-zone
// offset and the unwinder are all prepared when the handler is installed.
#include "app/CrashHandler.h"

#include "ui/DataPaths.h"

#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>

namespace cad::app {

namespace {

constexpr int fatalSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// Written once by installCrashHandler, before any other thread exists, then only read.
char crashFolder[PATH_MAX];
// localtime_r is not async-signal-safe, so the local offset from UTC is taken when
// the handler is installed and added to time() in the handler. A daylight-saving
// change later in the run puts the file name one hour off; the contents are unaffected.
long utcOffsetSeconds = 0;
// Its own stack, so that a stack overflow can still be reported.
alignas(16) char alternateStack[64 * 1024];
void* frames[128];

const char* signalName(int signal) {
    switch (signal) {
    case SIGSEGV:
        return "SIGSEGV (segmentation fault)";
    case SIGBUS:
        return "SIGBUS (bus error)";
    case SIGFPE:
        return "SIGFPE (arithmetic error)";
    case SIGILL:
        return "SIGILL (illegal instruction)";
    case SIGABRT:
        return "SIGABRT (abort)";
    default:
        return "unknown signal";
    }
}

// Appends text to a fixed buffer; false when it does not fit.
struct FixedText {
    char* out;
    std::size_t size;
    std::size_t length = 0;

    bool put(char c) {
        if (length + 1 >= size) return false;
        out[length++] = c;
        out[length] = '\0';
        return true;
    }
    bool add(const char* text) {
        for (; *text; ++text)
            if (!put(*text)) return false;
        return true;
    }
    // Decimal, zero-padded on the left to at least width digits. The padding goes
    // straight into the output, so only the output's size bounds it.
    bool number(long long value, int width) {
        char digits[std::numeric_limits<unsigned long long>::digits10 + 1];
        int count = 0;
        const bool negative = value < 0;
        unsigned long long magnitude = negative ? 0ULL - static_cast<unsigned long long>(value)
                                                : static_cast<unsigned long long>(value);
        do {
            digits[count++] = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (negative && !put('-')) return false;
        for (int padding = count; padding < width; ++padding)
            if (!put('0')) return false;
        while (count > 0)
            if (!put(digits[--count])) return false;
        return true;
    }
};

void writeAll(int fd, const char* text, std::size_t length) {
    while (length > 0) {
        const ssize_t written = ::write(fd, text, length);
        if (written <= 0) return;
        text += written;
        length -= static_cast<std::size_t>(written);
    }
}

void writeReport(int signal) {
    if (crashFolder[0] == '\0') return;
    char path[PATH_MAX + 32];
    const CivilTime now =
        civilTimeFromSeconds(static_cast<long long>(::time(nullptr)) + utcOffsetSeconds);
    if (!formatCrashReportPath(path, sizeof path, crashFolder, now)) return;
    const int fd = ::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return;

    char header[256];
    FixedText text{header, sizeof header};
    text.add("Korvel Studio stopped on signal ");
    text.add(signalName(signal));
    text.add(", number ");
    text.number(signal, 0);
    text.add(".\ntime: ");
    text.number(now.year, 4);
    text.add("-");
    text.number(now.month, 2);
    text.add("-");
    text.number(now.day, 2);
    text.add(" ");
    text.number(now.hour, 2);
    text.add(":");
    text.number(now.minute, 2);
    text.add(":");
    text.number(now.second, 2);
    text.add("\nbacktrace:\n");
    writeAll(fd, header, text.length);

    const int count = ::backtrace(frames, static_cast<int>(sizeof frames / sizeof frames[0]));
    ::backtrace_symbols_fd(frames, count, fd);
    ::close(fd);
}

void onFatalSignal(int signal) {
    writeReport(signal);
    // Die of the same signal, so that the exit status and any core dump are the system's.
    struct sigaction fallback {};
    fallback.sa_handler = SIG_DFL;
    sigemptyset(&fallback.sa_mask);
    ::sigaction(signal, &fallback, nullptr);
    ::raise(signal);
}

} // namespace

CivilTime civilTimeFromSeconds(long long seconds) {
    long long days = seconds / 86400;
    long long ofDay = seconds % 86400;
    if (ofDay < 0) ofDay += 86400, --days;
    // Days since 1970-01-01 to a proleptic Gregorian date, in 400-year eras.
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const long long dayOfEra = days - era * 146097;
    const long long yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long monthFromMarch = (5 * dayOfYear + 2) / 153;
    CivilTime time;
    time.day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    time.month = static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
    time.year = static_cast<int>(yearOfEra + era * 400 + (time.month <= 2 ? 1 : 0));
    time.hour = static_cast<int>(ofDay / 3600);
    time.minute = static_cast<int>(ofDay / 60 % 60);
    time.second = static_cast<int>(ofDay % 60);
    return time;
}

bool formatCrashReportPath(char* out, std::size_t size, const char* folder, const CivilTime& time) {
    if (size == 0) return false;
    FixedText text{out, size};
    out[0] = '\0';
    const bool fits = text.add(folder) && text.add("/korvel-") && text.number(time.year, 4) &&
                      text.number(time.month, 2) && text.number(time.day, 2) && text.add("-") &&
                      text.number(time.hour, 2) && text.number(time.minute, 2) &&
                      text.number(time.second, 2) && text.add(".txt");
    if (!fits) out[0] = '\0';
    return fits;
}

void installCrashHandler() {
    const std::filesystem::path folder = cad::ui::crashDirectory();
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::string text = folder.string();
    if (text.size() < sizeof crashFolder)
        std::memcpy(crashFolder, text.c_str(), text.size() + 1);
    else
        crashFolder[0] = '\0';

    std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local)) utcOffsetSeconds = local.tm_gmtoff;

    // The first backtrace() loads the unwinder, which allocates; do it now, not in the handler.
    ::backtrace(frames, 1);

    stack_t stack{};
    stack.ss_sp = alternateStack;
    stack.ss_size = sizeof alternateStack;
    ::sigaltstack(&stack, nullptr);

    struct sigaction action {};
    action.sa_handler = onFatalSignal;
    sigemptyset(&action.sa_mask);
    // SA_NODEFER: the re-raise in the handler is delivered at once, not after it returns.
    action.sa_flags = SA_ONSTACK | SA_NODEFER;
    for (const int signal : fatalSignals) ::sigaction(signal, &action, nullptr);
}

} // namespace cad::app
