#pragma once

#include <sstream>
#include <string>
#include <vector>

/// What an attempt was found to have done wrong, in words.
class Complaints
{
public:
    void Add(const std::string& text) { mTexts.push_back(text); }

    /// Complains with `rule` unless it `holds`.
    void Expect(bool holds, const std::string& rule)
    {
        if (!holds) {
            Add("not so: " + rule);
        }
    }

    /// Complains unless `what` is as expected.
    template <class Found, class Expected>
    void Same(const Found& found, const Expected& expected, const std::string& what)
    {
        if (!(found == expected)) {
            std::ostringstream text;
            text << what << " is " << found << ", not " << expected;
            Add(text.str());
        }
    }

    [[nodiscard]] const std::vector<std::string>& Texts() const noexcept { return mTexts; }

private:
    std::vector<std::string> mTexts;
};
