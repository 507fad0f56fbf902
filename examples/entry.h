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

// The result of an entry: a picture, and the facts of the call that made it.
struct Picture {
    Image image;         // 8U, pixel order, top row first
    std::string worked;  // what the call processed: depth, channels, size
    double microseconds; // of one call, the shortest of several; negative if there was no call
    std::string shownAs; // how samples were mapped to 8 bits; empty if they were not
};

// One row of a table. A new picture needs a row and its function, nothing else.
struct Entry {
    const char *name;      // of the picture's file, without its ending
    const char *operation; // the exported function
    const char *caption;   // one sentence
    bool inOverview;       // the overview shows a selection, to stay small
    int photograph;        // its number, modulo their count, or one of the two values below
    Picture (*make)(const Photograph &photograph);
};
constexpr int everyPhotograph = -1;
constexpr int noPhotograph = -2; // the function gets the first and ignores it

struct Family {
    const char *title;
    std::span<const Entry> entries;
};

// All families in the order of the page.
std::span<const Family> families();

// For example "8U, 3 channels, 640 x 480": of the whole image, or of its rectangle and channel.
std::string describe(const OrvImage &image);

// The picture of a result, mapped by the range of its depth or by a given mapping.
Picture pictureOf(const OrvImage &result, const OrvImage &worked, double microseconds);
Picture pictureOf(const OrvImage &result, const Mapping &mapping, const OrvImage &worked, double microseconds);

// The shortest of several runs of a call, in microseconds. The preparation of a run is not timed.
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
