// Nothing of its own: carries the precompiled GoogleTest headers that every test target reuses.
