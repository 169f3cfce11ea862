#ifndef KELCORE_KELVALUELAYOUT_H
#define KELCORE_KELVALUELAYOUT_H

/// \file
/// Walking through the bytes of a value that the toolkit will decode. Internal.

class kelValueReader;

/// Walks through a value laid out as `layout` says; false, with the reader's status set, where the bytes end
/// too early or the toolkit would not decode them in bounded time and memory, or not in this process.
///
///     1 2 4 8   as many bytes
///     r         a number with decimals
///     t         a text: its length in bytes, and its UTF-16 units
///     s         bytes: their number, and they
///     x         a text that is a pattern
///     [...]     a count, and as many times what stands between the brackets
///     v         a value with its header
///     c b       a colour, a brush
///     i p       a picture, and one that only a program with windows can have
///     B C I P R bits, a cursor, an icon, a palette, a region
///     e j       an easing curve, a JSON value
///
/// The toolkit takes the memory for what a count claims before it looks for the elements, the time for as
/// many, and the stack for as many levels.
bool kelWalkLayout(kelValueReader &reader, const char *layout);

#endif
