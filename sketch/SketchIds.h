// Handing out many new IDs at once ("Line12", "Coincident40"), each the prefix and
// the smallest number not yet used with it, without going through the sketch's
// lists again for every one.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace cad {

class NewIds {
public:
    // An ID already taken.
    void use(std::string_view id) { used_.emplace(id); }
    bool used(std::string_view id) const { return used_.count(id) != 0; }
    // The prefix with the smallest number after those handed out for it that no
    // one uses; it is taken at once.
    std::string next(std::string_view prefix) {
        long long& n = tried_[std::string(prefix)];
        std::string id;
        do id = std::string(prefix) + std::to_string(++n);
        while (used_.count(id));
        used_.insert(id);
        return id;
    }

private:
    std::set<std::string, std::less<>> used_;
    std::map<std::string, long long, std::less<>> tried_; // numbers already looked at
};

} // namespace cad
