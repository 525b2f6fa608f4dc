// SPDX-License-Identifier: MIT

// RowIndex: finds the rows of a folder by reference and by inode without walking them.
//
// Borrows the rows. What a row is found by must not change while it is in here.

#pragma once

#include <storage/EntryRef.h>

#include <unordered_map>
#include <vector>

class ItemListItem;

class RowIndex {
public:
	void Add(ItemListItem* row); // of an entry that has no row yet
	void Remove(ItemListItem* row);
	void MakeEmpty();
	void Reserve(size_t rows);

	ItemListItem* Find(const entry_ref& ref) const; // or null
	// Hard links share an inode.
	std::vector<ItemListItem*> FindAll(int64 inode);

private:
	struct Hash {
		size_t operator()(const entry_ref* ref) const;
	};
	struct Equal {
		bool operator()(const entry_ref* a, const entry_ref* b) const { return *a == *b; }
	};

	typedef std::unordered_multimap<int64, ItemListItem*> INodes;
	INodes& ByINode();
	void AddINode(ItemListItem* row);

	std::unordered_map<const entry_ref*, ItemListItem*, Hash, Equal> fByRef; // keys are the rows'
	INodes fByINode;
	bool fKnowsINodes = false; // made when first asked for: both at once takes noticeably long
};
