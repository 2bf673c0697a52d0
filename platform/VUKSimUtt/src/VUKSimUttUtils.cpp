#include "VUKSimUttUtils.h"

#include "VUKString.h"

VUKSimUttExceptionString<1024> VUKSimUttUtils::Copy(const VUKString& text) noexcept
{
    return VUKSimUttExceptionString<1024>(text.UTF8());
}
