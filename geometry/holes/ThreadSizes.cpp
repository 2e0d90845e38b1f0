// The thread size table: the listed metric and inch sizes, each completed with its
// tap drill, clearance holes, counterbore and countersink, and the two lookups.
#include "geometry/holes/ThreadSizes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace cad {

namespace {

// Rounding by multiplying with the whole number of steps per unit keeps 5.25 exact.
double roundToStepsPer(double value, double stepsPerUnit) {
    return std::round(value * stepsPerUnit) / stepsPerUnit;
}

struct MetricDerived {
    double major, close, normal, loose;
};
// Clearance holes of the metric sizes (close, normal, loose).
constexpr MetricDerived kClearance[] = {
    {1, 1.1, 1.2, 1.3},   {1.2, 1.3, 1.4, 1.5}, {1.4, 1.5, 1.6, 1.8}, {1.6, 1.7, 1.8, 2},
    {2, 2.2, 2.4, 2.6},   {2.5, 2.7, 2.9, 3.1}, {3, 3.2, 3.4, 3.6},   {3.5, 3.7, 3.9, 4.2},
    {4, 4.3, 4.5, 4.8},   {5, 5.3, 5.5, 5.8},   {6, 6.4, 6.6, 7},     {7, 7.4, 7.6, 8},
    {8, 8.4, 9, 10},      {10, 10.5, 11, 12},   {12, 13, 13.5, 14.5}, {14, 15, 15.5, 16.5},
    {16, 17, 17.5, 18.5}, {18, 19, 20, 21},     {20, 21, 22, 24},     {22, 23, 24, 26},
    {24, 25, 26, 28},     {27, 28, 30, 32},     {30, 31, 33, 35},     {33, 34, 36, 38},
    {36, 37, 39, 42},     {39, 40, 42, 45},     {42, 43, 45, 48},     {45, 46, 48, 52},
    {48, 50, 52, 56},     {52, 54, 56, 62},     {56, 58, 62, 66},     {60, 62, 66, 70},
    {64, 66, 70, 74},
};

struct Counterbore {
    double major, diameter, depth;
};
constexpr Counterbore kCounterbores[] = {
    {1.6, 3.5, 1.8}, {2, 4.4, 2.3},  {2.5, 5.5, 2.8}, {3, 6.5, 3.4},   {4, 8, 4.4},
    {5, 10, 5.4},    {6, 11, 6.4},   {8, 15, 8.6},    {10, 18, 10.6},  {12, 20, 12.6},
    {14, 24, 14.6},  {16, 26, 16.6}, {18, 30, 18.6},  {20, 33, 20.6},  {22, 36, 22.6},
    {24, 40, 24.6},  {27, 43, 27.6}, {30, 48, 30.6},  {33, 54, 33.6},  {36, 58, 36.6},
    {42, 69, 42.6},  {48, 78, 48.6}, {56, 90, 56.6},  {64, 102, 64.6},
};

struct Coarse {
    const char* name;
    double major, pitch, tapDrill;
};
constexpr Coarse kCoarse[] = {
    {"M1", 1, 0.25, 0.75},     {"M1.2", 1.2, 0.25, 0.95}, {"M1.4", 1.4, 0.3, 1.1},
    {"M1.6", 1.6, 0.35, 1.25}, {"M2", 2, 0.4, 1.6},       {"M2.5", 2.5, 0.45, 2.05},
    {"M3", 3, 0.5, 2.5},       {"M3.5", 3.5, 0.6, 2.9},   {"M4", 4, 0.7, 3.3},
    {"M5", 5, 0.8, 4.2},       {"M6", 6, 1, 5},           {"M7", 7, 1, 6},
    {"M8", 8, 1.25, 6.8},      {"M10", 10, 1.5, 8.5},     {"M12", 12, 1.75, 10.2},
    {"M14", 14, 2, 12},        {"M16", 16, 2, 14},        {"M18", 18, 2.5, 15.5},
    {"M20", 20, 2.5, 17.5},    {"M22", 22, 2.5, 19.5},    {"M24", 24, 3, 21},
    {"M27", 27, 3, 24},        {"M30", 30, 3.5, 26.5},    {"M33", 33, 3.5, 29.5},
    {"M36", 36, 4, 32},        {"M39", 39, 4, 35},        {"M42", 42, 4.5, 37.5},
    {"M45", 45, 4.5, 40.5},    {"M48", 48, 5, 43},        {"M52", 52, 5, 47},
    {"M56", 56, 5.5, 50.5},    {"M60", 60, 5.5, 54.5},    {"M64", 64, 6, 58},
};

struct Fine {
    double major, pitch;
};
constexpr Fine kFine[] = {
    {2.5, 0.35}, {3, 0.35},  {4, 0.5},  {5, 0.5},   {6, 0.75}, {8, 1},    {8, 0.75},  {10, 1.25},
    {10, 1},     {10, 0.75}, {12, 1.5}, {12, 1.25}, {12, 1},   {14, 1.5}, {14, 1.25}, {16, 1.5},
    {16, 1},     {18, 1.5},  {18, 2},   {20, 1.5},  {20, 2},   {20, 1},   {22, 1.5},  {22, 2},
    {24, 2},     {24, 1.5},  {27, 2},   {30, 2},    {30, 1.5}, {33, 2},   {36, 3},    {36, 2},
    {42, 3},     {48, 3},    {56, 4},   {64, 4},
};

struct Inch {
    const char* size;
    double threadsPerInch;
};
constexpr Inch kUnc[] = {
    {"#1", 64},   {"#2", 56},   {"#3", 48},   {"#4", 40},   {"#5", 40},  {"#6", 32},   {"#8", 32},
    {"#10", 24},  {"#12", 24},  {"1/4", 20},  {"5/16", 18}, {"3/8", 16}, {"7/16", 14}, {"1/2", 13},
    {"9/16", 12}, {"5/8", 11},  {"3/4", 10},  {"7/8", 9},   {"1", 8},    {"1-1/8", 7}, {"1-1/4", 7},
    {"1-3/8", 6}, {"1-1/2", 6}, {"1-3/4", 5}, {"2", 4.5},
};
constexpr Inch kUnf[] = {
    {"#0", 80},  {"#1", 72},   {"#2", 64},    {"#3", 56},    {"#4", 48},    {"#5", 44},
    {"#6", 40},  {"#8", 36},   {"#10", 32},   {"#12", 28},   {"1/4", 28},   {"5/16", 24},
    {"3/8", 24}, {"7/16", 20}, {"1/2", 20},   {"9/16", 18},  {"5/8", 18},   {"3/4", 16},
    {"7/8", 14}, {"1", 12},    {"1-1/8", 12}, {"1-1/4", 12}, {"1-3/8", 12}, {"1-1/2", 12},
};

void completeMetric(ThreadSize& t) {
    t.standard = "ISO metric";
    auto clearance = std::find_if(std::begin(kClearance), std::end(kClearance),
                                  [&](const MetricDerived& c) { return c.major == t.major; });
    if (clearance != std::end(kClearance)) {
        t.close = clearance->close;
        t.normal = clearance->normal;
        t.loose = clearance->loose;
    } else {
        t.close = t.major * 1.06;
        t.normal = t.major * 1.1;
        t.loose = t.major * 1.2;
    }
    auto counterbore = std::find_if(std::begin(kCounterbores), std::end(kCounterbores),
                                    [&](const Counterbore& c) { return c.major == t.major; });
    if (counterbore != std::end(kCounterbores)) {
        t.counterboreDiameter = counterbore->diameter;
        t.counterboreDepth = counterbore->depth;
    } else {
        t.counterboreDiameter = roundToStepsPer(2 * t.major + 0.5, 2);
        t.counterboreDepth = t.major + 0.6;
    }
    const double factor = t.major <= 12 ? 2.24 : t.major <= 16 ? 2.1 : 2.016;
    t.countersinkDiameter = roundToStepsPer(t.major * factor, 100);
    t.countersinkAngle = 90;
}

// The size in inches: "#10", "1/4", "1-1/8" or a plain number.
double inchSize(std::string_view size) {
    struct Number {
        const char* name;
        double inches;
    };
    static constexpr Number numbers[] = {
        {"#0", 0.06},  {"#1", 0.073}, {"#2", 0.086}, {"#3", 0.099}, {"#4", 0.112},
        {"#5", 0.125}, {"#6", 0.138}, {"#8", 0.164}, {"#10", 0.19}, {"#12", 0.216},
    };
    for (const Number& n : numbers)
        if (size == n.name) return n.inches;
    auto read = [](std::string_view text) {
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    };
    auto fraction = [&](std::string_view text) {
        std::size_t slash = text.find('/');
        if (slash == std::string_view::npos) return read(text);
        const double below = read(text.substr(slash + 1));
        return below != 0 ? read(text.substr(0, slash)) / below : 0.0;
    };
    std::size_t dash = size.find('-');
    if (dash != std::string_view::npos)
        return read(size.substr(0, dash)) + fraction(size.substr(dash + 1));
    return fraction(size);
}

ThreadSize inchThread(const Inch& entry, const char* series) {
    const double d = inchSize(entry.size);
    const double n = entry.threadsPerInch;
    ThreadSize t;
    t.name = std::string(entry.size) + "-" + formatGeneral(n) + " " + series;
    t.standard = series;
    t.major = 25.4 * d;
    t.pitch = 25.4 / n;
    // The basic minor diameter of the external thread: the size less 0.9743 / n inches.
    t.tapDrill = 25.4 * (d - 0.9743 / n);
    t.close = 25.4 * d * 1.03;
    t.normal = 25.4 * d * 1.06;
    t.loose = 25.4 * d * 1.1;
    t.counterboreDiameter = 25.4 * (1.5 * d + 1.0 / 16);
    t.counterboreDepth = 25.4 * (d + 1.0 / 64);
    t.countersinkDiameter = 25.4 * 2.03 * d;
    t.countersinkAngle = 82;
    return t;
}

std::vector<ThreadSize> buildTable() {
    std::vector<ThreadSize> table;
    for (const Coarse& c : kCoarse) {
        ThreadSize t;
        t.name = c.name;
        t.major = c.major;
        t.pitch = c.pitch;
        t.tapDrill = c.tapDrill;
        completeMetric(t);
        table.push_back(std::move(t));
    }
    for (const Fine& f : kFine) {
        ThreadSize t;
        t.name = "M" + formatGeneral(f.major) + "x" + formatGeneral(f.pitch);
        t.major = f.major;
        t.pitch = f.pitch;
        t.tapDrill = roundToStepsPer(f.major - f.pitch, 20);
        completeMetric(t);
        table.push_back(std::move(t));
    }
    for (const Inch& i : kUnc) table.push_back(inchThread(i, "UNC"));
    for (const Inch& i : kUnf) table.push_back(inchThread(i, "UNF"));
    return table;
}

std::string normalised(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f') continue;
        out += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return out;
}

} // namespace

