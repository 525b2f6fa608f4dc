// SPDX-License-Identifier: MIT

#include "xfer/FileXFerData.h"

#include <storage/Directory.h>
#include <storage/Entry.h>

namespace NFileXFer {

FileXFerData::FileXFerData(const entry_ref& source, const BPath& target, const BHandler* handler) :
	fSource(source), fTarget(target), fMessenger(std::make_unique<BMessenger>(handler))
{}

FileXFerData::FileXFerData(
	const entry_ref& source, const BDirectory* folder, const BHandler* handler) :
	FileXFerData(source, BPath(folder), handler)
{}

FileXFerData::FileXFerData(BEntry* source, const BDirectory* folder, const BHandler* handler) :
	FileXFerData(entry_ref(), folder, handler)
{
	source->GetRef(&fSource);
}

} // namespace NFileXFer
