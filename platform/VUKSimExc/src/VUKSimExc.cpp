// The exceptions that carry no values: all that tells them apart is their name and their reason.
#include "VUKSimExc.h"

#define VUKSIMEXC_PLAIN(Class, reason)                                                             \
    const char* Class::ClassName() const noexcept                                                  \
    {                                                                                              \
        return #Class;                                                                             \
    }                                                                                              \
    void Class::Throw(const char* path, int line)                                                  \
    {                                                                                              \
        Record(path, line);                                                                        \
        throw *this;                                                                               \
    }                                                                                              \
    void Class::AppendReason(VUKBasExceptionText& text) const noexcept                             \
    {                                                                                              \
        text.Append(reason);                                                                       \
    }                                                                                              \
    static_assert(true) // takes the semicolon

VUKSIMEXC_PLAIN(VUKSimExcAllocReadOnly, "the file was opened for reading and cannot grow");
VUKSIMEXC_PLAIN(VUKSimExcBrokenStream,
                "the pool was extended by someone else since this stream last wrote to it");
VUKSIMEXC_PLAIN(VUKSimExcCantDerefLocator, "the pool that the locator names is not open");
VUKSIMEXC_PLAIN(VUKSimExcCantExternalizeLoc,
                "the storing pool's directory does not name the pool referred to");
VUKSIMEXC_PLAIN(VUKSimExcCantGetFile, "the file is closed or belongs to another document");
VUKSIMEXC_PLAIN(VUKSimExcCorruptDirectory, "a pool's directory is damaged or cut off");
VUKSIMEXC_PLAIN(VUKSimExcCorruptHeader, "a pool's header is damaged or cut off");
VUKSIMEXC_PLAIN(VUKSimExcImmutablePool, "only the last pool of a file can grow");
VUKSIMEXC_PLAIN(VUKSimExcInvalidGUID, "the UUID given for the pool is shorter than 32 characters");
VUKSIMEXC_PLAIN(VUKSimExcNewPoolReadOnly,
                "the file was opened for reading and cannot take another pool");
VUKSIMEXC_PLAIN(VUKSimExcNotSimFile,
                "the file is too short for a pool, or does not begin with the signature of one");
VUKSIMEXC_PLAIN(VUKSimExcPoolAlreadyInDoc, "a pool with this UUID is open in the document");
VUKSIMEXC_PLAIN(VUKSimExcShortPool, "the pool to be copied ended before its length was reached");
VUKSIMEXC_PLAIN(VUKSimExcUserSigMismatch,
                "the pool was written under another user signature than the document's");
VUKSIMEXC_PLAIN(VUKSimExcValidationFailure, "the document handle has no document behind it");
VUKSIMEXC_PLAIN(VUKSimExcWriteReadOnly, "the file was opened for reading and cannot be written");
