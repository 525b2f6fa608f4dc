// SPDX-License-Identifier: MIT

#include "clv/CLVColumn.h"

#include "tests/clv/TestList.h"

#include <interface/ScrollBar.h>

#include <gtest/gtest.h>

using Numbers = std::vector<int32>;

TEST(Column, WidthsNeverFallBelowTheLeastOne)
{
	EXPECT_EQ(CLVColumn("a", 1, 0, 2).Width(), 4);
	CLVColumn column(nullptr, 50, CLV_COLUMN_SORTABLE, 30);
	column.SetWidth(10);
	EXPECT_EQ(column.Width(), 30);
}

TEST(Column, AnExpanderKeepsOnlySomeFlags)
{
	CLVColumn all("label", 300, 0x3ff, 100);
	EXPECT_EQ(all.Label(), nullptr);
	EXPECT_EQ(all.Width(), 20);
	EXPECT_EQ(all.MinWidth(), 20);
	EXPECT_EQ(all.Flags(), uint32((0x3ff & 0xaa) | 0x144));
	CLVColumn plain("label", 0, CLV_COLUMN_EXPANDER, 0);
	EXPECT_EQ(plain.Flags(), 0x144u);
}

TEST(Column, OnlyAnOutlineTakesOneExpander)
{
	LooseList flat(false), outline(true);
	EXPECT_EQ(flat->NewColumn(CLV_COLUMN_EXPANDER), nullptr);
	CLVColumn* name = outline->NewColumn();
	EXPECT_NE(outline->NewColumn(CLV_COLUMN_EXPANDER), nullptr);
	EXPECT_EQ(outline->NewColumn(CLV_COLUMN_EXPANDER | CLV_COLUMN_HIDDEN), nullptr);
	EXPECT_FALSE(outline->AddColumn(name));
	EXPECT_FALSE(flat->AddColumn(name));

	std::unique_ptr<CLVColumn> fresh = std::make_unique<CLVColumn>("", 1.0f, 0u, 4.0f);
	BList twice, held;
	twice.AddItem(fresh.get());
	twice.AddItem(fresh.get());
	held.AddItem(fresh.get());
	held.AddItem(name);
	EXPECT_FALSE(flat->AddColumnList(&twice));
	EXPECT_FALSE(flat->AddColumnList(&held));
	EXPECT_EQ(fresh->Parent(), nullptr);
	held.RemoveItem(1);
	EXPECT_TRUE(flat->AddColumnList(&held));
	fresh.reset(); // takes itself out
	EXPECT_EQ(flat->CountColumns(), 0);
}

TEST(Column, PlacesFollowTheDisplayOrderAndTheIndentPasses)
{
	LooseList list(true);
	CLVColumn* first = list->NewColumn();
	list->NewColumn(CLV_COLUMN_EXPANDER);
	CLVColumn* passing = list->NewColumn(CLV_COLUMN_PASS_PUSH, 30);
	CLVColumn* hidden = list->NewColumn(CLV_COLUMN_HIDDEN);
	CLVColumn* last = list->NewColumn();
	CLVColumn* behind = list->NewColumn();
	EXPECT_EQ(first->End(), 50);
	EXPECT_EQ(passing->Begin(), 72);
	EXPECT_EQ(passing->End(), 102);
	EXPECT_EQ(last->Begin(), 103);
	EXPECT_TRUE(passing->IsPushed() && last->IsPushed());
	EXPECT_FALSE(first->IsPushed() || behind->IsPushed());
	hidden->SetShown(true);
	EXPECT_FALSE(last->IsPushed()); // it ends at the one between
	EXPECT_EQ(last->Begin(), 154);

	const int32 order[] = {2, 1, 0, 3, 4, 5};
	EXPECT_TRUE(list->SetDisplayOrder(order));
	EXPECT_EQ(passing->Begin(), 0);
	EXPECT_TRUE(first->IsPushed());
	EXPECT_EQ(list->orders, 1);
	EXPECT_EQ(list->IndexOfColumn(BPoint(0, 0)), 2);
	EXPECT_EQ(list->IndexOfColumn(BPoint(30, 0)), 1);
	EXPECT_EQ(list->IndexOfColumn(BPoint(5000, 0)), -1);

	const int32 repeated[] = {2, 1, 2, 3, 4, 5};
	EXPECT_FALSE(list->SetDisplayOrder(repeated));
	EXPECT_EQ(list->Order(), (Numbers{2, 1, -1, -1, -1, -1}));
	const int32 outside[] = {6, 0, 1, 2, 3, 4};
	EXPECT_FALSE(list->SetDisplayOrder(outside));
	EXPECT_EQ(list->orders, 1);
}

