// SPDX-License-Identifier: MIT

// Asks the session bus for a sign of life.

#include "SessionBus.h"

#include "OwnVariables.h"

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace desktop {

namespace {

constexpr const char* kVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr const char* kNoBus = "unix:path=/dev/null/no-session-bus"; // fails at once
constexpr std::chrono::milliseconds kPatience{150};

using Clock = std::chrono::steady_clock;

std::string
Unescaped(const std::string& value)
{
	std::string result;
	for (size_t i = 0; i < value.size(); i++) {
		if (value[i] == '%' && i + 2 < value.size()) {
			result += char(std::strtol(value.substr(i + 1, 2).c_str(), nullptr, 16));
			i += 2;
		} else {
			result += value[i];
		}
	}
	return result;
}

// The value of a "key=value" in a comma-separated list.
std::optional<std::string>
Option(const std::string& list, const std::string& key)
{
	std::istringstream parts(list);
	for (std::string part; std::getline(parts, part, ',');) {
		if (part.starts_with(key + "="))
			return Unescaped(part.substr(key.size() + 1));
	}
	return std::nullopt;
}

// The bus's socket; its name begins with a zero byte in the abstract name space. None when the
// bus is reached in another way.
std::optional<std::string>
SocketName(const std::string& addresses)
{
	const std::string kUnix = "unix:";
	if (!addresses.starts_with(kUnix))
		return std::nullopt;
	const std::string options = addresses.substr(kUnix.size(), addresses.find(';') - kUnix.size());
	if (auto path = Option(options, "path"))
		return path;
	if (auto name = Option(options, "abstract"))
		return std::string(1, '\0') + *name;
	return std::nullopt;
}

bool
WaitFor(int socket, short events, Clock::time_point deadline)
{
	const auto left =
		std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
	pollfd wait{socket, events, 0};
	return left.count() > 0 && poll(&wait, 1, int(left.count())) > 0;
}

bool
Greets(int socket, Clock::time_point deadline)
{
	// The user's number in decimal digits, and those as hexadecimal bytes.
	std::string greeting("\0AUTH EXTERNAL ", 15);
	for (const char digit : std::to_string(getuid())) {
		char hex[3];
		std::snprintf(hex, sizeof hex, "%02x", static_cast<unsigned char>(digit));
		greeting += hex;
	}
	greeting += "\r\n";
	if (!WaitFor(socket, POLLOUT, deadline) ||
		send(socket, greeting.data(), greeting.size(), MSG_NOSIGNAL) != ssize_t(greeting.size()))
		return false;
	char answer[2];
	return WaitFor(socket, POLLIN, deadline) &&
		recv(socket, answer, sizeof answer, 0) == ssize_t(sizeof answer) &&
		std::memcmp(answer, "OK", sizeof answer) == 0;
}

bool
Answers(const std::string& name)
{
	sockaddr_un address{};
	address.sun_family = AF_UNIX;
	if (name.size() >= sizeof address.sun_path)
		return false;
	std::memcpy(address.sun_path, name.data(), name.size());
	const size_t terminator = name.front() != '\0' ? 1 : 0;
	const auto length = socklen_t(offsetof(sockaddr_un, sun_path) + name.size() + terminator);
	const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
	if (socket < 0)
		return false;
	// A full backlog fails with EAGAIN: as silent as a bus that accepts and says nothing.
	const bool alive = connect(socket, reinterpret_cast<sockaddr*>(&address), length) == 0 &&
		Greets(socket, Clock::now() + kPatience);
	close(socket);
	return alive;
}

} // namespace

std::string
SessionBusAddress()
{
	if (const char* address = std::getenv(kVariable))
		return address;
	const char* runtime = std::getenv("XDG_RUNTIME_DIR");
	return runtime != nullptr ? std::string("unix:path=") + runtime + "/bus" : std::string();
}

void
AvoidHangingBus()
{
	const std::string address = SessionBusAddress();
	const auto name = SocketName(address);
	// With no address at all a new bus would be launched, which no one asked for.
	const bool usable = name ? !name->empty() && Answers(*name) : !address.empty();
	if (!usable)
		SetOwnVariable(kVariable, kNoBus);
}

} // namespace desktop
