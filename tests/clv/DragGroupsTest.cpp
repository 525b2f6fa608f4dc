// SPDX-License-Identifier: MIT

#include "clv/DragGroups.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

struct Header {
	struct Spec {
		uint32 flags;
		float width;
	};

	explicit Header(std::initializer_list<Spec> specs)
	{
		for (const Spec& spec : specs) {
			owned.push_back(std::make_unique<CLVColumn>("", spec.width, spec.flags, 4.0f));
			columns.push_back(owned.back().get());
		}
		CLVColumn::LayOut(columns);
		groups = MakeDragGroups(columns);
	}

	std::string Shifted(int32 moving, int32 newIndex) const
	{
		std::string order;
		for (CLVColumn* column : ShiftedDisplayOrder(columns, groups, moving, newIndex)) {
			auto found = std::find(columns.begin(), columns.end(), column);
			order += static_cast<char>('a' + (found - columns.begin()));
		}
		return order;
	}

	std::vector<std::unique_ptr<CLVColumn>> owned;
	std::vector<CLVColumn*> columns;
	std::vector<DragGroup> groups;
};

} // namespace

TEST(DragGroups, ColumnsThatDragWithTheRightFormOneGroup)
{
	const uint32 with = CLV_COLUMN_DRAG_WITH_RIGHT;
	Header header({{with | CLV_COLUMN_HIDDEN, 50}, {with | CLV_COLUMN_LOCK_AT_START, 30},
		{CLV_COLUMN_NOT_MOVABLE, 20}, {CLV_COLUMN_HIDDEN, 70}, {with, 10}});
	ASSERT_EQ(header.groups.size(), 3u);
	EXPECT_EQ(header.groups[0].last, 2);
	EXPECT_EQ(header.groups[0].left, 0);
	EXPECT_EQ(header.groups[0].right, 51);
	EXPECT_EQ(header.groups[0].lastShown, header.columns[2]);
	EXPECT_FALSE(header.groups[0].allLockedAtStart);
	EXPECT_EQ(header.groups[0].flags, uint32(CLV_COLUMN_NOT_MOVABLE | CLV_COLUMN_LOCK_AT_START));
	EXPECT_FALSE(header.groups[1].IsShown());
	EXPECT_EQ(header.groups[1].left, -1);
	EXPECT_EQ(header.groups[2].left, 52);
	EXPECT_EQ(DragGroupAt(header.groups, 2), 0);
	EXPECT_EQ(DragGroupAt(header.groups, 5), -1);

	// The hidden group between is passed over, and stays where it is.
	const DragSnap snap = FindDragSnap(header.groups, 2);
	EXPECT_EQ(snap.previous, -1); // locked
	EXPECT_EQ(header.Shifted(0, 3), "deabc");
	EXPECT_EQ(header.Shifted(2, 0), "eabcd");
	EXPECT_EQ(header.Shifted(1, 1), "abcde");
}

TEST(DragGroups, SnapPointsDependOnBothWidths)
{
	Header header({{0, 100}, {0, 30}, {0, 60}}); // 0-100, 101-131, 132-192
	DragSnap snap = FindDragSnap(header.groups, 1);
	EXPECT_EQ(snap.left, 30);   // begin of the first and own width
	EXPECT_EQ(snap.right, 162); // end of the third less own width
	snap = FindDragSnap(header.groups, 0);
	EXPECT_EQ(snap.previous, -1);
	EXPECT_EQ(snap.left, -1);
	EXPECT_EQ(snap.next, 1);
	EXPECT_EQ(snap.right, 101); // not before the narrow one's begin
	EXPECT_EQ(FindDragSnap(header.groups, 2).left, 131);
}

TEST(DragGroups, LocksKeepGroupsAtTheirEnd)
{
	const uint32 start = CLV_COLUMN_LOCK_AT_START, end = CLV_COLUMN_LOCK_AT_END;
	Header header({{start, 20}, {start, 20}, {0, 20}, {0, 20}, {end, 20}, {end, 20}});
	const auto targets = [&](int32 group) {
		const DragSnap snap = FindDragSnap(header.groups, group);
		return std::make_pair(snap.previous >= 0, snap.next >= 0);
	};
	EXPECT_EQ(targets(0), std::make_pair(false, true));
	EXPECT_EQ(targets(1), std::make_pair(true, false));
	EXPECT_EQ(targets(2), std::make_pair(false, true));
	EXPECT_EQ(targets(3), std::make_pair(true, false));
	EXPECT_EQ(targets(4), std::make_pair(false, true));
	EXPECT_EQ(targets(5), std::make_pair(true, false));
}