TEST(Column, ARunIsNotRemovedUpToTheLastColumn)
{
	LooseList list(true);
	list->SetSortFunction(CompareKeys);
	std::vector<CLVColumn*> columns;
	for (int i = 0; i < 3; i++)
		columns.push_back(list->NewColumn(CLV_COLUMN_SORTABLE));
	columns.push_back(list->NewColumn(CLV_COLUMN_EXPANDER));
	columns.push_back(list->NewColumn());
	for (int32 i = 0; i < 3; i++)
		list->AddSortKey(i);
	EXPECT_FALSE(list->RemoveColumns(columns[3], 2));
	EXPECT_EQ(list->CountColumns(), 5);
	CLVColumn stranger("", 10, 0, 4);
	EXPECT_FALSE(list->RemoveColumns(&stranger, 1));
	EXPECT_FALSE(list->RemoveColumn(&stranger));

	ASSERT_TRUE(list->RemoveColumns(columns[1], 2));
	EXPECT_EQ(list->Order(), (Numbers{0, 1, 2}));
	EXPECT_EQ(list->IndexOfColumn(columns[3]), 1);
	EXPECT_TRUE(columns[4]->IsPushed());
	// Only the first column of the run stops being a key; deleting the other one ends that too.
	EXPECT_EQ(list->SortKeys(), (Numbers{0, -1}));
	delete columns[1];
	delete columns[2];
	EXPECT_EQ(list->SortKeys(), (Numbers{0}));
}

TEST(Column, ScrollBarsAndCornerFollowTheData)
{
	LooseList list(false);
	list->AddScrollViewCorner();
	BView* corner = list->container->ChildAt(list->container->CountChildren() - 1);
	EXPECT_EQ(corner->Frame().RightBottom(), list->container->Bounds().RightBottom());
	CLVColumn* column = list->NewColumn();
	const auto range = [&](orientation direction) {
		float min, max;
		list->container->ScrollBar(direction)->GetRange(&min, &max);
		EXPECT_EQ(min, 0);
		return max;
	};
	EXPECT_EQ(range(B_HORIZONTAL), 0);
	EXPECT_EQ(range(B_VERTICAL), 0);
	EXPECT_EQ(corner->ViewColor().red, 240);

	const float height = list->Bounds().Height();
	EXPECT_EQ(height, 199 - list->ColumnLabelHeight() - 1);
	for (int i = 0; i < 40; i++) {
		TestRow* row = list->NewRow();
		row->SetHeight(19);
		list->AddItem(row);
	}
	EXPECT_EQ(range(B_VERTICAL), 40 * 20 - 1 - height);
	EXPECT_EQ(corner->ViewColor().red, 216);
	column->SetWidth(1000);
	EXPECT_EQ(list->widths, (std::vector<std::pair<int32, float>>{{0, 1000}}));
	EXPECT_EQ(range(B_HORIZONTAL), 1000 - 299);
	EXPECT_EQ(list->DataRectWidth(), 1000);

	// The header goes along sideways only; data that ends before the view does pulls it back.
	list->ScrollTo(600, 500);
	EXPECT_EQ(list->container->ChildAt(2)->Bounds().LeftTop(), BPoint(600, 0));
	column->SetWidth(800);
	EXPECT_EQ(list->Bounds().left, 800 - 299);
	list->RemoveItems(1, 39);
	EXPECT_EQ(list->Bounds().top, 0);
	EXPECT_EQ(corner->ViewColor().red, 240);
	column->SetWidth(20);
	EXPECT_EQ(list->Bounds().left, 0);
	EXPECT_EQ(list->container->ChildAt(2)->Bounds().left, 0);
}

TEST(Column, ListAndContainerGoTogetherWhicheverIsDeleted)
{
	BView parent(BRect(0, 0, 400, 400), nullptr, B_FOLLOW_NONE, 0);
	TestList* list = new TestList(false);
	list->NewColumn();
	list->AddItem(list->NewRow());
	parent.AddChild(list->container);
	delete list;
	EXPECT_EQ(parent.CountChildren(), 0);
}
