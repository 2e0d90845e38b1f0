// A sketch session whose footprint library lives in a fresh temporary folder, with
// place_footprint registered, and environment changes undone after each test.
#pragma once

#include "tests/sketch/SketchSession.h"
#include "tests/support/TempFolder.h"

#include "sketch/footprints/FootprintLibrary.h"
#include "sketch/footprints/PlaceFootprintCommand.h"

#include <cstdlib>
#include <optional>
#include <string>

namespace cad::test {

// Sets (or, with no value, unsets) one environment variable until destroyed.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, std::optional<std::string> value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }
    ~ScopedEnvironment() {
        if (before_)
            setenv(name_, before_->c_str(), 1);
        else
            unsetenv(name_);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};

class FootprintSession : public SketchSession {
protected:
    FootprintSession() { registerFootprintCommands(registry); }

    // Saves Sketch1 (all of it) as a footprint and returns the library's answer.
    std::string saveSketch(const std::string& name, bool replace = false,
                           const std::string& description = {}) {
        Result<Footprint> footprint =
            footprintFromSketch(sketch().entities, sketch().constraints, name, description);
        if (!footprint) return footprint.error();
        Result<std::string> saved = library.save(*footprint, replace);
        return saved ? *saved : saved.error();
    }
    static CommandRecord place(const char* footprint, Args arguments = {}) {
        CommandRecord record = on("place_footprint", arguments);
        record.set("footprint", footprint);
        return record;
    }
    CommandRecord dimension(const std::string& type, const std::string& a, const std::string& b,
                            double value) {
        CommandRecord r = constraint(type, a, b);
        r.set("value", value);
        return r;
    }

    cad::testing::TempFolder data;
    ScopedEnvironment dataDir{"KORVEL_DATA_DIR", data.path().string()};
    FootprintLibrary library; // made after KORVEL_DATA_DIR is set: the same folder
};

} // namespace cad::test
