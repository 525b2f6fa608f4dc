// SPDX-License-Identifier: MIT

// Another value for one variable of the environment during one test; NULL for none.

#pragma once

#include <cstdlib>
#include <optional>
#include <string>

class Variable {
public:
	Variable(const char* name, const char* value) : fName(name)
	{
		if (const char* before = getenv(name); before != nullptr)
			fBefore = before;
		Set(value);
	}
	~Variable() { Set(fBefore ? fBefore->c_str() : nullptr); }
	Variable(const Variable&) = delete;
	Variable& operator=(const Variable&) = delete;

private:
	void Set(const char* value)
	{
		if (value != nullptr)
			setenv(fName, value, 1);
		else
			unsetenv(fName);
	}

	const char* fName;
	std::optional<std::string> fBefore;
};
