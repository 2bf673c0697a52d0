// All that is measured, and at what size.
#pragma once

#include "Contender.h"

#include <string>
#include <vector>

struct Scale
{
    std::string name;
    long long bulk;  // bytes appended, decoded, read at random, imported
    long long count; // random accesses, nodes, locators, texts
    int rounds;      // unless told otherwise
};

/// One column of the bench: a workload at one size.
struct Case
{
    std::string id;    // as in W3/64
    std::string title; // what one operation is
    long long moved;   // bytes of an operation where bytes a second mean something, else 0
    Job job;           // without a folder
};

Scale FullScale();
Scale QuickScale();
Scale SmokeScale();

std::vector<Case> Cases(const Scale& scale);

/// Those whose memory is measured, each in a process of its own.
std::vector<Case> MemoryCases(const Scale& scale);
