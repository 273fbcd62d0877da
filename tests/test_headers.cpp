// Carries the precompiled headers that the test programs share.
