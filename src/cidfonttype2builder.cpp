// SPDX-License-Identifier: MIT
#include "cidfonttype2builder.h"

#include "core/libsupport/vlogger/logmessage.h"
#include "sfntbuilder.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/cidfonttype2builder";

/// Looks for the table of horizontal metrics.
class MetricsTableFunctor final : public GRAPHICS::ITableFunctor {
public:
    bool operator()(FourCC tag, const std::uint8_t* /*data*/, std::uint32_t /*size*/) override {
        isFound = isFound || tag == "hmtx"_cc;
        return !isFound;
    }

    bool isFound = false;
};

}  // namespace

bool CIDFontType2Builder::Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
                               IO::IPacketDataProvider& packet) {
    if (!BaseCIDFontBuilder::Init(handler, name, packet)) {
        return false;
    }
    if (FindInterface<GRAPHICS::IFontData>(handler, GRAPHICS::IID_IFONTDATA) == nullptr) {
        LogError(kModule) << "IID_IFONTDATA not found for true type font " << handler->GetName();
        return false;
    }
    return true;
}

bool CIDFontType2Builder::BuildFont() {
    if (GetStream() == nullptr) {
        return false;
    }
    WriteBeginResource();
    Stream() << "/CIDInit /ProcSet findresource begin\n";
    const bool isWritten = WriteCIDFontBody();
    Stream() << "CIDFontName currentdict end definefont pop\n"
             << "end\n";
    if (TrueTypeSource() != nullptr) {
        WriteCompositeFont();
    } else {
        LogError(kModule) << "Failed to find IID_ICIDKEYEDT42ANCILLARY in CIDKeyedT42Font";
    }
    Stream() << "%%EndResource\n";
    return isWritten;
}

const float* CIDFontType2Builder::GetFontMatrix() const {
    static constexpr float kIdentity[] = {1, 0, 0, 1, 0, 0};
    return kIdentity;
}

void CIDFontType2Builder::WriteFontBBox() {
    WriteBBox(1);
}

void CIDFontType2Builder::WriteAdditionalFontDictEntries() {
    Stream() << "/PaintType 0 def\n"
             << "/StrokeWidth 0 def\n";
    BeginEncoding(*Handler());
    Stream() << "readonly def\n"
             << "/CharStrings 1 dict dup begin\n"
             << "/.notdef 0 def\n"
             << "end readonly def\n"
             << "/CIDCount " << Handler()->GetGlyphCount() << "def\n"
             << "/GDBytes 2 def\n"
             << "/CIDMap 0 def\n";
    WriteSFNTStrings(Stream(), *Handler(), kModule,
                     "Failed to fetch the SFNTStringsBuilder for CID Keyed Type 42 font ");
    MetricsTableFunctor functor;
    if (const auto* font = TrueTypeSource(); font != nullptr) {
        font->EnumerateTables(functor);
    }
    if (functor.isFound) {
        Stream() << "/MetricsCount 0 def\n";
    }
}

}  // namespace VANTIX::PS
