// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// Coordinates and lengths beyond this are cut to it: no page means more.
inline constexpr double kLargestNumber = 1e9;

/// A double as a float within +-`kLargestNumber`; NaN becomes 0.
float ToFloat(double value);

/// The entry `key` (with slash) of a dictionary or of a stream's dictionary; null for anything
/// else.
QPDFObjectHandle Get(QPDFObjectHandle object, const std::string& key);

bool IsNull(QPDFObjectHandle object);

/// The name without its slash, or nothing.
std::string NameOf(QPDFObjectHandle object);

std::optional<double> NumberOf(QPDFObjectHandle object);

/// A whole number (reals are cut off) within 32 bits, or nothing.
std::optional<std::int32_t> IntegerOf(const QPDFObjectHandle& object);

/// `fallback` unless the object is a boolean.
bool BoolOf(QPDFObjectHandle object, bool fallback);

/// The numbers of an array of at most `limit` items, each cut by `ToFloat`; empty when it is no
/// array, longer, or holds anything but numbers.
std::vector<float> NumbersOf(QPDFObjectHandle object, std::size_t limit);

/// x0 y0 x1 y1 in ascending order, or nothing.
std::optional<std::array<double, 4>> RectangleOf(const QPDFObjectHandle& object);

/// Six numbers; the identity when the object is no matrix.
std::array<double, 6> MatrixOf(const QPDFObjectHandle& object);

/// `inner` followed by `outer`: the matrix of `inner` applied first.
std::array<double, 6> Multiply(const std::array<double, 6>& inner,
                               const std::array<double, 6>& outer);

/// The inverse; nothing for a matrix that has none.
std::optional<std::array<double, 6>> Inverse(const std::array<double, 6>& m);

/// The bounds of `box` after `matrix`.
std::array<double, 4> TransformBox(const std::array<double, 6>& matrix,
                                   const std::array<double, 4>& box);

/// A matrix that maps areas to areas: finite numbers and a determinant that is not 0.
bool IsInvertible(const std::array<double, 6>& matrix);

/// What became of the decoding of a stream.
enum class StreamResult { kOk, kNoStream, kUnknownFilter, kDamaged, kTooLarge };

/// Appends the decoded data of `stream` to `out`, at most until `out` holds `limit` bytes. What
/// could be decoded of a damaged stream is kept.
StreamResult AppendStreamData(QPDFObjectHandle stream, std::string& out, std::size_t limit);

using Take = std::function<void(std::string_view)>;

/// Hands the decoded data of `stream` on as they come, at most `limit` bytes. The file must not be
/// read for other objects meanwhile. What comes of an unknown filter is still encoded.
StreamResult PipeStreamData(QPDFObjectHandle stream, std::size_t limit, const Take& take);

/// The same for the data as they are encoded, but decrypted.
StreamResult PipeRawData(QPDFObjectHandle stream, std::size_t limit, const Take& take);

/// `PipeStreamData` for takers that read other objects of the file meanwhile.
StreamResult PipeContent(QPDFObjectHandle stream, std::size_t limit, const Take& take);

}  // namespace VANTIX::PDF
