#pragma once

#include "VUKBasExceptionText.h"
#include "VUKBas_Export.h"

#include <exception>

/// Base of every failure that the platform and the libraries above it raise.
///
/// An exception is built with its values and raised by Throw alone, which records where it was
/// thrown. All it tells lives inside the object: copies are whole, and nothing is allocated. A
/// class derived from this one overrides Throw (`Record(path, line); throw *this;`, so that its own
/// type is thrown), ClassName and AppendReason, and AppendValues when it carries values.
class VUKBAS_EXPORT VUKBasException : public std::exception
{
public:
    VUKBasException() noexcept = default;

    /// The name of the class that was thrown.
    [[nodiscard]] virtual const char* ClassName() const noexcept;

    /// The source path given to Throw; empty before.
    [[nodiscard]] const char* Path() const noexcept { return mPath; }

    /// The line given to Throw; 0 before.
    [[nodiscard]] int Line() const noexcept { return mLine; }

    /// One plain sentence: `Class(values) at path:line: reason`. Only the class's name before
    /// Throw.
    [[nodiscard]] const char* what() const noexcept override;

    /// Throws a copy of this exception, as its own class, that knows the site. `path` must outlive
    /// every copy: the pointer is kept. Null counts as the empty path.
    [[noreturn]] virtual void Throw(const char* path, int line);

protected:
    /// Keeps the site and writes the sentence. First step of every Throw.
    void Record(const char* path, int line) noexcept;

    /// Appends the values carried, separated by ", "; they appear in parentheses behind the class's
    /// name. Appends nothing where there are none.
    virtual void AppendValues(VUKBasExceptionText& text) const noexcept;

    /// Appends what happened, in words: the end of the sentence, without a full stop.
    virtual void AppendReason(VUKBasExceptionText& text) const noexcept;

    /// A writer on the buffer that keeps the sentence. A class whose sentence can be longer than
    /// this one's buffer overrides it, and what(), with a buffer of its own.
    [[nodiscard]] virtual VUKBasExceptionText Sentence() noexcept;

private:
    const char* mPath = ""; // not owned
    int mLine = 0;
    char mSentence[384] = {}; // empty before Throw
};
