// What an entry of the contact sheet is.
#pragma once

#include <algorithm>
#include <chrono>
#include <span>
#include <string>
#include <type_traits>

#include "display.h"
#include "owned_image.h"

namespace sheet {

struct Photograph {
    std::string name; // of the file
    bool isGrey;      // whether the file has one channel
    Image colour;     // 8U, three channels, pixel order
    Image grey;       // 8U, one channel
};

// What an entry gives: a picture, and what its caption says of the call that made it.
struct Picture {
    Image image;         // 8U, pixel order, top row first
    std::string worked;  // on what the call worked: depth, channels, size
    double microseconds; // of one call, the best of some; negative when there was none to time
    std::string shownAs; // how samples became the picture's, empty when they are the same
};

// One row of a table. A new picture is a row and its function; nothing else knows of it.
struct Entry {
    const char *name;      // of the picture's file, without its ending
    const char *operation; // the exported function
    const char *caption;   // one sentence
    bool inOverview;       // the overview is a choice, so that it stays small
    int photograph;        // which one, counted round those that there are, or one of the two values below
    Picture (*make)(const Photograph &photograph);
};
constexpr int everyPhotograph = -1;
constexpr int noPhotograph = -2; // the function is given the first, and leaves it alone

struct Family {
    const char *title;
    std::span<const Entry> entries;
};

// All families in the order of the page.
std::span<const Family> families();

// "8U, 3 channels, 640 x 480" of the whole image, or of a rectangle and channel of it.
std::string describe(const OrvImage &image);

// The picture of a result whose range its depth tells, and of one that a mapping shows better.
Picture pictureOf(const OrvImage &result, const OrvImage &worked, double microseconds);
Picture pictureOf(const OrvImage &result, const Mapping &mapping, const OrvImage &worked, double microseconds);

// The shortest of some runs of a call in microseconds. What prepares a run is not timed.
template <class Call, class Prepare> double bestTime(const Call &call, const Prepare &prepare)
{
    using Clock = std::chrono::steady_clock;
    using Microseconds = std::chrono::duration<double, std::micro>;
    constexpr int mostRuns = 40;
    constexpr double enough = 50000;
    double best = 0, spent = 0;
    for (int run = 0; run < mostRuns && (run < 3 || spent < enough); ++run) {
        prepare();
        const Clock::time_point start = Clock::now();
        if constexpr (std::is_void_v<decltype(call())>)
            call();
        else
            check(call());
        const double time = Microseconds(Clock::now() - start).count();
        best = run == 0 ? time : std::min(best, time);
        spent += time;
    }
    return best;
}

template <class Call> double bestTime(const Call &call)
{
    return bestTime(call, [] {});
}

} // namespace sheet
