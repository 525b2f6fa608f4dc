// SPDX-License-Identifier: MIT

// The rows of a folder's entries, read on several processors at once when there are many.

#pragma once

#include <memory>
#include <vector>

class BDirectory;
class ItemListItem;

typedef std::vector<std::unique_ptr<ItemListItem>> ItemRows;

// In the folder's order. An entry that goes while it is read has a row all the same; a folder that
// cannot be read has none. Returns when all is read.
ItemRows ReadRows(BDirectory& folder);
