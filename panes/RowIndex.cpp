// SPDX-License-Identifier: MIT

#include "panes/RowIndex.h"

#include "panes/ItemListItem.h"

#include <string_view>

size_t
RowIndex::Hash::operator()(const entry_ref* ref) const
{
	const std::string_view name = ref->name != nullptr ? ref->name : "";
	return std::hash<std::string_view>()(name) ^ static_cast<size_t>(ref->directory);
}

void
RowIndex::Add(ItemListItem* row)
{
	fByRef.emplace(row->GetRef(), row);
	if (fKnowsINodes)
		AddINode(row);
}

void
RowIndex::AddINode(ItemListItem* row)
{
	if (row->GetINode() != 0)
		fByINode.emplace(row->GetINode(), row);
}

RowIndex::INodes&
RowIndex::ByINode()
{
	if (!fKnowsINodes) {
		fKnowsINodes = true;
		fByINode.reserve(fByRef.size());
		for (const auto& [ref, row] : fByRef)
			AddINode(row);
	}
	return fByINode;
}

void
RowIndex::Remove(ItemListItem* row)
{
	if (auto found = fByRef.find(row->GetRef()); found != fByRef.end() && found->second == row)
		fByRef.erase(found);
	auto [begin, end] = fByINode.equal_range(row->GetINode());
	for (auto found = begin; found != end; ++found) {
		if (found->second == row) {
			fByINode.erase(found);
			break;
		}
	}
}

void
RowIndex::MakeEmpty()
{
	// Not clear(), which keeps the room for the most that were ever here.
	*this = RowIndex();
}

void
RowIndex::Reserve(size_t rows)
{
	fByRef.reserve(rows);
}

ItemListItem*
RowIndex::Find(const entry_ref& ref) const
{
	auto found = fByRef.find(&ref);
	return found != fByRef.end() ? found->second : nullptr;
}

std::vector<ItemListItem*>
RowIndex::FindAll(int64 inode)
{
	std::vector<ItemListItem*> rows;
	auto [begin, end] = ByINode().equal_range(inode);
	for (auto found = begin; found != end; ++found)
		rows.push_back(found->second);
	return rows;
}
