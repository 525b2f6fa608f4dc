// SPDX-License-Identifier: MIT

// Why the order of equal items can be computed: in pass j of the exchange sort, the item at place
// j enters a sorted row of the items before it. It goes behind those that are equal to it, and
// each run of equal items that are greater loses its first item to the run's end, because that
// one waits in the place that was exchanged while the others pass. So the order within a run
// comes from a queue: an equal item is added at the end, a smaller one turns the queue by one.

#include "clv/ExchangeOrder.h"

#include <algorithm>
#include <numeric>

namespace {

// Up to here the plain sort is as quick, and it is right whatever the answers.
constexpr int32 kPlainCount = 32;

size_t
At(int32 index)
{
	return static_cast<size_t>(index);
}

// Counts things in numbered places.
class Counts {
public:
	explicit Counts(int32 places) : fTree(At(places) + 1) {}

	void Add(int32 place, int32 count)
	{
		for (size_t i = At(place) + 1; i < fTree.size(); i += i & -i)
			fTree[i] += count;
	}

	// In all places before this one.
	int32 Before(int32 place) const
	{
		int32 sum = 0;
		for (size_t i = At(place); i > 0; i -= i & -i)
			sum += fTree[i];
		return sum;
	}

	// The place of the n-th thing, from 0.
	int32 PlaceOf(int32 n) const
	{
		size_t place = 0;
		size_t step = 1;
		while (step * 2 < fTree.size())
			step *= 2;
		for (; step > 0; step /= 2) {
			if (place + step < fTree.size() && fTree[place + step] <= n) {
				place += step;
				n -= fTree[place];
			}
		}
		return static_cast<int32>(place);
	}

private:
	std::vector<int32> fTree; // a Fenwick tree
};

class Sorter {
public:
	Sorter(int32 count, const NumberedCompare& compare) :
		fCompare(compare), fOrder(At(count)), fRank(At(count))
	{
		std::iota(fOrder.begin(), fOrder.end(), 0);
	}

	std::vector<int32> Run()
	{
		if (Count() > kPlainCount) {
			std::vector<int32> room(fOrder.size());
			Merge(0, Count(), room);
			if (RankAll() && fStrange == 0 && RandomPairsAgree()) {
				OrderEqualItems();
				return std::move(fOrder);
			}
			std::iota(fOrder.begin(), fOrder.end(), 0);
		}
		Exchange();
		return std::move(fOrder);
	}

private:
	int32 Count() const { return static_cast<int32>(fOrder.size()); }

	int Compare(int32 a, int32 b)
	{
		const int result = fCompare(a, b);
		if (result < -1 || result > 1)
			fStrange++;
		return result;
	}

	void Exchange()
	{
		for (size_t i = 0; i + 1 < fOrder.size(); i++) {
			for (size_t j = i + 1; j < fOrder.size(); j++) {
				if (fCompare(fOrder[i], fOrder[j]) == 1)
					std::swap(fOrder[i], fOrder[j]);
			}
		}
	}

	// A merge sort of its own: it stays within its bounds whatever the answers.
	void Merge(int32 begin, int32 end, std::vector<int32>& room)
	{
		if (end - begin < 2 || fStrange > 0)
			return;
		const int32 middle = begin + (end - begin) / 2;
		Merge(begin, middle, room);
		Merge(middle, end, room);
		// Most lists are sorted again after a few rows changed.
		if (Compare(fOrder[At(middle - 1)], fOrder[At(middle)]) != 1)
			return;
		std::copy(fOrder.begin() + begin, fOrder.begin() + end, room.begin() + begin);
		size_t left = At(begin), right = At(middle);
		for (size_t to = At(begin); to < At(end); to++) {
			const bool takeRight =
				left == At(middle) || (right < At(end) && Compare(room[left], room[right]) == 1);
			fOrder[to] = takeRight ? room[right++] : room[left++];
		}
	}

	// Equal items get the same rank. False when two neighbours contradict themselves.
	bool RankAll()
	{
		int32 rank = 0;
		for (size_t i = 0; i < fOrder.size(); i++) {
			if (i > 0) {
				const int down = Compare(fOrder[i], fOrder[i - 1]);
				const int up = Compare(fOrder[i - 1], fOrder[i]);
				if (up != -down || up == 1)
					return false;
				rank += down;
			}
			fRank[At(fOrder[i])] = rank;
		}
		return true;
	}

	// Only all n² comparisons would prove that the answers never contradict each other; an order
	// that is not one at all (paper, stone, scissors) is found by as many as there are items.
	bool RandomPairsAgree()
	{
		uint32 state = 1;
		auto pick = [&] {
			state = state * 1664525u + 1013904223u;
			return static_cast<int32>((state >> 8) % fOrder.size());
		};
		for (size_t i = 0; i < fOrder.size(); i++) {
			const int32 a = pick(), b = pick();
			const int32 expected = fRank[At(a)] - fRank[At(b)];
			if (Compare(a, b) != (expected > 0) - (expected < 0))
				return false;
		}
		return true;
	}

	void OrderEqualItems()
	{
		// How many smaller items lie before each one.
		std::vector<int32> smaller(fOrder.size());
		Counts seen(Count());
		for (int32 i = 0; i < Count(); i++) {
			smaller[At(i)] = seen.Before(fRank[At(i)]);
			seen.Add(fRank[At(i)], 1);
		}
		for (int32 begin = 0, end; begin < Count(); begin = end) {
			end = begin + 1;
			while (end < Count() && fRank[At(fOrder[At(end)])] == fRank[At(fOrder[At(begin)])])
				end++;
			if (end - begin > 1)
				OrderRun(begin, end, smaller);
		}
	}

	// Undoes the queue's history: of its free places, the one that is the queue's end now is where
	// the item that came last ended up.
	void OrderRun(int32 begin, int32 end, const std::vector<int32>& smaller)
	{
		const std::vector<int32> items(fOrder.begin() + begin, fOrder.begin() + end);
		int32 size = end - begin;
		Counts free(size);
		for (int32 i = 0; i < size; i++)
			free.Add(i, 1);
		int32 front = 0;     // of the queue, counted in free places
		int32 turns = begin; // so many smaller items there are in all
		for (; size > 0; size--) {
			const int32 item = items[At(size - 1)];
			front = (front + size - (turns - smaller[At(item)]) % size) % size;
			turns = smaller[At(item)];
			const int32 place = free.PlaceOf((front + size - 1) % size);
			fOrder[At(begin + place)] = item;
			free.Add(place, -1);
			if (front > 0)
				front--;
		}
	}

	const NumberedCompare& fCompare;
	std::vector<int32> fOrder;
	std::vector<int32> fRank;
	int32 fStrange = 0; // answers other than -1, 0 and 1
};

} // namespace

std::vector<int32>
ExchangeOrder(int32 count, const NumberedCompare& compare)
{
	return Sorter(std::max(count, 0), compare).Run();
}
