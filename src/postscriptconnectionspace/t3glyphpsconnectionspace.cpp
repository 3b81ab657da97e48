// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/t3glyphpsconnectionspace.h"

#include <algorithm>
#include <vector>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";

/// The longest string (PostScript Language Reference, appendix B).
constexpr std::size_t kMostStringBytes = 65535;

/// Points that are written between two looks at the length of the procedure.
constexpr std::int32_t kMostPoints = 1024;

/// The channel with the opacity of an image; null (logged) where none can be drawn as a mask.
const GRAPHICS::IChannelDesc* FindAlpha(const GRAPHICS::IRasterComponent& raster) {
    const GRAPHICS::IChannelDesc* alpha = nullptr;
    for (std::int32_t i = 0; i < raster.GetExtraCount() && alpha == nullptr; ++i) {
        const GRAPHICS::IChannelDesc* channel = raster.GetExtra(i);
        if (channel == nullptr) {
            LogError(kModule) << "Expected channel description for extra channel " << i
                              << " is missing.";
            return nullptr;
        }
        alpha = channel->GetType() == "LPHA"_cc ? channel : nullptr;
    }
    if (alpha == nullptr || alpha->GetBits() != 1) {
        LogError(kModule) << "An image of a glyph is no mask.";
        return nullptr;
    }
    if (alpha->GetData() == nullptr) {
        LogError(kModule) << "No channel data for 1 bit image";
        return nullptr;
    }
    return alpha;
}

/// Calls `write` with the points in pieces of `floats` numbers each.
template <class Write>
void InPieces(const float* points, std::int32_t count, std::int32_t floats, const Write& write) {
    for (; count > kMostPoints;
         count -= kMostPoints, points += std::ptrdiff_t{kMostPoints} * floats) {
        write(points, kMostPoints);
    }
    write(points, count);
}

}  // namespace

T3GlyphPSConnectionSpace::T3GlyphPSConnectionSpace(bool coloured, PostScriptConnectionSpace* page)
    : mIsColoured(coloured), mPage(page) {
    mFontsPending = false;
}

void T3GlyphPSConnectionSpace::Record(const GRAPHICS::IConnectionSpace& glyph) {
    BeginBody();
    if (GRAPHICS::IBaseConnectionSpace* base = Base(); base != nullptr) {
        glyph.PlayTo(*base);
    } else {
        glyph.PlayTo(*this);
    }
    EndBody();
}

void T3GlyphPSConnectionSpace::RestoreGraphicsState() {
    PostScriptConnectionSpace::RestoreGraphicsState();
    CutBody();
}

void T3GlyphPSConnectionSpace::MoveTo(float x, float y) {
    CutBody();
    PostScriptConnectionSpace::MoveTo(x, y);
}

void T3GlyphPSConnectionSpace::LineTo(const float* points, std::int32_t count) {
    InPieces(points, count, 2, [this](const float* piece, std::int32_t length) {
        CutBody();
        PostScriptConnectionSpace::LineTo(piece, length);
    });
}

void T3GlyphPSConnectionSpace::CurveTo(const float* points, std::int32_t count) {
    InPieces(points, count, 6, [this](const float* piece, std::int32_t length) {
        CutBody();
        PostScriptConnectionSpace::CurveTo(piece, length);
    });
}

void T3GlyphPSConnectionSpace::DrawTextW(const void* text, std::int32_t length) {
    CutBody();
    PostScriptConnectionSpace::DrawTextW(text, length);
}

void T3GlyphPSConnectionSpace::GetPSFontName(GRAPHICS::IFontPackageHandler* handler,
                                             char name[kFontNameBytes]) {
    if (mPage) {
        mPage->GetPSFontName(handler, name);
    } else {
        PostScriptConnectionSpace::GetPSFontName(handler, name);
    }
}

void T3GlyphPSConnectionSpace::DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y,
                                         float width, float height) {
    if (IsDrawingSuppressed() || raster == nullptr) {
        return;
    }
    CutBody();
    if (!mIsColoured || IsImageMask(*raster)) {
        DrawMask(*raster);
        return;
    }
    LogError(kModule) << "Implement T3 glyph proc's DrawImage which is specifying color i.e. use "
                         "image operator";
    PostScriptConnectionSpace::DrawImage(raster, x, y, width, height);
}

void T3GlyphPSConnectionSpace::DrawMask(const GRAPHICS::IRasterComponent& raster) {
    ApplyOverprint(true);
    const GRAPHICS::IChannelDesc* alpha = FindAlpha(raster);
    if (alpha != nullptr) {
        WriteSamples(*alpha->GetData(), raster.GetWidth(), raster.GetHeight());
        WriteImageDictionary(raster.GetWidth(), raster.GetHeight(), alpha->GetBits());
    }
}

void T3GlyphPSConnectionSpace::WriteSamples(GRAPHICS::IChannelData& samples, std::int32_t width,
                                            std::int32_t height) {
    const std::size_t lineBytes = (static_cast<std::size_t>(std::max(width, 0)) + 7) / 8;
    const std::vector<std::uint8_t> missing(lineBytes);
    IPostScriptDataStream& stream = *mStreams.Top();
    stream << "/SampleStringsArray [\n<";
    stream.SetUpperCase().SetHexMode().SetSeparatedAndResetCounter();
    std::size_t room = kMostStringBytes;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* line = samples.GetLine(y);
        line = line == nullptr ? missing.data() : line;
        for (std::size_t done = 0; done < lineBytes;) {
            if (room == 0) {
                stream << ">\n<";
                stream.SetSeparatedAndResetCounter();
                room = kMostStringBytes;
            }
            const std::size_t count = std::min(room, lineBytes - done);
            stream.WriteBytes(line + done, static_cast<std::int32_t>(count));
            done += count;
            room -= count;
        }
    }
    stream.SetLowerCase().SetDecimalMode();
    stream << ">] def\n";
}

void T3GlyphPSConnectionSpace::WriteImageDictionary(std::int32_t width, std::int32_t height,
                                                    std::int32_t bits) {
    TextBuffer& text = StartLine();
    text.Format(
        "\n/stringIndex 0 def\n<<\n/ImageType 1\n/Width %d\n/Height %d\n/BitsPerComponent %d\n"
        "/Decode [1 0]\n/ImageMatrix [%d 0 0 %d 0 0]\n/DataSource %s\n>>\nimagemask\n",
        width, height, bits, width, height,
        "{SampleStringsArray stringIndex exch 1 index get exch 1 add /stringIndex exch def} bind");
    WriteRawData(text.View().data(), static_cast<std::int32_t>(text.Size()));
}

}  // namespace VANTIX::PS
