// What may become of a damaged file.
#pragma once

#include "VUKBasException.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <initializer_list>
#include <string_view>

/// A failure that the documentation promises: its class, and where it is raised. A site without a
/// path stands for all failures of the operating system.
struct FailureSite
{
    std::string_view name;
    std::string_view path;
    int line;
};

/// Does `call`. True when it went through, false when it failed at one of `sites`; any other
/// exception fails the test.
template <class Call>
bool Attempt(std::initializer_list<FailureSite> sites, Call&& call)
{
    try {
        call();
        return true;
    } catch (const VUKBasException& raised) {
        const bool documented = std::ranges::any_of(sites, [&](const FailureSite& site) {
            return raised.ClassName() == site.name &&
                   (site.path.empty() ||
                    (raised.Path() == site.path && raised.Line() == site.line));
        });
        EXPECT_TRUE(documented) << raised.what();
    } catch (const std::exception& raised) {
        ADD_FAILURE() << raised.what();
    }
    return false;
}
