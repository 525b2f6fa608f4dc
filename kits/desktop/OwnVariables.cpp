// SPDX-License-Identifier: MIT

#include "OwnVariables.h"

#include <cstdlib>

namespace desktop {

namespace {

std::vector<OwnVariable>&
Variables()
{
	static std::vector<OwnVariable> sVariables;
	return sVariables;
}

} // namespace

void
SetOwnVariable(const char* name, const char* value)
{
	OwnVariable variable{name, std::nullopt};
	if (const char* former = std::getenv(name))
		variable.former = former;
	Variables().push_back(variable);
	setenv(name, value, 1);
}

const std::vector<OwnVariable>&
OwnVariables()
{
	return Variables();
}

} // namespace desktop
