#include "VUKBasAllocatorBase.h"

VUKBasAllocatorBase::~VUKBasAllocatorBase() = default;
