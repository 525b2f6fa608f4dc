// SPDX-License-Identifier: MIT

#include "app/Korva.h"

int
main(int argc, char** argv)
{
	KorvaApp app(argc >= 2 ? argv[1] : nullptr);
	app.Run();
	return 0;
}
