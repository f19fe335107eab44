#pragma once
// Records that outlive their test.

#include <vector>

/// Makes a cleared record and keeps it to the end of the process, as the program does: a thread may still reach it.
template <class Record> Record *newLastingRecord()
{
    static auto *const kept = new std::vector<Record *>;
    kept->push_back(new Record());
    return kept->back();
}
