// SPDX-License-Identifier: MIT

// The copy engine: what arrives, and what is left when something fails.

#include "xfer/FileXFer.h"

#include <storage/Entry.h>
#include <storage/Node.h>
#include <storage/Path.h>
#include <support/TypeConstants.h>

#include "tests/support/Denied.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

// Bytes that tell where they belong.
std::string
Pattern(size_t size)
{
	std::string bytes(size, '\0');
	for (size_t i = 0; i < size; i++)
		bytes[i] = static_cast<char>(i * 2654435761u >> 13);
	return bytes;
}

bool
Copy(const TempTree& tree, const std::string& from, const std::string& to)
{
	entry_ref source = tree.Ref(from);
	BPath target(tree.Path(to).c_str());
	return NFileXFer::CopyFile(&source, &target);
}

// The file's bytes, or that there is none.
std::string
Content(const TempTree& tree, const std::string& path)
{
	struct stat status;
	if (stat(tree.Path(path).c_str(), &status) != 0)
		return "(none)";
	return tree.Read(path);
}

void
SetAttr(const TempTree& tree, const std::string& path, const char* name, uint32 type,
	const std::string& value)
{
	BNode node(tree.Path(path).c_str());
	EXPECT_EQ(node.WriteAttr(name, type, 0, value.data(), value.size()),
		static_cast<ssize_t>(value.size()));
}

// "(none)", or the type's last character and the value.
std::string
Attr(const TempTree& tree, const std::string& path, const char* name)
{
	BNode node(tree.Path(path).c_str());
	attr_info info;
	if (node.GetAttrInfo(name, &info) != B_OK)
		return "(none)";
	std::string value(info.size, '\0');
	EXPECT_EQ(node.ReadAttr(name, info.type, 0, value.data(), value.size()), info.size);
	return static_cast<char>(info.type) + value;
}

} // namespace

TEST(CopyFile, CarriesEveryByteAndAttribute)
{
	for (size_t size : {0, 1, 1023, 1024, 1025, 4096, 262143, 262144, 262145, 3000000}) {
		SCOPED_TRACE(size);
		TempTree tree{{"from", Text(Pattern(size)).Mode(0640).Time(1000)}};
		SetAttr(tree, "from", "BEOS:TYPE", B_MIME_STRING_TYPE, std::string("text/x\0", 7));
		SetAttr(tree, "from", "empty", B_STRING_TYPE, "");
		SetAttr(tree, "from", "raw", B_RAW_TYPE, Pattern(500));
		EXPECT_TRUE(Copy(tree, "from", "to"));
		EXPECT_EQ(tree.Read("to"), Pattern(size));
		EXPECT_EQ(Attr(tree, "to", "BEOS:TYPE"), std::string("Stext/x\0", 8));
		EXPECT_EQ(Attr(tree, "to", "empty"), "R");
		EXPECT_EQ(Attr(tree, "to", "raw"), "T" + Pattern(500));
	}
}

TEST(CopyFile, MakesAnOrdinaryNewFile)
{
	TempTree tree{{"from", Text("one").Mode(0700).Time(1000)}};
	EXPECT_TRUE(Copy(tree, "from", "to"));
	struct stat status;
	ASSERT_EQ(stat(tree.Path("to").c_str(), &status), 0);
	mode_t mask = umask(0);
	umask(mask);
	EXPECT_EQ(status.st_mode & 07777, 0666 & ~mask);
	EXPECT_GT(status.st_mtime, 1000);
}

TEST(CopyFile, OverwritesAFileInPlace)
{
	TempTree tree{{"from", Text("short")}, {"to", Text(Pattern(5000)).Mode(0604)},
		{"link", Link("to")}, {"dangling", Link("made")}};
	struct stat before;
	struct stat after;
	stat(tree.Path("to").c_str(), &before);
	SetAttr(tree, "to", "kept", B_STRING_TYPE, "old");
	EXPECT_TRUE(Copy(tree, "from", "to"));
	stat(tree.Path("to").c_str(), &after);
	EXPECT_EQ(tree.Read("to"), "short");
	EXPECT_EQ(after.st_ino, before.st_ino);
	EXPECT_EQ(after.st_mode, before.st_mode);
	EXPECT_EQ(Attr(tree, "to", "kept"), "Rold");

	tree.Add("from2", Text("through a link"));
	EXPECT_TRUE(Copy(tree, "from2", "link"));
	EXPECT_EQ(tree.Read("to"), "through a link");
	EXPECT_TRUE(Copy(tree, "from2", "dangling"));
	EXPECT_EQ(tree.Read("made"), "through a link");
	// What a link points to is copied, not the link.
	EXPECT_TRUE(Copy(tree, "link", "to2"));
	EXPECT_EQ(tree.Read("to2"), "through a link");
}

