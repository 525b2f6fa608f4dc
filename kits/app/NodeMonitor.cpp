// SPDX-License-Identifier: MIT

// watch_node() and its messages. The monitor itself is in the storage kit, which knows no messages.

#include <storage/NodeMonitor.h>

#include <app/AppDefs.h>
#include <app/Handler.h>
#include <app/Looper.h>
#include <app/MessagePrivate.h>
#include <app/Messenger.h>
#include <storage/FolderMonitor.h>

#include "kits/app/LooperCore.h"

using namespace BPrivate;

namespace {

void
Write(const Notice& notice, BMessage* message)
{
	message->AddInt32("opcode", notice.opcode);
	message->AddInt32("device", static_cast<int32>(notice.device));
	if (notice.opcode == B_ENTRY_MOVED) {
		message->AddInt64("from directory", static_cast<int64>(notice.directory));
		message->AddInt64("to directory", static_cast<int64>(notice.toDirectory));
		message->AddString("from name", notice.fromName.c_str());
	} else
		message->AddInt64("directory", static_cast<int64>(notice.directory));
	message->AddInt64("node", static_cast<int64>(notice.node));
	if (!notice.name.empty())
		message->AddString("name", notice.name.c_str());
}

Notice
Read(const BMessage& message)
{
	Notice notice = {};
	int32 device = 0;
	int64 directory = 0, toDirectory = 0, node = 0;
	const char* name = nullptr;
	const char* fromName = nullptr;
	message.FindInt32("opcode", &notice.opcode);
	message.FindInt32("device", &device);
	if (message.FindInt64("directory", &directory) != B_OK)
		message.FindInt64("from directory", &directory);
	message.FindInt64("to directory", &toDirectory);
	message.FindInt64("node", &node);
	if (message.FindString("name", &name) == B_OK)
		notice.name = name;
	if (message.FindString("from name", &fromName) == B_OK)
		notice.fromName = fromName;
	notice.device = static_cast<uint32>(device);
	notice.directory = static_cast<ino_t>(directory);
	notice.toDirectory = static_cast<ino_t>(toDirectory);
	notice.node = static_cast<ino_t>(node);
	return notice;
}

class HandlerTarget : public NoticeTarget {
public:
	HandlerTarget(std::shared_ptr<LooperCore> core, int64 token) :
		fCore(std::move(core)), fToken(token)
	{}

	bool Equals(const NoticeTarget& other) const override
	{
		const auto& target = static_cast<const HandlerTarget&>(other); // there is no other kind
		return fToken == target.fToken && (fToken != 0 || fCore == target.fCore);
	}

	bool IsCallingThread() const override
	{
		return fCore->thread == find_thread(nullptr) || fCore->Lock().IsLockedByCaller();
	}

	bool Send(const Notice& notice, std::shared_ptr<void> receipt) override
	{
		auto message = std::make_unique<BMessage>(B_NODE_MONITOR);
		Write(notice, message.get());
		MessageAccess::Target(*message) = fToken;
		// The return address leads nowhere, but it goes with the message.
		MessageAccess::ReplyTo(*message) = std::shared_ptr<BMessenger>(
			new BMessenger, [receipt](BMessenger* address) { delete address; });
		return fCore->Post(std::move(message));
	}

	std::vector<Notice> TakeBack(const node_ref& folder) override
	{
		auto isOf = [&](const BMessage& message) {
			if (message.what != B_NODE_MONITOR ||
				MessageAccess::Target(const_cast<BMessage&>(message)) != fToken)
				return false;
			const Notice notice = Read(message);
			return SameDevice(notice.device, folder.device) &&
				(notice.directory == folder.node || notice.toDirectory == folder.node);
		};
		std::vector<Notice> notices;
		while (std::unique_ptr<BMessage> message = fCore->TakeFirst(isOf))
			notices.push_back(Read(*message));
		return notices;
	}

private:
	std::shared_ptr<LooperCore> fCore;
	int64 fToken; // the handler's, which no other ever has; 0: the looper's preferred handler
};

status_t
Watch(const node_ref* node, uint32 flags, std::unique_ptr<NoticeTarget> target)
{
	if (node == nullptr)
		return B_BAD_VALUE;
	FolderMonitor& monitor = FolderMonitor::Instance();
	return flags == B_STOP_WATCHING ? monitor.Stop(*node, *target)
									: monitor.Watch(*node, flags, std::move(target));
}

} // namespace

// The address of a messenger as the monitor keeps it.
struct BPrivate::NodeMonitorAccess {
	static std::unique_ptr<NoticeTarget> TargetOf(const BMessenger& messenger)
	{
		if (!messenger.fCore)
			return nullptr;
		return std::make_unique<HandlerTarget>(messenger.fCore, messenger.fToken);
	}
};

void
BPrivate::EndWatching(int64 handlerToken)
{
	if (FolderMonitor::Instance().IsUsed())
		FolderMonitor::Instance().StopAll(HandlerTarget(nullptr, handlerToken));
}

status_t
watch_node(const node_ref* node, uint32 flags, BMessenger messenger)
{
	std::unique_ptr<NoticeTarget> target = NodeMonitorAccess::TargetOf(messenger);
	return target != nullptr ? Watch(node, flags, std::move(target)) : B_BAD_HANDLER;
}

status_t
watch_node(const node_ref* node, uint32 flags, const BHandler* handler, const BLooper* looper)
{
	status_t status;
	BMessenger messenger(handler, looper, &status);
	return status == B_OK ? watch_node(node, flags, messenger) : status;
}

status_t
stop_watching(BMessenger messenger)
{
	std::unique_ptr<NoticeTarget> target = NodeMonitorAccess::TargetOf(messenger);
	return target != nullptr ? FolderMonitor::Instance().StopAll(*target) : B_BAD_HANDLER;
}

status_t
stop_watching(const BHandler* handler, const BLooper* looper)
{
	status_t status;
	BMessenger messenger(handler, looper, &status);
	return status == B_OK ? stop_watching(messenger) : status;
}
