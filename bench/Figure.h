// SPDX-License-Identifier: MIT

// One line of the benchmarks' table: a figure, its limit and what stands beside it.

#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>

enum class Bound { kAtMost, kAtLeast };

// True when the figure keeps to its limit. `beside` comes from the same run.
inline bool
PrintFigure(const char* what, double figure, const char* unit, Bound bound, double limit,
	const char* beside)
{
	const bool most = bound == Bound::kAtMost;
	std::printf("%-44s %10.2f %-4s at %-5s %7g   %s\n", what, figure, unit, most ? "most" : "least",
		limit, beside);
	std::fflush(stdout);
	return most ? figure <= limit : figure >= limit;
}

inline double
Median(std::vector<double> figures)
{
	std::sort(figures.begin(), figures.end());
	return figures[figures.size() / 2];
}
