#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

/// Measures ours and its peers in one process, interleaved repetition by repetition, and prints one
/// Markdown row for each ratio: the medians, the ratio's median with its spread, and whether the
/// aim lies inside it.
namespace Bench {

/// Keeps the compiler from optimising a value away.
template <class T>
inline void keep(const T& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

/// Runs code once. @return nanoseconds for each of `units`
template <class Code>
double timed(double units, Code code)
{
    const auto start = std::chrono::steady_clock::now();
    code();
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / units;
}

struct Contender
{
    std::string name;
    std::function<double()>
        run; ///< one repetition; returns its cost for each unit (ns unless named otherwise)
};

/// `ours` against the best of `peers` in each repetition; aim 0 only reports.
struct Goal
{
    std::vector<std::string> peers;
    double aim;
};

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

inline void printHeader(const char* title, const char* unit = "ns")
{
    std::printf("\n### %s\n\n| what | ours, %s | peer, %s | ratio (spread) | aim | "
                "|\n|---|---|---|---|---|---|\n",
                title, unit, unit);
}

/// @param contenders ours first @param repetitions at least 7; one more runs first to warm up
inline void compare(const std::string& what, const std::vector<Contender>& contenders,
                    const std::vector<Goal>& goals, int repetitions = 9)
{
    std::vector<std::vector<double>> costs(contenders.size());
    for (int repetition = -1; repetition < repetitions; ++repetition)
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            const double cost = contenders[i].run();
            if (repetition >= 0)
                costs[i].push_back(cost);
        }

    const auto indexOf = [&](const std::string& name) {
        for (std::size_t i = 0; i < contenders.size(); ++i)
            if (contenders[i].name == name)
                return i;
        std::fprintf(stderr, "no contender %s\n", name.c_str());
        std::abort();
    };
    for (const Goal& goal : goals) {
        std::vector<double> ratios, best;
        std::string names;
        for (const std::string& peer : goal.peers)
            names += (names.empty() ? "" : " / ") + peer;
        for (std::size_t r = 0; r < costs[0].size(); ++r) {
            double lowest = costs[indexOf(goal.peers.front())][r];
            for (const std::string& peer : goal.peers)
                lowest = std::min(lowest, costs[indexOf(peer)][r]);
            best.push_back(lowest);
            ratios.push_back(costs[0][r] / lowest);
        }
        const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
        std::printf("| %s vs %s | %.2f | %.2f | %.2f (%.2f-%.2f) | ", what.c_str(), names.c_str(),
                    median(costs[0]), median(best), median(ratios), *low, *high);
        if (goal.aim > 0.0)
            std::printf("<= %.2f | %s |\n", goal.aim, *low <= goal.aim ? "pass" : "MISS");
        else
            std::printf("report | |\n");
        std::fflush(stdout);
    }
}

} // namespace Bench
