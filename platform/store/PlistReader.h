#pragma once
// The one reader of property lists. A file may hold anything a user, a broken disk or another
// program put at its name, and the parser beneath trusts what it is given: it recurses once per
// level of nesting (a deep file overflows the stack when it is freed or written), expands a
// binary list's shared objects (a few hundred bytes can stand for a billion values), slows down
// with the square of a dictionary's size, and aborts the program when a string or key holds a
// NUL byte. So the bytes are checked before the parser sees them and the tree after; a file that
// fails a check reads like one that does not parse. No Qt here: the fuzz target builds it alone.

#include <cstddef>

using plist_t = void *;

namespace fw::plistread {

inline constexpr size_t kMaxBytes = 4 << 20;
inline constexpr int kMaxDepth = 64;    // values on the longest path from the top, the top included
inline constexpr int kMaxNodes = 20000; // values and keys

// What a property list holds as far as the limits go. The scan of the bytes never tells less
// than the parser then builds.
struct Shape {
    int depth = 0;
    int nodes = 0;
    const char *refused = nullptr; // why, when the bytes or the tree are refused outright
};
Shape scanBytes(const char *data, size_t size);
Shape scanTree(plist_t node); // without recursion
// Null when the shape is within every limit, else why not.
const char *outsideLimits(const Shape &shape);

// The parsed bytes, or null (with why, when asked) when they fail a check or do not parse.
plist_t parse(const char *data, size_t size, const char **why = nullptr);

enum class Outcome { Ok, Missing, Refused };
// A file's property list. Only a regular file is read (a device or a pipe never is), it is
// opened without waiting, and at most kMaxBytes of it.
Outcome readFile(const char *path, plist_t *out, const char **why = nullptr);

} // namespace fw::plistread
