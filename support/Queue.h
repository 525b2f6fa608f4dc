// SPDX-License-Identifier: MIT

// TQueue: a first-in first-out list of untyped pointers, never owned. It has no lock: whoever
// shares it between threads guards it.

#pragma once

class XQueueException {};
class XQueueEmpty : public XQueueException {};

class TQueue {
public:
	TQueue() = default;
	~TQueue();
	TQueue(const TQueue&) = delete;
	TQueue& operator=(const TQueue&) = delete;

	bool Empty() const { return fFirst == nullptr; }

	void Add(void* item);
	void* Next(); // removes and returns the oldest item; throws XQueueEmpty when there is none
	void Clear();

private:
	struct Node {
		Node* next;
		void* item;
	};

	Node* fFirst = nullptr; // the nodes are ours
	Node* fLast = nullptr;
};
