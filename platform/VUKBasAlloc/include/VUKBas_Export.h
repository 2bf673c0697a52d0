#pragma once

/// Marks what the platform library shows to the outside; all else is compiled with hidden
/// visibility. On a class it covers the type information too, so that an exception thrown on one
/// side of a library border is caught on the other.
#define VUKBAS_EXPORT __attribute__((visibility("default")))
