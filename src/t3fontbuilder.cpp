// SPDX-License-Identifier: MIT
#include "t3fontbuilder.h"

#include <string_view>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/policykeys.h"
#include "postscriptconnectionspace/t3glyphpsconnectionspace.h"
#include "wpacketdataprovider.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/t3fontbuilder";

constexpr const char* kBuildProcedures =
    "/BuildGlyph % Stack contains: font charname\n"
    "{\n"
    " exch /GlyphProcs get exch % Get GlyphProcs dictionary\n"
    " 2 copy known not % See if charname is known\n"
    " {pop /.notdef}\n"
    " if\n"
    " get exec % Execute BuildGlyph procedure\n"
    "} bind def\n"
    "/BuildChar % LanguageLevel 1 compatibility\n"
    "{\n"
    " 1 index /Encoding get exch get\n"
    " 1 index /BuildGlyph get exec\n"
    "} bind def\n";

/// Null (logged) for a font of another kind.
const GRAPHICS::IT3Ancillary* GlyphsOf(const GRAPHICS::IFontPackageHandler& handler) {
    if (handler.GetFontType() != GRAPHICS::TFontType::kType3) {
        LogError(kModule) << "New source font type "
                          << static_cast<std::int32_t>(handler.GetFontType())
                          << " getting converted to PostScript Type 3 font?";
        return nullptr;
    }
    return FindInterface<GRAPHICS::IT3Ancillary>(&handler, GRAPHICS::IID_IT3ANCILLARY);
}

class T3GlyphProcFunctor final : public GRAPHICS::IT3GlyphProcFunctor {
public:
    explicit T3GlyphProcFunctor(T3FontBuilder& builder) : mBuilder(builder) {}

    bool operator()(const char* name, std::int32_t nameLength,
                    const GRAPHICS::IConnectionSpace* glyph, const float box[4], float width,
                    bool isColoured) override {
        mBuilder.WriteGlyphProcsDictEntry(name, nameLength, glyph, box, width, isColoured);
        return true;
    }

private:
    T3FontBuilder& mBuilder;
};

}  // namespace

bool T3FontBuilder::FindServices() {
    if (mFactory == nullptr) {
        mFactory = FindInterface<IClassFactory>(this, IID_CLASSFACTORY);
    }
    if (mFactory == nullptr) {
        LogError(kModule) << "Factory is mandatory to Init a T3FontBuilder, missed "
                             "IID_CLASSFACTORY aggregation?";
        return false;
    }
    if (mPolicy) {
        return true;
    }
    const auto* policy = FindInterface<IO::IDictionary>(this, IO::IID_IPOSTSCRIPTPOLICYDICT);
    if (policy == nullptr) {
        LogError(kModule) << "IID_IPOSTSCRIPTPOLICYDICT must be aggregated into a T3FontBuilder";
        return false;
    }
    policy->CopyTo(mPolicy);
    if (mPolicy) {
        mPolicy->SetBool(POLICY::kSetDefaultColour, false);
        // No form can be defined within the procedure of a glyph.
        mPolicy->SetBool(POLICY::kPdfmarkTransparency, false);
    }
    return true;
}

bool T3FontBuilder::BuildFont() {
    if (GetStream() == nullptr || !FindServices()) {
        return false;
    }
    WriteBeginResource();
    WriteFontComments();
    WriteFontDictionary();
    Stream() << "dup /FontName get exch definefont pop\nend\n"
             << "%%EndResource\n";
    return true;
}

void T3FontBuilder::WriteFontComments() {
    const std::string_view version = Handler()->GetVersionString();
    if (version.empty()) {
        Print("%%!FontType3: %s\n", GetFontName());
    } else {
        Print("%%!FontType3: %s %s\n", GetFontName(), EscapeFontName(version).c_str());
    }
    Print("%%%%CreationDate: %s", CreationTime().c_str());
    const std::string_view notice = Handler()->GetNoticeString();
    if (!notice.empty()) {
        Stream().WriteComment(notice.data(), static_cast<std::uint32_t>(notice.size()), true);
        Stream() << "\n";
    }
    Stream() << "%%EndComments\n";
}

bool T3FontBuilder::WriteTypeSpecificEntries() {
    Stream() << "/PaintType 0 def\n"
             << "/StrokeWidth 0 def\n";
    const bool written = WriteGlyphProcs();
    Stream() << kBuildProcedures;
    return written;
}

bool T3FontBuilder::WriteGlyphProcs() {
    const GRAPHICS::IT3Ancillary* font = GlyphsOf(*Handler());
    if (font == nullptr) {
        return false;
    }
    Stream() << "/GlyphProcs " << font->GetGlyphCount() + 1
             << "dict dup begin % Subsidiary dictionary for individual glyph descriptions\n"
             << "/.notdef {} def\n";
    T3GlyphProcFunctor functor(*this);
    font->EnumerateGlyphs(functor);
    Stream() << "end readonly def % End of GlyphProcs\n";
    return true;
}

void T3FontBuilder::WriteGlyphProcsDictEntry(const char* name, std::int32_t nameLength,
                                             const GRAPHICS::IConnectionSpace* glyph,
                                             const float box[4], float width, bool coloured) {
    if (name == nullptr || nameLength <= 0 ||
        !IsPlainName({name, static_cast<std::size_t>(nameLength)})) {
        return;
    }
    Stream().WriteName(name, static_cast<std::uint32_t>(nameLength)) << " {\n";
    Stream() << width << 0 << "% Width\n";
    if (coloured) {
        Stream() << "setcharwidth\n";
    } else {
        Stream() << box[0] << box[1] << box[2] << box[3] << "% Bounding box\n"
                 << "setcachedevice\n";
    }
    if (glyph != nullptr && mPolicy && mFactory != nullptr) {
        WriteRecording(*glyph, coloured);
    }
    Stream() << "} bind def\n";
}

void T3FontBuilder::WriteRecording(const GRAPHICS::IConnectionSpace& glyph, bool coloured) {
    const auto packet =
        TInterfacePtr<IO::IPacketDataProvider>::Adopt(IO::CreateWPacketDataProvider());
    if (!packet) {
        LogError(kModule) << "Unable to create the DataProvider.";
        return;
    }
    auto* page =
        FindInterface<PostScriptConnectionSpace>(this, GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE);
    const auto space = MakeObject<T3GlyphPSConnectionSpace>(coloured, page);
    if (!space->Init(packet.Get(), mFactory, mPolicy.Get())) {
        LogError(kModule) << "Unable to create PostScriptConnectionSpace.";
        return;
    }
    Stream() << "0 0 moveto\n";
    space->Record(glyph);
    packet->SetPosition(0, IO::Offset::kBegin);
    packet->Flush();
    Stream().WriteDataProvider(*packet);
}

bool T3FontBuilder::SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) {
    const GRAPHICS::IT3Ancillary* font = GlyphsOf(*handler);
    if (font != nullptr) {
        BaseFontEncodingFunctor functor(Stream());
        font->EnumerateEncoding(functor);
    }
    return font != nullptr;
}

bool T3FontBuilder::DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) {
    if (GetStream() == nullptr || handler == nullptr || name == nullptr) {
        return false;
    }
    if (handler->GetFontType() != GRAPHICS::TFontType::kType3) {
        LogError(kModule) << "Un-handled font type "
                          << static_cast<std::int32_t>(handler->GetFontType())
                          << " to redefine in T3FontBuilder";
        return false;
    }
    BeginRedefinition(GetFontName(), name);
    WriteEncoding(*handler);
    EndRedefinition(name);
    return true;
}

}  // namespace VANTIX::PS
