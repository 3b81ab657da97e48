// SPDX-License-Identifier: MIT
#pragma once

#include <cstdarg>
#include <cstddef>

namespace VANTIX::PS {

/// Formats operator text into `buffer` (zero-terminated, at most `size` - 1 characters), in the "C"
/// locale whatever the process has set. Understands %s %c %d %i %u %x %X with h, hh, l and ll,
/// widths with leading zeros, %g, %.Ng and %.Nf, and %%. A NaN or infinite real is written as 0 and
/// logged. Answers the number of characters that the whole text needs, without the zero: a result
/// of `size` or more means that the text was cut.
[[gnu::format(printf, 3, 4)]] std::size_t FormatText(char* buffer, std::size_t size,
                                                     const char* format, ...);

[[gnu::format(printf, 3, 0)]] std::size_t FormatTextList(char* buffer, std::size_t size,
                                                         const char* format,
                                                         std::va_list arguments);

}  // namespace VANTIX::PS
