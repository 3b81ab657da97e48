// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/color/colorconversion.h"
#include "host/graphics/baseconnectionspace.h"
#include "host/host.h"
#include "pdf/diagnostics.h"
#include "pdf/fonts/fonts.h"
#include "pdf/pdfdocument.h"

namespace VANTIX::PDF {

/// What a run asks of the reader.
struct ReaderOptions {
    std::int32_t languageLevel = 3;
    /// Overrides every intent of the document.
    std::optional<COLOR::TRenderingIntent> intent;
    PageBox box = PageBox::kCrop;
    /// Policy key 107: profiles go out as CIE-based arrays.
    bool embedProfiles = false;
    /// Policy key 101: images keep their soft masks.
    bool keepsAlpha = false;
    /// Policy key 112: but not in the cells of tiling patterns.
    bool opaqueCells = false;
    /// Images in gray of 1, 2 or 4 bits come with a palette, for models that take no such gray.
    bool graysAsPalettes = false;
    /// Invisible text goes out where nothing of it is seen; else it is dropped.
    bool keepsHiddenText = false;
    FontOptions fonts;
};

/// Plays pages of one document into a connection space. Keeps what is shared between pages (colour
/// spaces, functions).
class PagePlayer {
public:
    PagePlayer(PdfDocument& document, HOST::Host& host, HOST::BaseConnectionSpace& space,
               const ReaderOptions& options, Diagnostics& diagnostics);
    ~PagePlayer();
    PagePlayer(const PagePlayer&) = delete;
    PagePlayer& operator=(const PagePlayer&) = delete;
    PagePlayer(PagePlayer&&) = delete;
    PagePlayer& operator=(PagePlayer&&) = delete;

    /// Makes the fonts of the pages (from 0) that are going to be played ready and gives them to
    /// the space, which takes them all at once: to be called once, before the first page. False,
    /// with the reason in `error`, when a missing font is to end the run.
    bool CollectFonts(const std::vector<int>& pages, std::string& error);

    /// Draws page `index` (from 0) in a bracket of the graphics state: page matrix, initial page
    /// matrix, clip to the box, contents, annotations' appearances. Never throws; what cannot be
    /// drawn is reported and left out.
    void Play(int index);

    /// Kinds of colour spaces met so far ("DeviceCMYK", "ICCBased", "Separation Orange", …).
    [[nodiscard]] const std::set<std::string>& ColorSpaceNames() const;

    /// What became of the fonts that were collected.
    [[nodiscard]] const std::vector<FontRecord>& FontRecords() const;

private:
    struct Parts;
    std::unique_ptr<Parts> mParts;
};

}  // namespace VANTIX::PDF
