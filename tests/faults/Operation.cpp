#include "Operation.h"

bool Operation::Answers(const Hit&, const VUKBasException&) const
{
    return false;
}

std::string Operation::LooksFor(const Hit&) const
{
    return "measure";
}

bool Operation::Passes(const Hit&) const
{
    return false;
}

bool IsFrom(const VUKBasException& raised, const std::string& className, const std::string& site,
            int line)
{
    return raised.ClassName() == className && raised.Path() == site && raised.Line() == line;
}
