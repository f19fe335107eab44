#pragma once
// What keeps a translation usable as a format.

/// True when both texts have the same printf conversions in the same order, so that one can stand for the other.
/// A text without any is no format: it may be translated with any text. Thread: any.
bool sameConversions(const char *key, const char *translation);
