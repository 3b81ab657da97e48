// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/fonts/ifontpackagehandler.h"
#include "pdf/fonts/cmap.h"
#include "pdf/fonts/tounicode.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// The CMaps of a document, each read once: Identity-H and -V, those in its streams, and the
/// predefined ones where they are installed (by poppler-data or Ghostscript).
class CMaps {
public:
    /// The CMap that /Encoding of a composite font is: a name or a stream. Null for none.
    std::shared_ptr<const CMap> Find(const QPDFObjectHandle& encoding);

    /// The characters of the CIDs of a collection ("Japan1"); none where that is not installed.
    const CodeTexts& TextsOf(const std::string& ordering);

private:
    std::shared_ptr<const CMap> Find(QPDFObjectHandle encoding, int depth);
    std::shared_ptr<const CMap> Named(std::string_view name, int depth);
    std::shared_ptr<const CMap> InStream(const QPDFObjectHandle& stream, int depth);

    std::map<std::string, std::shared_ptr<const CMap>> mKnown;  // by name or object
    std::map<std::string, CodeTexts> mTexts;
};

/// The number by which interpreters' CMaps are known to a connection space; nothing for a name that
/// is not among them.
std::optional<GRAPHICS::TEncoding> EncodingOfCMap(std::string_view name);

}  // namespace VANTIX::PDF
