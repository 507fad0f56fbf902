// Records what the library reports while it stands: mode Parent, a clean status, and a handler of its own.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "orv.h"

namespace front {

struct Report {
    OrvStatus status;
    std::string function;
    std::string context;
    std::string unit;

    bool operator==(const Report &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Report &report);

class Reports {
public:
    Reports();
    ~Reports();
    Reports(const Reports &) = delete;
    Reports &operator=(const Reports &) = delete;

    const std::vector<Report> &all() const { return all_; }
    void clear(); // the stored status too

    // What the handler answers instead of the status that it was told.
    void answer(OrvStatus status);

private:
    static OrvStatus record(OrvStatus status, const char *function, const char *context, const char *unit,
                            std::int32_t line);

    static Reports *current;

    std::vector<Report> all_;
    bool answers_ = false;
    OrvStatus answer_ = 0;
    std::int32_t previousMode_;
    OrvErrorCallback previousHandler_;
};

} // namespace front
