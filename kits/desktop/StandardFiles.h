// SPDX-License-Identifier: MIT

// Standard input, output and error output, as the program may find them. Internal to this folder.

#pragma once

namespace desktop {

// Sees to it that printing does no harm: a standard file that is closed becomes /dev/null, and one
// that goes to a terminal or a pipe never makes the printing thread wait; what nobody takes is
// lost. Before anything else is opened.
void PrepareStandardFiles();

} // namespace desktop
