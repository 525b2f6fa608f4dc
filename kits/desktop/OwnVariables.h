// SPDX-License-Identifier: MIT

// Environment variables that the kits set for their own libraries. Internal to this folder.

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace desktop {

struct OwnVariable {
	std::string name;
	std::optional<std::string> former; // none: it was not set
};

// Before there is a second thread.
void SetOwnVariable(const char* name, const char* value);

// Programs that are launched must get these back as they were: what keeps us from using OpenGL
// would take it away from them as well.
const std::vector<OwnVariable>& OwnVariables();

} // namespace desktop
