// SPDX-License-Identifier: MIT

#include "support/Queue.h"

#include <memory>

TQueue::~TQueue()
{
	Clear();
}

void
TQueue::Add(void* item)
{
	Node* node = new Node{nullptr, item};
	if (fLast != nullptr)
		fLast->next = node;
	else
		fFirst = node;
	fLast = node;
}

void*
TQueue::Next()
{
	if (fFirst == nullptr)
		throw XQueueEmpty();
	std::unique_ptr<Node> node(fFirst);
	fFirst = node->next;
	if (fFirst == nullptr)
		fLast = nullptr;
	return node->item;
}

void
TQueue::Clear()
{
	while (fFirst != nullptr) {
		Node* next = fFirst->next;
		delete fFirst;
		fFirst = next;
	}
	fLast = nullptr;
}
