// Running another program from a test (an independent reader or checker) and
// reading what it printed, its errors included.
#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace cad::testing {

inline std::string programOutput(const std::string& command) {
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen((command + " 2>&1").c_str(), "r"), pclose);
    std::string out;
    std::array<char, 4096> buffer{};
    while (pipe && fgets(buffer.data(), buffer.size(), pipe.get())) out += buffer.data();
    return out;
}

} // namespace cad::testing
