// SPDX-License-Identifier: MIT
#include "t42fontbuilder.h"

#include "core/libsupport/vlogger/logmessage.h"
#include "sfntbuilder.h"
#include "sfntbuilder_bytes.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/t42fontbuilder";

const GRAPHICS::IT42Ancillary* TrueTypeOf(const GRAPHICS::IFontPackageHandler& handler) {
    return FindInterface<GRAPHICS::IT42Ancillary>(&handler, GRAPHICS::IID_IT42ANCILLARY);
}

/// Writes one entry of /CharStrings for each call. Names that would break it are left out.
class T42CharStringFunctor final : public GRAPHICS::IGlyphNameFunctor {
public:
    explicit T42CharStringFunctor(IPostScriptDataStream& stream) : mStream(stream) {}

    bool operator()(const char* name, std::uint16_t index) override {
        if (name != nullptr && IsPlainName(name)) {
            mStream << "/" << name << " " << index << "def\n";
        }
        return true;
    }

private:
    IPostScriptDataStream& mStream;
};

}  // namespace

bool T42FontBuilder::Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
                          IO::IPacketDataProvider& packet) {
    if (!BaseFontBuilder::Init(handler, name, packet)) {
        return false;
    }
    if (FindInterface<GRAPHICS::IFontData>(handler, GRAPHICS::IID_IFONTDATA) == nullptr) {
        LogError(kModule) << "IID_IFONTDATA not found for true type font " << handler->GetName();
        return false;
    }
    return true;
}

bool T42FontBuilder::BuildFont() {
    if (GetStream() == nullptr) {
        return false;
    }
    WriteBeginResource();
    WriteFontComments();
    const bool written = WriteFontDictionary();
    Stream() << "dup /FontName get exch definefont pop\nend\n"
             << "%%EndResource\n";
    return written;
}

void T42FontBuilder::WriteFontComments() {
    const auto* font = TrueTypeOf(*Handler());
    const HeaderTables tables = font == nullptr ? HeaderTables{} : FindHeaderTables(*font);
    if (tables.head.empty()) {
        Stream() << "%!PS-TrueTypeFont-65536-65536-1\n";
    } else {
        const auto fixed = [&](std::size_t at) {
            return static_cast<std::int32_t>(ReadU32(&tables.head[at]));
        };
        Print("%%!PS-TrueTypeFont-%d-%d\n", fixed(0), fixed(4));
    }
    WriteMemoryUse(tables.post);
}

bool T42FontBuilder::WriteFontMatrix() {
    Stream() << "/FontMatrix [1 0 0 1 0 0] def\n";
    return true;
}

bool T42FontBuilder::WriteFontBBox() {
    if (Handler()->GetFontType() != GRAPHICS::TFontType::kTrueType) {
        return BaseFontBuilder::WriteFontBBox();
    }
    const GRAPHICS::FontBox box = Handler()->GetFontBBox();
    Print("/FontBBox [%g %g %g %g] readonly def\n", static_cast<double>(box.x),
          static_cast<double>(box.y), static_cast<double>(box.x + box.width),
          static_cast<double>(box.y + box.height));
    return true;
}

bool T42FontBuilder::WriteTypeSpecificEntries() {
    Stream() << "/PaintType 0 def\n"
             << "/StrokeWidth 0 def\n";
    const bool written = WriteCharStrings(*Handler());
    WriteSFNTStrings(Stream(), *Handler(), kModule,
                     "Failed to fetch the SFNTStringsBuilder for a Type 42 font ");
    return written;
}

bool T42FontBuilder::WriteCharStrings(GRAPHICS::IFontPackageHandler& handler) {
    const auto* font = TrueTypeOf(handler);
    Stream() << "/CharStrings " << (font == nullptr ? 0U : font->GetGlyphCount())
             << "dict dup begin\n/.notdef 0 def\n";
    if (font != nullptr) {
        T42CharStringFunctor functor(Stream());
        font->EnumerateGlyphNames(functor);
    }
    Stream() << "end readonly def\n";
    return font != nullptr;
}

bool T42FontBuilder::SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) {
    const auto* font = TrueTypeOf(*handler);
    if (font != nullptr) {
        BaseFontEncodingFunctor functor(Stream());
        font->EnumerateEncoding(functor);
    }
    return font != nullptr;
}

bool T42FontBuilder::DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) {
    if (GetStream() == nullptr || handler == nullptr || name == nullptr) {
        return false;
    }
    const GRAPHICS::TFontType type = handler->GetFontType();
    if (type == GRAPHICS::TFontType::kCIDKeyedTrueType) {
        LogError(kModule)
            << "We don't support downloading CIDKeyed true type as PostScript Type 42 font";
        return false;
    }
    if (type != GRAPHICS::TFontType::kTrueType) {
        LogError(kModule) << "Un-handled font type " << static_cast<std::int32_t>(type)
                          << " to re-define in T42FontBuilder";
        return false;
    }
    BeginRedefinition(GetFontName(), name);
    WriteEncoding(*handler);
    WriteCharStrings(*handler);
    EndRedefinition(name);
    return true;
}

}  // namespace VANTIX::PS
