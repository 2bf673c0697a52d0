#include "Border.h"

#include "VUKBasAssertException.h"
#include "VUKBasRangeException.h"
#include "VUKSimExc.h"

#include <exception>
#include <string_view>

namespace {

template <class Exception, class... Values>
void ThrowWhenNamed(std::string_view wanted, std::string_view name, const Values&... values)
{
    if (wanted == name) {
        Exception(values...).Throw("border/Border", 17);
    }
}

} // namespace

void ThrowBeyondTheBorder(const char* className)
{
    const std::string_view name(className);
    const VUKSimUttExceptionString<1024> file("run.sim");
    ThrowWhenNamed<VUKSimExcAllocReadOnly>(name, "VUKSimExcAllocReadOnly");
    ThrowWhenNamed<VUKSimExcBrokenStream>(name, "VUKSimExcBrokenStream");
    ThrowWhenNamed<VUKSimExcCantCreateFile>(name, "VUKSimExcCantCreateFile", file);
    ThrowWhenNamed<VUKSimExcCantDerefLocator>(name, "VUKSimExcCantDerefLocator");
    ThrowWhenNamed<VUKSimExcCantExternalizeLoc>(name, "VUKSimExcCantExternalizeLoc");
    ThrowWhenNamed<VUKSimExcCantGetFile>(name, "VUKSimExcCantGetFile");
    ThrowWhenNamed<VUKSimExcCorruptDirectory>(name, "VUKSimExcCorruptDirectory");
    ThrowWhenNamed<VUKSimExcCorruptHeader>(name, "VUKSimExcCorruptHeader");
    ThrowWhenNamed<VUKSimExcIOBounds>(name, "VUKSimExcIOBounds", 1U, 2U, 3U);
    ThrowWhenNamed<VUKSimExcImmutablePool>(name, "VUKSimExcImmutablePool");
    ThrowWhenNamed<VUKSimExcInvalidGUID>(name, "VUKSimExcInvalidGUID");
    ThrowWhenNamed<VUKSimExcNeedUpgrade>(name, "VUKSimExcNeedUpgrade", 1U, 2U, file);
    ThrowWhenNamed<VUKSimExcNewPoolReadOnly>(name, "VUKSimExcNewPoolReadOnly");
    ThrowWhenNamed<VUKSimExcNotSimFile>(name, "VUKSimExcNotSimFile");
    ThrowWhenNamed<VUKSimExcPoolAlreadyInDoc>(name, "VUKSimExcPoolAlreadyInDoc");
    ThrowWhenNamed<VUKSimExcRequestTooBig>(name, "VUKSimExcRequestTooBig", 1U, 2U);
    ThrowWhenNamed<VUKSimExcShortBuffer>(name, "VUKSimExcShortBuffer", 1U, 2U);
    ThrowWhenNamed<VUKSimExcShortPool>(name, "VUKSimExcShortPool");
    ThrowWhenNamed<VUKSimExcUserSigMismatch>(name, "VUKSimExcUserSigMismatch");
    ThrowWhenNamed<VUKSimExcValidationFailure>(name, "VUKSimExcValidationFailure");
    ThrowWhenNamed<VUKSimExcWriteReadOnly>(name, "VUKSimExcWriteReadOnly");
    ThrowWhenNamed<VUKBasAssertException>(name, "VUKBasAssertException", "a < b");
    ThrowWhenNamed<VUKBasRangeException>(name, "VUKBasRangeException", 1, 2);
}

const char* CatchBeyondTheBorder(void (*raise)())
{
    try {
        raise();
    } catch (const VUKSimExcNeedUpgrade&) {
        return "VUKSimExcNeedUpgrade";
    } catch (const VUKBasException&) {
        return "VUKBasException";
    } catch (const std::exception&) {
        return "std::exception";
    } catch (...) {
        return "other";
    }
    return "nothing";
}
