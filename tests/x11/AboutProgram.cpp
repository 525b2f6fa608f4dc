// SPDX-License-Identifier: MIT

// Korva that opens its About alert by itself: it has no menu for it, but the desktop may ask.

#include "app/Korva.h"

#include <app/AppDefs.h>

int
main(int argc, char** argv)
{
	KorvaApp app(argc >= 2 ? argv[1] : nullptr);
	app.PostMessage(B_ABOUT_REQUESTED);
	app.Run();
	return 0;
}
