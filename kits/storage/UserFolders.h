// SPDX-License-Identifier: MIT

// Where the user's own folders begin, as the environment says; absolute paths, links not resolved.
// Empty when the user has none.

#pragma once

#include <string>

namespace BPrivate {

std::string UserHome();
std::string UserConfig();
std::string UserData();

} // namespace BPrivate
