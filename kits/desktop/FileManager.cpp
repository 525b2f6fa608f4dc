// SPDX-License-Identifier: MIT

#include <desktop/FileManager.h>

#include "GObjectPtr.h"
#include "SessionBus.h"

#include <gio/gio.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace desktop {

namespace {

constexpr const char* kName = "org.freedesktop.FileManager1";
constexpr const char* kPath = "/org/freedesktop/FileManager1";
constexpr std::chrono::milliseconds kPatience{150};
constexpr int kCallTimeout = 2000; // milliseconds

// The one thread that speaks to the bus. It is never ended, since it may hang there for ever.
class BusThread {
public:
	using Job = std::function<void(GDBusConnection*)>; // null: the bus is not to be had

	static BusThread& Get()
	{
		static BusThread* const sThread = new BusThread;
		return *sThread;
	}

	void Post(Job job)
	{
		if (!Start()) {
			job(nullptr);
			return;
		}
		std::lock_guard lock(fLock);
		fJobs.push_back(std::move(job));
		fChanged.notify_one();
	}

private:
	BusThread() = default;

	// False when the system has no thread left; the next job tries again.
	bool Start()
	{
		std::lock_guard lock(fLock);
		if (fRuns)
			return true;
		try {
			std::thread([this] { Run(); }).detach();
		} catch (const std::system_error&) {
			return false;
		}
		return fRuns = true;
	}

	void Run()
	{
		for (;;) {
			std::unique_lock lock(fLock);
			fChanged.wait(lock, [this] { return !fJobs.empty(); });
			const Job job = std::move(fJobs.front());
			fJobs.pop_front();
			lock.unlock();
			Connect();
			job(fConnection.get());
		}
	}

	// Not the process's shared connection: the end of the bus would be the end of the process.
	void Connect()
	{
		if (fConnection && !g_dbus_connection_is_closed(fConnection.get()))
			return;
		const std::string address = SessionBusAddress();
		const auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
			G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
		fConnection.reset(address.empty() ? nullptr
										  : g_dbus_connection_new_for_address_sync(
												address.c_str(), flags, nullptr, nullptr, nullptr));
	}

	std::mutex fLock;
	std::condition_variable fChanged;
	std::deque<Job> fJobs;
	bool fRuns = false;
	GObjectPtr<GDBusConnection> fConnection; // of the thread
};

// Takes the parameters over. Null when the bus refuses or does not answer.
GVariantPtr
AskBus(GDBusConnection* bus, const char* method, GVariant* parameters)
{
	return GVariantPtr(g_dbus_connection_call_sync(bus, "org.freedesktop.DBus",
		"/org/freedesktop/DBus", "org.freedesktop.DBus", method, parameters, nullptr,
		G_DBUS_CALL_FLAGS_NONE, kCallTimeout, nullptr, nullptr));
}

bool
IsOwned(GDBusConnection* bus)
{
	const GVariantPtr answer = AskBus(bus, "NameHasOwner", g_variant_new("(s)", kName));
	gboolean owned = FALSE;
	if (answer && g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(b)")))
		g_variant_get(answer.get(), "(b)", &owned);
	return owned;
}

bool
IsActivatable(GDBusConnection* bus)
{
	const GVariantPtr answer = AskBus(bus, "ListActivatableNames", nullptr);
	if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(as)")))
		return false;
	const GVariantPtr list(g_variant_get_child_value(answer.get(), 0));
	const std::unique_ptr<const char*, GRelease<g_free>> names(
		g_variant_get_strv(list.get(), nullptr));
	return g_strv_contains(names.get(), kName);
}

} // namespace

bool
HasFileManager()
{
	static std::atomic<bool> sSilent = false;
	if (sSilent)
		return false;
	auto answer = std::make_shared<std::promise<bool>>();
	std::future<bool> result = answer->get_future();
	BusThread::Get().Post([answer](GDBusConnection* bus) {
		answer->set_value(bus != nullptr && (IsOwned(bus) || IsActivatable(bus)));
		sSilent = false;
	});
	if (result.wait_for(kPatience) == std::future_status::ready)
		return result.get();
	sSilent = true;
	// The answer may have come in between, and would have been the last to clear the mark.
	if (result.wait_for(std::chrono::seconds(0)) == std::future_status::ready)
		sSilent = false;
	return false;
}

void
ShowFolders(const std::vector<std::string>& uris)
{
	BusThread::Get().Post([uris](GDBusConnection* bus) {
		if (bus == nullptr)
			return;
		std::vector<const char*> texts;
		for (const std::string& uri : uris)
			texts.push_back(uri.c_str());
		// The second parameter is a token of the desktop's start-up notification: there is none.
		GVariant* parameters =
			g_variant_new("(@ass)", g_variant_new_strv(texts.data(), gssize(texts.size())), "");
		// Without anyone who waits for an answer no reply is asked for.
		g_dbus_connection_call(bus, kName, kPath, kName, "ShowFolders", parameters, nullptr,
			G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
	});
}

} // namespace desktop
