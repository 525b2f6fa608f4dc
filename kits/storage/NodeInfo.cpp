// SPDX-License-Identifier: MIT

#include <storage/NodeInfo.h>

#include <storage/Node.h>
#include <storage/NodeType.h>

#include <cstring>

BNodeInfo::BNodeInfo(BNode* node)
{
	SetTo(node);
}

status_t
BNodeInfo::SetTo(BNode* node)
{
	fNode = node;
	return fStatus = node != nullptr && node->InitCheck() == B_OK ? B_OK : B_BAD_VALUE;
}

status_t
BNodeInfo::GetType(char* type) const
{
	if (type == nullptr)
		return B_BAD_VALUE;
	BPrivate::NodeType node;
	std::string text;
	status_t status = GetNodeType(&node);
	if (status == B_OK)
		status = node.GetType(&text);
	if (status == B_OK && text.size() >= B_MIME_TYPE_LENGTH)
		status = B_ENTRY_NOT_FOUND;
	if (status == B_OK)
		memcpy(type, text.c_str(), text.size() + 1);
	return status;
}

status_t
BNodeInfo::GetNodeType(BPrivate::NodeType* type) const
{
	if (fStatus != B_OK)
		return fStatus;
	struct stat status;
	if (status_t error = fNode->GetStat(&status); error != B_OK)
		return error;
	*type = BPrivate::NodeType(
		"/proc/self/fd/" + std::to_string(fNode->Descriptor()), {}, status.st_mode);
	return B_OK;
}