std::string formatGeneral(double value, int precision) {
    char buffer[64];
    auto [end, ec] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision);
    return ec == std::errc() ? std::string(buffer, end) : std::string();
}

const std::vector<ThreadSize>& threadSizes() {
    static const std::vector<ThreadSize> table = buildTable();
    return table;
}

const ThreadSize* findThreadSize(std::string_view text) {
    const std::string wanted = normalised(text);
    if (wanted.empty()) return nullptr;
    for (const ThreadSize& t : threadSizes()) {
        if (normalised(t.name) == wanted) return &t;
        const std::size_t series = t.name.find("UN");
        if (series != std::string::npos && normalised(t.name.substr(0, series)) == wanted)
            return &t;
        if (t.isMetric() && !t.isFine() &&
            normalised(t.name) + "X" + formatGeneral(t.pitch) == wanted)
            return &t;
    }
    return nullptr;
}

Result<const ThreadSize*> matchThreadSize(double diameter, bool internal) {
    const ThreadSize* best = nullptr;
    double bestScore = std::numeric_limits<double>::infinity();
    for (const ThreadSize& t : threadSizes()) {
        const double reference = internal ? t.tapDrill : t.major;
        double score = std::abs(diameter - reference) / reference;
        if (t.isFine() || t.standard == "UNF") score += 0.005;
        if (score < 0.03 && score < bestScore) {
            best = &t;
            bestScore = score;
        }
    }
    if (!best)
        return fail("No standard thread fits a " + formatGeneral(diameter, 3) + " mm " +
                    (internal ? "hole" : "cylinder") + "; give a size.");
    return best;
}

} // namespace cad