TEST(CopyFile, ASourceThatCannotBeReadDestroysNothing)
{
	TempTree tree{{"folder/below", Text()}, {"dangling", Link("nowhere")},
		{"secret", Text("s").Mode(0000)}, {"folder link", Link("folder")}};
	ASSERT_EQ(mkfifo(tree.Path("fifo").c_str(), 0666), 0);
	int listener = socket(AF_UNIX, SOCK_STREAM, 0);
	sockaddr_un address = {AF_UNIX, {}};
	strcpy(address.sun_path, tree.Path("socket").c_str());
	ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
	tree.SetMode(".", 0777);
	AsNobody nobody;
	for (const char* source : {"folder", "folder link", "dangling", "secret", "fifo", "socket"}) {
		SCOPED_TRACE(source);
		EXPECT_FALSE(Copy(tree, source, "new"));
		EXPECT_EQ(Content(tree, "new"), "");
		unlink(tree.Path("new").c_str());
		tree.Add("old", Text("precious").Mode(0666));
		EXPECT_FALSE(Copy(tree, source, "old"));
		EXPECT_EQ(Content(tree, "old"), "precious");
		tree.Remove("old");
	}
	close(listener);
}

TEST(CopyFile, AFileOntoItselfStaysAsItIs)
{
	TempTree tree{{"file", Text("precious")}, {"link", Link("file")}, {"way", Link(".")}};
	ASSERT_EQ(link(tree.Path("file").c_str(), tree.Path("hard").c_str()), 0);
	for (const char* source : {"file", "link", "hard"}) {
		for (const char* target : {"file", "link", "hard", "way/hard"}) {
			EXPECT_FALSE(Copy(tree, source, target)) << source << " to " << target;
			EXPECT_EQ(tree.Read("file"), "precious");
		}
	}
}

TEST(CopyFile, ATargetThatCannotBeMadeIsNotMade)
{
	TempTree tree{{"from", Text("one")}, {"closed/old", Text("precious").Mode(0444)},
		{"folder", Dir()}, {"file", Text("precious")}, {"loop", Link("loop")}};
	ASSERT_EQ(mkfifo(tree.Path("fifo").c_str(), 0666), 0);
	tree.SetMode(".", 0755);
	tree.SetMode("closed", 0555);
	AsNobody nobody;
	for (const char* target :
		{"closed/new", "closed/old", "folder", "missing/new", "file/new", "fifo", "loop"})
		EXPECT_FALSE(Copy(tree, "from", target)) << target;
	EXPECT_FALSE(Copy(tree, "from", std::string(300, 'n')));
	EXPECT_EQ(tree.List("closed"), Names({"old"}));
	EXPECT_EQ(tree.Read("closed/old"), "precious");
	EXPECT_EQ(tree.Read("file"), "precious");

	entry_ref missing = tree.Ref("from");
	missing.set_name("missing");
	BPath target(tree.Path("new").c_str());
	EXPECT_FALSE(NFileXFer::CopyFile(&missing, &target));
	EXPECT_EQ(Content(tree, "new"), "(none)");
}

// A disk that fails, and one that the kernel has made read-only after an error.
TEST(CopyFile, AnErrorMidwayLeavesWhatCameBefore)
{
	const std::string bytes = Pattern(1 << 20);
	for (const auto& [call, error] :
		{std::pair(SYS_pread64, EIO), std::pair(SYS_pwrite64, EROFS)}) {
		TempTree tree{{"from", Text(bytes)}, {"to", Text(Pattern(2 << 20))}};
		std::thread([&, call = call, error = error] {
			DenyFrom(500000, int(call), error);
			EXPECT_FALSE(Copy(tree, "from", "to"));
		}).join();
		const std::string part = tree.Read("to");
		EXPECT_GT(part.size(), 300000u);
		EXPECT_TRUE(part.size() < bytes.size() && bytes.starts_with(part));
		EXPECT_TRUE(tree.Read("from") == bytes);
	}
}

