// SPDX-License-Identifier: MIT

#include <storage/Entry.h>
#include <storage/Path.h>

#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

// Where relative paths begin, for one test.
class WorkingFolder {
public:
	explicit WorkingFolder(const std::string& path) : fBefore(getcwd(nullptr, 0))
	{
		EXPECT_EQ(chdir(path.c_str()), 0);
	}
	~WorkingFolder()
	{
		EXPECT_EQ(chdir(fBefore), 0);
		free(fBefore);
	}

private:
	char* fBefore;
};

std::string
TextOf(const BPath& path)
{
	return path.InitCheck() == B_OK ? path.Path() : std::to_string(path.InitCheck());
}

std::string
Failed(status_t status)
{
	return std::to_string(status);
}

} // namespace

TEST(Path, IsNormalisedWhenItIsNotPlain)
{
	TempTree tree{{"a/b/file", Text()}, {"link", Link("a/b")}, {"loop", Link("loop")}};
	WorkingFolder here(tree.Path("a"));
	std::string root = tree.Path();
	struct {
		std::string text;
		std::string result;
	} cases[] = {
		{root + "/a/b/file", root + "/a/b/file"},
		{root + "/link/file", root + "/link/file"}, // plain: taken as it is
		{root + "//link/file", root + "/a/b/file"},
		{root + "/link/", root + "/link"}, // the last name is not resolved,
		{root + "/link/.", root + "/a/b"}, // unless something comes behind it
		{root + "/link/..", root + "/a"},
		{root + "/a/./missing", root + "/a/missing"},
		{root + "/a/...", root + "/a/..."},
		{root + "/none/missing", root + "/none/missing"},
		{root + "/none/../a", Failed(B_ENTRY_NOT_FOUND)},
		{root + "/a/b/file/", root + "/a/b/file"},
		{root + "/a/b/file/.", Failed(B_NOT_A_DIRECTORY)},
		{root + "/loop/./x", Failed(B_LINK_LIMIT)},
		{"b/file", root + "/a/b/file"},
		{"b", root + "/a/b"},
		{".", root + "/a"},
		{"..", root},
		{"../link/file", root + "/a/b/file"},
		{"missing", root + "/a/missing"},
		{"missing/file", Failed(B_ENTRY_NOT_FOUND)},
		{"", Failed(B_ENTRY_NOT_FOUND)},
		{"/", "/"},
		{"//", "/"},
		{"/.", "/"},
		{"/../..", "/"},
		{"/./usr", "/usr"},
	};
	for (const auto& test : cases)
		EXPECT_EQ(TextOf(BPath(test.text.c_str())), test.result) << test.text;
	EXPECT_EQ(TextOf(BPath((root + "/link/file").c_str(), nullptr, true)), root + "/a/b/file");
}

TEST(Path, JoinsALeaf)
{
	TempTree tree{{"a/file", Text()}, {"link", Link("a")}};
	BDirectory folder = tree.Folder("a");
	EXPECT_EQ(TextOf(BPath("/usr", "bin/env")), "/usr/bin/env");
	EXPECT_EQ(TextOf(BPath("/", "usr")), "/usr");
	EXPECT_EQ(TextOf(BPath("/usr", "")), "/usr");
	EXPECT_EQ(TextOf(BPath("/usr", "/bin")), Failed(B_BAD_VALUE));
	EXPECT_EQ(TextOf(BPath(&folder)), tree.Path("a"));
	EXPECT_EQ(TextOf(BPath(&folder, "file")), tree.Path("a/file"));
	EXPECT_EQ(TextOf(BPath(&folder, "../link/file")), tree.Path("a/file"));

	BPath path("/usr");
	EXPECT_EQ(path.Append("lib"), B_OK);
	EXPECT_EQ(path.SetTo(path.Path(), "x"), B_OK);
	EXPECT_EQ(TextOf(path), "/usr/lib/x");
	EXPECT_EQ(path.Append("/etc"), B_BAD_VALUE);
	EXPECT_EQ(path.Path(), nullptr);
	EXPECT_EQ(path.Append("etc"), B_NO_INIT);
}

TEST(Path, FollowsAFolderThatLeftALinkBehind)
{
	TempTree tree{{"old/a", Dir()}};
	BDirectory folder = tree.Folder("old/a");
	EXPECT_EQ(BPath(&folder), tree.Path("old/a").c_str());
	tree.Rename("old", "new");
	EXPECT_EQ(BPath(&folder), tree.Path("new/a").c_str());
	tree.Rename("new", "old");
	EXPECT_EQ(BPath(&folder), tree.Path("old/a").c_str());
	tree.Rename("old", "new");
	tree.Add("old", Link("new"));
	// For a moment the old path is good enough.
	EXPECT_TRUE(WaitUntil([&] { return BPath(&folder) == tree.Path("new/a").c_str(); }));
}

TEST(GetRefForPath, TellsWhatIsWrong)
{
	TempTree tree{{"a/file", Text()}, {"link", Link("a")}, {"broken", Link("none")}};
	entry_ref ref(1, 2, "kept");
	auto result = [&](const char* path) { return get_ref_for_path(path, &ref); };
	EXPECT_EQ(result(tree.Path("a/none").c_str()), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(result(tree.Path("none/file").c_str()), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(result(tree.Path("a/file/x").c_str()), B_NOT_A_DIRECTORY);
	EXPECT_EQ(result(tree.Path("a/" + std::string(256, 'x')).c_str()), B_NAME_TOO_LONG);
	EXPECT_EQ(ref, entry_ref(1, 2, "kept"));

	EXPECT_EQ(result(tree.Path("link/file").c_str()), B_OK);
	EXPECT_EQ(ref, tree.Ref("a/file"));
	EXPECT_EQ(result(tree.Path("broken").c_str()), B_OK);
	EXPECT_STREQ(ref.name, "broken");
}

TEST(GetRefForPath, GivesTheRootOneRef)
{
	struct stat root;
	ASSERT_EQ(stat("/", &root), 0);
	for (const char* path : {"/", "//", "/.", "/..", "/usr/.."}) {
		entry_ref ref;
		EXPECT_EQ(get_ref_for_path(path, &ref), B_OK) << path;
		EXPECT_EQ(ref, entry_ref(root.st_dev, root.st_ino, "/")) << path;
		BEntry entry(&ref);
		EXPECT_TRUE(entry.IsDirectory());
		EXPECT_EQ(BPath(&entry), "/");
		EXPECT_EQ(BDirectory(&ref).InitCheck(), B_OK);
	}
}
