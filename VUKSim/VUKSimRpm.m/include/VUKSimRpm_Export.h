#pragma once

/// Marks what leaves the shared library; everything else stays hidden.
#define VUKSIMRPM_EXPORT __attribute__((visibility("default")))