TEST(CopyFile, AFullOrFixedVolumeIsAFailure)
{
	if (!InMountNamespace())
		return;
	const std::string bytes = Pattern(1 << 20);
	TempTree tree{{"from", Text(bytes)}, {"volume", Dir()}, {"small", Text(Pattern(1000))}};
	MemoryVolume volume(tree.Path("volume"), "size=64k");
	EXPECT_FALSE(Copy(tree, "from", "volume/part"));
	std::string part = tree.Read("volume/part");
	EXPECT_GT(part.size(), 0u);
	EXPECT_EQ(part, bytes.substr(0, part.size()));
	// Nothing is left even for a file whose bytes all fit into what is gathered.
	EXPECT_FALSE(Copy(tree, "small", "volume/none"));
	EXPECT_EQ(Content(tree, "volume/none"), "");
	EXPECT_EQ(tree.Read("from"), bytes);

	tree.Remove("volume/part");
	tree.Add("volume/old", Text("precious"));
	volume.MakeReadOnly();
	for (const char* target : {"volume/old", "volume/new"})
		EXPECT_FALSE(Copy(tree, "small", target));
	EXPECT_EQ(tree.Read("volume/old"), "precious");
	EXPECT_EQ(Content(tree, "volume/new"), "(none)");
}

TEST(CopyFile, AnAttributeThatCannotBeHeldIsLeftOut)
{
	TempTree tree{{"from", Text("one")}, {"to", Text()}, {"link", Link("to")}};
	SetAttr(tree, "from", "mark", B_STRING_TYPE, "value");
	// Links hold none.
	EXPECT_TRUE(Copy(tree, "from", "link"));
	EXPECT_EQ(tree.Read("to"), "one");
	EXPECT_EQ(Attr(tree, "to", "mark"), "(none)");
}

namespace {

// Copies "a/from" to "b/to" and calls `meddle` once bytes arrive. When the copy was quicker than
// that, `undo` has to make everything as it was before, for another try.
template <typename Meddle, typename Undo>
bool
CopyWhile(TempTree& tree, Meddle meddle, Undo undo)
{
	for (int tries = 0; tries < 100; tries++) {
		std::atomic<bool> isCopied = false, hasEnded = false;
		std::thread copier([&] {
			isCopied = Copy(tree, "a/from", "b/to");
			hasEnded = true;
		});
		EXPECT_TRUE(WaitUntil([&] {
			struct stat status;
			return stat(tree.Path("b/to").c_str(), &status) == 0 && status.st_size > 0;
		}));
		meddle();
		const bool wasMidway = !hasEnded;
		copier.join();
		if (wasMidway)
			return isCopied;
		undo();
	}
	ADD_FAILURE() << "all copies were too quick";
	return false;
}

} // namespace

TEST(CopyFile, WhatHappensToNamesMidwayDoesNotHarmTheData)
{
	const std::string bytes = Pattern(30 << 20);
	TempTree tree{{"a", Dir()}, {"b", Dir()}};
	const auto renew = [&] {
		for (const char* folder : {"a", "b"}) {
			for (const std::string& name : tree.List(folder))
				tree.Remove(std::string(folder) + "/" + name);
		}
		tree.Add("a/from", Text(bytes));
		SetAttr(tree, "a/from", "mark", B_STRING_TYPE, "value");
	};
	const auto renameBack = [&](const char* to) {
		return [&, to] {
			tree.Rename("c", to);
			renew();
		};
	};
	renew();
	EXPECT_TRUE(CopyWhile(
		tree, [&] { tree.Rename("a", "c"); }, renameBack("a")));
	EXPECT_TRUE(tree.Read("b/to") == bytes);
	EXPECT_EQ(Attr(tree, "b/to", "mark"), "Rvalue");

	renameBack("a")();
	EXPECT_TRUE(CopyWhile(
		tree, [&] { tree.Remove("a/from"); }, renew));
	EXPECT_TRUE(tree.Read("b/to") == bytes);

	// Whoever takes the target's name meanwhile gets nothing of it.
	renew();
	const auto replace = [&] {
		tree.Rename("b/to", "a/to");
		tree.Add("b/to", Text("another"));
	};
	EXPECT_FALSE(CopyWhile(tree, replace, renew));
	EXPECT_TRUE(tree.Read("a/to") == bytes);
	EXPECT_EQ(tree.Read("b/to") + Attr(tree, "b/to", "mark"), "another(none)");

	// No attributes without a path to the target.
	renew();
	EXPECT_FALSE(CopyWhile(
		tree, [&] { tree.Rename("b", "c"); }, renameBack("b")));
	EXPECT_TRUE(tree.Read("c/to") == bytes);
	EXPECT_TRUE(tree.Read("a/from") == bytes);
}
