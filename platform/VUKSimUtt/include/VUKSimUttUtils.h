#pragma once

#include "VUKBas_Export.h"
#include "VUKSimUttExceptionString.h"

class VUKString;

/// Small conversions.
class VUKBAS_EXPORT VUKSimUttUtils
{
public:
    VUKSimUttUtils() = delete;

    /// The string in the form that exceptions carry; a longer one is cut to fit.
    [[nodiscard]] static VUKSimUttExceptionString<1024> Copy(const VUKString& text) noexcept;
};
